// Whether a device saves energy, by status documents good and bad.

#include "Homeloom/Life/EnergySavingMode.h"

#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <gtest/gtest.h>

using namespace VMFramework::HomeLoom;
using VMFramework::json::JsonValue;

namespace {

/// A status with these three values, as JSON text; an empty one is null.
std::string Status(const std::string& drlcStatus, const std::string& operation, const std::string& disabled) {
    const auto value = [](const std::string& text) { return "{\"value\":" + (text.empty() ? "null" : text) + "}}"; };
    return R"({"components":{"main":{"demandResponseLoadControl":{"drlcStatus":)" + value(drlcStatus) +
           R"(,"custom.energyType":{"energySavingOperation":)" + value(operation) +
           R"(,"custom.disabledCapabilities":{"disabledCapabilities":)" + value(disabled) + "}}}";
}

}  // namespace

TEST(EnergySavingMode, GoesByLevelOperationAndDisabledCapabilities) {
    constexpr char kZero[] = R"({"drlcLevel":0})";
    constexpr char kOne[] = R"({"drlcLevel":1})";
    constexpr char kOff[] = R"(["switch","demandResponseLoadControl"])";
    const struct {
        std::string drlcStatus, operation, disabled;
        int level;
        bool isSaving;
    } cases[] = {
        {kZero, "", "", 0, false},
        {kOne, "", "", 1, true},
        {R"({"drlcLevel":4})", "false", "[]", 4, true},
        {kZero, "true", R"(["switch"])", 0, true},
        {R"({"drlcLevel":-1})", "true", "", -1, false},
        {"", "true", "", -1, false},
        {kOne, "true", kOff, 1, false},
        // Values of another kind count as not there.
        {R"({"drlcLevel":"1"})", "true", "", -1, false},
        {R"({"drlcLevel":true})", "true", "", -1, false},
        {R"({"drlcLevel":null})", "true", "", -1, false},
        {R"({"drlcLevel":99999999999})", "true", "", -1, false},
        {R"({"drlcLevel":-1e300})", "true", "", -1, false},
        {R"({"drlcLevel":1.9})", "", "", 1, true},
        {"1", "true", "", -1, false},
        {"[1]", "true", "", -1, false},
        {kZero, "1", "", 0, false},
        {kZero, R"("true")", "", 0, false},
        {kZero, "{}", "", 0, false},
        {kOne, "", R"("demandResponseLoadControl")", 1, true},
        {kOne, "", R"({"demandResponseLoadControl":true})", 1, true},
        {kOne, "", R"([null,{},["demandResponseLoadControl"],7])", 1, true},
        {kOne, "", R"([{},"demandResponseLoadControl"])", 1, false},
    };
    for (const auto& row : cases) {
        const std::string status = Status(row.drlcStatus, row.operation, row.disabled);
        EXPECT_EQ(requestBuildEnergySavingMode("device", status), row.isSaving) << status;
        EXPECT_EQ(getDrlcLevel(JsonValue::Create(status)), row.level) << status;
    }
}

TEST(EnergySavingMode, IsOffWithoutAReadableStatus) {
    const std::string saving = Status(R"({"drlcLevel":1})", "", "");
    const std::string large = R"({"x":")" + std::string(10 << 20, 'x') + R"(",)" + saving.substr(1);
    EXPECT_TRUE(requestBuildEnergySavingMode("device", large));
    for (const std::string& status :
         std::vector<std::string>{"", "no JSON", "[]", "{}", R"({"components":1})", R"({"components":{"main":"x"}})",
                                  R"({"components":{"main":{"demandResponseLoadControl":[]}}})", saving + "x",
                                  std::string(100000, '['), large.substr(0, 10 << 20)}) {
        EXPECT_FALSE(requestBuildEnergySavingMode("device", status)) << status.substr(0, 100);
    }
}

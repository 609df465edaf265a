#include "Common/CHLUtil.h"

#include <stdexcept>

#include <VMFramework/JsonValue.h>

#include "Common/DeviceInfoStructs.h"
#include "UIMetaTest.h"
#include "desktop/Log.h"
#include "desktop/System.h"

namespace VMFramework::HomeLoom {
namespace {

using json::JsonValue;

constexpr char kThrows[] = "throws";
constexpr char kRefused[] = "refused";

TEST(CHLUtilTest, PropertyValuesTravelAsText) {
    const JsonValue attributes = JsonValue::Create(
        Json("{'b':true,'i':-7,'d':24.5,'s':'on','n':null,'l':[1,'a'],'o':{'k':24.5},'big':3000000000,'t':'7'}"));
    struct {
        const char *name, *type, *value;
    } const cases[] = {
        {"b", "Boolean", "true"},       {"n", "Boolean", "false"},      {"s", "Boolean", kThrows},
        {"s", "String", "on"},          {"l", "String", kThrows},       {"i", "Integer", "-7"},
        {"t", "Integer", kThrows},      {"big", "Integer", kThrows},    {"d", "Double", "24.500000"},
        {"l", "Array", "[1,\"a\"]"},    {"o", "Array", "{\"k\":24.5}"}, {"n", "Array", "null"},
        {"l", "StringArray", kRefused}, {"s", "string", kRefused},      {"absent", "String", kRefused},
        {"B", "Boolean", kRefused},     {"", "String", kRefused},
    };
    for (const auto& each : cases) {
        device_property_info_struct info{each.name, "before", each.type};
        std::string value;
        try {
            value = CHLUtil::GetPropertyValue(attributes, info) ? info.property_value : kRefused;
        } catch (const std::runtime_error&) {
            value = kThrows;
        }
        EXPECT_EQ(value, each.value) << each.name << " as " << each.type;
    }
    EXPECT_TRUE(CHLUtil::GetMemberBool(attributes, "b"));
    EXPECT_FALSE(CHLUtil::GetMemberBool(attributes, "absent"));
    EXPECT_EQ(CHLUtil::GetMemberString(attributes, "s") + CHLUtil::GetMemberString(attributes, "absent"), "on");
}

TEST(CHLUtilTest, TheVersionNeedsANameToo) {
    using namespace homeloom::desktop;
    const log::Capture log(DLOG_ERROR);
    system::setAppVersion("9.9");
    EXPECT_EQ(CHLUtil::GetAppVersion(), "9.9");
    system::setAppVersion(std::nullopt);
    EXPECT_EQ(CHLUtil::GetAppVersion(), "");
    EXPECT_TRUE(log.contains("failed to get app version"));
    system::setAppName(std::nullopt);
    EXPECT_EQ(CHLUtil::GetAppVersion(), "");
    EXPECT_TRUE(log.contains("failed to get app name"));
}

}  // namespace
}  // namespace VMFramework::HomeLoom

// The page for whoever writes a device model says what the plug-in makes of its UI metadata.

#include <functional>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <gmock/gmock.h>
#include <simulator/HomeLoader.h>
#include <simulator/HomeSchema.h>

#include "Page.h"
#include "uimeta/UIMetaTest.h"

namespace VMFramework::HomeLoom {
namespace {

using json::JsonValue;

constexpr char kPage[] = "docs/ui-metadata.md";

std::string Whole(const std::string& data) {
    return R"({"message":"SUCCESS","data":)" + data + "}";
}

/// "`/uri property=value`" of a cell, as often as it stands there.
std::vector<Value> ValuesIn(const std::string& cell) {
    static const std::regex value("`(/\\S+) ([^=`]+)=([^`]*)`");
    std::vector<Value> values;
    for (std::sregex_iterator found(cell.begin(), cell.end(), value), end; found != end; ++found) {
        values.push_back({(*found)[1], (*found)[2], (*found)[3]});
    }
    return values;
}

std::string CardsOf(const Device& device) {
    const JsonValue cards = JsonValue::Create(device.GetSubDeviceCardJsonInfo());
    std::string text;
    for (std::size_t i = 0; i < cards.size(); ++i) {
        const JsonValue card = cards[i];
        text += card["device_name"].asString() + ": " + card["state_text"].asString() + " (" +
                card["icon_url"].asString() + ", " + card["control_type"].asString() + " " +
                card["action_state"].asString() + ")";
    }
    return text;
}

class UiMetadataPage : public UIMetaTest {
protected:
    /// What stands in a column of that title; none for a column that says what the device tells.
    std::string Shown(const std::string& title, const std::shared_ptr<Device>& device) {
        const std::map<std::string, std::function<std::string()>> columns = {
            {"State text", [&] { return device->GetStateText(); }},
            {"Look", [&] { return std::string(device->IsInactive() ? "off" : "on"); }},
            {"Control", [&] { return metadata.GetDeviceMainActionControlType(device); }},
            {"Icon or state", [&] { return metadata.ActionIcon(device); }},
            {"Cards", [&] { return CardsOf(*device); }},
            {"The action sets", [&] {
                 std::string uri, property, value;
                 const bool sets = metadata.GetDeviceMainAction(device, uri, property, value);
                 return sets ? "`" + uri + " " + property + "=" + value + "`" : "nothing";
             }}};
        return columns.at(title)();
    }
};

TEST_F(UiMetadataPage, SaysWhatIsShown) {
    const auto examples = documentedExamples(kPage);
    ASSERT_GE(examples.size(), 5u);
    for (const auto& example : examples) {
        metadata.ClearMetadataMaps();
        ASSERT_TRUE(metadata.ParseMetadata(kVid, Whole(example.json))) << example.json;
        EXPECT_GE(example.rows.size(), 2u) << "an example without its table: " << example.json;
        for (const auto& row : example.rows) {
            const auto language = row.find("The TV's language");
            SetLanguage((language == row.end() ? "en_US.utf8" : language->second.substr(1, 10)).c_str());
            const auto device = MakeDevice(ValuesIn(row.at("The device tells")));
            device->SetStateText("as before");
            metadata.SetDeviceStateText(device);
            for (const auto& [title, cell] : row) {
                if (title != "The device tells" && title != "The TV's language") {
                    EXPECT_EQ(testing::PrintToString(Shown(title, device)), testing::PrintToString(cell))
                        << title << ": " << row.at("The device tells");
                }
            }
        }
    }
}

TEST_F(UiMetadataPage, NamesEveryMemberAndOperatorAndNoOther) {
    std::set<std::string> known;
    const std::function<void(const JsonValue&)> walk = [&](const JsonValue& schema) {
        const JsonValue properties = schema["properties"];
        for (const auto& name : properties.isObject() ? properties.getMemberNames() : std::vector<std::string>()) {
            if (name != "_comment") {
                known.insert(name);
                walk(properties[name]);
            }
        }
        const JsonValue items = schema["items"];
        if (items.isObject()) {
            walk(items);
        }
        const JsonValue words = schema["enum"];
        for (std::size_t i = 0; words.size() > 1 && i < words.size(); ++i) {
            EXPECT_THAT(
                linesBelow(kPage, "## When a state is visible", [](const auto& line) { return line[0] == '#'; }),
                testing::Contains(testing::HasSubstr("\"operator\": " + words[i].toString())));
        }
    };
    walk(JsonValue::Create(simulator::uiMetadataSchema()));
    std::set<std::string> named;
    for (const auto& line : linesBelow(kPage, "## All members", [](const auto&) { return false; })) {
        static const std::regex name("`([^`]+)`");
        for (std::sregex_iterator found(line.begin(), line.end(), name), end; found != end; ++found) {
            named.insert((*found)[1]);
        }
    }
    EXPECT_EQ(named, known);
}

TEST_F(UiMetadataPage, ItsExamplesLoadWithoutAWarning) {
    for (const auto& example : documentedExamples(kPage)) {
        std::vector<simulator::HomeMistake> warnings;
        simulator::parseHome(
            R"({"account":{"login_id":"a","user_id":"u","access_token":"t"},"locations":[{"id":"l","name":"L"}],
                             "models":[{"vid":"m","ui_metadata":)" +
                Whole(example.json) + "}]}",
            "page", &warnings);
        EXPECT_TRUE(warnings.empty()) << simulator::HomeError(warnings).what();
    }
}

}  // namespace
}  // namespace VMFramework::HomeLoom

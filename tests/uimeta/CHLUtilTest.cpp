#include "Common/CHLUtil.h"

#include <stdexcept>

#include <vconf.h>

#include <VMFramework/JsonValue.h>

#include "Homeloom/Devices/DeviceInfoStructs.h"
#include "UIMetaTest.h"

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
        {"b", "Boolean", "true"},
        {"i", "Boolean", "true"},
        {"n", "Boolean", "false"},
        {"s", "Boolean", kThrows},
        {"s", "String", "on"},
        {"d", "String", "24.5"},
        {"n", "String", ""},
        {"l", "String", kThrows},
        {"i", "Integer", "-7"},
        {"d", "Integer", "24"},
        {"t", "Integer", kThrows},
        {"big", "Integer", kThrows},
        {"d", "Double", "24.500000"},
        {"i", "Double", "-7.000000"},
        {"s", "Double", kThrows},
        {"l", "Array", "[1,\"a\"]"},
        {"o", "Array", "{\"k\":24.5}"},
        {"n", "Array", "null"},
        {"l", "StringArray", kRefused},
        {"s", "string", kRefused},
        {"s", "", kRefused},
        {"absent", "String", kRefused},
        {"B", "Boolean", kRefused},
        {"", "String", kRefused},
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
    device_property_info_struct info{"b", "", "Boolean"};
    for (const char* text : {"", "Run", "[]", "'b'"}) {
        const JsonValue value = JsonValue::Create(Json(text));
        EXPECT_THROW(CHLUtil::GetPropertyValue(value, info), std::runtime_error) << text;
        EXPECT_THROW(CHLUtil::GetMemberBool(value, "b"), std::runtime_error) << text;
        EXPECT_THROW(CHLUtil::GetMemberString(value, "b"), std::runtime_error) << text;
    }
    EXPECT_TRUE(CHLUtil::GetMemberBool(attributes, "b"));
    EXPECT_FALSE(CHLUtil::GetMemberBool(attributes, "absent"));
    EXPECT_EQ(CHLUtil::GetMemberString(attributes, "s") + CHLUtil::GetMemberString(attributes, "absent"), "on");
}

TEST(CHLUtilTest, MembersAreFoundWithoutCase) {
    const std::vector<std::string> members = {"mode", "Power", "POWER", "x.com.Level", "\xC3\xA4"};
    struct {
        const char *key, *member;
    } const cases[] = {
        {"power", "Power"}, {"X.COM.LEVEL", "x.com.Level"}, {"pow", ""}, {"powers", ""}, {"\xC3\x84", ""}, {"", ""}};
    for (const auto& each : cases) {
        EXPECT_EQ(CHLUtil::GetMemberFromMembers(members, each.key), each.member) << each.key;
    }
}

TEST(CHLUtilTest, DetailsOfDevicesAreRead) {
    struct {
        const char *json, *parent, *network;
    } const cases[] = {
        {"{'irOcf':{'parentDeviceId':'hub-1'},'dth':{'deviceNetworkType':'ZIGBEE'}}", "hub-1", "ZIGBEE"},
        {"{'irOcf':null,'dth':null}", "", ""},
        {"{'irOcf':{},'dth':'x'}", "", ""},
        {"{}", "", ""},
        {"not json", "", ""},
        {"", "", ""},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(CHLUtil::GetParentIdOfIRDevice(Json(each.json)), each.parent);
        EXPECT_EQ(CHLUtil::GetDeviceNetworkType("DTH", Json(each.json)), each.network);
        EXPECT_EQ(CHLUtil::GetDeviceNetworkType("OCF", Json(each.json)), "");
    }
}

TEST(CHLUtilTest, DeviceTypesAreExact) {
    struct {
        const char* type;
        bool button, tv, tv_or_refrigerator;
    } const cases[] = {
        {"x.com.hl.d.button", true, false, false},
        {"x.com.hl.d.remotecontroller", true, false, false},
        {"oic.d.tv", false, true, true},
        {"x.com.hl.d.projector", false, true, true},
        {"x.com.hl.d.monitor", false, true, true},
        {"oic.d.krefrigerator", false, false, true},
        {"oic.d.refrigerator", false, false, false},
        {"OIC.D.TV", false, false, false},
        {"", false, false, false},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(CHLUtil::IsButtonDeviceType(each.type), each.button) << each.type;
        EXPECT_EQ(CHLUtil::IsDeviceTypeTVForActionState(each.type), each.tv) << each.type;
        EXPECT_EQ(CHLUtil::IsDeviceTypeTVOrRefForActiveState(each.type), each.tv_or_refrigerator) << each.type;
    }
    EXPECT_TRUE(CHLUtil::IsDuplicateWithSubscribeUrl({"/a", "/b"}, "/b"));
    EXPECT_FALSE(CHLUtil::IsDuplicateWithSubscribeUrl({"/a", "/b"}, "/B"));
}

TEST(CHLUtilTest, CountryComesFromTheSettings) {
    EXPECT_EQ(CHLUtil::GetHLHubCountryCode(), "");
    vconf_set_str("db/comss/countrycode", "KR");
    EXPECT_EQ(CHLUtil::GetHLHubCountryCode(), "KR");
}

}  // namespace
}  // namespace VMFramework::HomeLoom

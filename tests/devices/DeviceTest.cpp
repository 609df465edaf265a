#include "Homeloom/Devices/Device.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <tuple>
#include <typeinfo>
#include <utility>

#include <gtest/gtest.h>

#include "Homeloom/Devices/CameraDevice.h"
#include "Homeloom/Devices/DeviceFactory.h"
#include "Homeloom/Devices/HubDevice.h"
#include "Homeloom/Devices/Property.h"
#include "Homeloom/Devices/RefrigeratorDevice.h"
#include "Homeloom/Devices/Resource.h"
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {
namespace {

std::shared_ptr<Device> makeDevice(const std::string& type, std::initializer_list<const char*> uris = {}) {
    Device::_deviceInfo info;
    info.device_id = "id";
    info.vid = "vid";
    info.device_type = type;
    const auto device = DeviceFactory::Create(info, TesselHandler::GetInstance());
    for (const char* uri : uris) {
        device->AddResource(std::make_shared<Resource>(uri));
    }
    return device;
}

TEST(PropertyTest, WritesValuesByItsType) {
    const char* types[] = {"Boolean",     "Integer",     "String",       "Object",       "Float",
                           "Double",      "DoubleArray", "BooleanArray", "IntegerArray", "StringArray",
                           "ObjectArray", "FloatArray",  "Array"};
    int number = 0;
    for (const char* type : types) {
        Property property("p", Property::StringToPropertyType(type));
        property.SetValue("stored");
        std::string text;
        property.GetRcpString(text, "v\"1");  // nothing is escaped
        EXPECT_EQ(number == 2 ? R"({"p":"v"1"})" : R"({"p":v"1})", text) << type;
        EXPECT_EQ(std::to_string(number++), property.GetType()) << type;
    }
    for (const char* type : {"Whatever", "boolean", ""}) {
        EXPECT_EQ(PROPERTY_TYPE_STRING, Property::StringToPropertyType(type)) << type;
    }
    Property property("p");
    property.SetType(13);
    std::string text = "untouched";
    property.GetRcpString(text, "v");
    EXPECT_EQ("untouched", text);
}

TEST(ResourceTest, AnUpdateIsAFullPictureOfValuesAndKeepsTypes) {
    Resource resource("/u");
    resource.BuildDetailInfo({"id", "", {{"a", "1", "Integer"}, {"b", "x", "String"}}});
    resource.BuildDetailInfo({"id", "", {{"a", "2", ""}}});
    EXPECT_EQ("/u", resource.GetURI());
    EXPECT_EQ("2", resource.FindProperty("a", false)->GetValue());
    EXPECT_EQ("1", resource.FindProperty("a", false)->GetType());
    EXPECT_TRUE(resource.FindProperty("b", false)->IsValidObject());
    EXPECT_EQ("", resource.FindProperty("b", false)->GetValue());
    EXPECT_EQ("c", resource.FindProperty("c", true)->GetName());
    EXPECT_FALSE(resource.FindProperty("c", false)->IsValidObject());
}

TEST(ResourceTest, MergesWithOneOfItsUri) {
    Resource stored("/u");
    stored.BuildDetailInfo({"id", "", {{"a", "1", "Integer"}}});
    Resource fresh("/u");
    fresh.BuildDetailInfo({"id", "", {{"a", "2", "String"}, {"b", "3", "Integer"}}});
    stored.ApplyChanges(&fresh);
    EXPECT_EQ("2", stored.FindProperty("a", false)->GetValue());
    EXPECT_EQ("1", stored.FindProperty("a", false)->GetType());
    EXPECT_EQ(fresh.FindProperty("b", false), stored.FindProperty("b", false));

    Resource other("/v");
    other.BuildDetailInfo({"id", "", {{"a", "9", "Integer"}}});
    stored.ApplyChanges(&other);
    stored.ApplyChanges(nullptr);
    EXPECT_EQ("2", stored.FindProperty("a", false)->GetValue());
}

TEST(DeviceFactoryTest, PicksTheClassByTheExactType) {
    const struct {
        const char* type;
        const std::type_info& expected;
    } cases[] = {{"oic.d.camera", typeid(CameraDevice)},
                 {"x.com.hl.d.doorbell", typeid(CameraDevice)},
                 {"oic.d.refrigerator", typeid(RefrigeratorDevice)},
                 {"x.com.hl.d.hub", typeid(HubDevice)},
                 {"oic.d.krefrigerator", typeid(Device)},
                 {"OIC.d.camera", typeid(Device)},
                 {"", typeid(Device)}};
    for (const auto& [type, expected] : cases) {
        const auto device = makeDevice(type);
        const Device& made = *device;
        EXPECT_TRUE(typeid(made) == expected) << type << " gave " << typeid(made).name();
        EXPECT_TRUE(device->IsInactive());
    }
}

TEST(DeviceTest, IsClassifiedByTypeVidAndResources) {
    for (const char* type : {"x.com.hl.d.bridge", "oic.d.wirelessrouter", "x.com.hl.d.mobile.presence"}) {
        EXPECT_TRUE(makeDevice(type)->IsFilteredDevice()) << type;
    }
    EXPECT_FALSE(makeDevice("x.com.hl.d.hub")->IsFilteredDevice());

    Device::_deviceInfo info;
    info.vid = "some-AVPlatform-model";
    EXPECT_TRUE(Device(info).IsAVPSupportedCamera());
    info.vid = "some-avplatform-model";
    EXPECT_FALSE(Device(info).IsAVPSupportedCamera());

    constexpr char INSIDE[] = "/udo/contents/provider/vs/0";
    const auto refrigerator = makeDevice("oic.d.refrigerator", {INSIDE});
    EXPECT_TRUE(refrigerator->IsSupportInnerView());
    refrigerator->SetStatus(DEVICE_STATUS_INACTIVE);
    EXPECT_TRUE(refrigerator->IsSupportInnerView());
    refrigerator->SetStatus(DEVICE_STATUS_DISCONNECTED);
    EXPECT_FALSE(refrigerator->IsSupportInnerView());
    EXPECT_FALSE(makeDevice("oic.d.refrigerator")->IsSupportInnerView());
    EXPECT_FALSE(makeDevice("oic.d.krefrigerator", {INSIDE})->IsSupportInnerView());
}

TEST(DeviceTest, AnswersEmptyForWhatItDoesNotHold) {
    const auto device = makeDevice("oic.d.light", {"/u", ""});
    device->AddResource(nullptr);
    device->UpdateValue({"id", "/u", {{"p", "1", "Integer"}}});
    device->UpdateValue({"other", "/u", {{"p", "2", "Integer"}}});
    device->UpdateValue({"id", "/v", {{"p", "3", "Integer"}}});
    EXPECT_EQ("1", device->GetValue("/u", "p"));
    for (const auto& [uri, property] : {std::pair{"/v", "p"}, {"/u", "q"}, {"", "p"}, {"/u", ""}}) {
        EXPECT_EQ("", device->GetValue(uri, property)) << uri << " " << property;
    }
    EXPECT_FALSE(device->FindResource("/u", false)->FindProperty("q", false)->IsValidObject());
    EXPECT_FALSE(device->HasDeviceUri(""));
    EXPECT_FALSE(device->FindResource("/v", false)->IsValidObject());
    EXPECT_EQ("/v", device->FindResource("/v", true)->GetURI());
    EXPECT_FALSE(device->HasResource("/v"));
    device->DeleteResources();
    EXPECT_FALSE(device->HasResource("/u"));
}

TEST(DeviceTest, MakesTheTextsThatSetAProperty) {
    const auto device = makeDevice("oic.d.light", {"/u"});
    std::string text = "untouched";
    for (const auto& [uri, property, value] :
         {std::tuple{"", "p", "v"}, {"/u", "", "v"}, {"/u", "p", ""}, {"/v", "p", "v"}}) {
        EXPECT_FALSE(device->GetRcpValue(uri, property, value, text)) << uri << property << value;
    }
    EXPECT_FALSE(device->GetRcpValueByStreamURL("", text));
    EXPECT_EQ("untouched", text);
    EXPECT_TRUE(device->GetRcpValue("/u", "p", "true", text));
    EXPECT_EQ(R"({"p":"true"})", text) << "a property that was never received is a text";
    device->UpdateValue({"id", "/u", {{"p", "false", "Boolean"}}});
    EXPECT_TRUE(device->GetRcpValue("/u", "p", "true", text));
    EXPECT_EQ(R"({"p":true})", text);
    EXPECT_TRUE(device->GetRcpValueByStreamURL("/stream", text));
    EXPECT_EQ(R"({"liveStream":true})", text);

    for (const auto& [value, json] : {std::pair{"", R"("")"}, {"say \"hi\"", R"("say \"hi\"")"}, {"1", R"("1")"}}) {
        device->SetDeviceOperationalContext({"/u", "p", value});
        device->SetDeviceOperationalContext({"/u", "p", value});
        EXPECT_EQ(std::string(R"({"uri":"/u","property":"p","value":)") + json + "}",
                  device->GetDeviceOperationalContext());
    }
}

TEST(DeviceTest, AFreshRecordReplacesWhatTheCloudTellsAndKeepsWhatWasWorkedOut) {
    const auto stored = makeDevice("oic.d.washer", {"/kept"});
    stored->UpdateValue({"id", "/kept", {{"p", "1", "Integer"}}});
    stored->SetStateText("Running");
    stored->SetIconUrl("icon");
    stored->SetIsInactive(false);
    stored->SetControllableDevice(true);
    stored->SetRunningState(true);

    Device::_deviceInfo info;
    info.device_id = "id";
    info.device_name = "name";
    info.vid = "new vid";
    info.device_type = "oic.d.dryer";
    info.status = DEVICE_STATUS_HIDDEN;
    info.room_name = "room";
    info.core_device_icon_date = "date";
    const auto fresh = DeviceFactory::Create(info, TesselHandler::GetInstance());
    fresh->AddResource(std::make_shared<Resource>("/added"));
    fresh->AddResource(std::make_shared<Resource>("/kept"));
    stored->ApplyChanges(fresh);
    stored->ApplyChanges(nullptr);

    EXPECT_EQ("name, new vid, oic.d.dryer, room, date", stored->GetName() + ", " + stored->GetVid() + ", " +
                                                            stored->GetDeviceType() + ", " + stored->GetRoom() + ", " +
                                                            stored->GetCoreDeviceIconDate());
    EXPECT_EQ(DEVICE_STATUS_HIDDEN, stored->GetStatus());
    EXPECT_EQ("Running, icon", stored->GetStateText() + ", " + stored->GetIconUrl());
    EXPECT_TRUE(!stored->IsInactive() && stored->IsControllableDevice() && stored->GetRunningState());
    EXPECT_EQ("1", stored->GetValue("/kept", "p"));
    EXPECT_EQ(fresh->FindResource("/added", false), stored->FindResource("/added", false));

    info.device_id = "another";
    info.device_name = "another";
    stored->ApplyChanges(DeviceFactory::Create(info, TesselHandler::GetInstance()));
    EXPECT_EQ("id", stored->GetId());
    EXPECT_EQ("name", stored->GetName());
}

}  // namespace
}  // namespace VMFramework::HomeLoom

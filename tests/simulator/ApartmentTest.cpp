// The apartment, seen as the plug-in sees it: its own evaluation, over the agent's texts.
#include <VMFramework/JsonValue.h>
#include <vconf.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "AgentTest.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"
#include "clock/Clock.h"

using namespace VMFramework::HomeLoom;
using VMFramework::json::JsonValue;

namespace {

/// What a document of a model names: the texts to translate, and the resources.
void collect(const JsonValue& value, std::set<std::string>& codes, std::set<std::string>& uris) {
    for (std::size_t i = 0; value.isArray() && i < value.size(); ++i) {
        collect(value[i], codes, uris);
    }
    if (value.isString() && value.asString().compare(0, 2, "__") == 0) {
        codes.insert(value.asString());
    }
    for (const std::string& name : value.isObject() ? value.getMemberNames() : std::vector<std::string>()) {
        if (name == "href") {
            uris.insert(value[name].asString());
        }
        collect(value[name], codes, uris);
    }
}

}  // namespace

class Apartment : public AgentTest {
public:
    Apartment() {
        // Nothing is subscribed here: values are read.
        devices.SetIsHubConnectedDevice([](const std::string&) { return true; });
    }

    /// Makes the plug-in's device of a device of the home, with all that a TV would read of it.
    void show(const simulator::Device& device) {
        Device::_deviceInfo info;
        info.device_id = device.id;
        info.device_name = device.nick;
        info.vid = device.vid;
        info.device_type = device.types.back();
        info.status = static_cast<DeviceStatus>(device.status);
        std::vector<std::string> uris;
        for (const simulator::Resource& resource : device.resources) {
            uris.push_back(resource.uri);
        }
        devices.HandleDeviceInfo(info, uris, {});
        char* document = nullptr;
        if (homeloom_client_get_ui_metadata(client, device.vid.c_str(), &document) == 0) {
            metadata.ParseMetadata(device.vid, document);
            std::free(document);
        }
        refresh(device.id);
    }

    void refresh(const std::string& id) {
        const std::shared_ptr<Device> device = devices.FindDevice(id);
        for (const std::string& uri : metadata.GetSubscribeList(device->GetVid())) {
            if (device->GetStatus() != DEVICE_STATUS_CONNECTED || !device->HasDeviceUri(uri)) {
                continue;
            }
            EXPECT_EQ(homeloom_client_get_remote_attributes(client, id.c_str(), uri.c_str(), onAttributes, this), 0);
            agent.waitIdle();
            if (metadata.IsGenericMetadata(device->GetVid())) {
                metadata.SetGenericSubscribeUri(device->GetVid(), uri);
                break;
            }
        }
        metadata.SetDeviceStateText(device);
        metadata.UpdateDeviceIconUrl(device);
    }

    static void onAttributes(int result, const char* id, const char* attributes, const char* uri, const char* types,
                             void* userData) {
        Apartment& test = *static_cast<Apartment*>(userData);
        EXPECT_EQ(result, 0) << id << " " << uri;
        device_resource_info_struct info{id, uri, {}};
        test.devices.BuildResourceData(id, uri, attributes, types, info.properties);
        test.devices.FindDevice(id)->UpdateValue(info);
    }

    std::string shown(const std::string& id) {
        const std::shared_ptr<Device> device = devices.FindDevice(id);
        return device->GetStateText() + (device->IsInactive() ? "" : " *") + (device->GetRunningState() ? " >" : "");
    }

    /// Writes what the main action offers; false when it offers nothing.
    bool act(const std::string& id, const std::string& of = "") {
        const std::shared_ptr<Device> device = devices.FindDevice(id);
        std::string uri = of;
        std::string property;
        std::string value;
        std::string payload;
        if (!metadata.GetDeviceMainAction(device, uri, property, value)) {
            return false;
        }
        EXPECT_TRUE(device->GetRcpValue(uri, property, value, payload)) << id;
        EXPECT_EQ(
            homeloom_client_set_remote_attributes(client, id.c_str(), uri.c_str(), payload.c_str(), onRemote, this), 0);
        EXPECT_THAT(taken(), ::testing::ElementsAre(::testing::StartsWith("remote 0 "))) << payload;
        homeloom::clock::advance(std::chrono::minutes(1));
        refresh(id);
        return true;
    }

    DeviceHandler devices{TesselHandler::GetInstance()};
    Metadata& metadata = Metadata::GetInstance();
};

TEST_F(Apartment, ShowsEachDeviceAndActsOnIt) {
    // " *" marks what looks switched on, " >" what is at work.
    const struct {
        const char* id;
        const char* text;
        const char* controlType;
        std::vector<std::string> afterActions;
    } cases[] = {
        {"tv-living", "On · Home *", "StandbyPowerSwitch", {"Off", "On · Home *"}},
        {"washer", "Ready", "PlayPauseButton", {"Washing · 42 min left * >", "Paused · 42 min left *"}},
        {"dryer", "Drying · 18 min left * >", "PlayPauseButton", {"Paused *", "Drying · 65 min left * >"}},
        {"aircon", "Cooling · 24°C * >", "ToggleSwitch", {"Off", "Cooling · 24°C * >"}},
        {"purifier", "Good air · 8 µg/m³ * >", "ToggleSwitch", {"Off", "Good air · 8 µg/m³ * >"}},
        {"ceiling-light", "On · 80% *", "ToggleSwitch", {"Off", "On · 80% *"}},
        {"bedside-lamp", "Off", "ToggleSwitch", {"On · 30% *"}},
        {"coffee-plug", "Off", "StandbyPowerSwitch", {"On *", "Off"}},
        {"blind", "Open *", "OpenCloseButton", {"Closed", "Open *"}},
        {"front-door", "Locked", "LockButton", {"Unlocked *", "Locked"}},
        {"robot", "Standby", "CleanButton", {"Cleaning · battery 88% * >", "Returning * >"}},
        {"speaker", "Paused · Blue in Green", "PlayPauseButton", {"Playing · Blue in Green * >"}},
        {"fridge", "Fridge 3°C · Freezer -18°C *", "ToggleSwitch", {"Rapid cooling · 1°C *"}},
        {"oven", "Ready", "StartButton", {"Baking at 180°C · 30 min left * >", "Hot · 180°C *"}},
        {"dishwasher",
         "Hot rinse · 12 min left * >",
         "PlayPauseButton",
         {"Paused *", "Washing dishes · 95 min left * >"}},
        {"living-camera", "Watching *", "ToggleSwitch", {"Off"}},
        {"doorbell", "All quiet", "", {}},
        {"bedside-button", "Ready", "", {}},
        {"window-sensor", "Open *", "", {}},
        {"hall-motion", "No motion", "", {}},
        {"leak-sensor", "Dry", "", {}},
        {"climate", "22.5°C · 41%", "", {}},
        {"ir-fan", "Remote control", "PushButton", {"Signal sent *"}},
        {"floor-fan", "Off", "ToggleSwitch", {"On * >", "Off"}},
        {"tag", "", "", {}},
        {"hub-plug", "Off", "ToggleSwitch", {}},
        {"hub-button", "Ready", "", {}},
        {"hub-contact", "Closed", "", {}},
        {"porch-camera", "Watching *", "ToggleSwitch", {"Off"}},
        {"thermostat", "Heating · 21°C *", "ModeButton", {"Eco · 21°C *", "Heating · 21°C *"}},
        {"parents-light", "Disconnected", "ToggleSwitch", {}},
    };
    connect();
    for (const simulator::Device& device : agent.home().devices) {
        show(device);
    }
    for (const auto& [id, text, controlType, afterActions] : cases) {
        EXPECT_EQ(shown(id), text) << id;
        EXPECT_EQ(metadata.GetDeviceMainActionControlType(devices.FindDevice(id)), controlType) << id;
        for (const std::string& after : afterActions) {
            EXPECT_TRUE(act(id)) << id;
            EXPECT_EQ(shown(id), after) << id;
        }
    }
}

TEST_F(Apartment, HasSubDeviceCardsWithActionsOfTheirOwn) {
    connect();
    show(*agent.device("aircon"));
    EXPECT_EQ(metadata.SetSubDeviceCardList(devices.FindDevice("aircon")), 2);
    EXPECT_TRUE(act("aircon", "/power/zone2/vs/0"));
    EXPECT_THAT(devices.FindDevice("aircon")->GetSubDeviceCardJsonInfo(),
                ::testing::HasSubstr(R"("device_name":"Study","state_text":"Off · 25°")"));
}

TEST_F(Apartment, AnInactiveTvIsWokenByItsSwitch) {
    connect();
    show(*agent.device("tv-bedroom"));
    EXPECT_TRUE(act("tv-bedroom"));
    EXPECT_EQ(agent.device("tv-bedroom")->status, simulator::Connected);
}

TEST(ApartmentModels, HaveEveryTextInEachOfTheirLanguagesAndEveryResource) {
    for (const auto& [vid, model] : simulator::loadHome(homeloom::test::apartmentFile()).models) {
        const JsonValue data = JsonValue::Create(model.uiMetadata)["data"];
        std::set<std::string> codes;
        std::set<std::string> uris;
        for (const char* part : {"ms", "ma", "dpResources"}) {
            collect(data[part], codes, uris);
        }
        const JsonValue languages = data["language"];
        for (std::size_t i = 0; i < languages.size(); ++i) {
            std::set<std::string> translated;
            std::set<std::string> none;
            const JsonValue texts = languages[i]["poCodes"];
            for (std::size_t j = 0; j < texts.size(); ++j) {
                collect(texts[j]["po"], translated, none);
            }
            EXPECT_THAT(translated, ::testing::IsSupersetOf(codes)) << vid << " " << languages[i]["locale"].asString();
        }
        EXPECT_TRUE(model.uiMetadata.empty() || languages.size() >= 2) << vid;
        for (const std::string& uri : uris) {
            const auto isIt = [&, &wanted = uri](const simulator::Resource& resource) {
                return resource.uri == wanted;
            };
            const bool isThere = std::any_of(model.resources.begin(), model.resources.end(), isIt);
            EXPECT_TRUE(isThere || data["vid"].asString() == "generic-default-metadata") << vid << " " << uri;
        }
    }
}

/// The plug-in looks for the language when its metadata is made.
struct KoreanTv {
    KoreanTv() { vconf_set_str("db/menu_widget/language", "ko_KR.utf8"); }
};
class KoreanApartment : public KoreanTv, public Apartment {};

TEST_F(KoreanApartment, IsShownInKorean) {
    connect();
    for (const auto& [id, text] :
         {std::pair{"purifier", "공기질 좋음 · 8 µg/m³ * >"}, {"dryer", "건조 중 · 18분 남음 * >"}}) {
        show(*agent.device(id));
        EXPECT_EQ(shown(id), text);
    }
}

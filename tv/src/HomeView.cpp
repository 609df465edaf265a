#include "HomeView.h"

#include <algorithm>

#include <VMFramework/JsonValue.h>

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

// Both forms of a state notification bring these, and leave empty texts out: one that is absent has become empty.
constexpr const char* kStateTexts[] = {"state_text", "icon_url", "control_type", "action_state", "action_url"};
// These only the long one, which a device of a hub doesn't have.
constexpr const char* kLongStateTexts[] = {"context_value", "sub_device_card_list_info"};
constexpr char kLongForm[] = "num_of_sub_device_cards";

HomeView::Location toLocation(const EndpointRecord& endpoint) {
    HomeView::Location location{endpoint.deviceId.value_or(""),
                                endpoint.extraData.text("location_name"),
                                endpoint.extraData.text("location_owner_name"),
                                endpoint.extraData.flag("location_is_owner"),
                                endpoint.extraData.text("location_permission"),
                                {}};
    const JsonValue rooms = JsonValue::Create(endpoint.extraData.text("room_info"));
    for (std::size_t i = 0; i < rooms.size(); ++i) {
        const JsonValue room = rooms[i];
        location.rooms.push_back({room["room_id"].asString(), room["room_name"].asString()});
    }
    return location;
}

HomeView::Item toItem(const std::string& id, const std::string& document) {
    const JsonValue json = JsonValue::Create(document);
    const JsonValue name = json["name"];
    const JsonValue location = json["locationId"];
    return {id, name.isString() ? name.asString() : id, location.isString() ? location.asString() : "", document,
            json["status"].toString() != "\"Disabled\""};
}

HomeView::Device toDevice(const EndpointRecord& endpoint) {
    HomeView::Device device{endpoint.deviceId.value_or(""),
                            endpoint.deviceName.value_or(""),
                            endpoint.extraData.text("nick"),
                            endpoint.subDeviceType.value_or(""),
                            Fields(),
                            0};
    for (const auto& [key, value] : endpoint.extraData) {
        if (key != "nick") {
            device.fields.add(key, value);
        }
    }
    device.listed = device.fields.size();
    return device;
}

}  // namespace

std::string HomeView::Device::look() const {
    switch (fields.number("cloud_device_status")) {
        case 0:
        case 2:
            return looksOn() ? (isRunning() ? "on, running" : "on") : "off";
        case 1:
            return "disconnected";
        default:
            return "hidden";
    }
}

// What has an action has a state as well; many sensors and hubs have neither.
bool HomeView::Device::isStateUnknown() const {
    return isConnected() && fields.text("state_text").empty() && !fields.text("action_url").empty();
}

std::string HomeView::Device::mainAction() const {
    const std::string control = fields.text("control_type");
    const std::string icon = fields.text("action_state");
    if (fields.number("controllable") == 0 && icon.empty()) {
        return "";
    }
    return control + (control.empty() || icon.empty() ? "" : " ") + icon;
}

void HomeView::apply(const Report& report) {
    if (report.kind == Report::Kind::DeviceList) {
        applyList(report.endpoints);
    } else if (report.properties.flag("result")) {
        applyItem(report);
    } else if (report.kind == Report::Kind::Notify && report.name == "hl_device_state_updated") {
        applyState(report.properties);
    } else if (report.kind == Report::Kind::Notify && report.name == "sign_in_state_changed" &&
               !report.properties.flag("is_sign_in")) {
        // No list follows a sign-out: its notification alone tells that the home is gone.
        *this = HomeView();
    }
}

const HomeView::Device* HomeView::device(const std::string& id) const {
    const auto found = _deviceIndex.find(id);
    return found != _deviceIndex.end() ? &_devices[found->second] : nullptr;
}

void HomeView::applyList(const std::vector<EndpointRecord>& endpoints) {
    *this = HomeView();
    _known = true;
    for (const EndpointRecord& endpoint : endpoints) {
        const std::string id = endpoint.deviceId.value_or("");
        if (endpoint.interfaceType == "homeloom-scene") {
            _scenes.push_back(toItem(id, endpoint.extraData.text("scene_json_data")));
        } else if (endpoint.interfaceType == "homeloom-routine") {
            _routines.push_back(toItem(id, endpoint.extraData.text("routine_json")));
        } else if (endpoint.deviceType == "homeloom-device") {
            _deviceIndex.emplace(id, _devices.size());
            _devices.push_back(toDevice(endpoint));
        } else if (endpoint.extraData.has("location_id")) {
            _locations.push_back(toLocation(endpoint));
        }
    }
    // Some come out of hash maps: a screen shows them in an order of its own.
    const auto byId = [](const auto& a, const auto& b) { return a.id < b.id; };
    std::sort(_locations.begin(), _locations.end(), byId);
    std::sort(_scenes.begin(), _scenes.end(), byId);
    std::sort(_routines.begin(), _routines.end(), byId);
}

// What a request did and what others did comes by the same names.
void HomeView::applyItem(const Report& report) {
    const auto is = [&report](const char* scene, const char* routine) {
        return report.name == scene || report.name == routine;
    };
    const bool isGone = is("hl_delete_scene", "hl_delete_routine");
    if (!isGone && !is("hl_create_scene", "hl_create_routine") && !is("hl_update_scene", "hl_update_routine")) {
        return;
    }
    const bool isScene = report.properties.has("scene_id");
    std::vector<Item>& items = isScene ? _scenes : _routines;
    Item item = toItem(report.properties.text(isScene ? "scene_id" : "routine_id"),
                       report.properties.text(isScene ? "scene_json" : "routine_json"));
    const auto place = std::lower_bound(items.begin(), items.end(), item,
                                        [](const Item& one, const Item& other) { return one.id < other.id; });
    const bool isThere = place != items.end() && place->id == item.id;
    if (isGone) {
        items.erase(place, place + (isThere ? 1 : 0));
    } else if (!item.id.empty() && !item.document.empty()) {
        if (item.location.empty()) {
            item.location = isThere ? place->location : isScene ? report.properties.text("location_id") : "";
        }
        isThere ? static_cast<void>(*place = std::move(item)) : static_cast<void>(items.insert(place, std::move(item)));
    }
}

void HomeView::applyState(const Fields& properties) {
    const auto found = _deviceIndex.find(properties.text("device_id"));
    if (found == _deviceIndex.end()) {
        return;
    }
    Fields& fields = _devices[found->second].fields;
    const auto clear = [&](const char* key) {
        if (!properties.has(key) && fields.has(key)) {
            fields.set(key, std::string());
        }
    };
    std::for_each(std::begin(kStateTexts), std::end(kStateTexts), clear);
    if (properties.has(kLongForm)) {
        std::for_each(std::begin(kLongStateTexts), std::end(kLongStateTexts), clear);
    }
    for (const auto& [key, value] : properties) {
        if (key != "device_id") {
            fields.set(key, value);
        }
    }
}

}  // namespace homeloom::tv

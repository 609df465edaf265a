// The agent's functions: this TV's hub, infrared devices, user events.
#include <homeloom_core.h>

#include "../Calls.h"
#include "../Json.h"

using namespace simulator;

namespace {

bool isHub(const World& world, const std::string& id) {
    const Device* device = world.home.device(id);
    const auto isHubType = [](const std::string& type) { return type == "x.com.hl.d.hub"; };
    return !id.empty() && (id == world.home.hub.deviceId ||
                           (device != nullptr && !device->types.empty() && isHubType(device->types.front())));
}

/// The model that infrared devices of that type already have in the home, or the cloud's general one.
std::string vidOfIrDevice(const World& world, const std::string& type) {
    for (const Device& device : world.home.devices) {
        if (device.core.type == "IR_OCF" && !device.types.empty() && device.types.front() == type) {
            return device.vid;
        }
    }
    return "generic-default-metadata";
}

std::string detailsOfIrDevice(const std::string& parent, const json::value& request) {
    return toText(json::object{{"irOcf", {{"parentDeviceId", parent}, {"irCodeId", textMember(request, "irCodeId")}}}});
}

/// Adds the device and gives its id; "" when the request says too little.
std::string createIrDevice(World& world, const std::string& locationId, const json::value& request) {
    const std::string parent = textMember(request, "parentDeviceId");
    const std::string type = textMember(request, "ocfDeviceType");
    if (world.device(parent) == nullptr || type.empty() || world.home.location(locationId) == nullptr) {
        return {};
    }
    Device device;
    device.id = world.newId("ir");
    device.name = textMember(request, "brandName") + " " + textMember(request, "label");
    device.nick = textMember(request, "label");
    device.types = {type};
    device.vid = vidOfIrDevice(world, type);
    device.location = locationId;
    device.room = textMember(request, "roomId");
    device.core.type = "IR_OCF";
    device.core.manufacturerName = textMember(request, "mnId");
    device.core.details = detailsOfIrDevice(parent, request);
    const std::string id = device.id;
    world.addDevices({std::move(device)});
    return id;
}

}  // namespace

int homeloom_core_get_hub_device_id_list(homeloom_client_h client, char*** device_ids, int* count) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {}, Needs::SignIn);
    call.mark(Function::AnswersList);
    return call.now([&](World& world, Client&) {
        if (device_ids == nullptr || count == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        giveTexts(call.fault(), world.home.hub.serves, device_ids, count);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_start_hub_device_discover(homeloom_client_h client, const char* hub_device_id, int timeout,
                                            bool flag_a, bool flag_b, int extra) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {hub_device_id, timeout, flag_a, flag_b, extra}, Needs::SignIn);
    return call.now([&](World& world, Client&) {
        return isHub(world, hub_device_id) ? HOMELOOM_CLIENT_ERROR_NONE : HOMELOOM_CLIENT_ERROR_NO_DATA;
    });
}

int homeloom_core_stop_hub_device_discover(homeloom_client_h client, const char* hub_device_id) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {hub_device_id}, Needs::SignIn).now([&](World& world, Client&) {
        return isHub(world, hub_device_id) ? HOMELOOM_CLIENT_ERROR_NONE : HOMELOOM_CLIENT_ERROR_NO_DATA;
    });
}

int homeloom_core_create_ir_device(homeloom_client_h client, const char* location_id, const char* request_body,
                                   char** response_json) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {location_id, request_body}, Needs::SignIn, response_json)
        .now([&](World& world, Client&) {
            if (response_json == nullptr) {
                return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
            }
            const std::string id = createIrDevice(world, location_id, parsed(request_body));
            *response_json = handOut(
                toText(id.empty() ? json::object{{"errorCode", "InvalidRequest"}} : json::object{{"deviceId", id}}));
            return HOMELOOM_CLIENT_ERROR_NONE;
        });
}

int homeloom_core_get_ir_device(homeloom_client_h client, const char* device_id, char** response_json) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {device_id}, Needs::SignIn, response_json).now([&](World& world, Client&) {
        const Device* device = world.device(device_id);
        if (response_json == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        if (device == nullptr || device->core.type != "IR_OCF") {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        *response_json = handOut(device->core.details);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_send_active_user_event(homeloom_client_h client, homeloom_core_user_event_category_e category,
                                         homeloom_core_user_event_action_e action, const char* label,
                                         const char* metadata) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {category, action, label, metadata}, Needs::Connection);
    return call.now([&](World& world, Client&) {
        world.userEvents.push_back({category, action, label, metadata});
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

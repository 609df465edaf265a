// The agent's functions: core devices, their records, capability states and commands.
#include <homeloom_core.h>

#include "../Calls.h"
#include "../Commands.h"
#include "../Json.h"

using namespace simulator;

namespace {

SharedRecord coreRecord(const Device& device) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CORE_DEVICE_ID, device.id},
                     {HOMELOOM_CORE_DEVICE_NAME, device.name},
                     {HOMELOOM_CORE_DEVICE_TYPE, device.core.type},
                     {HOMELOOM_CORE_DEVICE_LOCATION_ID, device.location},
                     {HOMELOOM_CORE_DEVICE_ROOM_ID, device.room},
                     {HOMELOOM_CORE_DEVICE_PRESENTATION_ID, device.core.presentationId},
                     {HOMELOOM_CORE_DEVICE_MANUFACTURER_NAME, device.core.manufacturerName},
                     {HOMELOOM_CORE_DEVICE_DETAILS, device.core.details},
                     {HOMELOOM_CORE_DEVICE_ICONS, device.core.icons}};
    return record;
}

json::object coreDocument(const Device& device) {
    json::object document{{"deviceId", device.id},
                          {"name", device.name},
                          {"label", device.nick},
                          {"type", device.core.type},
                          {"locationId", device.location},
                          {"roomId", device.room},
                          {"presentationId", device.core.presentationId},
                          {"manufacturerName", device.core.manufacturerName}};
    const std::pair<const char*, const std::string&> parts[] = {{"icons", device.core.icons},
                                                                {"possibleIcons", device.core.possibleIcons},
                                                                {"badgeIcons", device.core.badgeIcons}};
    for (const auto& [name, text] : parts) {
        if (!text.empty()) {
            document[name] = parsed(text);
        }
    }
    return document;
}

bool isSelected(const Device& device, const std::string& filter) {
    return filter.empty() || device.id == filter || device.location == filter || device.core.type == filter;
}

/// Component to capability to attribute to {"value"}.
json::object componentsOf(const Device& device) {
    json::object components;
    for (const Resource& resource : device.resources) {
        std::string component;
        std::string capability;
        if (!capabilityOf(resource.uri, component, capability)) {
            continue;
        }
        json::value& attributes = components[component].is_null() ? (components[component].emplace_object()[capability])
                                                                  : components[component].get_object()[capability];
        json::object& object = attributes.is_object() ? attributes.get_object() : attributes.emplace_object();
        for (const Property& property : resource.properties) {
            object[property.name] = json::object{{"value", parsed(property.value)}};
        }
    }
    return components;
}

int give(char** out, const json::value* value) {
    if (out == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    if (value == nullptr) {
        return HOMELOOM_CLIENT_ERROR_NO_DATA;
    }
    *out = handOut(toText(*value));
    return HOMELOOM_CLIENT_ERROR_NONE;
}

}  // namespace

int homeloom_core_get_device_list_async(homeloom_client_h client, homeloom_core_device_list_cb callback,
                                        void* user_data) {
    static Function& function = functionNamed(__func__);
    return answerList(Call(function, client, {}, Needs::SignIn), callback, user_data, [](World& world) {
        Records records;
        for (const Device& device : world.home.devices) {
            records.push_back(coreRecord(device));
        }
        return records;
    });
}

int homeloom_core_device_get_string(homeloom_core_device_h device, int field, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, device, field, value);
}

int homeloom_core_device_destroy(homeloom_core_device_h device) {
    static Function& function = functionNamed(__func__);
    return destroy(function, device);
}

int homeloom_core_get_device_json_async(homeloom_client_h client, const char* device_id, homeloom_core_json_cb callback,
                                        void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {device_id}, Needs::SignIn);
    return answerJson(call, callback, user_data, [id = Argument(device_id).text()](World& world) {
        const Device* device = world.device(id);
        return device == nullptr ? failure(HOMELOOM_CLIENT_ERROR_NO_DATA, "no device " + id)
                                 : success(toText(coreDocument(*device)));
    });
}

int homeloom_core_get_device_list_json_async(homeloom_client_h client, const char* filter,
                                             homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {filter}, Needs::SignIn);
    return answerJson(call, callback, user_data, [wanted = Argument(filter).text()](World& world) {
        json::array items;
        for (const Device& device : world.home.devices) {
            if (isSelected(device, wanted)) {
                items.push_back(coreDocument(device));
            }
        }
        return success(toText(json::object{{"items", items}}));
    });
}

int homeloom_core_change_device_name(homeloom_client_h client, const char* device_id, const char* name,
                                     char** result_json) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {device_id, name}, Needs::SignIn, result_json).now([&](World& world, Client&) -> int {
        Device* device = world.device(device_id);
        if (device == nullptr) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        device->nick = name;
        world.postDetails({device});
        const json::value reply = coreDocument(*device);
        return give(result_json, &reply);
    });
}

int homeloom_core_delete_device(homeloom_client_h client, const char* device_id) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {device_id}, Needs::SignIn).now([&](World& world, Client&) {
        return world.removeDevice(device_id) ? HOMELOOM_CLIENT_ERROR_NONE : HOMELOOM_CLIENT_ERROR_NO_DATA;
    });
}

int homeloom_core_execute_device(homeloom_client_h client, const char* device_id, const char* json_command,
                                 char** response_json) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {device_id, json_command}, Needs::SignIn, response_json)
        .now([&](World& world, Client&, std::unique_lock<std::mutex>& lock) -> int {
            Device* device = world.device(device_id);
            if (device == nullptr) {
                return HOMELOOM_CLIENT_ERROR_NO_DATA;
            }
            if (device->status == Disconnected) {
                return HOMELOOM_CLIENT_ERROR_IO;
            }
            json::object reply;
            const int code = executeCommands(world, lock, *device, json_command, reply);
            const json::value value = reply;
            return code != 0 ? code : give(response_json, &value);
        });
}

int homeloom_core_get_device_status(homeloom_client_h client, const char* device_id, char** status_json) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {device_id}, Needs::SignIn, status_json).now([&](World& world, Client&) -> int {
        const Device* device = world.device(device_id);
        if (device == nullptr) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        const json::value status = json::object{{"components", componentsOf(*device)}};
        return give(status_json, &status);
    });
}

int homeloom_core_get_device_component_status(homeloom_client_h client, const char* device_id, const char* component,
                                              char** status_json) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {device_id, component}, Needs::SignIn, status_json)
        .now([&](World& world, Client&) -> int {
            const Device* device = world.device(device_id);
            if (device == nullptr) {
                return HOMELOOM_CLIENT_ERROR_NO_DATA;
            }
            const json::value components = componentsOf(*device);
            return give(status_json, memberOf(&components, component));
        });
}

int homeloom_core_get_device_capability_status(homeloom_client_h client, const char* device_id, const char* component,
                                               const char* capability, char** status_json) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {device_id, component, capability}, Needs::SignIn, status_json);
    return call.now([&](World& world, Client&) -> int {
        const Device* device = world.device(device_id);
        if (device == nullptr) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        const json::value components = componentsOf(*device);
        return give(status_json, memberOf(memberOf(&components, component), capability));
    });
}

int homeloom_core_get_device_presentation(homeloom_client_h client, const char* presentation_id,
                                          const char* manufacturer_name, char** document) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {presentation_id, manufacturer_name}, Needs::SignIn, document);
    return call.now([&](World& world, Client&) {
        const auto found = world.home.presentations.find(presentation_id);
        if (document == nullptr || found == world.home.presentations.end()) {
            return document == nullptr ? HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER : HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        *document = handOut(found->second);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

// The agent's functions: locations and rooms as groups, and moving devices between them.
#include <homeloom_client.h>

#include "../Calls.h"

using namespace simulator;

namespace {

struct CodeAnswer {
    int error = 0;
};

}  // namespace

int homeloom_client_get_group_list(homeloom_client_h client, homeloom_client_group_h** list, int group_type,
                                   int* count) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {group_type}, Needs::SignIn);
    return call.now([&](World& world, Client&) {
        if (list == nullptr || count == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        const Records groups = world.groups(group_type);
        if (groups.empty()) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        giveList(call, groups, list, count);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_group_get_string(homeloom_client_group_h group, int property_id, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, group, property_id, value);
}

int homeloom_client_group_destroy(homeloom_client_group_h group) {
    static Function& function = functionNamed(__func__);
    return destroy(function, group);
}

int homeloom_client_set_group_list_updated_cb(homeloom_client_h client, homeloom_client_group_list_updated_cb callback,
                                              void* user_data) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([&](World&, Client& caller) {
        if (callback == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        caller.groupList = {callback, user_data};
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_unset_group_list_updated_cb(homeloom_client_h client) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([](World&, Client& caller) {
        caller.groupList = {};
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_move_devices(homeloom_client_h client, char** device_ids, int count, const char* location_id,
                                 const char* room_id, homeloom_client_move_devices_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    std::vector<std::string> ids;
    for (int i = 0; device_ids != nullptr && i < count; ++i) {
        ids.emplace_back(Argument(device_ids[i]).text());
    }
    Arguments arguments{location_id, room_id, count};
    for (const std::string& id : ids) {
        arguments.emplace_back(id.c_str());
    }
    const Call call(function, client, arguments, Needs::SignIn);
    const auto work = [ids, location = Argument(location_id).text(), room = Argument(room_id).text()](World& world) {
        // All or none, as the cloud has it.
        std::vector<const Device*> moved;
        for (const std::string& id : ids) {
            if (world.device(id) == nullptr) {
                return CodeAnswer{HOMELOOM_CLIENT_ERROR_NO_DATA};
            }
        }
        for (const std::string& id : ids) {
            if (!world.moveDevice(id, location, room)) {
                return CodeAnswer{HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER};
            }
            moved.push_back(world.device(id));
        }
        world.postDetails(moved);
        return CodeAnswer{};
    };
    return call.later<CodeAnswer>(
        callback != nullptr && !ids.empty(), work,
        [callback, user_data](const CodeAnswer& answer) { callback(answer.error, user_data); });
}

// The agent's functions: device lists, details, UI metadata.
#include <homeloom_client.h>

#include "../Calls.h"

using namespace simulator;

int homeloom_client_set_device_list_updated_cb(homeloom_client_h client,
                                               homeloom_client_device_list_updated_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([&](World& world, Client& caller) {
        if (callback == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        caller.deviceList = {callback, user_data};
        if (world.isSignedIn) {
            world.postDeviceList(caller, world.deviceIds());
        }
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_unset_device_list_updated_cb(homeloom_client_h client) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([](World&, Client& caller) {
        caller.deviceList = {};
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_device_get_string(homeloom_client_device_h device, int property_id, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, device, property_id, value);
}

int homeloom_client_device_destroy(homeloom_client_device_h device) {
    static Function& function = functionNamed(__func__);
    return destroy(function, device);
}

int homeloom_client_set_device_detail_list_updated_cb(homeloom_client_h client,
                                                      homeloom_client_device_detail_list_updated_cb callback,
                                                      void* user_data) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([&](World& world, Client& caller) {
        if (callback == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        caller.detailList = {callback, user_data};
        if (world.isSignedIn && !world.home.devices.empty()) {
            world.postDetailList(caller, world.allDetails());
        }
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_unset_device_detail_list_updated_cb(homeloom_client_h client) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([](World&, Client& caller) {
        caller.detailList = {};
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_get_device_detail_list(homeloom_client_h client, homeloom_client_device_detail_h** list,
                                           int* count) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {}, Needs::SignIn);
    return call.now([&](World& world, Client&) {
        if (list == nullptr || count == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        const Records details = world.allDetails();
        if (details.empty()) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        giveList(call, details, list, count);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_device_detail_get_string(homeloom_client_device_detail_h detail, int property_id, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, detail, property_id, value);
}

int homeloom_client_device_detail_get_string_array(homeloom_client_device_detail_h detail, int property_id,
                                                   char*** values, int* count) {
    static Function& function = functionNamed(__func__);
    return getList(function, detail, property_id, values, count);
}

int homeloom_client_device_detail_get_int(homeloom_client_device_detail_h detail, int property_id, int* value) {
    static Function& function = functionNamed(__func__);
    return getNumber(function, detail, property_id, value);
}

int homeloom_client_device_detail_destroy(homeloom_client_device_detail_h detail) {
    static Function& function = functionNamed(__func__);
    return destroy(function, detail);
}

int homeloom_client_get_ui_metadata(homeloom_client_h client, const char* vid, char** document) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {vid}, Needs::Connection, document).now([&](World& world, Client&) {
        if (document == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        const Model* model = world.home.model(vid);
        if (model == nullptr || model->uiMetadata.empty()) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        *document = handOut(model->uiMetadata);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

// The agent's functions: the stream of server-sent events.
#include <homeloom_core.h>

#include "../Calls.h"

using namespace simulator;

int homeloom_core_set_sse_cb(homeloom_client_h client, int mask, homeloom_core_sse_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {mask}, Needs::Handle).now([&](World&, Client& caller) {
        if (callback == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        caller.events = {callback, user_data};
        caller.eventMask = mask;
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_unset_sse_cb(homeloom_client_h client) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([](World&, Client& caller) {
        caller.events = {};
        caller.eventMask = 0;
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

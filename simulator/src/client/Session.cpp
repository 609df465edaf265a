// The agent's functions: connection, sign-in, account, server.
#include <homeloom_client.h>

#include "../Calls.h"

using namespace simulator;

namespace {

/// Finds the caller's client or makes one; null when the handle is none, or needs no connection: then `code` says why.
Client* clientToConnect(World& world, homeloom_client_h* handle, int& code) {
    if (*handle == nullptr) {
        return &world.addClient(*handle);
    }
    const auto found = world.clients.find(*handle);
    if (found == world.clients.end()) {
        code = HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    } else if (found->second.state == Client::State::Connected) {
        code = HOMELOOM_CLIENT_ERROR_ALREADY_CONNECTED;
    } else if (found->second.state == Client::State::Connecting) {
        code = HOMELOOM_CLIENT_ERROR_CONNECTION_IN_PROGRESS;
    } else {
        return &found->second;
    }
    return nullptr;
}

int give(char** out, const std::string& text) {
    if (out == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    if (text.empty()) {
        return HOMELOOM_CLIENT_ERROR_NO_DATA;
    }
    *out = handOut(text);
    return HOMELOOM_CLIENT_ERROR_NONE;
}

int giveOfAccount(Function& function, homeloom_client_h client, Needs needs, std::string Account::*field, char** out) {
    return Call(function, client, {}, needs, out).now([&](World& world, Client&) {
        return give(out, world.home.account.*field);
    });
}

}  // namespace

int homeloom_client_connect(homeloom_client_h* client, homeloom_client_connection_state_changed_cb callback,
                            void* user_data) {
    static Function& function = functionNamed(__func__);
    function.mark(Function::HasCallback);
    const auto fault = function.enter();
    if (fault && fault->kind == Fault::Kind::Fail) {
        return fault->code;
    }
    if (client == nullptr || callback == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    World& world = World::instance();
    const std::lock_guard<std::mutex> lock(world.mutex);
    if (world.connectOutcome == Agent::Connection::Updating) {
        return HOMELOOM_CLIENT_ERROR_UPDATING;
    }
    int code = HOMELOOM_CLIENT_ERROR_NONE;
    Client* connecting = clientToConnect(world, client, code);
    if (connecting == nullptr) {
        return code;
    }
    connecting->state = Client::State::Connecting;
    connecting->connection = {callback, user_data};
    const Fault applied = fault ? Fault(*fault) : Fault::answer(0);
    if (applied.kind == Fault::Kind::Never) {
        return HOMELOOM_CLIENT_ERROR_NONE;
    }
    Outcome outcome = outcomeOf(world.connectOutcome);
    if (applied.code != 0) {
        outcome = {static_cast<homeloom_client_error_e>(applied.code), HOMELOOM_CLIENT_CONNECTION_STATE_DISCONNECTED,
                   Client::State::Idle};
    }
    world.postConnection(*connecting, outcome, applied.delay, applied.kind == Fault::Kind::Twice ? 2 : 1);
    return HOMELOOM_CLIENT_ERROR_NONE;
}

int homeloom_client_disconnect(homeloom_client_h client) {
    static Function& function = functionNamed(__func__);
    const int code = Call(function, client, {}, Needs::Handle).now([](World&, Client&) { return 0; });
    if (code == HOMELOOM_CLIENT_ERROR_NONE) {
        World::removeClient(client);
    }
    return code;
}

int homeloom_client_set_sign_in_state_changed_cb(homeloom_client_h client,
                                                 homeloom_client_sign_in_state_changed_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([&](World&, Client& caller) {
        if (callback == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        caller.signIn = {callback, user_data};
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_unset_sign_in_state_changed_cb(homeloom_client_h client) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([](World&, Client& caller) {
        caller.signIn = {};
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_is_signed_in(homeloom_client_h client, bool* is_signed_in) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Connection).now([&](World& world, Client&) {
        if (is_signed_in == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        *is_signed_in = world.isSignedIn;
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_get_login_id(homeloom_client_h client, char** login_id) {
    static Function& function = functionNamed(__func__);
    return giveOfAccount(function, client, Needs::SignIn, &Account::loginId, login_id);
}

int homeloom_client_get_device_id(homeloom_client_h client, char** device_id) {
    static Function& function = functionNamed(__func__);
    return giveOfAccount(function, client, Needs::Connection, &Account::deviceId, device_id);
}

int homeloom_client_get_connected_user_id(homeloom_client_h client, char** user_id) {
    static Function& function = functionNamed(__func__);
    return giveOfAccount(function, client, Needs::SignIn, &Account::userId, user_id);
}

int homeloom_client_get_access_token(homeloom_client_h client, char** access_token) {
    static Function& function = functionNamed(__func__);
    return giveOfAccount(function, client, Needs::SignIn, &Account::accessToken, access_token);
}

int homeloom_client_get_state(homeloom_client_h client, int* state) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([&](World& world, Client&) {
        if (state == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        *state = world.state;
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_refresh_device_information(homeloom_client_h client) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::SignIn).now([](World& world, Client& caller) {
        world.postDeviceList(caller, world.deviceIds());
        world.postDetailList(caller, world.allDetails());
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_internal_get_server_env(homeloom_client_h client, int server_type, int* env) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {server_type}, Needs::Connection).now([&](World& world, Client&) {
        const auto found = world.home.serverEnvironments.find(server_type);
        if (env == nullptr || found == world.home.serverEnvironments.end()) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        *env = found->second;
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_internal_set_server_env(homeloom_client_h client, int server_type, int env) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {server_type, env}, Needs::Connection).now([&](World& world, Client&) {
        const auto found = world.home.serverEnvironments.find(server_type);
        if (found == world.home.serverEnvironments.end()) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        found->second = env;
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

// The agent's functions: subscriptions, attributes and representations of a device's resources.
#include <algorithm>

#include <homeloom_client.h>

#include "../Calls.h"
#include "../Json.h"

using namespace simulator;

namespace {

struct RemoteAnswer {
    int error = 0;
    std::string attributes;
    std::string dataTypes;
};

RemoteAnswer remoteFailure(int error) {
    return {error, "", ""};
}

RemoteAnswer stateOf(const Resource& resource) {
    return {HOMELOOM_CLIENT_ERROR_NONE, representationOf(resource), dataTypesOf(resource)};
}

/// Reading: the device answers for itself, so it must be reachable.
RemoteAnswer read(World& world, const std::string& deviceId, const std::string& uri) {
    const Device* device = world.device(deviceId);
    const Resource* resource = device == nullptr ? nullptr : device->find(uri);
    if (resource == nullptr) {
        return remoteFailure(HOMELOOM_CLIENT_ERROR_NO_DATA);
    }
    return device->status == Disconnected ? remoteFailure(HOMELOOM_CLIENT_ERROR_IO) : stateOf(*resource);
}

RemoteAnswer write(World& world, const std::string& deviceId, const std::string& uri, const std::string& payload,
                   const HandoverPtr& handover) {
    Device* device = world.device(deviceId);
    if (device == nullptr || device->find(uri) == nullptr) {
        return remoteFailure(HOMELOOM_CLIENT_ERROR_NO_DATA);
    }
    if (device->status == Disconnected) {
        return remoteFailure(HOMELOOM_CLIENT_ERROR_IO);
    }
    const json::value attributes = parsed(payload);
    if (!attributes.is_object()) {
        return remoteFailure(HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER);
    }
    std::vector<Change> changes;
    for (const auto& member : attributes.get_object()) {
        changes.push_back({uri, std::string(member.key()), toText(member.value())});
    }
    const int code = world.command(*device, changes, handover);
    return code != 0 ? remoteFailure(code) : stateOf(*device->find(uri));
}

RemoteAnswer endOfWrite(World& world, const std::string& deviceId, const std::string& uri, bool isRefused) {
    return isRefused ? remoteFailure(HOMELOOM_CLIENT_ERROR_PERMISSION_DENIED) : read(world, deviceId, uri);
}

int answerRemote(const Call& call, const char* device_id, const char* uri, homeloom_client_remote_cb callback,
                 void* userData, std::function<RemoteAnswer(World&, const HandoverPtr&)> work,
                 std::function<RemoteAnswer(World&, bool isRefused)> finish) {
    const auto deliver = [callback, userData, deviceId = Argument(device_id).text(), uri = Argument(uri).text(),
                          isNull = call.isHitBy(Fault::Kind::Null)](const RemoteAnswer& answer) {
        const CallbackText attributes(answer.attributes);
        callback(answer.error, CallbackText(deviceId), isNull ? nullptr : static_cast<const char*>(attributes),
                 CallbackText(uri), CallbackText(answer.dataTypes), userData);
    };
    call.mark(Function::AnswersText);
    if (call.said() != nullptr) {
        work = [text = *call.said()](World&, const HandoverPtr&) {
            return RemoteAnswer{HOMELOOM_CLIENT_ERROR_NONE, text, ""};
        };
    }
    return call.later<RemoteAnswer>(callback != nullptr, std::move(work), std::move(finish), deliver);
}

int setRemote(Function& function, homeloom_client_h client, const char* device_id, const char* uri, const char* payload,
              homeloom_client_remote_cb callback, void* userData) {
    const std::string deviceId = Argument(device_id).text();
    const std::string resource = Argument(uri).text();
    const auto work = [deviceId, resource, payload = Argument(payload).text()](World& world,
                                                                               const HandoverPtr& handover) {
        return write(world, deviceId, resource, payload, handover);
    };
    const auto finish = [deviceId, resource](World& world, bool isRefused) {
        return endOfWrite(world, deviceId, resource, isRefused);
    };
    return answerRemote(Call(function, client, {device_id, uri, payload}, Needs::SignIn), device_id, uri, callback,
                        userData, work, finish);
}

int getRemote(Function& function, homeloom_client_h client, const char* device_id, const char* uri,
              homeloom_client_remote_cb callback, void* userData) {
    const auto work = [deviceId = Argument(device_id).text(), uri = Argument(uri).text()](
                          World& world, const HandoverPtr&) { return read(world, deviceId, uri); };
    return answerRemote(Call(function, client, {device_id, uri}, Needs::SignIn), device_id, uri, callback, userData,
                        work, nullptr);
}

auto findSubscription(std::vector<Subscription>& subscriptions, const std::string& text) {
    return std::find_if(subscriptions.begin(), subscriptions.end(),
                        [&](const Subscription& subscription) { return subscription.text == text; });
}

}  // namespace

int homeloom_client_subscribe(homeloom_client_h client, const char* device_id, const char* uris,
                              homeloom_client_subscribe_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {device_id, uris}, Needs::SignIn).now([&](World& world, Client& caller) {
        const json::value list = parsed(uris);
        if (callback == nullptr || !list.is_array()) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        if (world.device(device_id) == nullptr) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        Subscription subscription{uris, {}, {callback, user_data}};
        for (const json::value& uri : list.get_array()) {
            subscription.uris.push_back(plain(toText(uri)));
        }
        auto& subscriptions = caller.subscriptions[device_id];
        const auto present = findSubscription(subscriptions, uris);
        if (present != subscriptions.end()) {
            *present = std::move(subscription);
        } else {
            subscriptions.push_back(std::move(subscription));
        }
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_unsubscribe(homeloom_client_h client, const char* device_id, const char* uris) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {device_id, uris}, Needs::Handle).now([&](World&, Client& caller) {
        const auto ofDevice = caller.subscriptions.find(device_id);
        if (ofDevice == caller.subscriptions.end()) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        const auto present = findSubscription(ofDevice->second, uris);
        if (present == ofDevice->second.end()) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        ofDevice->second.erase(present);
        if (ofDevice->second.empty()) {
            caller.subscriptions.erase(ofDevice);
        }
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_set_remote_representation(homeloom_client_h client, const char* device_id, const char* uri,
                                              const char* payload, homeloom_client_remote_cb callback,
                                              void* user_data) {
    static Function& function = functionNamed(__func__);
    return setRemote(function, client, device_id, uri, payload, callback, user_data);
}

int homeloom_client_set_remote_attributes(homeloom_client_h client, const char* device_id, const char* uri,
                                          const char* payload, homeloom_client_remote_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return setRemote(function, client, device_id, uri, payload, callback, user_data);
}

int homeloom_client_get_remote_representation(homeloom_client_h client, const char* device_id, const char* uri,
                                              homeloom_client_remote_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return getRemote(function, client, device_id, uri, callback, user_data);
}

int homeloom_client_get_remote_attributes(homeloom_client_h client, const char* device_id, const char* uri,
                                          homeloom_client_remote_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return getRemote(function, client, device_id, uri, callback, user_data);
}

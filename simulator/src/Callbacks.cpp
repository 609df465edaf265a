// What the agent tells its clients, each call on the callback thread.
#include <algorithm>
#include <cstring>
#include <exception>

#include <dlog.h>

#include "World.h"

namespace simulator {

namespace {

const char* const tag = "HL_AGENT";

struct Update {
    std::string deviceId;
    std::string uri;
    std::string representation;
    std::string dataTypes;
    std::string errorCode;
};

void deliver(const Registration<homeloom_client_subscribe_cb>& callback, const Update& update) {
    callback.function(CallbackText(update.deviceId), CallbackText(update.uri), CallbackText(update.representation),
                      CallbackText(update.dataTypes), CallbackText(update.errorCode), CallbackText(""),
                      callback.userData);
}

bool isConnected(const Client& client) {
    return client.state == Client::State::Connected;
}

bool contains(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// Groups of one type; a list inside a callback that stays with the agent.
class LentGroups {
public:
    explicit LentGroups(const Records& groups)
        : _list(makeList<homeloom_client_group_h>(groups)), _count(static_cast<int>(groups.size())) {}
    ~LentGroups() {
        for (int i = 0; i < _count; ++i) {
            delete _list[i];
        }
        std::free(_list);
    }
    LentGroups(const LentGroups&) = delete;
    LentGroups& operator=(const LentGroups&) = delete;

    homeloom_client_group_h* list() const { return _list; }
    int count() const { return _count; }

private:
    homeloom_client_group_h* _list;
    int _count;
};

}  // namespace

// What is behind a NUL in the text never reaches the callback, nor this copy.
CallbackText::CallbackText(const std::string& text) : _text(strdup(text.c_str())), _size(std::strlen(_text)) {}

CallbackText::~CallbackText() {
    std::memset(_text, '?', _size);
    std::free(_text);
}

void World::guarded(const char* name, const Delivery& delivery) {
    std::string what;
    try {
        delivery();
        return;
    } catch (const std::exception& e) {
        what = e.what();
    } catch (...) {
        what = "not an exception";
    }
    dlog_print(DLOG_ERROR, tag, "%s let an exception through: %s", name, what.c_str());
    const std::lock_guard<std::mutex> lock(mutex);
    escapedExceptions.push_back(std::string(name) + ": " + what);
}

void World::post(const Client& receiver, const char* name, std::function<Delivery(Client&)> prepare,
                 std::chrono::milliseconds delay, int deliveries) {
    const auto job = [this, id = receiver.id, name, prepare = std::move(prepare), deliveries] {
        Delivery delivery;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (Client* found = client(id)) {
                delivery = prepare(*found);
            }
        }
        for (int i = 0; delivery && i < deliveries; ++i) {
            guarded(name, delivery);
        }
    };
    thread.post(receiver.id, job, delay);
}

template <class Callback>
void World::postToAll(const char* name, Registration<Callback> Client::*member,
                      std::function<void(const Registration<Callback>&)> call) {
    for (const auto& [handle, receiver] : clients) {
        if (!(receiver.*member) || !isConnected(receiver)) {
            continue;
        }
        post(receiver, name, [member, call](Client& client) -> Delivery {
            if (!(client.*member)) {
                return {};
            }
            return [callback = client.*member, call] { call(callback); };
        });
    }
}

void World::postConnection(const Client& receiver, const Outcome& outcome, std::chrono::milliseconds delay,
                           int deliveries) {
    const auto prepare = [outcome](Client& client) -> Delivery {
        client.state = outcome.after;
        const auto callback = client.connection;
        return [callback, outcome] { callback.function(outcome.result, outcome.state, callback.userData); };
    };
    post(receiver, "connection_state_changed_cb", prepare, delay, deliveries);
}

void World::postSignIn() {
    changed();
    postToAll<homeloom_client_sign_in_state_changed_cb>(
        "sign_in_state_changed_cb", &Client::signIn,
        [signedIn = isSignedIn](const auto& callback) { callback.function(signedIn, callback.userData); });
}

void World::postDeviceList(const Client& receiver, const std::vector<std::string>& ids) {
    if (!isConnected(receiver)) {
        return;
    }
    Records records;
    for (const std::string& id : ids) {
        records.push_back(deviceRecord(id));
    }
    post(receiver, "device_list_updated_cb", [records](Client& client) -> Delivery {
        if (!client.deviceList) {
            return {};
        }
        return [callback = client.deviceList, records] {
            callback.function(makeList<homeloom_client_device_h>(records), static_cast<int>(records.size()),
                              callback.userData);
        };
    });
}

void World::postDetailList(const Client& receiver, Records details) {
    if (!isConnected(receiver)) {
        return;
    }
    post(receiver, "device_detail_list_updated_cb", [details = std::move(details)](Client& client) -> Delivery {
        if (!client.detailList) {
            return {};
        }
        return [callback = client.detailList, details] {
            callback.function(makeList<homeloom_client_device_detail_h>(details), static_cast<int>(details.size()),
                              callback.userData);
        };
    });
}

void World::postDeviceListToAll() {
    for (const auto& [handle, receiver] : clients) {
        if (receiver.deviceList && isSignedIn) {
            postDeviceList(receiver, deviceIds());
        }
    }
}

void World::postDetails(const std::vector<const Device*>& devices) {
    Records details;
    for (const Device* device : devices) {
        details.push_back(detailRecord(*device));
    }
    for (const auto& [handle, receiver] : clients) {
        if (receiver.detailList && isSignedIn) {
            postDetailList(receiver, details);
        }
    }
}

void World::postGroups(int notiType, int groupType, const std::string& id) {
    postToAll<homeloom_client_group_list_updated_cb>(
        "group_list_updated_cb", &Client::groupList,
        [notiType, groupType, id, present = groups(groupType)](const auto& callback) {
            const LentGroups lent(present);
            callback.function(notiType, groupType, lent.list(), lent.count(), CallbackText(id), callback.userData);
        });
}

void World::postUpdate(const std::string& deviceId, const std::string& uri, const std::string& representation,
                       const std::string& dataTypes, const std::string& errorCode) {
    const auto update = std::make_shared<const Update>(Update{deviceId, uri, representation, dataTypes, errorCode});
    for (const auto& [handle, receiver] : clients) {
        const auto subscriptions = receiver.subscriptions.find(deviceId);
        if (subscriptions == receiver.subscriptions.end() || !isConnected(receiver)) {
            continue;
        }
        for (const Subscription& subscription : subscriptions->second) {
            if (!contains(subscription.uris, uri)) {
                continue;
            }
            post(receiver, "subscribe_cb", [update, text = subscription.text](Client& client) -> Delivery {
                for (const Subscription& present : client.subscriptions[update->deviceId]) {
                    if (present.text == text) {
                        return [callback = present.callback, update] { deliver(callback, *update); };
                    }
                }
                return {};
            });
        }
    }
}

void World::postEvent(int kind, const std::string& text) {
    const long long timestamp = 1714554000000 + ++_events;
    for (const auto& [handle, receiver] : clients) {
        if (!receiver.events || (receiver.eventMask & kind) == 0 || !isConnected(receiver)) {
            continue;
        }
        post(receiver, "sse_cb", [kind, timestamp, text](Client& client) -> Delivery {
            if (!client.events || (client.eventMask & kind) == 0) {
                return {};
            }
            return [callback = client.events, kind, timestamp, text] {
                callback.function(static_cast<homeloom_core_sse_e>(kind), timestamp, CallbackText(text),
                                  callback.userData);
            };
        });
    }
}

void World::postThirdPartyStatus() {
    postToAll<homeloom_client_third_party_notification_status_updated_cb>(
        "third_party_notification_status_updated_cb", &Client::thirdParty,
        [](const auto& callback) { callback.function(callback.userData); });
}

}  // namespace simulator

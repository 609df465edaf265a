// The agent's functions: third-party notification.
#include <deque>

#include <homeloom_client.h>

#include "../Calls.h"

using namespace simulator;

namespace {

struct StatusAnswer {
    int error = 0;
    bool enabled = false;
    std::vector<std::string> deviceIds;
};

struct CodeAnswer {
    int error = 0;
};

std::function<void(const CodeAnswer&)> tellWhetherDone(homeloom_client_third_party_notification_cb callback,
                                                       void* userData) {
    return [callback, userData](const CodeAnswer& answer) { callback(answer.error == 0, userData); };
}

}  // namespace

int homeloom_client_set_third_party_notification(homeloom_client_h client, const char* provider, const char* reg_id,
                                                 const char* app_id, const char* locale,
                                                 homeloom_client_third_party_notification_cb callback,
                                                 void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {provider, reg_id, app_id, locale}, Needs::SignIn);
    const NotificationProfile profile{Argument(provider).text(), Argument(reg_id).text(), Argument(app_id).text(),
                                      Argument(locale).text()};
    const auto work = [profile](World& world) {
        world.home.notificationProfile = profile;
        return CodeAnswer{};
    };
    return call.later<CodeAnswer>(callback != nullptr, work, tellWhetherDone(callback, user_data));
}

int homeloom_client_set_third_party_notification_status(homeloom_client_h client, const char** device_ids, int count,
                                                        homeloom_client_third_party_notification_cb callback,
                                                        void* user_data) {
    static Function& function = functionNamed(__func__);
    std::vector<std::string> ids;
    Arguments arguments{count};
    for (int i = 0; device_ids != nullptr && i < count; ++i) {
        ids.emplace_back(Argument(device_ids[i]).text());
        arguments.emplace_back(device_ids[i]);
    }
    const auto work = [ids](World& world) {
        world.home.blockedDevices = ids;
        return CodeAnswer{};
    };
    return Call(function, client, arguments, Needs::SignIn)
        .later<CodeAnswer>(callback != nullptr, work, tellWhetherDone(callback, user_data));
}

int homeloom_client_get_third_party_notification_status(homeloom_client_h client,
                                                        homeloom_client_third_party_notification_status_cb callback,
                                                        void* user_data) {
    static Function& function = functionNamed(__func__);
    const auto work = [](World& world) {
        return StatusAnswer{0, world.home.thirdPartyNotification, world.home.blockedDevices};
    };
    const auto deliver = [callback, user_data](const StatusAnswer& answer) {
        std::deque<CallbackText> texts;
        std::vector<char*> ids;
        for (const std::string& id : answer.deviceIds) {
            ids.push_back(texts.emplace_back(id).data());
        }
        callback(answer.error, answer.enabled, ids.data(), static_cast<int>(ids.size()), user_data);
    };
    return Call(function, client, {}, Needs::SignIn).later<StatusAnswer>(callback != nullptr, work, deliver);
}

int homeloom_client_set_third_party_notification_status_updated_cb(
    homeloom_client_h client, homeloom_client_third_party_notification_status_updated_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([&](World&, Client& caller) {
        if (callback == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        caller.thirdParty = {callback, user_data};
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_unset_third_party_notification_status_updated_cb(homeloom_client_h client) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([](World&, Client& caller) {
        caller.thirdParty = {};
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

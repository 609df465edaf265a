// The agent's functions: what the platform keeps for the user.
#include <homeloom_core.h>

#include "../Calls.h"
#include "../Json.h"

using namespace simulator;

namespace {

struct ProfileAnswer {
    int error = 0;
    std::string message;
    NotificationProfile profile;
};

JsonAnswer taken() {
    return success(R"({"message":"SUCCESS"})");
}

std::string keyValue(const std::string& key, const std::string& value) {
    return toText(json::object{{"key", key}, {"value", value}});
}

/// A key-value call on a key that must, or must not, be there; `work` takes the key's value.
template <class Work>
int withKey(const Call& call, const char* key, bool mustExist, char** result, Work work) {
    return call.now([&](World& world, Client&) -> int {
        auto& keyValues = world.home.keyValues;
        if (result == nullptr || *key == '\0') {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        if (mustExist != (keyValues.count(key) != 0)) {
            return mustExist ? HOMELOOM_CLIENT_ERROR_NO_DATA : HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        work(keyValues[key]);
        *result = handOut(keyValue(key, keyValues[key]));
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

}  // namespace

int homeloom_core_get_wifilocker_user_setting(homeloom_client_h client, homeloom_core_json_cb callback,
                                              void* user_data) {
    static Function& function = functionNamed(__func__);
    return answerJson(Call(function, client, {}, Needs::SignIn), callback, user_data, [](World& world) {
        const json::value setting = world.home.wifiLocker.empty() ? json::object() : parsed(world.home.wifiLocker);
        return success(toText(json::object{{"message", "SUCCESS"}, {"data", setting}}));
    });
}

int homeloom_core_set_wifilocker_user_setting(homeloom_client_h client, const char* setting_json,
                                              homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {setting_json}, Needs::SignIn);
    return answerJson(call, callback, user_data, [text = Argument(setting_json).text()](World& world) {
        const json::value setting = parsed(text);
        if (!setting.is_object()) {
            return success(R"({"message":"INVALID_SETTING"})");
        }
        world.home.wifiLocker = toText(setting);
        return taken();
    });
}

int homeloom_core_locksmith_create_keyvalue(homeloom_client_h client, const char* key, const char* value,
                                            char** result_json) {
    static Function& function = functionNamed(__func__);
    return withKey(Call(function, client, {key, value}, Needs::SignIn, result_json), key, false, result_json,
                   [&](std::string& kept) { kept = value; });
}

int homeloom_core_locksmith_get_keyvalue(homeloom_client_h client, const char* key, char** result_json) {
    static Function& function = functionNamed(__func__);
    return withKey(Call(function, client, {key}, Needs::SignIn, result_json), key, true, result_json,
                   [](const std::string&) {});
}

int homeloom_core_locksmith_update_keyvalue(homeloom_client_h client, const char* key, const char* value,
                                            char** result_json) {
    static Function& function = functionNamed(__func__);
    return withKey(Call(function, client, {key, value}, Needs::SignIn, result_json), key, true, result_json,
                   [&](std::string& kept) { kept = value; });
}

int homeloom_core_locksmith_delete_keyvalue(homeloom_client_h client, const char* key, char** result_json) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {key}, Needs::SignIn, result_json).now([&](World& world, Client&) {
        const auto found = world.home.keyValues.find(key);
        if (result_json == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        if (found == world.home.keyValues.end()) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        *result_json = handOut(keyValue(key, found->second));
        world.home.keyValues.erase(found);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_core_update_notification_profile(homeloom_client_h client, const char* provider, const char* reg_id,
                                              const char* app_id, const char* locale, homeloom_core_json_cb callback,
                                              void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {provider, reg_id, app_id, locale}, Needs::SignIn);
    const NotificationProfile profile{Argument(provider).text(), Argument(reg_id).text(), Argument(app_id).text(),
                                      Argument(locale).text()};
    return answerJson(call, callback, user_data, [profile](World& world) {
        world.home.notificationProfile = profile;
        return taken();
    });
}

int homeloom_core_get_notification_profile(homeloom_client_h client, homeloom_core_notification_profile_cb callback,
                                           void* user_data) {
    static Function& function = functionNamed(__func__);
    const auto work = [](World& world) { return ProfileAnswer{0, "", world.home.notificationProfile}; };
    const auto deliver = [callback, user_data](const ProfileAnswer& answer) {
        callback(answer.error, CallbackText(answer.message), CallbackText(answer.profile.provider),
                 CallbackText(answer.profile.registrationId), CallbackText(answer.profile.appId),
                 CallbackText(answer.profile.locale), user_data);
    };
    return Call(function, client, {}, Needs::SignIn).later<ProfileAnswer>(callback != nullptr, work, deliver);
}

// Facade: push notification of outside applications.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::SetThirdPartyNotification(const std::string& provider, const std::string& regId,
                                             const std::string& appId, const std::string& locale,
                                             homeloom_client_third_party_notification_cb cb, void* userData) {
    return _Call({{provider, "push provider is empty"},
                  {regId, "push reg id is empty"},
                  {appId, "push app id is empty"},
                  {locale, "locale is empty"},
                  {cb != nullptr, "cbFunc is null"}},
                 homeloom_client_set_third_party_notification, provider, regId, appId, locale, cb, userData);
}

int TesselHandler::SetThirdPartyNotificationStatus(const std::vector<std::string>& deviceIds,
                                                   homeloom_client_third_party_notification_cb cb, void* userData) {
    std::vector<const char*> ids;
    ids.reserve(deviceIds.size());
    for (const std::string& id : deviceIds) {
        ids.push_back(id.c_str());
    }
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_third_party_notification_status, ids.data(),
                 static_cast<int>(ids.size()), cb, userData);
}

int TesselHandler::GetThirdPartyNotificationStatus(homeloom_client_third_party_notification_status_cb cb,
                                                   void* userData) {
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_get_third_party_notification_status, cb,
                 userData);
}

int TesselHandler::SetThirdPartyNotificationStatusUpdatedCb(
    homeloom_client_third_party_notification_status_updated_cb cb, void* userData) {
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_third_party_notification_status_updated_cb,
                 cb, userData);
}

int TesselHandler::UnsetThirdPartyNotificationStatusUpdatedCb() {
    return _Call({}, homeloom_client_unset_third_party_notification_status_updated_cb);
}

int TesselHandler::SetNotificationProfile(const std::string& provider, const std::string& regId,
                                          const std::string& appId, const std::string& locale,
                                          std::string& errorMessage, std::string& resultJson) {
    return _AwaitText<SetCoreNotificationProfileParam>({{provider, "push provider is empty"},
                                                        {regId, "push reg id is empty"},
                                                        {appId, "push app id is empty"},
                                                        {locale, "locale is empty"}},
                                                       resultJson, errorMessage,
                                                       homeloom_core_update_notification_profile, provider, regId,
                                                       appId, locale, _CoreSetNotificationProfileCb);
}

int TesselHandler::GetNotificationProfile(std::string& errorMessage, std::string& provider, std::string& regId,
                                          std::string& appId, std::string& locale) {
    auto reply = _Await<GetCoreNotificationProfileParam>({}, homeloom_core_get_notification_profile,
                                                         _CoreGetNotificationProfileCb);
    errorMessage = std::move(reply.errorMessage);
    provider = std::move(reply.provider);
    regId = std::move(reply.regId);
    appId = std::move(reply.appId);
    locale = std::move(reply.locale);
    HL_LOGI("ret: %d, error_message: %s", reply.ret, errorMessage.c_str());
    return reply.ret;
}

}  // namespace VMFramework::HomeLoom

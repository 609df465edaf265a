// Requests for home services: push notification, service apps and energy, locker, infrared devices, server environment.

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/ExternalService/ExternalServiceHandler.h"
#include "Homeloom/HomeloomClient.h"
#include "Homeloom/IR/IRHandler.h"
#include "Homeloom/Life/LifeHandler.h"
#include "Homeloom/Tessel/CServerEnvMgr.h"
#include "Homeloom/WifiLocker/WifiLockerHandler.h"

namespace VMFramework::HomeLoom {

// The profile operations serve these two: the agent's own registration of the same name has no caller.
void HomeloomClient::SetThirdPartyNotification(const Transaction& transaction, const std::string& provider,
                                               const std::string& regId, const std::string& appId,
                                               const std::string& locale) {
    if (!isSkippedWithoutAgent()) {
        _externalServiceHandler->SetNotificationProfile(transaction, provider, regId, appId, locale);
    }
}

void HomeloomClient::GetThirdPartyNotification(const Transaction& transaction) {
    if (!isSkippedWithoutAgent()) {
        _externalServiceHandler->GetNotificationProfile(transaction);
    }
}

void HomeloomClient::SetThirdPartyNotificationStatus(const Transaction& transaction,
                                                     const std::string& blockDeviceIds) {
    if (!isSkippedWithoutAgent()) {
        _externalServiceHandler->SetThirdPartyNotificationStatus(transaction, blockDeviceIds);
    }
}

void HomeloomClient::GetThridPartyNotificationStatus(const Transaction& transaction) {
    // This one logs and returns where the others of its guard throw.
    if (isClientAvailable()) {
        _externalServiceHandler->GetThirdPartyNotificationStatus(transaction);
    }
}

void HomeloomClient::GetInstalledServiceAppInfo(const Transaction& transaction, const std::string& locationId) {
    forward(false, _lifeHandler, &LifeHandler::GetInstalledServiceAppInfo, transaction, locationId);
}

void HomeloomClient::GetEnergyInfo(const Transaction& transaction, const std::string& installedAppId) {
    forward(false, _lifeHandler, &LifeHandler::GetEnergyInfo, transaction, installedAppId);
}

void HomeloomClient::GetWifiLockerUserSetting(const Transaction& transaction) {
    _wifiLockerHandler->GetWifiLockerUserSetting(transaction);
}

void HomeloomClient::SetWifiLockerUserSetting(const Transaction& transaction, const std::string& settingJson) {
    _wifiLockerHandler->SetWifiLockerUserSetting(transaction, settingJson);
}

void HomeloomClient::OnboardIrDevice(const Transaction& transaction, const std::shared_ptr<IPropertyListHelper>& list) {
    if (!isRefusedWithoutAgent()) {
        _irHandler->OnboardIRDevice(transaction, list);
    }
}

void HomeloomClient::SetServerEnv(const Transaction& transaction, int iotCloud, int uiMeta) {
    requireClientAvailable();
    SetServerEnvParam param(transaction);
    // A number that names no environment is answered, too.
    Guarded([&] { param.result = CServerEnvMgr::GetInstance().SetServerEnv(iotCloud, uiMeta); });
    Reporter::Report(param);
}

void HomeloomClient::handleSseSmartAppEvent(const std::string& json) {
    HL_LOGI("json : %s", json.c_str());
    forward(false, _lifeHandler, &LifeHandler::HandleSseSmartAppEvent, json);
}

}  // namespace VMFramework::HomeLoom

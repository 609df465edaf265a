// Requests for home services: push notification, service apps and energy, locker, infrared devices, server environment.

#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Homeloom/HomeloomClient.h"

namespace VMFramework::HomeLoom {

namespace {

// A service without a handler leaves the request unanswered, as every path does that does not serve one.
void LogNotServed(const char* service) {
    HL_LOGE("%s has no handler, the request ends here", service);
}

}  // namespace

void HomeloomClient::SetThirdPartyNotification(const Transaction&, const std::string&, const std::string&,
                                               const std::string&, const std::string&) {
    if (!isSkippedWithoutAgent()) {
        LogNotServed("push notification");
    }
}

void HomeloomClient::GetThirdPartyNotification(const Transaction&) {
    if (!isSkippedWithoutAgent()) {
        LogNotServed("push notification");
    }
}

void HomeloomClient::SetThirdPartyNotificationStatus(const Transaction&, const std::string&) {
    if (!isSkippedWithoutAgent()) {
        LogNotServed("push notification");
    }
}

void HomeloomClient::GetThridPartyNotificationStatus(const Transaction&) {
    // This one logs and returns where the others of its guard throw.
    if (isClientAvailable()) {
        LogNotServed("push notification");
    }
}

void HomeloomClient::GetInstalledServiceAppInfo(const Transaction&, const std::string&) {
    LogNotServed("service apps");
}

void HomeloomClient::GetEnergyInfo(const Transaction&, const std::string&) {
    LogNotServed("energy");
}

void HomeloomClient::GetWifiLockerUserSetting(const Transaction&) {
    LogNotServed("locker");
}

void HomeloomClient::SetWifiLockerUserSetting(const Transaction&, const std::string&) {
    LogNotServed("locker");
}

void HomeloomClient::OnboardIrDevice(const Transaction&, const std::shared_ptr<IPropertyListHelper>&) {
    if (!isRefusedWithoutAgent()) {
        LogNotServed("infrared onboarding");
    }
}

void HomeloomClient::SetServerEnv(const Transaction& transaction, int, int) {
    requireClientAvailable();
    SetServerEnvParam param(transaction);
    Reporter::Report(param);
}

void HomeloomClient::handleSseSmartAppEvent(const std::string& json) {
    HL_LOGI("json : %s", json.c_str());
}

}  // namespace VMFramework::HomeLoom

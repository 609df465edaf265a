// Asks and sets the Wi-Fi locker setting, and reports when the agent has answered.
#include "Homeloom/WifiLocker/WifiLockerHandler.h"

#include <exception>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/CText.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/AgentResponse.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Common/UserTransactionData.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

std::shared_ptr<UserTransactionData> TakeRequest(void* userData) {
    if (userData == nullptr) {
        HL_LOGE("user_data is null");
        return nullptr;
    }
    return CallbackTokens::Take<UserTransactionData>(userData);
}

void ReportSetting(const std::shared_ptr<CTransaction>& transaction, bool result, int enabled) {
    GetWifiLockerUserSettingParam param(transaction);
    param.result = result;
    param.wifiLockerUserSettingEnabled = enabled;
    Reporter::Report(param);
}

void ReportSet(const std::shared_ptr<CTransaction>& transaction, bool result) {
    SetWifiLockerUserSettingParam param(transaction);
    param.result = result;
    Reporter::Report(param);
}

}  // namespace

void WifiLockerHandler::GetWifiLockerUserSetting(const std::shared_ptr<CTransaction>& transaction) {
    void* token = requestToken(transaction);
    const int ret = _agent.GetWifiLockerUserSetting(_HomeLoomCoreGetWifiLockerUserSetting, token);
    HL_LOGI("GetWifiLockerUserSetting ret: %d", ret);
    if (ret != 0) {
        CallbackTokens::Take<UserTransactionData>(token);
        ReportSetting(transaction, false, 0);
    }
}

void WifiLockerHandler::SetWifiLockerUserSetting(const std::shared_ptr<CTransaction>& transaction,
                                                 const std::string& settingJson) {
    void* token = requestToken(transaction);
    const int ret = _agent.SetWifiLockerUserSetting(settingJson, _HomeLoomCoreSetWifiLockerUserSetting, token);
    HL_LOGI("SetWifiLockerUserSetting ret: %d", ret);
    if (ret != 0) {
        CallbackTokens::Take<UserTransactionData>(token);
        ReportSet(transaction, false);
    }
}

void WifiLockerHandler::_HomeLoomCoreGetWifiLockerUserSetting(int error, const char* errorMessage, const char* response,
                                                              void* userData) try {
    HL_LOGI("_HomeLoomCoreGetWifiLockerUserSetting result : %d, error_message : %s, response : %s", error,
            TextOf(errorMessage).c_str(), TextOf(response).c_str());
    const auto request = TakeRequest(userData);
    if (!request) {
        return;
    }
    EnqueueOnScheduler(
        [transaction = request->transaction, text = TextOf(response)] {
            const bool isSuccess = GetResponseMessage(text) == kResponseSuccess;
            ReportSetting(transaction, isSuccess, isSuccess ? getEnabledValue(text) : 0);
        },
        "_HomeLoomCoreGetWifiLockerUserSetting");
} catch (const std::exception& e) {
    HL_LOG_EXCEPTION(e);
}

void WifiLockerHandler::_HomeLoomCoreSetWifiLockerUserSetting(int error, const char* errorMessage, const char* response,
                                                              void* userData) try {
    HL_LOGI("_HomeLoomCoreSetWifiLockerUserSetting result : %d, error_message : %s, response : %s", error,
            TextOf(errorMessage).c_str(), TextOf(response).c_str());
    const auto request = TakeRequest(userData);
    if (!request) {
        return;
    }
    EnqueueOnScheduler(
        [transaction = request->transaction, text = TextOf(response)] {
            ReportSet(transaction, GetResponseMessage(text) == kResponseSuccess);
        },
        "_HomeLoomCoreSetWifiLockerUserSetting");
} catch (const std::exception& e) {
    HL_LOG_EXCEPTION(e);
}

int WifiLockerHandler::getEnabledValue(const std::string& response) {
    try {
        const auto document = json::JsonValue::Create(response);
        const auto data = document["data"];
        const auto enabled = data["enabled"];
        if (enabled.isNull()) {
            HL_LOGE("enabled parsing failed");
            return 0;
        }
        return enabled.asInt();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        return 0;
    }
}

void* WifiLockerHandler::requestToken(const std::shared_ptr<CTransaction>& transaction) {
    return CallbackTokens::Keep(std::make_shared<UserTransactionData>(weak_from_this(), transaction));
}

}  // namespace VMFramework::HomeLoom

// Asks and sets the Wi-Fi locker setting, and reports when the agent has answered.
#include "Homeloom/WifiLocker/WifiLockerHandler.h"

#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/CText.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/AgentResponse.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Common/UserTransactionData.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

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

// What both callbacks do, on the agent's thread. 'report' answers the request by the text of the agent's response.
template <typename Report>
void QueueAnswer(const char* callback, int error, const char* errorMessage, const char* response, void* userData,
                 Report report) {
    Guarded([&] {
        HL_LOGI("%s result : %d, error_message : %s, response : %s", callback, error, TextOf(errorMessage).c_str(),
                TextOf(response).c_str());
        if (userData == nullptr) {
            HL_LOGE("user_data is null");
            return;
        }
        if (const auto request = UserTransactionData::Take(userData)) {
            EnqueueOnScheduler(
                [transaction = request->transaction, text = TextOf(response), report] { report(transaction, text); },
                callback);
        }
    });
}

}  // namespace

void WifiLockerHandler::GetWifiLockerUserSetting(const std::shared_ptr<CTransaction>& transaction) {
    void* token = UserTransactionData::Keep(weak_from_this(), transaction);
    const int ret = _agent.GetWifiLockerUserSetting(_HomeLoomCoreGetWifiLockerUserSetting, token);
    HL_LOGI("GetWifiLockerUserSetting ret: %d", ret);
    if (ret != 0) {
        UserTransactionData::Take(token);
        ReportSetting(transaction, false, 0);
    }
}

void WifiLockerHandler::SetWifiLockerUserSetting(const std::shared_ptr<CTransaction>& transaction,
                                                 const std::string& settingJson) {
    void* token = UserTransactionData::Keep(weak_from_this(), transaction);
    const int ret = _agent.SetWifiLockerUserSetting(settingJson, _HomeLoomCoreSetWifiLockerUserSetting, token);
    HL_LOGI("SetWifiLockerUserSetting ret: %d", ret);
    if (ret != 0) {
        UserTransactionData::Take(token);
        ReportSet(transaction, false);
    }
}

void WifiLockerHandler::_HomeLoomCoreGetWifiLockerUserSetting(int error, const char* errorMessage, const char* response,
                                                              void* userData) {
    const auto report = [](const auto& transaction, const std::string& text) {
        const bool isSuccess = GetResponseMessage(text) == kResponseSuccess;
        ReportSetting(transaction, isSuccess, isSuccess ? getEnabledValue(text) : 0);
    };
    QueueAnswer("_HomeLoomCoreGetWifiLockerUserSetting", error, errorMessage, response, userData, report);
}

void WifiLockerHandler::_HomeLoomCoreSetWifiLockerUserSetting(int error, const char* errorMessage, const char* response,
                                                              void* userData) {
    const auto report = [](const auto& transaction, const std::string& text) {
        ReportSet(transaction, GetResponseMessage(text) == kResponseSuccess);
    };
    QueueAnswer("_HomeLoomCoreSetWifiLockerUserSetting", error, errorMessage, response, userData, report);
}

int WifiLockerHandler::getEnabledValue(const std::string& response) {
    return GuardedOr(0, [&] {
        const auto document = json::JsonValue::Create(response);
        const auto data = document["data"];
        const auto enabled = data["enabled"];
        if (enabled.isNull()) {
            HL_LOGE("enabled parsing failed");
            return 0;
        }
        return enabled.asInt();
    });
}

}  // namespace VMFramework::HomeLoom

// Requests of outside applications for push notifications, and the agent's late answers to them.
#include "Homeloom/ExternalService/ExternalServiceHandler.h"

#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/AgentResponse.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Common/UserTransactionData.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

/// The transaction that a callback answers, or nothing: the callback came twice, or without user data.
std::shared_ptr<UserTransactionData> TakeRequest(void* userData) {
    if (userData == nullptr) {
        HL_LOGE("user_data is null!");
        return nullptr;
    }
    return UserTransactionData::Take(userData);
}

void ReportSetNotification(const std::shared_ptr<CTransaction>& transaction, bool result) {
    SetThirdPartyNotificationParam param(transaction);
    param.result = result;
    Reporter::Report(param);
}

void ReportSetStatus(const std::shared_ptr<CTransaction>& transaction, bool result) {
    SetThirdPartyNotificationStatusParam param(transaction);
    param.result = result;
    Reporter::Report(param);
}

// What a callback that says yes or no does, on the agent's thread.
template <typename Report>
void QueueResult(const char* callback, bool result, void* userData, Report report) {
    Guarded([&] {
        HL_LOGI("result : %d", result);
        if (const auto request = TakeRequest(userData)) {
            EnqueueOnScheduler([transaction = request->transaction, result, report] { report(transaction, result); },
                               callback);
        }
    });
}

void ReportStatus(const std::shared_ptr<CTransaction>& transaction, bool result, const std::string& blockList) {
    GetThirdPartyNotificationStatusParam param(transaction);
    param.result = result;
    param.blockDeviceIds = blockList;
    Reporter::Report(param);
}

}  // namespace

// ---- Push profile ----

void ExternalServiceHandler::SetNotificationProfile(const std::shared_ptr<CTransaction>& transaction,
                                                    const std::string& provider, const std::string& regId,
                                                    const std::string& appId, const std::string& locale) {
    std::string errorMessage;
    std::string response;
    const int ret = _agent.SetNotificationProfile(provider, regId, appId, locale, errorMessage, response);
    HL_LOGI("SetNotificationProfile ret : %d, error_message : %s, response_json : %s", ret, errorMessage.c_str(),
            response.c_str());
    // The platform's own word decides, not the call's result.
    ReportSetNotification(transaction, GetResponseMessage(response) == kResponseSuccess);
}

void ExternalServiceHandler::GetNotificationProfile(const std::shared_ptr<CTransaction>& transaction) {
    GetThirdPartyNotificationParam param(transaction);
    std::string errorMessage;
    const int ret =
        _agent.GetNotificationProfile(errorMessage, param.pushProvider, param.pushRegId, param.pushAppId, param.locale);
    HL_LOGI(
        "GetNotificationProfile ret : %d, error_message : %s, push_provider : %s, push_reg_id : %s, push_app_id : %s, "
        "locale : %s",
        ret, errorMessage.c_str(), param.pushProvider.c_str(), param.pushRegId.c_str(), param.pushAppId.c_str(),
        param.locale.c_str());
    param.result = ret == 0;
    Reporter::Report(param);
}

// ---- Registration with the agent ----

void ExternalServiceHandler::SetThirdPartyNotification(const std::shared_ptr<CTransaction>& transaction,
                                                       const std::string& provider, const std::string& regId,
                                                       const std::string& appId, const std::string& locale) {
    void* token = UserTransactionData::Keep(weak_from_this(), transaction);
    int ret =
        _agent.SetThirdPartyNotification(provider, regId, appId, locale, _HomeLoomClientThirdPartyNotification, token);
    HL_LOGI("set noti ret : %d", ret);
    if (ret != 0) {
        UserTransactionData::Take(token);
        ReportSetNotification(transaction, false);
        return;
    }
    ret = _agent.SetThirdPartyNotificationStatusUpdatedCb(_HomeLoomClientThirdPartyNotificationStatusUpdated,
                                                          CallbackTokens::Watch(weak_from_this()));
    HL_LOGI("set noti update cb ret : %d", ret);
}

void ExternalServiceHandler::UnsetThirdPartyNotificationUpdateCb() {
    _agent.UnsetThirdPartyNotificationStatusUpdatedCb();
}

void ExternalServiceHandler::_HomeLoomClientThirdPartyNotification(bool result, void* userData) {
    QueueResult("_HomeLoomClientThirdPartyNotification", result, userData, ReportSetNotification);
}

void ExternalServiceHandler::_HomeLoomClientThirdPartyNotificationStatusUpdated(void* userData) {
    if (userData == nullptr) {
        HL_LOGE("user_data is null!");
        return;
    }
    const auto job = [] {
        HL_LOGI("_HomeLoomClientThirdPartyNotificationStatusUpdated, report to app");
        ThirdPartyNotificationStatusUpdatedParam param(nullptr);
        Reporter::Report(param);
    };
    Guarded([&] { EnqueueOnScheduler(job, "_HomeLoomClientThirdPartyNotificationStatusUpdated"); });
}

// ---- Block list ----

void ExternalServiceHandler::SetThirdPartyNotificationStatus(const std::shared_ptr<CTransaction>& transaction,
                                                             const std::string& blockListJson) {
    std::vector<std::string> deviceIds;
    if (!convertJsonToBlockDeviceIds(blockListJson, deviceIds)) {
        ReportSetStatus(transaction, false);
        return;
    }
    void* token = UserTransactionData::Keep(weak_from_this(), transaction);
    const int ret =
        _agent.SetThirdPartyNotificationStatus(deviceIds, _HomeLoomClientSetThirdPartyNotificationStatus, token);
    HL_LOGI("set noti status ret : %d", ret);
    if (ret != 0) {
        UserTransactionData::Take(token);
        ReportSetStatus(transaction, false);
    }
}

void ExternalServiceHandler::_HomeLoomClientSetThirdPartyNotificationStatus(bool result, void* userData) {
    QueueResult("_HomeLoomClientSetThirdPartyNotificationStatus", result, userData, ReportSetStatus);
}

void ExternalServiceHandler::GetThirdPartyNotificationStatus(const std::shared_ptr<CTransaction>& transaction) {
    void* token = UserTransactionData::Keep(weak_from_this(), transaction);
    const int ret = _agent.GetThirdPartyNotificationStatus(_HomeLoomClientGetThirdPartyNotificationStatus, token);
    HL_LOGI("get noti status ret : %d", ret);
    if (ret != 0) {
        UserTransactionData::Take(token);
        ReportStatus(transaction, false, "");
    }
}

void ExternalServiceHandler::_HomeLoomClientGetThirdPartyNotificationStatus(int error, bool, char** deviceIds,
                                                                            int count, void* userData) {
    Guarded([&] {
        HL_LOGI("result : %d", error);
        const auto request = TakeRequest(userData);
        if (!request) {
            return;
        }
        EnqueueOnScheduler(
            [transaction = request->transaction, error, json = convertBlockDeviceIdsToJson(deviceIds, count)] {
                HL_LOGI("_HomeLoomClientGetThirdPartyNotificationStatus() result : %d, device_ids : %s", error,
                        json.c_str());
                ReportStatus(transaction, error == 0, json);
            },
            "_HomeLoomClientGetThirdPartyNotificationStatus");
    });
}

std::string ExternalServiceHandler::convertBlockDeviceIdsToJson(char** deviceIds, int count) {
    if (deviceIds == nullptr || count <= 0) {
        HL_LOGI("block devices size is 0");
        return {};
    }
    return GuardedOr(std::string(), [&]() -> std::string {
        auto array = json::JsonValue::CreateArray();
        for (int i = 0; i < count; ++i) {
            if (deviceIds[i] != nullptr) {
                HL_LOGI("convert_black_device_id : %s", deviceIds[i]);
                array.append(deviceIds[i]);
            }
        }
        std::string json = array.toString();
        HL_LOGI("json_device_ids : %s", json.c_str());
        return json;
    });
}

bool ExternalServiceHandler::convertJsonToBlockDeviceIds(const std::string& json, std::vector<std::string>& deviceIds) {
    return GuardedOr(false, [&] {
        const auto array = json::JsonValue::Create(json);
        if (!array.isArray()) {
            HL_LOGE("block list is no array");
            return false;
        }
        for (std::size_t i = 0; i < array.size(); ++i) {
            const auto id = array[i];
            if (!id.isString()) {
                HL_LOGE("block list holds no text at %zu", i);
                return false;
            }
            deviceIds.push_back(id.asString());
            HL_LOGI("block_device_id : %s", deviceIds.back().c_str());
        }
        return true;
    });
}

}  // namespace VMFramework::HomeLoom

// Adds up a location's energy in two stages: consumption at once, saving modes later.
#include "Homeloom/Life/Energy.h"

#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Life/EnergySavingMode.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

using json::JsonValue;

namespace {

// "consumped" is the server's word, in the path and in its answer.
constexpr char kConsumptionUri[] = "/v3/tv/consumped-energy-devices?period=thisMonth";
constexpr char kConsumedEnergy[] = "consumpedEnergy";

JsonValue MakeDeviceInfo(const std::string& deviceId, int consumedEnergy, bool isSaving) {
    JsonValue info = JsonValue::CreateObject();
    info.set("device_id", deviceId);
    info.set("consumed_energy", consumedEnergy);
    info.set("energy_saving_mode", isSaving);
    return info;
}

}  // namespace

void Energy::GetEnergyInfo(const std::shared_ptr<CTransaction>& transaction, const std::string& installedAppId) {
    Consumption consumption;
    if (getEnergyConsumption(transaction, installedAppId, consumption) &&
        reportConsumedEnergyInfo(transaction, installedAppId, consumption)) {
        reportAllEnergyInfo(installedAppId, consumption);
    }
}

void Energy::EnergyInfoUpdated(const std::string& installedAppId) {
    HL_LOGI("EnergyInfoUpdated, need to get energy info with installed_app_id : %s", installedAppId.c_str());
    GetEnergyInfo(nullptr, installedAppId);
}

bool Energy::isQuit() const {
    if (_quit) {
        HL_LOGI("already quit. do nothing");
    }
    return _quit;
}

// ---- Consumption ----

bool Energy::getEnergyConsumption(const std::shared_ptr<CTransaction>& transaction, const std::string& installedAppId,
                                  Consumption& consumption) {
    if (isQuit()) {
        return false;
    }
    if (!parsingConsumpedEnergy(requestGetEnergyConsumption(installedAppId), consumption)) {
        HL_LOGE("fail to parsing consumped energy");
        report(transaction, false, installedAppId, JsonValue::CreateArray());
        return false;
    }
    return true;
}

std::string Energy::requestGetEnergyConsumption(const std::string& installedAppId) {
    JsonValue request = JsonValue::CreateObject();
    request.set("method", "GET");
    request.set("apiType", "ES_API");
    request.set("uri", kConsumptionUri);
    request.set("parameters", JsonValue::CreateObject());
    const std::string text = request.toString();
    HL_LOGI("json_str_request : %s", text.c_str());
    if (_quit) {
        return {};
    }
    std::string answer;
    const int ret = _agent.ExecuteInstalledApp(installedAppId, text, answer);
    HL_LOGI("ret : %d, json_str : %s", ret, answer.c_str());
    return answer;
}

bool Energy::parsingConsumpedEnergy(const std::string& text, Consumption& consumption) {
    return GuardedOr(false, [&] {
        const JsonValue document = JsonValue::Create(text);
        const JsonValue body = document["body"];
        if (!body.isArray()) {
            HL_LOGE("body is null");
            return false;
        }
        for (std::size_t i = 0; i < body.size(); ++i) {
            const JsonValue entry = body[i];
            const JsonValue energy = entry[kConsumedEnergy];
            consumption[entry["deviceId"].asString()] = energy.asInt();
        }
        // An entry that names no device.
        consumption.erase(std::string());
        return true;
    });
}

// ---- First stage ----

bool Energy::reportConsumedEnergyInfo(const std::shared_ptr<CTransaction>& transaction,
                                      const std::string& installedAppId, const Consumption& consumption) {
    if (!transaction) {
        HL_LOGI("sp_transaction is nullptr -> this is updated case, do not need report energy info only");
        return true;
    }
    const JsonValue info = makeConsumedEnergyJsonInfo(consumption);
    const bool isFound = info.size() > 0;
    report(transaction, isFound, installedAppId, info);
    return isFound;
}

JsonValue Energy::makeConsumedEnergyJsonInfo(const Consumption& consumption) {
    HL_LOGI("makeConsumedEnergyJsonInfo start device count : %zu", consumption.size());
    JsonValue info = JsonValue::CreateArray();
    for (const auto& [deviceId, consumedEnergy] : consumption) {
        info.append(MakeDeviceInfo(deviceId, consumedEnergy, false));
    }
    HL_LOGI("makeConsumedEnergyJsonInfo end");
    return info;
}

// ---- Second stage ----

void Energy::reportAllEnergyInfo(const std::string& installedAppId, const Consumption& consumption) {
    if (isQuit()) {
        return;
    }
    EnqueueOnScheduler(
        [self = shared_from_this(), installedAppId, consumption] { self->runSecondStage(installedAppId, consumption); },
        "reportAllEnergyInfo");
}

void Energy::runSecondStage(const std::string& installedAppId, const Consumption& consumption) {
    HL_LOGI("reportAllEnergyInfo() start, installed_app_id : %s", installedAppId.c_str());
    const JsonValue info = makeEnergyJsonInfo(consumption);
    if (isQuit()) {
        return;
    }
    // Tied to no request: that was answered by the first stage.
    report(nullptr, info.size() > 0, installedAppId, info);
    HL_LOGI("reportAllEnergyInfo() end, installed_app_id : %s", installedAppId.c_str());
}

JsonValue Energy::makeEnergyJsonInfo(const Consumption& consumption) {
    JsonValue info = JsonValue::CreateArray();
    for (const auto& [deviceId, consumedEnergy] : consumption) {
        if (isQuit()) {
            break;
        }
        const bool isSaving = requestBuildEnergySavingMode(deviceId, getDeviceStatus(deviceId));
        info.append(MakeDeviceInfo(deviceId, consumedEnergy, isSaving));
    }
    return info;
}

std::string Energy::getDeviceStatus(const std::string& deviceId) {
    std::string status;
    const int ret = _agent.GetCoreDeviceStatus(deviceId, status);
    if (ret != 0) {
        HL_LOGE("ret: %d", ret);
        return {};
    }
    return status;
}

// ---- Report ----

void Energy::report(const std::shared_ptr<CTransaction>& transaction, bool result, const std::string& installedAppId,
                    const JsonValue& info) {
    GetEnergyInfoParam param(transaction);
    param.result = result;
    param.installedServiceAppInfoJson = makeReportJson(installedAppId, info);
    Reporter::Report(param);
}

std::string Energy::makeReportJson(const std::string& installedAppId, const JsonValue& value) {
    return GuardedOr(std::string(), [&]() -> std::string {
        JsonValue report = JsonValue::CreateObject();
        report.set("installedAppId", installedAppId);
        report.set("energyInfoJson", value);
        return report.toString();
    });
}

}  // namespace VMFramework::HomeLoom

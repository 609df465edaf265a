// Carries out a routine's request, makes endpoints of visible routines, and reports their events.
#include "Homeloom/Routine/RoutineHandler.h"

#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CReporter.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CEndpointHelper.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

RoutineHandler::RoutineHandler(ITesselHandler& agent) : Handler("RoutineHandler"), _agent(agent) {}

void RoutineHandler::SetGetLocationsCallback(GetLocationsCallback callback) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _getLocationsCallback = std::move(callback);
}

void RoutineHandler::UpdateRoutineStatus(const std::shared_ptr<CTransaction>& transaction,
                                         const std::string& locationId, const std::string& routineId, bool enable) {
    HL_LOGI("location id : %s, routine id : %s, enable : %d", locationId.c_str(), routineId.c_str(), enable ? 1 : 0);
    UpdateRoutineStatusParam param(transaction);
    param.result =
        _agent.UpdateCoreRoutineStatus(locationId, routineId, enable, param.resultValue) == HOMELOOM_CLIENT_ERROR_NONE;
    Reporter::Report(param);
}

// What can't be read counts as not hidden.
bool RoutineHandler::isHidden(const std::string& routineJson) {
    try {
        const auto routine = json::JsonValue::Create(routineJson);
        if (routine.isNull()) {
            HL_LOGE("routine json parsing failed");
            return false;
        }
        const auto meta = routine["meta"];
        if (meta.isNull()) {
            HL_LOGE("meta in routine parsing failed");
            return false;
        }
        return meta["hidden"].asBool();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        return false;
    }
}

// ---- Endpoints ----

void RoutineHandler::throwIfQuit() const {
    if (IsQuit()) {
        throw CException("RoutineHandler Quit", kErrorQuit);
    }
}

RoutineHandler::JsonById RoutineHandler::getRoutineList(const std::string& locationId) {
    homeloom_core_rule_h* list = nullptr;
    int count = 0;
    const int ret = _agent.GetCoreRoutineList(locationId, list, count);
    const auto destroy = [this, count](homeloom_core_rule_h* rules) { _agent.DestroyCoreRoutineList(rules, count); };
    const std::unique_ptr<homeloom_core_rule_h, decltype(destroy)> owner(list, destroy);

    JsonById routines;
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        return routines;
    }
    for (int i = 0; list != nullptr && i < count; ++i) {
        throwIfQuit();
        std::string id;
        std::string json;
        if (_agent.GetCoreRoutineString(list[i], HOMELOOM_CORE_RULE_ID, id) != HOMELOOM_CLIENT_ERROR_NONE) {
            HL_LOGE("get routine string (routine_id) failed");
            continue;
        }
        if (_agent.GetCoreRoutineString(list[i], HOMELOOM_CORE_RULE_JSON, json) != HOMELOOM_CLIENT_ERROR_NONE) {
            HL_LOGE("get routine string (routine_json) failed");
            continue;
        }
        HL_LOGI("routine_id {%s}, routine_json {%s}", id.c_str(), json.c_str());
        if (!isHidden(json)) {
            routines[id] = std::move(json);
        }
    }
    return routines;
}

RoutineHandler::JsonById RoutineHandler::getRoutineMapInfo() {
    GetLocationsCallback getLocations;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        getLocations = _getLocationsCallback;
    }
    JsonById routines;
    if (!getLocations) {
        return routines;
    }
    for (const auto& location : getLocations()) {
        throwIfQuit();
        routines.merge(getRoutineList(location.first));
    }
    return routines;
}

std::string RoutineHandler::getRoutine(const std::string& locationId, const std::string& routineId) {
    homeloom_core_rule_h routine = nullptr;
    const int ret = _agent.GetCoreRoutine(locationId, routineId, routine);
    const auto destroy = [this](homeloom_core_rule_h record) { _agent.DestroyCoreSingleRoutine(record); };
    const std::unique_ptr<homeloom_core_rule_s, decltype(destroy)> owner(routine, destroy);
    std::string json;
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        return json;
    }
    if (_agent.GetCoreRoutineString(routine, HOMELOOM_CORE_RULE_JSON, json) != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("get routine string (routine_json) failed");
        json.clear();
    }
    return json;
}

void RoutineHandler::GetRoutineData(const std::shared_ptr<IEndpointListHelper>& list) {
    for (const auto& [id, json] : getRoutineMapInfo()) {
        throwIfQuit();
        const auto endpoint = IEndpointHelper::Create();
        endpoint->SetServiceName(Names::HOMELOOM);
        endpoint->SetInterfaceType(Names::HOMELOOM_ROUTINE);
        endpoint->SetDeviceType(Names::HOMELOOM_DUMMY);
        endpoint->SetDeviceId(id);
        endpoint->SetExtraData(Names::ROUTINE_JSON, json);
        list->Push(endpoint->GetHandle(), VMF_ERROR_NONE);
    }
}

// ---- Events ----

void RoutineHandler::HandleSSERoutine(const std::string& json) {
    const auto event = json::JsonValue::Create(json);
    const std::string lifecycle = event["lifecycle"].asString();
    if (lifecycle.find("MURMUR") != std::string::npos) {
        HL_LOGI("this is for MURMUR, do not handle here, will be removed later after server fixed");
        return;
    }
    const std::string locationId = event["locationId"].asString();
    if (locationId.empty()) {
        HL_LOGE("location_id is empty, do not proceed.");
        return;
    }
    const std::string routineId = event["ruleId"].asString();
    if (routineId.empty()) {
        HL_LOGE("routine_id is empty, do not proceed.");
        return;
    }
    if (lifecycle == Names::LIFECYCLE_CREATE) {
        routineCreated(locationId, routineId);
    } else if (lifecycle == Names::LIFECYCLE_UPDATE) {
        routineUpdated(locationId, routineId);
    } else if (lifecycle == Names::LIFECYCLE_DELETE) {
        routineDeleted(locationId, routineId);
    } else {
        HL_LOGE("do not handle lifecycle : %s", lifecycle.c_str());
    }
}

void RoutineHandler::routineCreated(const std::string& locationId, const std::string& routineId) {
    HL_LOGI("[routineCreated] location_id : %s, routine_id : %s", locationId.c_str(), routineId.c_str());
    CreateRoutineParam param(nullptr);
    param.routineJson = getRoutine(locationId, routineId);
    if (isHidden(param.routineJson)) {
        HL_LOGI("this routine id [%s] is hidden, do not proceed.", routineId.c_str());
        return;
    }
    param.result = true;
    param.locationId = locationId;
    param.routineId = routineId;
    Reporter::Report(param);
}

void RoutineHandler::routineUpdated(const std::string& locationId, const std::string& routineId) {
    HL_LOGI("[routineUpdated] location_id : %s, routine_id : %s", locationId.c_str(), routineId.c_str());
    UpdateRoutineParam param(nullptr);
    param.routineJson = getRoutine(locationId, routineId);
    if (isHidden(param.routineJson)) {
        HL_LOGI("this routine id [%s] is hidden, do not proceed.", routineId.c_str());
        return;
    }
    param.result = true;
    param.locationId = locationId;
    param.routineId = routineId;
    Reporter::Report(param);
}

// A hidden routine's deletion is reported all the same: what it was can no longer be read.
void RoutineHandler::routineDeleted(const std::string& locationId, const std::string& routineId) {
    HL_LOGI("[routineDeleted] location_id : %s, routine_id : %s", locationId.c_str(), routineId.c_str());
    DeleteRoutineParam param(nullptr);
    param.result = true;
    param.locationId = locationId;
    param.routineId = routineId;
    Reporter::Report(param);
}

}  // namespace VMFramework::HomeLoom

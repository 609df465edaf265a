// Carries out a routine's request, makes endpoints of visible routines, and reports their events.
#include "Homeloom/Routine/RoutineHandler.h"

#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

RoutineHandler::RoutineHandler(ITesselHandler& agent)
    : LocationRecords(agent, "RoutineHandler",
                      {"routine", Names::HOMELOOM_ROUTINE, Names::ROUTINE_JSON, "ruleId", HOMELOOM_CORE_RULE_ID,
                       HOMELOOM_CORE_RULE_JSON, &ITesselHandler::GetCoreRoutineList, &ITesselHandler::GetCoreRoutine,
                       &ITesselHandler::GetCoreRoutineString, &ITesselHandler::DestroyCoreRoutineList,
                       &ITesselHandler::DestroyCoreSingleRoutine}) {}

void RoutineHandler::UpdateRoutineStatus(const std::shared_ptr<CTransaction>& transaction,
                                         const std::string& locationId, const std::string& routineId, bool enable) {
    HL_LOGI("location id : %s, routine id : %s, enable : %d", locationId.c_str(), routineId.c_str(), enable ? 1 : 0);
    UpdateRoutineStatusParam param(transaction);
    param.result =
        _agent.UpdateCoreRoutineStatus(locationId, routineId, enable, param.resultValue) == HOMELOOM_CLIENT_ERROR_NONE;
    Reporter::Report(param);
}

// What can't be read counts as not hidden.
bool RoutineHandler::IsHidden(const std::string& routineJson) const {
    return GuardedOr(false, [&] {
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
    });
}

// ---- Endpoints and events ----

template <typename Param>
void RoutineHandler::reportVisible(const std::string& locationId, const std::string& routineId) {
    Param param(nullptr);
    param.routineJson = GetJson(locationId, routineId);
    if (IsHidden(param.routineJson)) {
        HL_LOGI("this routine id [%s] is hidden, do not proceed.", routineId.c_str());
        return;
    }
    param.result = true;
    param.locationId = locationId;
    param.routineId = routineId;
    Reporter::Report(param);
}

void RoutineHandler::Created(const std::string& locationId, const std::string& routineId) {
    HL_LOGI("[routineCreated] location_id : %s, routine_id : %s", locationId.c_str(), routineId.c_str());
    reportVisible<CreateRoutineParam>(locationId, routineId);
}

void RoutineHandler::Updated(const std::string& locationId, const std::string& routineId) {
    HL_LOGI("[routineUpdated] location_id : %s, routine_id : %s", locationId.c_str(), routineId.c_str());
    reportVisible<UpdateRoutineParam>(locationId, routineId);
}

// A hidden routine's deletion is reported all the same: what it was can no longer be read.
void RoutineHandler::Deleted(const std::string& locationId, const std::string& routineId) {
    HL_LOGI("[routineDeleted] location_id : %s, routine_id : %s", locationId.c_str(), routineId.c_str());
    DeleteRoutineParam param(nullptr);
    param.result = true;
    param.locationId = locationId;
    param.routineId = routineId;
    Reporter::Report(param);
}

}  // namespace VMFramework::HomeLoom

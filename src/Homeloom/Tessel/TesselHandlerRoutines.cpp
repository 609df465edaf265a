// Facade: routines, which the agent calls rules.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::GetCoreRoutineList(const std::string& locationId, homeloom_core_rule_h*& list, int& count) {
    return _AwaitList<GetRoutineListParam>({{locationId, "location_id is empty"}}, list, count,
                                           homeloom_core_get_rule_list_async, locationId, _CoreRoutineListCb);
}

int TesselHandler::GetCoreRoutine(const std::string& locationId, const std::string& routineId,
                                  homeloom_core_rule_h& routine) {
    return _AwaitRecord<GetRoutineParam>({{locationId, "location_id is empty"}, {routineId, "routine_id is empty"}},
                                         routine, homeloom_core_get_rule_async, locationId, routineId, _CoreRoutineCb);
}

int TesselHandler::UpdateCoreRoutineStatus(const std::string& locationId, const std::string& routineId, bool enable,
                                           std::string& resultJson) {
    return _AwaitText<UpdateCoreRoutineStatusParam>(
        {{locationId, "location_id is empty"}, {routineId, "routine_id is empty"}}, resultJson,
        homeloom_core_update_rule_status_async, locationId, routineId, enable, _CoreRoutineStatusCb);
}

int TesselHandler::GetCoreRoutineString(homeloom_core_rule_h routine, int field, std::string& value) {
    return _AccessText("routine_h is null", homeloom_core_rule_get_string, routine, field, value);
}

int TesselHandler::DestroyCoreRoutineList(homeloom_core_rule_h* list, int count) {
    return _DestroyList("routine_list_h is null", homeloom_core_rule_destroy, list, count);
}

int TesselHandler::DestroyCoreSingleRoutine(homeloom_core_rule_h routine) {
    return _Access("routine_h is null", homeloom_core_rule_destroy, routine);
}

}  // namespace VMFramework::HomeLoom

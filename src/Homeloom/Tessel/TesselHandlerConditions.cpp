// Facade: the conditions under which the agent launches an application.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::AppLaunchConditionCreate(homeloom_client_app_launch_condition_h* condition) {
    return _Call({{condition != nullptr, "condition_h is null"}}, homeloom_client_app_launch_condition_create,
                 condition);
}

int TesselHandler::AddAppLaunchCondition(homeloom_client_app_launch_condition_h condition) {
    return _Call({{condition != nullptr, "condition_h is null"}}, homeloom_client_add_app_launch_condition, condition);
}

int TesselHandler::RemoveAppLaunchCondition(homeloom_client_app_launch_condition_h condition) {
    return _Call({{condition != nullptr, "condition_h is null"}}, homeloom_client_remove_app_launch_condition,
                 condition);
}

int TesselHandler::IsAppLaunchConditionAdded(homeloom_client_app_launch_condition_h condition, bool& isAdded) {
    return _Call({{condition != nullptr, "condition_h is null"}}, homeloom_client_is_app_launch_condition_added,
                 condition, &isAdded);
}

int TesselHandler::AppLaunchConditionDestroy(homeloom_client_app_launch_condition_h* condition) {
    const homeloom_client_app_launch_condition_h record =
        condition != nullptr ? std::exchange(*condition, nullptr) : nullptr;
    return _Access("condition_h is null", homeloom_client_app_launch_condition_destroy, record);
}

int TesselHandler::AppLaunchConditionSetString(homeloom_client_app_launch_condition_h condition, int propertyId,
                                               const std::string& value) {
    return _Access("condition_h is null", homeloom_client_app_launch_condition_set_string, condition, propertyId,
                   value);
}

}  // namespace VMFramework::HomeLoom

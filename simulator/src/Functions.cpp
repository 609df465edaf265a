#include "Functions.h"

#include <map>
#include <memory>
#include <stdexcept>
#include <utility>

namespace simulator {

namespace {

const char* const names[] = {
    "homeloom_client_add_app_launch_condition",
    "homeloom_client_app_launch_condition_create",
    "homeloom_client_app_launch_condition_destroy",
    "homeloom_client_app_launch_condition_set_string",
    "homeloom_client_connect",
    "homeloom_client_device_destroy",
    "homeloom_client_device_detail_destroy",
    "homeloom_client_device_detail_get_int",
    "homeloom_client_device_detail_get_string",
    "homeloom_client_device_detail_get_string_array",
    "homeloom_client_device_get_string",
    "homeloom_client_disconnect",
    "homeloom_client_get_access_token",
    "homeloom_client_get_connected_user_id",
    "homeloom_client_get_device_detail_list",
    "homeloom_client_get_device_id",
    "homeloom_client_get_group_list",
    "homeloom_client_get_login_id",
    "homeloom_client_get_remote_attributes",
    "homeloom_client_get_remote_representation",
    "homeloom_client_get_state",
    "homeloom_client_get_third_party_notification_status",
    "homeloom_client_get_ui_metadata",
    "homeloom_client_group_destroy",
    "homeloom_client_group_get_string",
    "homeloom_client_internal_get_server_env",
    "homeloom_client_internal_set_server_env",
    "homeloom_client_is_app_launch_condition_added",
    "homeloom_client_is_signed_in",
    "homeloom_client_move_devices",
    "homeloom_client_refresh_device_information",
    "homeloom_client_remove_app_launch_condition",
    "homeloom_client_set_device_detail_list_updated_cb",
    "homeloom_client_set_device_list_updated_cb",
    "homeloom_client_set_group_list_updated_cb",
    "homeloom_client_set_remote_attributes",
    "homeloom_client_set_remote_representation",
    "homeloom_client_set_sign_in_state_changed_cb",
    "homeloom_client_set_third_party_notification",
    "homeloom_client_set_third_party_notification_status",
    "homeloom_client_set_third_party_notification_status_updated_cb",
    "homeloom_client_subscribe",
    "homeloom_client_unset_device_detail_list_updated_cb",
    "homeloom_client_unset_device_list_updated_cb",
    "homeloom_client_unset_group_list_updated_cb",
    "homeloom_client_unset_sign_in_state_changed_cb",
    "homeloom_client_unset_third_party_notification_status_updated_cb",
    "homeloom_client_unsubscribe",
    "homeloom_core_change_device_name",
    "homeloom_core_change_room_name_async",
    "homeloom_core_create_favorite",
    "homeloom_core_create_ir_device",
    "homeloom_core_create_room_async",
    "homeloom_core_create_scene_async",
    "homeloom_core_delete_device",
    "homeloom_core_delete_favorite",
    "homeloom_core_delete_favorites",
    "homeloom_core_delete_room_async",
    "homeloom_core_delete_scene_async",
    "homeloom_core_device_destroy",
    "homeloom_core_device_get_string",
    "homeloom_core_execute_device",
    "homeloom_core_execute_installed_app",
    "homeloom_core_execute_scene_async",
    "homeloom_core_favorite_destroy",
    "homeloom_core_favorite_get_int",
    "homeloom_core_favorite_get_string",
    "homeloom_core_get_all_location_users_async",
    "homeloom_core_get_catalog_app_list_async",
    "homeloom_core_get_device_capability_status",
    "homeloom_core_get_device_component_status",
    "homeloom_core_get_device_json_async",
    "homeloom_core_get_device_list_async",
    "homeloom_core_get_device_list_json_async",
    "homeloom_core_get_device_presentation",
    "homeloom_core_get_device_status",
    "homeloom_core_get_favorite_list_async",
    "homeloom_core_get_favorite_migration_status",
    "homeloom_core_get_hub_device_id_list",
    "homeloom_core_get_installed_app_dashboard_json_async_v2",
    "homeloom_core_get_installed_app_list_async",
    "homeloom_core_get_ir_device",
    "homeloom_core_get_location_list_async",
    "homeloom_core_get_location_users_async",
    "homeloom_core_get_notification_profile",
    "homeloom_core_get_rule_async",
    "homeloom_core_get_rule_list_async",
    "homeloom_core_get_scene_async",
    "homeloom_core_get_scene_icon_list_async",
    "homeloom_core_get_scene_list_async",
    "homeloom_core_get_wifilocker_user_setting",
    "homeloom_core_installed_app_destroy",
    "homeloom_core_installed_app_get_string",
    "homeloom_core_location_destroy",
    "homeloom_core_location_get_string",
    "homeloom_core_locksmith_create_keyvalue",
    "homeloom_core_locksmith_delete_keyvalue",
    "homeloom_core_locksmith_get_keyvalue",
    "homeloom_core_locksmith_update_keyvalue",
    "homeloom_core_notify_permission_update",
    "homeloom_core_replace_favorites",
    "homeloom_core_rule_destroy",
    "homeloom_core_rule_get_string",
    "homeloom_core_scene_destroy",
    "homeloom_core_scene_get_string",
    "homeloom_core_send_active_user_event",
    "homeloom_core_set_sse_cb",
    "homeloom_core_set_wifilocker_user_setting",
    "homeloom_core_start_hub_device_discover",
    "homeloom_core_stop_hub_device_discover",
    "homeloom_core_unset_sse_cb",
    "homeloom_core_update_favorite_migration_status",
    "homeloom_core_update_notification_profile",
    "homeloom_core_update_rule_status_async",
    "homeloom_core_update_scene_async",
    "norvane_svcmgr_request_boost",
    "norvane_svcmgr_set_update_status_cb",
    "norvane_svcmgr_unset_update_status_cb",
};

// Never destroyed: plug-ins may call as late as in the destructors of their own statics.
std::map<std::string, Function>& makeFunctions() {
    auto& functions = *new std::map<std::string, Function>;
    for (const char* name : names) {
        functions.emplace(std::piecewise_construct, std::forward_as_tuple(name), std::forward_as_tuple(name));
    }
    return functions;
}

struct Observers {
    using ByNumber = std::map<int, CallObserver>;

    std::atomic<bool> any{false};
    std::mutex mutex;
    std::shared_ptr<const ByNumber> byNumber = std::make_shared<const ByNumber>();
    int lastNumber = 0;

    // Whoever is telling them has the list of before.
    void change(const std::function<void(ByNumber&)>& change) {
        auto changed = std::make_shared<ByNumber>(*byNumber);
        change(*changed);
        any = !changed->empty();
        byNumber = std::move(changed);
    }
};

Observers& observers() {
    static Observers& observers = *new Observers;
    return observers;
}

void observe(const std::string& name, const std::vector<std::string>& arguments) {
    Observers& all = observers();
    if (!all.any) {
        return;
    }
    std::shared_ptr<const Observers::ByNumber> byNumber;
    {
        const std::lock_guard<std::mutex> lock(all.mutex);
        byNumber = all.byNumber;
    }
    for (const auto& [number, observer] : *byNumber) {
        observer(name, arguments);
    }
}

}  // namespace

Function::Function(std::string name) : _name(std::move(name)) {}

std::optional<Hit> Function::enter(std::vector<std::string> arguments) {
    ++_calls;
    observe(_name, arguments);
    if (!arguments.empty()) {
        const std::lock_guard<std::mutex> lock(_mutex);
        _arguments = std::move(arguments);
    }
    return _isFaulty ? takeFault() : std::nullopt;
}

std::optional<Hit> Function::takeFault() {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (!_fault || _fault->remaining == 0) {
        return std::nullopt;
    }
    if (_fault->skip > 0) {
        --_fault->skip;
        return std::nullopt;
    }
    if (_fault->remaining > 0) {
        --_fault->remaining;
    }
    return Hit{*_fault, _clearings};
}

void Function::hold(const Hit& hit) {
    std::unique_lock<std::mutex> lock(_mutex);
    const auto isCleared = [&] { return _clearings != hit.clearings; };
    if (hit.kind == Fault::Kind::Late) {
        ++_lateCallers;
        _released.wait_for(lock, hit.delay, isCleared);
        --_lateCallers;
    } else if (hit.kind == Fault::Kind::Never) {
        ++_stuckCallers;
        _released.wait(lock, isCleared);
        --_stuckCallers;
    }
}

std::optional<Hit> Function::enterHeld(std::vector<std::string> arguments) {
    auto fault = enter(std::move(arguments));
    if (fault) {
        hold(*fault);
    }
    return fault;
}

int Function::enterAndHold(std::vector<std::string> arguments) {
    const auto fault = enterHeld(std::move(arguments));
    return fault ? fault->code : 0;
}

void Function::setFault(const Fault& fault) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _fault = fault;
    _isFaulty = true;
}

void Function::clearFault() {
    const std::lock_guard<std::mutex> lock(_mutex);
    _fault.reset();
    _isFaulty = false;
    ++_clearings;
    _released.notify_all();
}

std::optional<Fault> Function::fault() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _fault && _fault->remaining == 0 ? std::nullopt : _fault;
}

Agent::Calls Function::calls() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    const unsigned traits = _traits;
    return {_calls, _arguments, (traits & HasCallback) != 0, (traits & AnswersText) != 0, (traits & AnswersList) != 0};
}

void Function::resetCalls() {
    const std::lock_guard<std::mutex> lock(_mutex);
    _calls = 0;
    _arguments.clear();
}

std::map<std::string, Function>& allFunctions() {
    static std::map<std::string, Function>& functions = makeFunctions();
    return functions;
}

Function& functionNamed(const std::string& name) {
    const auto found = allFunctions().find(name);
    if (found == allFunctions().end()) {
        throw std::invalid_argument("no function of the agent: " + name);
    }
    return found->second;
}

int addCallObserver(CallObserver observer) {
    Observers& all = observers();
    const std::lock_guard<std::mutex> lock(all.mutex);
    const int number = ++all.lastNumber;
    all.change([&](Observers::ByNumber& byNumber) { byNumber.emplace(number, std::move(observer)); });
    return number;
}

void removeCallObserver(int number) {
    Observers& all = observers();
    const std::lock_guard<std::mutex> lock(all.mutex);
    all.change([number](Observers::ByNumber& byNumber) { byNumber.erase(number); });
}

}  // namespace simulator

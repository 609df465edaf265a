// The agent's functions: rules, which the user knows as routines.
#include <algorithm>

#include <homeloom_core.h>

#include "../Calls.h"
#include "../Json.h"

using namespace simulator;

namespace {

SharedRecord ruleRecord(const Routine& routine) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CORE_RULE_ID, routine.id}, {HOMELOOM_CORE_RULE_JSON, routine.document}};
    return record;
}

auto findRoutine(World& world, const std::string& locationId, const std::string& id) {
    return std::find_if(world.home.routines.begin(), world.home.routines.end(),
                        [&](const Routine& routine) { return routine.id == id && routine.location == locationId; });
}

}  // namespace

int homeloom_core_get_rule_list_async(homeloom_client_h client, const char* location_id,
                                      homeloom_core_rule_list_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id}, Needs::SignIn);
    return answerList(call, callback, user_data, [locationId = Argument(location_id).text()](World& world) {
        Records records;
        for (const Routine& routine : world.home.routines) {
            if (routine.location == locationId) {
                records.push_back(ruleRecord(routine));
            }
        }
        return records;
    });
}

int homeloom_core_get_rule_async(homeloom_client_h client, const char* location_id, const char* rule_id,
                                 homeloom_core_rule_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, rule_id}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(), id = Argument(rule_id).text()](World& world) {
        const auto routine = findRoutine(world, locationId, id);
        return routine == world.home.routines.end() ? nullptr : ruleRecord(*routine);
    };
    return answerRecord(call, callback, user_data, work);
}

int homeloom_core_rule_get_string(homeloom_core_rule_h rule, int field, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, rule, field, value);
}

int homeloom_core_rule_destroy(homeloom_core_rule_h rule) {
    static Function& function = functionNamed(__func__);
    return destroy(function, rule);
}

int homeloom_core_update_rule_status_async(homeloom_client_h client, const char* location_id, const char* rule_id,
                                           bool enable, homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, rule_id, enable}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(), id = Argument(rule_id).text(), enable](World& world) {
        const auto routine = findRoutine(world, locationId, id);
        if (routine == world.home.routines.end()) {
            return failure(HOMELOOM_CLIENT_ERROR_NO_DATA, "no routine " + id);
        }
        routine->enabled = enable;
        json::value document = parsed(routine->document);
        if (document.is_object()) {
            document.get_object()["status"] = enable ? "Enabled" : "Disabled";
            routine->document = toText(document);
        }
        world.postEvent(HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE,
                        toText(json::object{{"lifecycle", "UPDATE"}, {"locationId", locationId}, {"ruleId", id}}));
        return success(routine->document);
    };
    return answerJson(call, callback, user_data, work);
}

// The agent's functions: app launch conditions.
#include <algorithm>
#include <tuple>

#include <homeloom_client.h>

#include "../Calls.h"

struct homeloom_client_app_launch_condition_s : simulator::LiveRecord {
    homeloom_client_app_launch_condition_s() : LiveRecord(nullptr) {}

    simulator::Agent::LaunchCondition values;
};

using namespace simulator;

namespace {

std::string* fieldOf(Agent::LaunchCondition& condition, int property) {
    switch (property) {
        case HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_APP_ID:
            return &condition.appId;
        case HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_DEVICE_ID:
            return &condition.deviceId;
        case HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_RESOURCE_URI:
            return &condition.uri;
        case HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_NAME:
            return &condition.property;
        case HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_TYPE:
            return &condition.type;
        case HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_PROPERTY_VALUE:
            return &condition.value;
        case HOMELOOM_CLIENT_APP_LAUNCH_CONDITION_BUNDLE:
            return &condition.bundle;
        default:
            return nullptr;
    }
}

auto tie(const Agent::LaunchCondition& c) {
    return std::tie(c.appId, c.deviceId, c.uri, c.property, c.type, c.value, c.bundle);
}

auto findEqual(std::vector<Agent::LaunchCondition>& conditions, const Agent::LaunchCondition& wanted) {
    return std::find_if(conditions.begin(), conditions.end(),
                        [&](const Agent::LaunchCondition& condition) { return tie(condition) == tie(wanted); });
}

/// A call that works on a condition; `work` takes the kept conditions and the place of an equal one.
template <class Work>
int withCondition(Function& function, homeloom_client_h client, homeloom_client_app_launch_condition_h condition,
                  Work work) {
    return Call(function, client, {}, Needs::Connection).now([&](World& world, Client&) -> int {
        if (condition == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        return work(world.conditions, findEqual(world.conditions, condition->values));
    });
}

}  // namespace

int homeloom_client_app_launch_condition_create(homeloom_client_h client,
                                                homeloom_client_app_launch_condition_h* condition) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {}, Needs::Handle).now([&](World&, Client&) {
        if (condition == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        *condition = new homeloom_client_app_launch_condition_s;
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_app_launch_condition_set_string(homeloom_client_app_launch_condition_h condition, int property_id,
                                                    const char* value) {
    static Function& function = functionNamed(__func__);
    if (const int code = function.enterAndHold({std::to_string(property_id), Argument(value).text()})) {
        return code;
    }
    std::string* field = condition == nullptr ? nullptr : fieldOf(condition->values, property_id);
    if (field == nullptr || value == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    *field = value;
    return HOMELOOM_CLIENT_ERROR_NONE;
}

int homeloom_client_add_app_launch_condition(homeloom_client_h client,
                                             homeloom_client_app_launch_condition_h condition) {
    static Function& function = functionNamed(__func__);
    return withCondition(function, client, condition, [&](auto& conditions, auto equal) {
        if (equal == conditions.end()) {
            conditions.push_back(condition->values);
        }
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_remove_app_launch_condition(homeloom_client_h client,
                                                homeloom_client_app_launch_condition_h condition) {
    static Function& function = functionNamed(__func__);
    return withCondition(function, client, condition, [](auto& conditions, auto equal) {
        if (equal == conditions.end()) {
            return HOMELOOM_CLIENT_ERROR_NO_DATA;
        }
        conditions.erase(equal);
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_is_app_launch_condition_added(homeloom_client_h client,
                                                  homeloom_client_app_launch_condition_h condition, bool* is_added) {
    static Function& function = functionNamed(__func__);
    return withCondition(function, client, condition, [&](auto& conditions, auto equal) {
        if (is_added == nullptr) {
            return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
        }
        *is_added = equal != conditions.end();
        return HOMELOOM_CLIENT_ERROR_NONE;
    });
}

int homeloom_client_app_launch_condition_destroy(homeloom_client_app_launch_condition_h condition) {
    static Function& function = functionNamed(__func__);
    if (const int code = function.enterAndHold()) {
        return code;
    }
    if (condition == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    delete condition;
    return HOMELOOM_CLIENT_ERROR_NONE;
}

#ifndef HOMELOOM_HOMELOOM_TESSEL_AGENTLIST_H
#define HOMELOOM_HOMELOOM_TESSEL_AGENTLIST_H

#include "Homeloom/Tessel/ITesselHandler.h"

namespace VMFramework::HomeLoom {

/// A list that a call of the facade fills, given back to the agent with the scope.
///
///     AgentList<homeloom_core_rule_h> rules(agent, &ITesselHandler::DestroyCoreRoutineList);
///     const int ret = agent.GetCoreRoutineList(locationId, rules.list, rules.count);
///     for (const homeloom_core_rule_h rule : rules) { ... }
///
/// A failed call may have filled it as well; one without records is empty, whatever its count says.
template <typename Record>
class AgentList {
public:
    using Destroy = int (ITesselHandler::*)(Record* list, int count);

    AgentList(ITesselHandler& agent, Destroy destroy) : _agent(agent), _destroy(destroy) {}
    ~AgentList() {
        if (list != nullptr && count >= 0) {
            (_agent.*_destroy)(list, count);
        }
    }
    AgentList(const AgentList&) = delete;
    AgentList& operator=(const AgentList&) = delete;

    const Record* begin() const { return list; }
    const Record* end() const { return list != nullptr && count > 0 ? list + count : list; }

    Record* list = nullptr;
    int count = 0;

private:
    ITesselHandler& _agent;
    const Destroy _destroy;
};

}  // namespace VMFramework::HomeLoom

#endif

#ifndef HOMELOOM_HOMELOOM_ROUTINE_ROUTINEHANDLER_H
#define HOMELOOM_HOMELOOM_ROUTINE_ROUTINEHANDLER_H

#include <memory>
#include <string>

#include <homeloom_core.h>

#include "Homeloom/Location/LocationRecords.h"

namespace VMFramework::HomeLoom {

/// Routines, which the agent calls rules: one request, the endpoints, and the events of the stream. Hidden routines
/// are kept from the user.
class RoutineHandler : public LocationRecords<homeloom_core_rule_h> {
public:
    explicit RoutineHandler(ITesselHandler& agent);

    void UpdateRoutineStatus(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                             const std::string& routineId, bool enable);

    /// One event of the stream. Throws when a member that it reads is no text.
    void HandleSSERoutine(const std::string& json) { HandleEvent(json); }
    /// Appends one endpoint for each routine of all locations that is not hidden. Throws CException when the handler
    /// quits.
    void GetRoutineData(const std::shared_ptr<IEndpointListHelper>& list) { AppendEndpoints(list); }

private:
    bool IsHidden(const std::string& json) const override;
    void Created(const std::string& locationId, const std::string& routineId) override;
    void Updated(const std::string& locationId, const std::string& routineId) override;
    void Deleted(const std::string& locationId, const std::string& routineId) override;
    template <typename Param>
    void reportVisible(const std::string& locationId, const std::string& routineId);
};

}  // namespace VMFramework::HomeLoom

#endif

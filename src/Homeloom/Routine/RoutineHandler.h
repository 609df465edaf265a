#ifndef HOMELOOM_HOMELOOM_ROUTINE_ROUTINEHANDLER_H
#define HOMELOOM_HOMELOOM_ROUTINE_ROUTINEHANDLER_H

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "Homeloom/Common/Handler.h"
#include "Homeloom/Location/CoreLocationInfo.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class IEndpointListHelper;
class ITesselHandler;

/// Routines, which the agent calls rules: one request, the endpoints, and the events of the stream. Hidden routines
/// are kept from the user. Holds no routine: every read goes to the agent and blocks on the facade.
class RoutineHandler : public Handler {
public:
    using GetLocationsCallback = std::function<std::unordered_map<std::string, core_location_info_struct>()>;

    explicit RoutineHandler(ITesselHandler& agent);

    void SetGetLocationsCallback(GetLocationsCallback callback);

    void UpdateRoutineStatus(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                             const std::string& routineId, bool enable);

    /// One event of the stream. Throws when a member that it reads is no text.
    void HandleSSERoutine(const std::string& json);
    /// Appends one endpoint for each routine of all locations that is not hidden. Throws CException when the handler
    /// quits.
    void GetRoutineData(const std::shared_ptr<IEndpointListHelper>& list);

private:
    using JsonById = std::unordered_map<std::string, std::string>;

    JsonById getRoutineList(const std::string& locationId);
    JsonById getRoutineMapInfo();
    std::string getRoutine(const std::string& locationId, const std::string& routineId);
    static bool isHidden(const std::string& routineJson);

    void routineCreated(const std::string& locationId, const std::string& routineId);
    void routineUpdated(const std::string& locationId, const std::string& routineId);
    void routineDeleted(const std::string& locationId, const std::string& routineId);
    void throwIfQuit() const;

    std::mutex _mutex;  // a leaf: guards the callback
    GetLocationsCallback _getLocationsCallback;
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif

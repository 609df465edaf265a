#ifndef HOMELOOM_HOMELOOM_LOCATION_LOCATIONHANDLER_H
#define HOMELOOM_HOMELOOM_LOCATION_LOCATIONHANDLER_H

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <homeloom_client.h>

#include "Common/Mutex.h"
#include "Homeloom/Common/Handler.h"
#include "Homeloom/Common/MainLoopTimer.h"
#include "Homeloom/Common/UpdateList.h"
#include "Homeloom/Location/CoreLocationInfo.h"

namespace VMFramework::HomeLoom {

class CTransaction;
class IEndpointListHelper;
class ITesselHandler;

/// Locations and their rooms: reads them from the agent, makes an endpoint of each location, carries out the room
/// requests, and has the home sent anew when the agent's groups change.
///
/// Holds nothing of the home: every read goes to the agent. Reads and requests block on the facade. To be
/// held by a shared_ptr, since jobs, the timer and the agent refer to it weakly.
class LocationHandler : public Handler, public std::enable_shared_from_this<LocationHandler> {
public:
    explicit LocationHandler(ITesselHandler& agent);
    ~LocationHandler() override;

    /// The ways into the session: reads the devices anew, sends the home, tells a location's favorites.
    void SetGetDevicesInfoCallback(std::function<bool()> callback);
    void SetProfileUpdateCallback(std::function<void(UpdateList)> callback);
    void SetGetFavoritesCallback(std::function<std::string(const std::string&)> callback);

    void SetGroupListUpdateCallback();
    void UnsetGroupListUpdateCallback();
    /// When it returns, the timer's callback is not running and will not run.
    void CleanUpTimer();
    /// An empty location id stands for all.
    int UpdatePermission(const std::string& locationId);

    /// The agent's groups, destroyed with the last reference. Both throw CException when they can't be read; a home
    /// without rooms gives null and 0.
    using GroupList = std::shared_ptr<homeloom_client_group_h>;
    GroupList GetLocationList(int& count);
    GroupList GetRoomList(int& count);
    /// Empty when there is none of that id, or the walk fails on the way to it.
    std::string GetLocationNameFromLocationID(const std::string& locationId, const GroupList& list, int count);
    std::string GetRoomNameFromRoomID(const std::string& roomId, const GroupList& list, int count);

    /// Appends one endpoint for each location. Throws CException when the rooms can't be read.
    void GetLocationData(const std::shared_ptr<IEndpointListHelper>& list);
    /// By id; empty on failure.
    std::unordered_map<std::string, core_location_info_struct> GetCoreLocations();
    // Part of the interface; no caller in the plug-in.
    std::unordered_map<std::string, std::string> GetLocations();

    /// The room requests. An empty argument gets no answer.
    void CreateRoom(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                    const std::string& roomName);
    void RemoveRoom(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                    const std::string& roomId);
    void ChangeRoomName(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                        const std::string& roomId, const std::string& roomName);
    /// 'deviceIds' are 'count' ids with commas between.
    void MoveDevices(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceIds, int count,
                     const std::string& locationId, const std::string& roomId);

private:
    static void _HomeLoomClientLocationListUpdated(int notiType, int groupType, homeloom_client_group_h* list,
                                                   int count, const char* id, void* userData);
    static void _HomeLoomClientMoveDevicesCompleted(int error, void* userData);
    static void _LocationTimerCallback(void* token);

    void handleLocationListUpdated();
    void reloadDevices();
    void* getToken();

    using NameById = std::vector<std::pair<std::string, std::string>>;
    NameById getLocation();
    std::unordered_map<std::string, std::string> getLocationIdOwnerMap();
    std::string getRoomInfo(const GroupList& rooms, int count, const std::string& locationId, int& roomCount);

    Mutex _mutex;  // a leaf: also over the timer's arming
    std::function<bool()> _getDevicesInfoCallback GUARDED_BY(_mutex);
    std::function<void(UpdateList)> _profileUpdateCallback GUARDED_BY(_mutex);
    std::function<std::string(const std::string&)> _getFavoritesCallback GUARDED_BY(_mutex);
    unsigned _locationTimerId GUARDED_BY(_mutex) = 0;  // 0 when none was armed since the last clean-up
    void* _token GUARDED_BY(_mutex) = nullptr;         // what the agent and GLib know of this handler
    MainLoopTimer _locationTimer;
    ITesselHandler& _agent;
};

}  // namespace VMFramework::HomeLoom

#endif

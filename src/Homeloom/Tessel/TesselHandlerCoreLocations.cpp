// Facade: core locations and rooms.
#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

int TesselHandler::GetCoreLocationList(homeloom_core_location_h*& list, int& count) {
    return _AwaitList<GetLocationListParam>({}, list, count, homeloom_core_get_location_list_async,
                                            _CoreLocationListCb);
}

int TesselHandler::GetCoreLocationString(homeloom_core_location_h location, int field, std::string& value) {
    return _AccessText("location_h is null", homeloom_core_location_get_string, location, field, value);
}

int TesselHandler::CoreLocationDestroy(homeloom_core_location_h* list, int count) {
    return _DestroyList("location_list_h is null", homeloom_core_location_destroy, list, count);
}

// The one blocking operation that does not look for a connection: without one it runs into the time limit.
int TesselHandler::GetCoreLocationUsers(const std::string& locationId, std::string& resultJson) {
    const Locked<FairMutex> lock(_mutex);
    TextReply reply;
    if (locationId.empty()) {
        reply = AsyncJob<GetAllLocationUsers>().Await(_contextRunning, homeloom_core_get_all_location_users_async,
                                                      _clientHandle.load(), _CoreGetAllLocationUsersCb);
    } else {
        reply = AsyncJob<GetLocationUsers>().Await(_contextRunning, homeloom_core_get_location_users_async,
                                                   _clientHandle.load(), locationId.c_str(), _CoreGetLocationUsersCb);
    }
    resultJson = std::move(reply.resultJson);
    HL_LOGI("ret: %d, error_message: %s", reply.ret, reply.errorMessage.c_str());
    return reply.ret;
}

int TesselHandler::CoreNotifyPermissionUpdate(const std::string& locationId) {
    return _Call({}, homeloom_core_notify_permission_update, locationId);
}

int TesselHandler::CreateCoreRoom(const std::string& locationId, const std::string& roomName, std::string& resultJson,
                                  std::string& errorMessage) {
    return _AwaitText<CreateCoreRoomParam>({{locationId, "location_id is empty"}, {roomName, "room_name is empty"}},
                                           resultJson, errorMessage, homeloom_core_create_room_async, locationId,
                                           roomName, _CoreCreateRoomCb);
}

int TesselHandler::ChangeCoreRoomName(const std::string& locationId, const std::string& roomId,
                                      const std::string& roomName, std::string& resultJson, std::string& errorMessage) {
    return _AwaitText<ChangeCoreRoomNameParam>(
        {{locationId, "location_id is empty"}, {roomId, "room_id is empty"}, {roomName, "room_name is empty"}},
        resultJson, errorMessage, homeloom_core_change_room_name_async, locationId, roomId, roomName,
        _CoreChangeRoomNameCb);
}

int TesselHandler::DeleteCoreRoom(const std::string& locationId, const std::string& roomId, std::string& resultJson,
                                  std::string& errorMessage) {
    return _AwaitText<DeleteCoreRoomParam>({{locationId, "location_id is empty"}, {roomId, "room_id is empty"}},
                                           resultJson, errorMessage, homeloom_core_delete_room_async, locationId,
                                           roomId, _CoreDeleteRoomCb);
}

}  // namespace VMFramework::HomeLoom

// Requests that change rooms, and the place of devices in them.
#include <VMFramework/JsonValue.h>

#include "Common/CReporter.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Common/MsgDispatcher.h"
#include "Homeloom/Common/UserTransactionData.h"
#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Tessel/ITesselHandler.h"

// The requests of rooms: each blocks its caller until the agent has answered.
namespace VMFramework::HomeLoom {

namespace {

// A missing argument is logged and not answered; a failure of the agent is answered.
bool IsThere(const std::string& argument, const char* complaint, const Log::Place& caller = HL_CALLER) {
    if (argument.empty()) {
        HL_LOG_AT(DLOG_ERROR, caller, "%s", complaint);
        return false;
    }
    return true;
}

void LogReply(int ret, const std::string& errorMessage, const std::string& response) {
    HL_LOGI("ret : %d, error_message : %s, response_json : %s", ret, errorMessage.c_str(), response.c_str());
}

std::string TextOfReply(const std::string& response, const char* member) {
    return GuardedOr(std::string(), [&]() -> std::string {
        const auto reply = json::JsonValue::Create(response);
        if (reply.isNull()) {
            HL_LOGE("parsing is failed.");
            return {};
        }
        return reply[member].asString();
    });
}

std::string getChangedRoomName(const std::string& response) {
    std::string name = TextOfReply(response, "name");
    HL_LOGI("changed_room_name : %s", name.c_str());
    return name;
}

RoomUpdatedParam MakeAnswer(const std::shared_ptr<CTransaction>& transaction, int ret, const char* name,
                            const char* resultKey, const std::string& locationId) {
    RoomUpdatedParam param(transaction);
    param.result = ret == HOMELOOM_CLIENT_ERROR_NONE;
    param.property_result = name;
    param.result_key = resultKey;
    param.locationId = locationId;
    return param;
}

void ReportMove(const std::shared_ptr<CTransaction>& transaction, bool result, const std::string& deviceIds,
                int count) {
    MoveDevicesParam param(transaction);
    param.result = result;
    param.devIds = deviceIds;
    param.devicesSize = count;
    Reporter::Report(param);
}

}  // namespace

void LocationHandler::CreateRoom(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                 const std::string& roomName) {
    if (!IsThere(locationId, "location_id is empty!") || !IsThere(roomName, "room_name is empty!")) {
        return;
    }
    std::string response;
    std::string errorMessage;
    const int ret = _agent.CreateCoreRoom(locationId, roomName, response, errorMessage);
    LogReply(ret, errorMessage, response);

    auto param = MakeAnswer(transaction, ret, Names::HL_CREATE_ROOM_RESULT, Names::CREATE_ROOM_RESULT, locationId);
    param.roomId = TextOfReply(response, "roomId");
    Reporter::Report(param);
}

void LocationHandler::RemoveRoom(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                 const std::string& roomId) {
    if (!IsThere(locationId, "location_id is empty!") || !IsThere(roomId, "room_id is empty!")) {
        return;
    }
    std::string response;
    std::string errorMessage;
    const int ret = _agent.DeleteCoreRoom(locationId, roomId, response, errorMessage);
    LogReply(ret, errorMessage, response);

    auto param = MakeAnswer(transaction, ret, Names::HL_REMOVE_ROOM_RESULT, Names::REMOVE_ROOM_RESULT, locationId);
    param.roomId = roomId;
    Reporter::Report(param);
}

void LocationHandler::ChangeRoomName(const std::shared_ptr<CTransaction>& transaction, const std::string& locationId,
                                     const std::string& roomId, const std::string& roomName) {
    if (!IsThere(locationId, "location_id is empty!") || !IsThere(roomId, "room_id is empty!") ||
        !IsThere(roomName, "room_name is empty!")) {
        return;
    }
    std::string response;
    std::string errorMessage;
    const int ret = _agent.ChangeCoreRoomName(locationId, roomId, roomName, response, errorMessage);
    LogReply(ret, errorMessage, response);

    auto param =
        MakeAnswer(transaction, ret, Names::HL_CHANGE_ROOM_NAME_RESULT, Names::CHANGE_ROOM_NAME_RESULT, locationId);
    param.roomId = roomId;
    param.roomName = getChangedRoomName(response);
    Reporter::Report(param);
}

void LocationHandler::MoveDevices(const std::shared_ptr<CTransaction>& transaction, const std::string& deviceIds,
                                  int count, const std::string& locationId, const std::string& roomId) {
    json::JsonValue info;
    info.set(Names::DEV_IDS, deviceIds);
    info.set(Names::DEVICES_SIZE, count);
    const std::string text = info.toString();
    HL_LOGI("devices_info : %s", text.c_str());

    void* const record =
        CallbackTokens::Keep(std::make_shared<UserTransactionDataWithExtra>(weak_from_this(), transaction, text));
    const int ret = _agent.MoveDevicesToOtherRoom(deviceIds, count, locationId, roomId,
                                                  _HomeLoomClientMoveDevicesCompleted, record);
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("Move Devices is failed ret : %d", ret);
        CallbackTokens::Take<UserTransactionDataWithExtra>(record);
        ReportMove(transaction, false, deviceIds, count);
    }
}

// On the agent's thread.
void LocationHandler::_HomeLoomClientMoveDevicesCompleted(int error, void* userData) {
    const auto record = CallbackTokens::Take<UserTransactionDataWithExtra>(userData);
    if (!record) {
        HL_LOGE("a move that nobody waits for is completed, result : %d", error);
        return;
    }
    const auto job = [error, record] {
        HL_LOGI("_HomeLoomClientMoveDevicesCompleted(): result : %d, devices_info : %s", error, record->extra.c_str());
        const auto info = json::JsonValue::Create(record->extra);
        ReportMove(record->transaction, error == HOMELOOM_CLIENT_ERROR_NONE, info[Names::DEV_IDS].asString(),
                   info[Names::DEVICES_SIZE].asInt());
    };
    Guarded([&] { EnqueueOnScheduler(job, "_HomeLoomClientMoveDevicesCompleted"); });
}

}  // namespace VMFramework::HomeLoom

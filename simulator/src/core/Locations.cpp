// The agent's functions: core locations, their users, and rooms.
#include <algorithm>

#include <homeloom_core.h>

#include "../Calls.h"
#include "../Json.h"

using namespace simulator;

namespace {

SharedRecord locationRecord(const Location& location) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CORE_LOCATION_ID, location.id},
                     {HOMELOOM_CORE_LOCATION_NAME, location.name},
                     {HOMELOOM_CORE_LOCATION_PERMISSION, location.permission}};
    return record;
}

json::object usersOf(const Location& location) {
    return {{"locationId", location.id},
            {"owner", {{"norvaneAccountId", location.ownerId}, {"name", location.ownerName}}}};
}

JsonAnswer noLocation(const std::string& id) {
    return failure(HOMELOOM_CLIENT_ERROR_NO_DATA, "no location " + id);
}

/// A room change: finds the room, lets `work` change its location's rooms, and tells the group callbacks.
JsonAnswer changeRoom(World& world, const std::string& locationId, const std::string& roomId,
                      const std::function<json::object(std::vector<Room>&, std::vector<Room>::iterator)>& work) {
    Location* location = world.home.location(locationId);
    if (location == nullptr) {
        return noLocation(locationId);
    }
    const auto room = std::find_if(location->rooms.begin(), location->rooms.end(),
                                   [&](const Room& candidate) { return candidate.id == roomId; });
    if (room == location->rooms.end()) {
        return failure(HOMELOOM_CLIENT_ERROR_NO_DATA, "no room " + roomId + " in location " + locationId);
    }
    const json::object reply = work(location->rooms, room);
    world.postGroups(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM, roomId);
    return success(toText(reply));
}

}  // namespace

int homeloom_core_get_location_list_async(homeloom_client_h client, homeloom_core_location_list_cb callback,
                                          void* user_data) {
    static Function& function = functionNamed(__func__);
    return answerList(Call(function, client, {}, Needs::SignIn), callback, user_data, [](World& world) {
        Records records;
        for (const Location& location : world.home.locations) {
            records.push_back(locationRecord(location));
        }
        return records;
    });
}

int homeloom_core_location_get_string(homeloom_core_location_h location, int field, char** value) {
    static Function& function = functionNamed(__func__);
    return getText(function, location, field, value);
}

int homeloom_core_location_destroy(homeloom_core_location_h location) {
    static Function& function = functionNamed(__func__);
    return destroy(function, location);
}

int homeloom_core_get_location_users_async(homeloom_client_h client, const char* location_id,
                                           homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id}, Needs::SignIn);
    return answerJson(call, callback, user_data, [id = Argument(location_id).text()](World& world) {
        const Location* location = world.home.location(id);
        return location == nullptr ? noLocation(id) : success(toText(usersOf(*location)));
    });
}

int homeloom_core_get_all_location_users_async(homeloom_client_h client, homeloom_core_json_cb callback,
                                               void* user_data) {
    static Function& function = functionNamed(__func__);
    return answerJson(Call(function, client, {}, Needs::SignIn), callback, user_data, [](World& world) {
        json::array all;
        for (const Location& location : world.home.locations) {
            all.push_back(usersOf(location));
        }
        return success(toText(all));
    });
}

int homeloom_core_notify_permission_update(homeloom_client_h client, const char* location_id) {
    static Function& function = functionNamed(__func__);
    return Call(function, client, {location_id}, Needs::Connection).now([&](World& world, Client&) {
        const bool isKnown = *location_id == '\0' || world.home.location(location_id) != nullptr;
        return isKnown ? HOMELOOM_CLIENT_ERROR_NONE : HOMELOOM_CLIENT_ERROR_NO_DATA;
    });
}

int homeloom_core_create_room_async(homeloom_client_h client, const char* location_id, const char* room_name,
                                    homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, room_name}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(), name = Argument(room_name).text()](World& world) {
        Location* location = world.home.location(locationId);
        if (location == nullptr) {
            return noLocation(locationId);
        }
        const Room room{world.newId("room"), name};
        location->rooms.push_back(room);
        world.postGroups(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM, room.id);
        return success(toText(json::object{{"roomId", room.id}, {"name", name}, {"locationId", locationId}}));
    };
    return answerJson(call, callback, user_data, work);
}

int homeloom_core_change_room_name_async(homeloom_client_h client, const char* location_id, const char* room_id,
                                         const char* room_name, homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, room_id, room_name}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(), roomId = Argument(room_id).text(),
                       name = Argument(room_name).text()](World& world) {
        return changeRoom(world, locationId, roomId, [&](std::vector<Room>&, std::vector<Room>::iterator room) {
            room->name = name;
            return json::object{{"roomId", roomId}, {"name", name}, {"locationId", locationId}};
        });
    };
    return answerJson(call, callback, user_data, work);
}

int homeloom_core_delete_room_async(homeloom_client_h client, const char* location_id, const char* room_id,
                                    homeloom_core_json_cb callback, void* user_data) {
    static Function& function = functionNamed(__func__);
    const Call call(function, client, {location_id, room_id}, Needs::SignIn);
    const auto work = [locationId = Argument(location_id).text(), roomId = Argument(room_id).text()](World& world) {
        const auto remove = [&](std::vector<Room>& rooms, std::vector<Room>::iterator room) {
            rooms.erase(room);
            world.leaveRoom(roomId);
            return json::object{{"roomId", roomId}, {"locationId", locationId}};
        };
        return changeRoom(world, locationId, roomId, remove);
    };
    return answerJson(call, callback, user_data, work);
}

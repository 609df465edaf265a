// Locations, rooms, scenes, routines and favorites: what the home shows of them, their requests, and their events.

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "CPluginMgr.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Favorite/FavoriteHandler.h"
#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Routine/RoutineHandler.h"
#include "Homeloom/Scene/SceneHandler.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "groups/SmallHome.h"
#include "support/Desk.h"

using namespace VMFramework::HomeLoom;
using homeloom::desktop::Fields;
using simulator::Fault;
using testing::HasSubstr;
using testing::IsEmpty;
namespace framework = homeloom::desktop::framework;

namespace {

/// The plug-in, started over a small home, with its list sent.
class GroupsTest : public testing::Test {
protected:
    GroupsTest() { desk.startAndShow(); }

    std::string Ask(const std::string& name, const Fields& arguments) const {
        return toText(*desk.ask(name, arguments));
    }

    /// What a handler puts on an endpoint list.
    Desk::ReportPtr Endpoints(const std::function<void(const std::shared_ptr<IEndpointListHelper>&)>& fill) {
        desk.mark();
        const auto list = IEndpointListHelper::Create();
        fill(list);
        CPluginMgr::GetInstance().ReportDeviceList(list);
        return desk.waitForReport(
            "a list", [](const auto& report) { return report.kind == framework::Report::Kind::DeviceList; });
    }

    Desk desk{test::SmallHome()};
    simulator::Agent& agent = desk.agent;
};

/// "SERVICE INTERFACE DEVICE-TYPE KEY=VALUE ..."
std::string Endpoint(const Desk::Report& list, const std::string& id) {
    const auto* const entry = list.endpoint(id);
    if (entry == nullptr) {
        return "none";
    }
    return entry->serviceName.value_or("") + " " + entry->interfaceType.value_or("") + " " +
           entry->deviceType.value_or("") + " " + toText(entry->extraData);
}

std::unordered_map<std::string, core_location_info_struct> BothLocations() {
    return {{"flat", {"flat", "Flat", "rw"}}, {"lodge", {"lodge", "Lodge", "r"}}};
}

constexpr char kRooms[] = R"([{"room_id":"kitchen","room_name":"Kitchen"},{"room_id":"bath","room_name":"Bath"}])";
const std::string kFavorites =
    R"([{"favorite_id":"favorite-1","location_id":"flat","member_id":"washer","member_type":"DEVICE",)"
    R"("create_date":"2024-01-01","last_update_date":"2024-01-02","order":1},)"
    R"({"favorite_id":"favorite-2","location_id":"flat","member_id":"scene-evening","member_type":"SCENE",)"
    R"("create_date":"2024-01-03","last_update_date":"2024-01-04","order":2}])";

TEST_F(GroupsTest, TheHomeShowsLocationsScenesAndRoutines) {
    const auto home = desk.waitForReport("the home", [](const auto& list) { return list.endpoint("flat") != nullptr; });
    const std::pair<const char*, std::string> entries[] = {
        {"flat",
         "homeloom  homeloom-dummy location_id='flat' location_name='Flat' location_owner_name='' "
         "location_is_owner=true location_permission='rw' room_count=2 room_info='" +
             std::string(kRooms) + "' favorite_info_array='" + kFavorites + "'"},
        {"lodge",
         "homeloom  homeloom-dummy location_id='lodge' location_name='Lodge' location_owner_name='Noah' "
         "location_is_owner=false location_permission='r' room_count=0 room_info='[]' favorite_info_array=''"},
        {"scene-arrive",
         R"(homeloom homeloom-scene homeloom-dummy scene_json_data='{"id":"scene-arrive","name":"Arrive"}')"},
        {"scene-evening",
         R"(homeloom homeloom-scene homeloom-dummy scene_json_data='{"id":"scene-evening","name":"Evening"}')"},
        {"routine-frost",
         "homeloom homeloom-routine homeloom-dummy "
         R"(routine_json='{"id":"routine-frost","meta":{"hidden":false}}')"},
        {"routine-wake",
         R"(homeloom homeloom-routine homeloom-dummy routine_json='{"id":"routine-wake","name":"Wake"}')"},
        {"routine-secret", "none"},
    };
    for (const auto& [id, entry] : entries) {
        EXPECT_EQ(Endpoint(*home, id), entry);
    }
}

TEST_F(GroupsTest, AReadThatFailsLeavesTheOthers) {
    const auto location = std::make_shared<LocationHandler>(TesselHandler::GetInstance());
    SceneHandler scenes(TesselHandler::GetInstance());
    RoutineHandler routines(TesselHandler::GetInstance());
    scenes.SetGetLocationsCallback(BothLocations);
    routines.SetGetLocationsCallback(BothLocations);
    const auto fill = [&](const std::shared_ptr<IEndpointListHelper>& list) {
        location->GetLocationData(list);
        scenes.GetSceneData(list);
        routines.GetRoutineData(list);
    };
    const auto once = [](int after) { return Fault::fail(-5).after(after).times(1); };
    const struct {
        const char* function;
        Fault fault;
        std::size_t endpoints;
        const char* flatRooms;
        int flatRoomCount;
        const char* flatPermission;
        const char* lodgeOwner;
    } cases[] = {
        {"homeloom_client_group_get_string", once(2), 5, kRooms, 2, "rw", ""},  // the lodge's id
        {"homeloom_client_group_get_string", once(4), 6, "", 0, "rw", "Noah"},  // the first room's parent
        {"homeloom_client_group_get_string", once(9), 6, "", 1, "rw", "Noah"},  // the second room's name
        {"homeloom_core_location_get_string", once(1), 6, kRooms, 2, "", "Noah"},
        {"homeloom_core_location_get_string", once(2), 6, kRooms, 2, "", "Noah"},
        {"homeloom_core_get_location_list_async", Fault::answer(-5), 6, kRooms, 2, "", "Noah"},
        {"homeloom_core_get_all_location_users_async", Fault::answer(-5), 6, kRooms, 2, "rw", ""},
        {"homeloom_core_scene_get_string", once(0), 5, kRooms, 2, "rw", "Noah"},
        {"homeloom_core_scene_get_string", once(1), 5, kRooms, 2, "rw", "Noah"},
        {"homeloom_core_get_scene_list_async", Fault::answer(-5).times(1), 5, kRooms, 2, "rw", "Noah"},
        {"homeloom_core_rule_get_string", once(0), 5, kRooms, 2, "rw", "Noah"},
        {"homeloom_client_get_group_list", Fault::fail(-61).times(1), 6, "[]", 0, "rw", "Noah"},  // no rooms
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.function);
        agent.fault(row.function, row.fault);
        const auto list = Endpoints(fill);
        agent.clearFaults();
        EXPECT_EQ(row.endpoints, list->endpoints.size());
        const auto* const flat = list->endpoint("flat");
        ASSERT_NE(nullptr, flat);
        EXPECT_EQ(row.flatRooms, flat->extraData.text("room_info"));
        EXPECT_EQ(row.flatRoomCount, flat->extraData.number("room_count"));
        EXPECT_EQ(row.flatPermission, flat->extraData.text("location_permission"));
        if (const auto* const lodge = list->endpoint("lodge")) {
            EXPECT_EQ(row.lodgeOwner, lodge->extraData.text("location_owner_name"));
            EXPECT_EQ(*row.lodgeOwner == '\0', lodge->extraData.flag("location_is_owner"));
        }
    }

    // Without its rooms a location's picture would be wrong: nothing is sent.
    agent.fault("homeloom_client_get_group_list", Fault::fail(-5));
    EXPECT_THROW(location->GetLocationData(IEndpointListHelper::Create()), std::domain_error);
    agent.clearFaults();

    // A location that is listed twice is one location.
    simulator::Home twice = test::SmallHome();
    twice.locations.push_back(twice.locations[1]);
    agent.load(twice);
    EXPECT_EQ(2U, Endpoints([&](const auto& list) { location->GetLocationData(list); })->endpoints.size());

    location->Quit();
    scenes.Quit();
    routines.Quit();
    EXPECT_TRUE(Endpoints([&](const auto& list) { location->GetLocationData(list); })->endpoints.empty());
    EXPECT_THROW(scenes.GetSceneCount(), std::domain_error);
    EXPECT_THROW(routines.GetRoutineData(IEndpointListHelper::Create()), std::domain_error);
}

TEST_F(GroupsTest, NamesAreFoundByIdOrAreEmpty) {
    const auto handler = std::make_shared<LocationHandler>(TesselHandler::GetInstance());
    int roomCount = 0;
    int locationCount = 0;
    const auto rooms = handler->GetRoomList(roomCount);
    const auto locations = handler->GetLocationList(locationCount);
    EXPECT_EQ("Bath", handler->GetRoomNameFromRoomID("bath", rooms, roomCount));
    EXPECT_EQ("Lodge", handler->GetLocationNameFromLocationID("lodge", locations, locationCount));
    EXPECT_EQ("", handler->GetRoomNameFromRoomID("attic", rooms, roomCount));
    EXPECT_EQ("", handler->GetRoomNameFromRoomID("", rooms, roomCount));
    EXPECT_EQ("", handler->GetRoomNameFromRoomID("bath", nullptr, 0));
    agent.fault("homeloom_client_group_get_string", Fault::fail(-5));
    EXPECT_EQ("", handler->GetLocationNameFromLocationID("lodge", locations, locationCount));
    agent.fault("homeloom_client_get_group_list", Fault::fail(-61));
    EXPECT_EQ(nullptr, handler->GetRoomList(roomCount));
    EXPECT_EQ(0, roomCount);
    EXPECT_THROW(handler->GetLocationList(locationCount), std::domain_error);
}

TEST_F(GroupsTest, RequestsAreAnsweredAsTheAgentAnswers) {
    // The answer of a good agent, and that of a failing one.
    const struct {
        const char* request;
        Fields arguments;
        const char* function;  // of the agent
        std::string good, failed;
    } cases[] = {
        {"hl_create_room",
         {{"location_id", "flat"}, {"room_name", "Attic"}},
         "homeloom_core_create_room_async",
         "notify hl_create_room_result create_room_result=true location_id='flat' room_id='room-new-1'",
         "notify hl_create_room_result create_room_result=false location_id='flat'"},
        {"hl_change_room_name",
         {{"location_id", "flat"}, {"room_id", "bath"}, {"room_name", "Spa"}},
         "homeloom_core_change_room_name_async",
         "notify hl_change_room_name_result change_room_name_result=true location_id='flat' room_id='bath'",
         "notify hl_change_room_name_result change_room_name_result=false location_id='flat' room_id='bath'"},
        {"hl_remove_room",
         {{"location_id", "flat"}, {"room_id", "bath"}},
         "homeloom_core_delete_room_async",
         "notify hl_remove_room_result remove_room_result=true location_id='flat' room_id='bath'",
         "notify hl_remove_room_result remove_room_result=false location_id='flat' room_id='bath'"},
        {"hl_move_devices",
         {{"devices_size", 1}, {"dev_ids", "washer"}, {"location_id", "flat"}, {"room_id", "bath"}},
         "homeloom_client_move_devices",
         "notify hl_move_devices move_devices_result=true dev_ids='washer' devices_size=1",
         "notify hl_move_devices move_devices_result=false dev_ids='washer' devices_size=1"},
        {"hl_execute_scene",
         {{"location_id", "flat"}, {"scene_id", "scene-evening"}},
         "homeloom_core_execute_scene_async",
         "notify hl_execute_scene result=true location_id='flat' scene_id='scene-evening' "
         R"(result_value='{"id":"scene-evening","result":"Success"}')",
         "notify hl_execute_scene result=false location_id='flat' scene_id='scene-evening'"},
        {"hl_create_scene",
         {{"location_id", "flat"}, {"scene_json", R"({"name":"Tea"})"}},
         "homeloom_core_create_scene_async",
         "notify hl_create_scene result=true location_id='flat' scene_id='scene-new-1' "
         R"(scene_json='{"id":"scene-new-1","name":"Tea"}')",
         "notify hl_create_scene result=false location_id='flat'"},
        {"hl_update_scene",
         {{"location_id", "flat"}, {"scene_id", "scene-evening"}, {"scene_json", R"({"name":"Tea"})"}},
         "homeloom_core_update_scene_async",
         "notify hl_update_scene result=true location_id='flat' scene_id='scene-evening' "
         R"(scene_json='{"id":"scene-evening","name":"Tea"}')",
         "notify hl_update_scene result=false location_id='flat'"},
        {"hl_delete_scene",
         {{"location_id", "flat"}, {"scene_id", "scene-evening"}},
         "homeloom_core_delete_scene_async",
         "notify hl_delete_scene result=true location_id='flat' scene_id='scene-evening'",
         "notify hl_delete_scene result=false location_id='flat'"},
        {"hl_get_scene_icon_info",
         {},
         "homeloom_core_get_scene_icon_list_async",
         R"(notify hl_get_scene_icon_info result=true scene_icon_info='{"icons":[]}')",
         "notify hl_get_scene_icon_info result=false"},
        {"hl_update_routine_enable_status",
         {{"location_id", "flat"}, {"routine_id", "routine-wake"}, {"enable", false}},
         "homeloom_core_update_rule_status_async",
         "notify hl_update_routine_enable_status result=true "
         R"(result_value='{"id":"routine-wake","name":"Wake","status":"Disabled"}')",
         "notify hl_update_routine_enable_status result=false"},
        {"hl_get_favorite",
         {{"location_id", "flat"}},
         "homeloom_core_get_favorite_list_async",
         "notify hl_get_favorite get_favorite_result=true location_id='flat' favorite_size=2 favorite_info_array='" +
             kFavorites + "'",
         "notify hl_get_favorite get_favorite_result=false location_id='flat' favorite_size=0"},
        {"hl_create_favorite",
         {{"location_id", "flat"}, {"favorite_info", R"({"memberId":"lamp","memberType":"DEVICE","order":3})"}},
         "homeloom_core_create_favorite",
         "notify hl_create_favorite create_favorite_result=true location_id='flat' favorite_info='"
         R"({"favorite_id":"favorite-new-1","location_id":"flat","member_id":"lamp","member_type":"DEVICE",)"
         R"("create_date":"2024-05-01T09:00:00Z","last_update_date":"2024-05-01T09:00:00Z","order":3}')",
         "notify hl_create_favorite create_favorite_result=false location_id='flat'"},
        {"hl_delete_favorite",
         {{"location_id", "flat"}, {"favorite_id", "favorite-1"}},
         "homeloom_core_delete_favorite",
         "notify hl_delete_favorite delete_favorite_result=true location_id='flat' favorite_id='favorite-1'",
         "notify hl_delete_favorite delete_favorite_result=false location_id='flat' favorite_id='favorite-1'"},
        {"hl_delete_favorite",
         {{"location_id", "flat"}},
         "homeloom_core_delete_favorites",
         "notify hl_delete_favorite delete_favorite_result=true location_id='flat'",
         "notify hl_delete_favorite delete_favorite_result=false location_id='flat'"},
        {"hl_replace_favorite_list",
         {{"location_id", "flat"}, {"favorite_info_array", R"([{"memberId":"lamp"}])"}},
         "homeloom_core_replace_favorites",
         "notify hl_replace_favorite_list replace_favorite_result=true location_id='flat'",
         "notify hl_replace_favorite_list replace_favorite_result=false location_id='flat'"},
        {"hl_get_favorite_migration_status",
         {{"location_id", "flat"}},
         "homeloom_core_get_favorite_migration_status",
         "notify hl_get_favorite_migration_status get_favorite_migration_status_result=true location_id='flat' "
         "isMigrated=true lastUpdatedDate='2024-04-01' deviceModel='TV-A'",
         "notify hl_get_favorite_migration_status get_favorite_migration_status_result=false location_id='flat' "
         "isMigrated=false"},
        {"hl_update_favorite_migration_status",
         {{"location_id", "flat"}, {"favorite_migration_status_info", R"({"isMigrated":false})"}},
         "homeloom_core_update_favorite_migration_status",
         "notify hl_update_favorite_migration_status update_favorite_migration_status_result=true location_id='flat' "
         R"(favorite_migration_status_info='{"isMigrated":false}' )"
         R"(status_result='{"isMigrated":false,"lastUpdatedDate":"2024-05-01T09:00:00Z"}')",
         "notify hl_update_favorite_migration_status update_favorite_migration_status_result=false location_id='flat' "
         R"(favorite_migration_status_info='{"isMigrated":false}')"},
    };
    for (const auto& row : cases) {
        agent.load(test::SmallHome());
        agent.fault(row.function, Fault::answer(-5));
        EXPECT_EQ(Ask(row.request, row.arguments), row.failed) << row.function;
        agent.clearFaults();
        EXPECT_EQ(Ask(row.request, row.arguments), row.good);
    }
}

TEST_F(GroupsTest, WhatTheSceneDidDecidesAndNotTheCode) {
    simulator::Home home = test::SmallHome();
    home.scenes[0].actions = {{"nobody", {"/a", "b", "1"}}};
    agent.load(home);
    EXPECT_EQ(Ask("hl_execute_scene", {{"location_id", "flat"}, {"scene_id", "scene-evening"}}),
              "notify hl_execute_scene result=false location_id='flat' scene_id='scene-evening' "
              R"(result_value='{"id":"scene-evening","result":"Failure"}')");
}

TEST_F(GroupsTest, AnEmptyRoomArgumentGetsNoAnswer) {
    desk.mark();
    framework::request("hl_create_room", {{"location_id", "flat"}});
    framework::request("hl_create_room", {{"room_name", "Attic"}});
    framework::request("hl_remove_room", {{"location_id", "flat"}});
    framework::request("hl_change_room_name", {{"location_id", "flat"}, {"room_id", "bath"}});
    desk.settle();
    EXPECT_THAT(desk.lines(), IsEmpty());
    EXPECT_EQ(0, agent.callCount("homeloom_core_create_room_async"));
}

TEST_F(GroupsTest, AMoveThatCannotBeAskedForIsAnsweredAtOnce) {
    const auto move = [&](const std::string& ids, int count) {
        return Ask("hl_move_devices",
                   {{"devices_size", count}, {"dev_ids", ids}, {"location_id", "flat"}, {"room_id", ""}});
    };
    const std::string tooLong(40, 'x');
    const std::vector<std::pair<std::string, int>> lies = {
        {"washer", 2}, {"washer", 0}, {"washer", -3}, {",washer", 2}, {tooLong, 1}};
    for (const auto& [ids, count] : lies) {
        EXPECT_EQ(move(ids, count), "notify hl_move_devices move_devices_result=false dev_ids='" + ids +
                                        "' devices_size=" + std::to_string(count));
    }
    EXPECT_EQ(move("", 1), "notify hl_move_devices move_devices_result=false devices_size=1");
    EXPECT_EQ(0, agent.callCount("homeloom_client_move_devices"));

    // A second answer of the agent finds nobody.
    agent.fault("homeloom_client_move_devices", Fault::twice());
    desk.mark();
    const std::string answer = move("washer", 1);
    EXPECT_EQ(answer, "notify hl_move_devices move_devices_result=true dev_ids='washer' devices_size=1");
    EXPECT_TRUE(desk.log.waitFor("a move that nobody waits for"));
    desk.settle();
    EXPECT_THAT(desk.lines(), testing::Contains(answer).Times(1));
}

TEST_F(GroupsTest, AFavoriteThatCannotBeReadIsLeftOutOfTheText) {
    for (int field = 0; field < 7; ++field) {
        const bool isOrder = field == 6;
        agent.fault(isOrder ? "homeloom_core_favorite_get_int" : "homeloom_core_favorite_get_string",
                    Fault::fail(-5).after(isOrder ? 0 : field).times(1));
        // The size is the agent's count.
        EXPECT_EQ(Ask("hl_get_favorite", {{"location_id", "flat"}}),
                  "notify hl_get_favorite get_favorite_result=true location_id='flat' favorite_size=2 "
                  "favorite_info_array='[" +
                      kFavorites.substr(kFavorites.find(R"({"favorite_id":"favorite-2")")) + "'");
        agent.clearFaults();
    }
    // No data is no error.
    agent.fault("homeloom_core_get_favorite_list_async", Fault::answer(-61));
    EXPECT_EQ(Ask("hl_get_favorite", {{"location_id", "lodge"}}),
              "notify hl_get_favorite get_favorite_result=true location_id='lodge' favorite_size=0");
    FavoriteHandler favorites(TesselHandler::GetInstance());
    EXPECT_EQ("", favorites.GetFavoriteData("flat"));
    EXPECT_EQ("", favorites.GetFavoriteData(""));
}

TEST_F(GroupsTest, EventsOfTheStreamBecomeUpdates) {
    constexpr int kScene = HOMELOOM_CORE_SSE_SCENE_LIFECYCLE;
    constexpr int kRoutine = HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE;
    // One event, and the update that it causes, if any.
    const struct {
        int kind;
        const char* json;
        std::vector<std::string> updates;
    } cases[] = {
        {kScene,
         R"({"lifecycle":"CREATE","locationId":"flat","sceneId":"scene-evening"})",
         {"notify hl_create_scene result=true location_id='flat' scene_id='scene-evening' "
          R"(scene_json='{"id":"scene-evening","name":"Evening"}')"}},
        {kScene,
         R"({"lifecycle":"UPDATE","locationId":"flat","sceneId":"gone"})",
         {"notify hl_update_scene result=true location_id='flat' scene_id='gone'"}},
        {kScene,
         R"({"lifecycle":"DELETE","locationId":"flat","sceneId":"scene-evening"})",
         {"notify hl_delete_scene result=true location_id='flat' scene_id='scene-evening'"}},
        {kScene, R"({"lifecycle":"MURMUR_CREATE","locationId":"flat","sceneId":"scene-evening"})", {}},
        {kScene, R"({"lifecycle":"CREATE","sceneId":"scene-evening"})", {}},
        {kScene, R"({"lifecycle":"CREATE","locationId":"flat"})", {}},
        {kScene, R"({"lifecycle":"EXECUTE","locationId":"flat","sceneId":"scene-evening"})", {}},
        {kScene, R"({"lifecycle":{},"locationId":[],"sceneId":1})", {}},
        {kScene, "{", {}},
        {kRoutine,
         R"({"lifecycle":"CREATE","locationId":"flat","ruleId":"routine-wake"})",
         {"notify hl_create_routine result=true location_id='flat' routine_id='routine-wake' "
          R"(routine_json='{"id":"routine-wake","name":"Wake"}')"}},
        {kRoutine,
         R"({"lifecycle":"UPDATE","locationId":"lodge","ruleId":"routine-frost"})",
         {"notify hl_update_routine result=true location_id='lodge' routine_id='routine-frost' "
          R"(routine_json='{"id":"routine-frost","meta":{"hidden":false}}')"}},
        {kRoutine, R"({"lifecycle":"CREATE","locationId":"flat","ruleId":"routine-secret"})", {}},
        {kRoutine, R"({"lifecycle":"UPDATE","locationId":"flat","ruleId":"routine-secret"})", {}},
        {kRoutine,
         R"({"lifecycle":"DELETE","locationId":"flat","ruleId":"routine-secret"})",
         {"notify hl_delete_routine result=true location_id='flat' routine_id='routine-secret'"}},
        {kRoutine, R"({"lifecycle":"MURMUR","locationId":"flat","ruleId":"routine-wake"})", {}},
        {kRoutine, R"({"lifecycle":"DELETE","locationId":"flat","sceneId":"routine-wake"})", {}},
    };
    desk.settle();
    for (const auto& [kind, json, updates] : cases) {
        desk.mark();
        agent.sendEvent(kind, json);
        desk.settle();
        EXPECT_EQ(desk.lines(), updates) << json;
    }
}

TEST_F(GroupsTest, ABurstOfGroupChangesEndsInOneReload) {
    agent.sendGroupChange(0, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
    ASSERT_TRUE(desk.log.waitFor("skip group noti_type_default"));
    desk.mark();
    // Where the main loop stands still, the timer can't go off by itself.
    desk.loop.call([&] {
        for (int change = 0; change < 3; ++change) {
            agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
        }
        agent.renameRoom("bath", "Spa");
        // Each change takes away the timer of the one before.
        desk.waitUntil("the last change",
                       [&] { return desk.log.count("[_HomeLoomClientLocationListUpdated] after job") == 4; });
        EXPECT_EQ(1, desk.armedTimers());
        desk.fireTimer();
    });
    const auto home = desk.waitForReport("the home", [](const auto& list) { return list.endpoint("flat") != nullptr; });
    EXPECT_THAT(Endpoint(*home, "flat"), HasSubstr(R"("room_name":"Spa")"));
    EXPECT_EQ(1, desk.log.count("_LocationTimerCallback() start"));
    EXPECT_EQ(1, desk.log.count("profileUpdate will be called"));

    // The spent timer is cleaned up by the next change, without a word of GLib.
    desk.log.clear();
    agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
    EXPECT_TRUE(desk.log.waitFor("already has timer, remove previous one"));
}

TEST_F(GroupsTest, ATimerOutlivesItsHandlerWithoutHarm) {
    auto handler = std::make_shared<LocationHandler>(TesselHandler::GetInstance());
    bool isCalled = false;
    handler->SetGetDevicesInfoCallback([&] { return isCalled = true; });
    handler->SetGroupListUpdateCallback();
    desk.loop.call([&] {
        agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION);
        desk.waitUntil("the timer", [&] { return desk.armedTimers() == 1; });
        handler.reset();
        EXPECT_EQ(0, desk.armedTimers());
    });
    // The agent still knows the handler that has gone.
    agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION);
    desk.settle();
    EXPECT_EQ(0, desk.armedTimers());
    EXPECT_FALSE(isCalled);
}

}  // namespace

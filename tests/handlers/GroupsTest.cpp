// Locations, scenes, routines and favorites: what is made of the agent's records, good and bad, and of its events.

#include <cstring>
#include <functional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Homeloom/Favorite/FavoriteHandler.h"
#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Routine/RoutineHandler.h"
#include "Homeloom/Scene/SceneHandler.h"
#include "handlers/HandlersTest.h"
#include "support/Screen.h"

using namespace VMFramework::HomeLoom;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kRooms[] = R"([{"room_id":"kitchen","room_name":"Kitchen"},{"room_id":"bath","room_name":"Bath"}])";

/// Two locations, one of them another's and without rooms, with scenes, routines and favorites.
class Groups : public HandlersTest {
protected:
    Groups() {
        const auto group = [](const char* id, const char* name, const char* parent = "") -> AgentStub::Record {
            return {{{HOMELOOM_CLIENT_GROUP_PROPERTY_ID, id},
                     {HOMELOOM_CLIENT_GROUP_PROPERTY_NAME, name},
                     {HOMELOOM_CLIENT_GROUP_PROPERTY_PARENT_ID, parent}},
                    {}};
        };
        agent.lists["GetGroupList 1"] = {group("flat", "Flat"), group("lodge", "Lodge")};
        agent.lists["GetGroupList 2"] = {group("kitchen", "Kitchen", "flat"), group("bath", "Bath", "flat")};
        for (const auto& [id, permission] : {std::pair("flat", "rw"), {"lodge", "r"}}) {
            agent.lists["GetCoreLocationList"].push_back({{{HOMELOOM_CORE_LOCATION_ID, id},
                                                           {HOMELOOM_CORE_LOCATION_NAME, id},
                                                           {HOMELOOM_CORE_LOCATION_PERMISSION, permission}},
                                                          {}});
        }
        agent.answers["GetUserId"] = {0, {"mia"}, {}};
        agent.answers["GetCoreLocationUsers"].texts = {
            R"([{"locationId":"flat","owner":{"norvaneAccountId":"mia","name":"Mia"}},)"
            R"({"locationId":"lodge","owner":{"norvaneAccountId":"noah","name":"Noah"}}])"};
        for (const auto& [place, id] : {std::pair("flat", "tea"), {"lodge", "out"}}) {
            const std::string json = R"({"id":")" + std::string(id) + R"("})";
            const AgentStub::Record scene = {
                {{HOMELOOM_CORE_SCENE_ID, "scene-" + std::string(id)}, {HOMELOOM_CORE_SCENE_JSON, json}}, {}};
            agent.lists["GetCoreSceneList " + std::string(place)] = {scene};
            agent.records["GetCoreScene " + std::string(place) + " " + id] = scene;
            const AgentStub::Record rule = {
                {{HOMELOOM_CORE_RULE_ID, "routine-" + std::string(id)}, {HOMELOOM_CORE_RULE_JSON, json}}, {}};
            const AgentStub::Record hidden = {
                {{HOMELOOM_CORE_RULE_ID, "hidden"}, {HOMELOOM_CORE_RULE_JSON, R"({"meta":{"hidden":true}})"}}, {}};
            agent.lists["GetCoreRoutineList " + std::string(place)] = {rule, hidden};
            agent.records["GetCoreRoutine " + std::string(place) + " " + id] = rule;
            agent.records["GetCoreRoutine " + std::string(place) + " hidden"] = hidden;
        }
        const auto locations = [] {
            return std::unordered_map<std::string, core_location_info_struct>{{"flat", {}}, {"lodge", {}}};
        };
        scenes.SetGetLocationsCallback(locations);
        routines.SetGetLocationsCallback(locations);
    }

    List Home() {
        return Endpoints([&](const EndpointList& list) {
            location->GetLocationData(list);
            scenes.GetSceneData(list);
            routines.GetRoutineData(list);
        });
    }

    const std::shared_ptr<LocationHandler> location = std::make_shared<LocationHandler>(agent);
    SceneHandler scenes{agent};
    RoutineHandler routines{agent};
};

}  // namespace

TEST_F(Groups, AreEndpointsOfTheHome) {
    location->SetGetFavoritesCallback([](const std::string& id) { return "favorites of " + id; });
    const auto home = Home();
    const std::pair<const char*, std::string> entries[] = {
        {"flat",
         "homeloom  homeloom-dummy location_id='flat' location_name='Flat' location_owner_name='' "
         "location_is_owner=true location_permission='rw' room_count=2 room_info='" +
             std::string(kRooms) + "' favorite_info_array='favorites of flat'"},
        {"lodge",
         "homeloom  homeloom-dummy location_id='lodge' location_name='Lodge' location_owner_name='Noah' "
         "location_is_owner=false location_permission='r' room_count=0 room_info='[]' "
         "favorite_info_array='favorites of lodge'"},
        {"scene-tea", R"(homeloom homeloom-scene homeloom-dummy scene_json_data='{"id":"tea"}')"},
        {"routine-out", R"(homeloom homeloom-routine homeloom-dummy routine_json='{"id":"out"}')"},
    };
    for (const auto& [id, text] : entries) {
        const auto* const entry = home->endpoint(id);
        ASSERT_NE(entry, nullptr) << id;
        EXPECT_EQ(entry->serviceName.value_or("") + " " + entry->interfaceType.value_or("") + " " +
                      entry->deviceType.value_or("") + " " + toText(entry->extraData),
                  text);
    }
}

TEST_F(Groups, AReadThatFailsLeavesTheOthers) {
    const struct {
        const char* operation;
        int after;  // the one call that fails; -1 for all
        std::size_t endpoints;
        const char* flatRooms;
        int flatRoomCount;
        const char* flatPermission;
        const char* lodgeOwner;
    } cases[] = {
        {"none", 0, 6, kRooms, 2, "rw", "Noah"},
        {"GroupGetString", 2, 5, kRooms, 2, "rw", ""},  // the lodge's id
        {"GroupGetString", 4, 6, "", 0, "rw", "Noah"},  // the first room's parent
        {"GroupGetString", 9, 6, "", 1, "rw", "Noah"},  // the second room's name
        {"GetCoreLocationString", 1, 6, kRooms, 2, "", "Noah"},
        {"GetCoreLocationString", 2, 6, kRooms, 2, "", "Noah"},
        {"GetCoreLocationList", 0, 6, kRooms, 2, "", "Noah"},
        {"GetCoreLocationUsers", 0, 6, kRooms, 2, "rw", ""},
        {"GetCoreSceneString", 0, 5, kRooms, 2, "rw", "Noah"},
        {"GetCoreSceneString", 1, 5, kRooms, 2, "rw", "Noah"},
        {"GetCoreSceneList", 0, 5, kRooms, 2, "rw", "Noah"},
        {"GetCoreRoutineString", 0, 5, kRooms, 2, "rw", "Noah"},
        {"GetCoreRoutineString", 1, 5, kRooms, 2, "rw", "Noah"},
        {"GetCoreRoutineList", 0, 5, kRooms, 2, "rw", "Noah"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.operation + std::to_string(row.after));
        agent.FailOnce(row.operation, row.after);
        const auto list = Home();
        EXPECT_EQ(list->endpoints.size(), row.endpoints);
        const auto* const flat = list->endpoint("flat");
        ASSERT_NE(flat, nullptr);
        EXPECT_EQ(flat->extraData.text("room_info"), row.flatRooms);
        EXPECT_EQ(flat->extraData.number("room_count"), row.flatRoomCount);
        EXPECT_EQ(flat->extraData.text("location_permission"), row.flatPermission);
        EXPECT_EQ(list->endpoint("hidden"), nullptr);
        if (const auto* const lodge = list->endpoint("lodge")) {
            EXPECT_EQ(lodge->extraData.text("location_owner_name"), row.lodgeOwner);
            EXPECT_EQ(lodge->extraData.flag("location_is_owner"), *row.lodgeOwner == '\0');
        }
    }
    EXPECT_EQ(scenes.GetSceneCount(), 2);

    // A home without rooms is no error. Otherwise a location's picture would be wrong without them: nothing is sent.
    agent.lists["GetGroupList 2"].clear();
    agent.answers["GetGroupList 2"].ret = HOMELOOM_CLIENT_ERROR_NO_DATA;
    EXPECT_EQ(Home()->endpoint("flat")->extraData.text("room_info"), "[]");
    agent.answers["GetGroupList 2"].ret = -5;
    EXPECT_THROW(Home(), std::domain_error);
    agent.answers.erase("GetGroupList 2");

    // A location that is listed twice is one location.
    agent.lists["GetGroupList 1"].push_back(agent.lists["GetGroupList 1"][1]);
    EXPECT_EQ(Home()->endpoints.size(), 6u);

    location->Quit();
    scenes.Quit();
    routines.Quit();
    EXPECT_THAT(Endpoints([&](const auto& list) { location->GetLocationData(list); })->endpoints, IsEmpty());
    EXPECT_THROW(scenes.GetSceneCount(), std::domain_error);
    EXPECT_THROW(Endpoints([&](const auto& list) { routines.GetRoutineData(list); }), std::domain_error);
}

TEST_F(Groups, NamesAreFoundByIdOrAreEmpty) {
    int roomCount = 0;
    int locationCount = 0;
    const auto rooms = location->GetRoomList(roomCount);
    const auto locations = location->GetLocationList(locationCount);
    EXPECT_EQ(location->GetRoomNameFromRoomID("bath", rooms, roomCount), "Bath");
    EXPECT_EQ(location->GetLocationNameFromLocationID("lodge", locations, locationCount), "Lodge");
    EXPECT_EQ(location->GetRoomNameFromRoomID("attic", rooms, roomCount), "");
    EXPECT_EQ(location->GetRoomNameFromRoomID("", rooms, roomCount), "");
    EXPECT_EQ(location->GetRoomNameFromRoomID("bath", nullptr, 0), "");
    agent.FailOnce("GroupGetString", 0);
    EXPECT_EQ(location->GetLocationNameFromLocationID("lodge", locations, locationCount), "");
    agent.FailOnce("GetGroupList", 0);
    EXPECT_THROW(location->GetLocationList(locationCount), std::domain_error);
}

TEST_F(Groups, OnlyWhatCanBeAskedForIsAsked) {
    location->CreateRoom(nullptr, "flat", "");
    location->CreateRoom(nullptr, "", "Attic");
    location->RemoveRoom(nullptr, "flat", "");
    location->ChangeRoomName(nullptr, "flat", "bath", "");
    EXPECT_THAT(Reported(), IsEmpty());

    agent.answers["MoveDevicesToOtherRoom"].ret = -22;
    location->MoveDevices(nullptr, "washer", 2, "flat", "");
    EXPECT_THAT(Reported(),
                ElementsAre("notify hl_move_devices move_devices_result=false dev_ids='washer' devices_size=2"));
    // A second answer of the agent finds nobody.
    agent.answers["MoveDevicesToOtherRoom"].ret = 0;
    location->MoveDevices(nullptr, "washer", 1, "flat", "");
    for (int answer = 0; answer < 2; ++answer) {
        agent.CallBack<homeloom_client_move_devices_cb>("MoveDevicesToOtherRoom", 0);
    }
    EXPECT_THAT(Reported(),
                ElementsAre("notify hl_move_devices move_devices_result=true dev_ids='washer' devices_size=1"));
}

TEST_F(Groups, RequestsAreAnsweredAsTheAgentAnswers) {
    FavoriteHandler favorites(agent);
    agent.records["CreateFavorite"] = {{{HOMELOOM_CORE_FAVORITE_ID, "new"},
                                        {HOMELOOM_CORE_FAVORITE_LOCATION_ID, "flat"},
                                        {HOMELOOM_CORE_FAVORITE_MEMBER_ID, "lamp"},
                                        {HOMELOOM_CORE_FAVORITE_MEMBER_TYPE, "DEVICE"},
                                        {HOMELOOM_CORE_FAVORITE_CREATE_DATE, "then"},
                                        {HOMELOOM_CORE_FAVORITE_LAST_UPDATE_DATE, "now"}},
                                       {{HOMELOOM_CORE_FAVORITE_ORDER, 3}}};
    agent.lists["ReplaceFavorites"] = {agent.records["CreateFavorite"]};
    // A request, what the agent gets and says, and the answer, whose last part comes of what the agent says.
    const struct {
        std::function<void()> ask;
        const char *call, *reply, *name, *fields, *more;
    } cases[] = {
        {[&] { location->CreateRoom(nullptr, "flat", "Attic"); }, "CreateCoreRoom flat Attic", R"({"roomId":"new"})",
         "hl_create_room_result create_room_result", " location_id='flat'", " room_id='new'"},
        {[&] { location->ChangeRoomName(nullptr, "flat", "bath", "Spa"); }, "ChangeCoreRoomName flat bath Spa",
         R"({"name":"Spa"})", "hl_change_room_name_result change_room_name_result",
         " location_id='flat' room_id='bath'", ""},
        {[&] { location->RemoveRoom(nullptr, "flat", "bath"); }, "DeleteCoreRoom flat bath", "",
         "hl_remove_room_result remove_room_result", " location_id='flat' room_id='bath'", ""},
        {[&] { scenes.CreateScene(nullptr, "flat", "{}"); }, "CreateCoreScene flat {}", R"({"id":"new"})",
         "hl_create_scene result", " location_id='flat'", R"( scene_id='new' scene_json='{"id":"new"}')"},
        {[&] { scenes.UpdateScene(nullptr, "flat", "tea", "{}"); }, "UpdateCoreScene flat tea {}", R"({"id":"tea"})",
         "hl_update_scene result", " location_id='flat'", R"( scene_id='tea' scene_json='{"id":"tea"}')"},
        {[&] { scenes.DeleteScene(nullptr, "flat", "tea"); }, "DeleteCoreScene flat tea", R"({"id":"tea"})",
         "hl_delete_scene result", " location_id='flat'", " scene_id='tea'"},
        {[&] { scenes.GetSceneIconInfo(nullptr); }, "GetCoreSceneIconInfoJson", R"({"icons":[]})",
         "hl_get_scene_icon_info result", "", R"( scene_icon_info='{"icons":[]}')"},
        {[&] { routines.UpdateRoutineStatus(nullptr, "flat", "tea", true); }, "UpdateCoreRoutineStatus flat tea 1",
         "{}", "hl_update_routine_enable_status result", "", " result_value='{}'"},
        {[&] { favorites.CreateFavorite(nullptr, "flat", "{}"); }, "CreateFavorite flat {}", "",
         "hl_create_favorite create_favorite_result", " location_id='flat'",
         R"( favorite_info='{"favorite_id":"new","location_id":"flat","member_id":"lamp","member_type":"DEVICE",)"
         R"("create_date":"then","last_update_date":"now","order":3}')"},
        {[&] { favorites.DeleteFavorite(nullptr, "flat", "old"); }, "DeleteFavorite flat old", "",
         "hl_delete_favorite delete_favorite_result", " location_id='flat' favorite_id='old'", ""},
        {[&] { favorites.ReplaceFavorites(nullptr, "flat", "[]"); }, "ReplaceFavorites flat []", "",
         "hl_replace_favorite_list replace_favorite_result", " location_id='flat'", ""},
        {[&] { favorites.GetFavoriteMigrationStatus(nullptr, "flat"); }, "GetFavoriteMigrationStatus flat", "today",
         "hl_get_favorite_migration_status get_favorite_migration_status_result",
         " location_id='flat' isMigrated=false", " lastUpdatedDate='today'"},
        {[&] { favorites.UpdateFavoriteMigrationStatus(nullptr, "flat", "{}"); },
         "UpdateFavoriteMigrationStatus flat {}", "done",
         "hl_update_favorite_migration_status update_favorite_migration_status_result",
         " location_id='flat' favorite_migration_status_info='{}'", " status_result='done'"},
    };
    for (const auto& row : cases) {
        const std::string operation(row.call, std::strcspn(row.call, " "));
        agent.FailOnce(operation, 0);
        row.ask();
        EXPECT_THAT(Reported(), ElementsAre("notify " + std::string(row.name) + "=false" + row.fields));
        agent.answers[operation].texts = {row.reply};
        row.ask();
        EXPECT_THAT(Reported(), ElementsAre("notify " + std::string(row.name) + "=true" + row.fields + row.more));
        EXPECT_THAT(agent.Calls(operation), ElementsAre(row.call, row.call));
    }
    // An id that is no text is none.
    agent.answers["DeleteCoreScene"].texts = {R"({"id":{}})"};
    scenes.DeleteScene(nullptr, "flat", "tea");
    EXPECT_THAT(Reported(), ElementsAre("notify hl_delete_scene result=true location_id='flat'"));
}

TEST_F(Groups, WhatTheSceneDidDecidesAndNotTheCode) {
    for (const auto& [ret, reply, result] : {std::tuple(0, R"({"id":"tea","result":"Success"})", "true"),
                                             {0, R"({"id":"tea","result":"Failure"})", "false"},
                                             {0, "no JSON", "false"},
                                             {-5, R"({"result":"Success"})", "false"}}) {
        agent.answers["ExecuteCoreScene"] = {ret, {reply}, {}};
        scenes.ExecuteScene(nullptr, "flat", "tea");
        EXPECT_THAT(Reported(), ElementsAre(std::string("notify hl_execute_scene result=") + result +
                                            " location_id='flat' scene_id='tea' result_value='" + reply + "'"));
    }
}

TEST_F(Groups, AFavoriteThatCannotBeReadIsLeftOutOfTheText) {
    FavoriteHandler favorites(agent);
    for (const auto& [id, order] : {std::pair("first", 1), {"second", 2}}) {
        AgentStub::Record record = {{}, {{HOMELOOM_CORE_FAVORITE_ORDER, order}}};
        for (const int field : {HOMELOOM_CORE_FAVORITE_ID, HOMELOOM_CORE_FAVORITE_LOCATION_ID,
                                HOMELOOM_CORE_FAVORITE_MEMBER_ID, HOMELOOM_CORE_FAVORITE_MEMBER_TYPE,
                                HOMELOOM_CORE_FAVORITE_CREATE_DATE, HOMELOOM_CORE_FAVORITE_LAST_UPDATE_DATE}) {
            record.texts[field] = id + std::to_string(field);
        }
        agent.lists["GetFavoriteList"].push_back(record);
    }
    for (int field = 0; field < 7; ++field) {
        agent.FailOnce(field == 6 ? "GetFavoriteInt" : "GetFavoriteString", field % 6);
        favorites.GetFavorites(nullptr, "flat");
        // The size is the agent's count.
        EXPECT_THAT(Reported(), ElementsAre("notify hl_favorite_updated get_favorite_result=true location_id='flat' "
                                            "favorite_size=2 favorite_info_array='"
                                            R"([{"favorite_id":"second0","location_id":"second1",)"
                                            R"("member_id":"second2","member_type":"second3","create_date":"second7",)"
                                            R"("last_update_date":"second8","order":2}]')"));
    }
    // No data is no error.
    agent.lists.clear();
    for (const auto& [ret, result] : {std::pair(HOMELOOM_CLIENT_ERROR_NO_DATA + 0, "true"), {-5, "false"}}) {
        agent.answers["GetFavoriteList"].ret = ret;
        favorites.GetFavorites(nullptr, "lodge");
        EXPECT_THAT(Reported(), ElementsAre(std::string("notify hl_favorite_updated get_favorite_result=") + result +
                                            " location_id='lodge' favorite_size=0"));
    }
    EXPECT_EQ(favorites.GetFavoriteData("flat"), "");
    EXPECT_EQ(favorites.GetFavoriteData(""), "");
}

TEST_F(Groups, EventsOfTheStreamBecomeUpdates) {
    constexpr int kScene = HOMELOOM_CORE_SSE_SCENE_LIFECYCLE;
    constexpr int kRoutine = HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE;
    // One event, and the update that it causes, if any.
    const struct {
        int kind;
        const char* json;
        std::vector<std::string> updates;
    } cases[] = {
        {kScene,
         R"({"lifecycle":"CREATE","locationId":"flat","sceneId":"tea"})",
         {R"(notify hl_create_scene result=true location_id='flat' scene_id='tea' scene_json='{"id":"tea"}')"}},
        {kScene,
         R"({"lifecycle":"UPDATE","locationId":"flat","sceneId":"gone"})",
         {"notify hl_update_scene result=true location_id='flat' scene_id='gone'"}},
        {kScene,
         R"({"lifecycle":"DELETE","locationId":"flat","sceneId":"tea"})",
         {"notify hl_delete_scene result=true location_id='flat' scene_id='tea'"}},
        {kScene, R"({"lifecycle":"MURMUR_CREATE","locationId":"flat","sceneId":"tea"})", {}},
        {kScene, R"({"lifecycle":"CREATE","sceneId":"tea"})", {}},
        {kScene, R"({"lifecycle":"CREATE","locationId":"flat"})", {}},
        {kScene, R"({"lifecycle":"EXECUTE","locationId":"flat","sceneId":"tea"})", {}},
        {kScene, "{", {}},
        {kRoutine,
         R"({"lifecycle":"CREATE","locationId":"flat","ruleId":"tea"})",
         {R"(notify hl_create_routine result=true location_id='flat' routine_id='tea' routine_json='{"id":"tea"}')"}},
        {kRoutine,
         R"({"lifecycle":"UPDATE","locationId":"lodge","ruleId":"out"})",
         {R"(notify hl_update_routine result=true location_id='lodge' routine_id='out' routine_json='{"id":"out"}')"}},
        {kRoutine, R"({"lifecycle":"CREATE","locationId":"flat","ruleId":"hidden"})", {}},
        {kRoutine, R"({"lifecycle":"UPDATE","locationId":"flat","ruleId":"hidden"})", {}},
        {kRoutine,
         R"({"lifecycle":"DELETE","locationId":"flat","ruleId":"hidden"})",
         {"notify hl_delete_routine result=true location_id='flat' routine_id='hidden'"}},
        {kRoutine, R"({"lifecycle":"MURMUR","locationId":"flat","ruleId":"tea"})", {}},
        {kRoutine, R"({"lifecycle":"DELETE","locationId":"flat","sceneId":"tea"})", {}},
    };
    for (const auto& [kind, json, updates] : cases) {
        kind == kScene ? scenes.HandleSSEScene(json) : routines.HandleSSERoutine(json);
        EXPECT_EQ(Reported(), updates) << json;
    }
    EXPECT_THROW(scenes.HandleSSEScene(R"({"lifecycle":{},"locationId":[],"sceneId":1})"), std::exception);
}

TEST_F(Groups, AGroupChangeFindsItsHandlerOrNobody) {
    location->SetGroupListUpdateCallback();
    // The default kind of change is none.
    agent.CallBack<homeloom_client_group_list_updated_cb>("SetGroupListUpdatedCb", 0, 1, nullptr, 0, "");
    const_cast<std::shared_ptr<LocationHandler>&>(location).reset();
    agent.CallBack<homeloom_client_group_list_updated_cb>("SetGroupListUpdatedCb", 1, 1, nullptr, 0, "");
    EXPECT_THAT(Reported(), IsEmpty());
}

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include <glib.h>
#include <gtest/gtest.h>

#include "CPluginMgr.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Favorite/FavoriteHandler.h"
#include "Homeloom/Location/LocationHandler.h"
#include "Homeloom/Routine/RoutineHandler.h"
#include "Homeloom/Scene/SceneHandler.h"
#include "desktop/Framework.h"
#include "desktop/Log.h"
#include "desktop/Settings.h"
#include "groups/SmallHome.h"
#include "plugin_interface.h"
#include "simulator/Agent.h"

using namespace VMFramework::HomeLoom;
using homeloom::desktop::EndpointRecord;
using homeloom::desktop::Fields;
using simulator::Fault;
namespace framework = homeloom::desktop::framework;
namespace settings = homeloom::desktop::settings;

namespace homeloom::desktop {

void PrintTo(const Fields& fields, std::ostream* out) {
    for (const auto& field : fields) {
        *out << field.key << "=";
        std::visit([out](const auto& value) { *out << value; }, field.value);
        *out << " ";
    }
}

}  // namespace homeloom::desktop

namespace {

/// The plug-in, started over a small home, with its list sent.
class GroupsTest : public testing::Test {
protected:
    void SetUp() override {
        agent.reset();
        agent.load(test::SmallHome());
        settings::setInt("db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree", 1);
        CreatePlugin();
        const auto hasHome = [](const framework::Report& report) { return report.endpoint("flat") != nullptr; };
        const auto first = framework::waitFor(hasHome);
        ASSERT_NE(nullptr, first);
        // The home goes out twice: before and after its metadata has been read.
        ASSERT_NE(nullptr, framework::waitFor(hasHome, std::chrono::seconds(10), first->number + 1));
    }

    void TearDown() override {
        agent.clearFaults();
        DestroyPlugin();
        EXPECT_EQ(0, agent.holdings().total());
        EXPECT_TRUE(agent.escapedExceptions().empty());
        EXPECT_EQ(0U, framework::liveHandles().total());
    }

    /// Sends a request and waits for its answer.
    framework::ReportPtr Ask(const std::string& name, const Fields& arguments) {
        const auto id = framework::request(name, arguments);
        return framework::waitFor([id](const framework::Report& report) { return report.transaction == id; });
    }

    /// Sends a request that gets no answer, and one that does, after it.
    void ExpectSilence(const std::string& name, const Fields& arguments) {
        const auto id = framework::request(name, arguments);
        ASSERT_NE(nullptr, Ask("hl_get_scene_icon_info", {}));
        for (const auto& report : framework::reports()) {
            EXPECT_NE(id, report->transaction) << name;
        }
    }

    /// The next notify that is no answer.
    framework::ReportPtr WaitForUpdate(std::size_t from) {
        return framework::waitFor(
            [](const framework::Report& report) {
                return report.kind == framework::Report::Kind::Notify && report.transaction == 0;
            },
            std::chrono::seconds(10), from);
    }

    /// What a handler puts on an endpoint list.
    framework::ReportPtr Endpoints(const std::function<void(const std::shared_ptr<IEndpointListHelper>&)>& fill) {
        const std::size_t from = framework::reportCount();
        const auto list = IEndpointListHelper::Create();
        fill(list);
        CPluginMgr::GetInstance().ReportDeviceList(list);
        return framework::waitFor(
            [](const framework::Report& report) { return report.kind == framework::Report::Kind::DeviceList; },
            std::chrono::seconds(10), from);
    }

    simulator::Agent& agent = simulator::Agent::instance();
};

std::unordered_map<std::string, core_location_info_struct> BothLocations() {
    return {{"flat", {"flat", "Flat", "rw"}}, {"lodge", {"lodge", "Lodge", "r"}}};
}

constexpr char kFavorites[] =
    R"([{"favorite_id":"favorite-1","location_id":"flat","member_id":"washer","member_type":"DEVICE",)"
    R"("create_date":"2024-01-01","last_update_date":"2024-01-02","order":1},)"
    R"({"favorite_id":"favorite-2","location_id":"flat","member_id":"scene-evening","member_type":"SCENE",)"
    R"("create_date":"2024-01-03","last_update_date":"2024-01-04","order":2}])";

TEST_F(GroupsTest, TheHomeShowsLocationsScenesAndRoutines) {
    const auto home = framework::reports().back()->endpoint("flat") != nullptr
                          ? framework::reports().back()
                          : framework::waitFor([](const auto& report) { return report.endpoint("flat") != nullptr; });
    const EndpointRecord* flat = home->endpoint("flat");
    const EndpointRecord* lodge = home->endpoint("lodge");
    ASSERT_NE(nullptr, flat);
    ASSERT_NE(nullptr, lodge);
    EXPECT_EQ("homeloom", flat->serviceName);
    EXPECT_EQ("homeloom-dummy", flat->deviceType);
    EXPECT_EQ((Fields{{"location_id", "flat"},
                      {"location_name", "Flat"},
                      {"location_owner_name", ""},
                      {"location_is_owner", true},
                      {"location_permission", "rw"},
                      {"room_count", 2},
                      {"room_info", R"([{"room_id":"kitchen","room_name":"Kitchen"},)"
                                    R"({"room_id":"bath","room_name":"Bath"}])"},
                      {"favorite_info_array", kFavorites}}),
              flat->extraData);
    EXPECT_EQ((Fields{{"location_id", "lodge"},
                      {"location_name", "Lodge"},
                      {"location_owner_name", "Noah"},
                      {"location_is_owner", false},
                      {"location_permission", "r"},
                      {"room_count", 0},
                      {"room_info", "[]"},
                      {"favorite_info_array", ""}}),
              lodge->extraData);

    const EndpointRecord* scene = home->endpoint("scene-arrive");
    ASSERT_NE(nullptr, scene);
    EXPECT_EQ("homeloom", scene->serviceName);
    EXPECT_EQ("homeloom-scene", scene->interfaceType);
    EXPECT_EQ("homeloom-dummy", scene->deviceType);
    EXPECT_EQ((Fields{{"scene_json_data", R"({"id":"scene-arrive","name":"Arrive"})"}}), scene->extraData);
    const EndpointRecord* routine = home->endpoint("routine-frost");
    ASSERT_NE(nullptr, routine);
    EXPECT_EQ("homeloom-routine", routine->interfaceType);
    EXPECT_EQ("homeloom-dummy", routine->deviceType);
    EXPECT_EQ((Fields{{"routine_json", R"({"id":"routine-frost","meta":{"hidden":false}})"}}), routine->extraData);
    EXPECT_NE(nullptr, home->endpoint("scene-evening"));
    EXPECT_NE(nullptr, home->endpoint("routine-wake"));
    EXPECT_EQ(nullptr, home->endpoint("routine-secret"));
}

TEST_F(GroupsTest, AReadThatFailsLeavesTheOthers) {
    const auto location = std::make_shared<LocationHandler>();
    SceneHandler scenes;
    RoutineHandler routines;
    scenes.SetGetLocationsCallback(BothLocations);
    routines.SetGetLocationsCallback(BothLocations);
    const auto fill = [&](const std::shared_ptr<IEndpointListHelper>& list) {
        location->GetLocationData(list);
        scenes.GetSceneData(list);
        routines.GetRoutineData(list);
    };
    struct Case {
        const char* function;
        Fault fault;
        std::size_t endpoints;
        const char* flatRooms;
        int flatRoomCount;
        const char* flatPermission;
        const char* lodgeOwner;
    };
    constexpr char kRooms[] = R"([{"room_id":"kitchen","room_name":"Kitchen"},{"room_id":"bath","room_name":"Bath"}])";
    const auto once = [](int after) { return Fault::fail(-5).after(after).times(1); };
    const std::vector<Case> cases = {
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
    for (const Case& row : cases) {
        SCOPED_TRACE(row.function);
        agent.fault(row.function, row.fault);
        const auto list = Endpoints(fill);
        agent.clearFaults();
        ASSERT_NE(nullptr, list);
        EXPECT_EQ(row.endpoints, list->endpoints.size());
        const EndpointRecord* flat = list->endpoint("flat");
        ASSERT_NE(nullptr, flat);
        EXPECT_EQ(row.flatRooms, flat->extraData.text("room_info"));
        EXPECT_EQ(row.flatRoomCount, flat->extraData.number("room_count"));
        EXPECT_EQ(row.flatPermission, flat->extraData.text("location_permission"));
        const EndpointRecord* lodge = list->endpoint("lodge");
        EXPECT_EQ(row.lodgeOwner, lodge != nullptr ? lodge->extraData.text("location_owner_name") : "");
        EXPECT_EQ(lodge != nullptr && *row.lodgeOwner == '\0',
                  lodge != nullptr && lodge->extraData.flag("location_is_owner"));
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
    const auto handler = std::make_shared<LocationHandler>();
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

/// A request with the answer of a good agent and that of a failing one.
struct RequestCase {
    const char* request;
    Fields arguments;
    const char* function;  // of the agent
    const char* answer;    // its name
    Fields good;
    Fields failed;
};

TEST_F(GroupsTest, RequestsAreAnsweredAsTheAgentAnswers) {
    const std::vector<RequestCase> cases = {
        {"hl_create_room",
         {{"location_id", "flat"}, {"room_name", "Attic"}},
         "homeloom_core_create_room_async",
         "hl_create_room_result",
         {{"create_room_result", true}, {"location_id", "flat"}, {"room_id", "NEW"}},
         {{"create_room_result", false}, {"location_id", "flat"}}},
        {"hl_change_room_name",
         {{"location_id", "flat"}, {"room_id", "bath"}, {"room_name", "Spa"}},
         "homeloom_core_change_room_name_async",
         "hl_change_room_name_result",
         {{"change_room_name_result", true}, {"location_id", "flat"}, {"room_id", "bath"}},
         {{"change_room_name_result", false}, {"location_id", "flat"}, {"room_id", "bath"}}},
        {"hl_remove_room",
         {{"location_id", "flat"}, {"room_id", "bath"}},
         "homeloom_core_delete_room_async",
         "hl_remove_room_result",
         {{"remove_room_result", true}, {"location_id", "flat"}, {"room_id", "bath"}},
         {{"remove_room_result", false}, {"location_id", "flat"}, {"room_id", "bath"}}},
        {"hl_move_devices",
         {{"devices_size", 1}, {"dev_ids", "washer"}, {"location_id", "flat"}, {"room_id", "bath"}},
         "homeloom_client_move_devices",
         "hl_move_devices",
         {{"move_devices_result", true}, {"dev_ids", "washer"}, {"devices_size", 1}},
         {{"move_devices_result", false}, {"dev_ids", "washer"}, {"devices_size", 1}}},
        {"hl_execute_scene",
         {{"location_id", "flat"}, {"scene_id", "scene-evening"}},
         "homeloom_core_execute_scene_async",
         "hl_execute_scene",
         {{"result", true},
          {"location_id", "flat"},
          {"scene_id", "scene-evening"},
          {"result_value", R"({"id":"scene-evening","result":"Success"})"}},
         {{"result", false}, {"location_id", "flat"}, {"scene_id", "scene-evening"}}},
        {"hl_create_scene",
         {{"location_id", "flat"}, {"scene_json", R"({"name":"Tea"})"}},
         "homeloom_core_create_scene_async",
         "hl_create_scene",
         {{"result", true}, {"location_id", "flat"}, {"scene_id", "NEW"}, {"scene_json", "NEW"}},
         {{"result", false}, {"location_id", "flat"}}},
        {"hl_update_scene",
         {{"location_id", "flat"}, {"scene_id", "scene-evening"}, {"scene_json", R"({"name":"Tea"})"}},
         "homeloom_core_update_scene_async",
         "hl_update_scene",
         {{"result", true},
          {"location_id", "flat"},
          {"scene_id", "scene-evening"},
          {"scene_json", R"({"id":"scene-evening","name":"Tea"})"}},
         {{"result", false}, {"location_id", "flat"}}},
        {"hl_delete_scene",
         {{"location_id", "flat"}, {"scene_id", "scene-evening"}},
         "homeloom_core_delete_scene_async",
         "hl_delete_scene",
         {{"result", true}, {"location_id", "flat"}, {"scene_id", "scene-evening"}},
         {{"result", false}, {"location_id", "flat"}}},
        {"hl_get_scene_icon_info",
         {},
         "homeloom_core_get_scene_icon_list_async",
         "hl_get_scene_icon_info",
         {{"result", true}, {"scene_icon_info", R"({"icons":[]})"}},
         {{"result", false}}},
        {"hl_update_routine_enable_status",
         {{"location_id", "flat"}, {"routine_id", "routine-wake"}, {"enable", false}},
         "homeloom_core_update_rule_status_async",
         "hl_update_routine_enable_status",
         {{"result", true}, {"result_value", R"({"id":"routine-wake","name":"Wake","status":"Disabled"})"}},
         {{"result", false}}},
        {"hl_get_favorite",
         {{"location_id", "flat"}},
         "homeloom_core_get_favorite_list_async",
         "hl_get_favorite",
         {{"get_favorite_result", true},
          {"location_id", "flat"},
          {"favorite_size", 2},
          {"favorite_info_array", kFavorites}},
         {{"get_favorite_result", false}, {"location_id", "flat"}, {"favorite_size", 0}}},
        {"hl_create_favorite",
         {{"location_id", "flat"}, {"favorite_info", R"({"memberId":"lamp","memberType":"DEVICE","order":3})"}},
         "homeloom_core_create_favorite",
         "hl_create_favorite",
         {{"create_favorite_result", true}, {"location_id", "flat"}, {"favorite_info", "NEW"}},
         {{"create_favorite_result", false}, {"location_id", "flat"}}},
        {"hl_delete_favorite",
         {{"location_id", "flat"}, {"favorite_id", "favorite-1"}},
         "homeloom_core_delete_favorite",
         "hl_delete_favorite",
         {{"delete_favorite_result", true}, {"location_id", "flat"}, {"favorite_id", "favorite-1"}},
         {{"delete_favorite_result", false}, {"location_id", "flat"}, {"favorite_id", "favorite-1"}}},
        {"hl_delete_favorite",
         {{"location_id", "flat"}},
         "homeloom_core_delete_favorites",
         "hl_delete_favorite",
         {{"delete_favorite_result", true}, {"location_id", "flat"}},
         {{"delete_favorite_result", false}, {"location_id", "flat"}}},
        {"hl_replace_favorite_list",
         {{"location_id", "flat"}, {"favorite_info_array", R"([{"memberId":"lamp"}])"}},
         "homeloom_core_replace_favorites",
         "hl_replace_favorite_list",
         {{"replace_favorite_result", true}, {"location_id", "flat"}},
         {{"replace_favorite_result", false}, {"location_id", "flat"}}},
        {"hl_get_favorite_migration_status",
         {{"location_id", "flat"}},
         "homeloom_core_get_favorite_migration_status",
         "hl_get_favorite_migration_status",
         {{"get_favorite_migration_status_result", true},
          {"location_id", "flat"},
          {"isMigrated", true},
          {"lastUpdatedDate", "2024-04-01"},
          {"deviceModel", "TV-A"}},
         {{"get_favorite_migration_status_result", false}, {"location_id", "flat"}, {"isMigrated", false}}},
        {"hl_update_favorite_migration_status",
         {{"location_id", "flat"}, {"favorite_migration_status_info", R"({"isMigrated":false})"}},
         "homeloom_core_update_favorite_migration_status",
         "hl_update_favorite_migration_status",
         {{"update_favorite_migration_status_result", true},
          {"location_id", "flat"},
          {"favorite_migration_status_info", R"({"isMigrated":false})"},
          {"status_result", R"({"isMigrated":false,"lastUpdatedDate":"2024-05-01T09:00:00Z"})"}},
         {{"update_favorite_migration_status_result", false},
          {"location_id", "flat"},
          {"favorite_migration_status_info", R"({"isMigrated":false})"}}},
    };
    for (const RequestCase& row : cases) {
        SCOPED_TRACE(row.function);
        agent.load(test::SmallHome());
        const std::string function = row.function;
        agent.fault(function, Fault::answer(-5));
        const auto failed = Ask(row.request, row.arguments);
        agent.clearFaults();
        const auto good = Ask(row.request, row.arguments);
        ASSERT_NE(nullptr, failed);
        ASSERT_NE(nullptr, good);
        for (const auto& answer : {good, failed}) {
            EXPECT_EQ(framework::Report::Kind::Notify, answer->kind);
            EXPECT_EQ(row.answer, answer->name);
        }
        EXPECT_EQ(row.failed, failed->properties);
        Fields expected = row.good;
        for (const auto& field : row.good) {
            // The agent's own choice: only that there is one.
            if (field.value == homeloom::desktop::Value(std::string("NEW")) && good->properties.has(field.key)) {
                expected.set(field.key, *good->properties.find(field.key));
            }
        }
        EXPECT_EQ(expected, good->properties);
    }
}

TEST_F(GroupsTest, WhatTheSceneDidDecidesAndNotTheCode) {
    simulator::Home home = test::SmallHome();
    home.scenes[0].actions = {{"nobody", {"/a", "b", "1"}}};
    agent.load(home);
    const auto answer = Ask("hl_execute_scene", {{"location_id", "flat"}, {"scene_id", "scene-evening"}});
    ASSERT_NE(nullptr, answer);
    EXPECT_FALSE(answer->properties.flag("result"));
    EXPECT_EQ(R"({"id":"scene-evening","result":"Failure"})", answer->properties.text("result_value"));
}

TEST_F(GroupsTest, AnEmptyRoomArgumentGetsNoAnswer) {
    ExpectSilence("hl_create_room", {{"location_id", "flat"}});
    ExpectSilence("hl_create_room", {{"room_name", "Attic"}});
    ExpectSilence("hl_remove_room", {{"location_id", "flat"}});
    ExpectSilence("hl_change_room_name", {{"location_id", "flat"}, {"room_id", "bath"}});
    EXPECT_EQ(0, agent.callCount("homeloom_core_create_room_async"));
}

TEST_F(GroupsTest, AMoveThatCannotBeAskedForIsAnsweredAtOnce) {
    const std::string tooLong(40, 'x');
    const std::vector<std::pair<std::string, int>> lies = {{"washer", 2}, {"washer", 0},  {"washer", -3},
                                                           {"", 1},       {",washer", 2}, {tooLong, 1}};
    for (const auto& [ids, count] : lies) {
        const auto answer =
            Ask("hl_move_devices",
                {{"devices_size", count}, {"dev_ids", ids}, {"location_id", "flat"}, {"room_id", "bath"}});
        ASSERT_NE(nullptr, answer);
        EXPECT_FALSE(answer->properties.flag("move_devices_result"));
        EXPECT_EQ(ids, answer->properties.text("dev_ids"));
        EXPECT_EQ(count, answer->properties.number("devices_size"));
    }
    EXPECT_EQ(0, agent.callCount("homeloom_client_move_devices"));

    // A second answer of the agent finds nobody.
    agent.fault("homeloom_client_move_devices", Fault::twice());
    homeloom::desktop::log::Capture log;
    const auto answer =
        Ask("hl_move_devices", {{"devices_size", 1}, {"dev_ids", "washer"}, {"location_id", "flat"}, {"room_id", ""}});
    ASSERT_NE(nullptr, answer);
    EXPECT_TRUE(answer->properties.flag("move_devices_result"));
    EXPECT_TRUE(log.waitFor("a move that nobody waits for"));
    const auto isSecond = [&](const auto& report) { return report->transaction == answer->transaction; };
    const auto reports = framework::reports();
    EXPECT_EQ(1, std::count_if(reports.begin(), reports.end(), isSecond));
}

TEST_F(GroupsTest, AFavoriteThatCannotBeReadIsLeftOutOfTheText) {
    for (int field = 0; field < 7; ++field) {
        const bool isOrder = field == 6;
        agent.fault(isOrder ? "homeloom_core_favorite_get_int" : "homeloom_core_favorite_get_string",
                    Fault::fail(-5).after(isOrder ? 0 : field).times(1));
        const auto answer = Ask("hl_get_favorite", {{"location_id", "flat"}});
        agent.clearFaults();
        ASSERT_NE(nullptr, answer);
        EXPECT_TRUE(answer->properties.flag("get_favorite_result"));
        EXPECT_EQ(2, answer->properties.number("favorite_size")) << "the agent's count";
        const std::string text = answer->properties.text("favorite_info_array");
        EXPECT_EQ(std::string::npos, text.find("favorite-1"));
        EXPECT_NE(std::string::npos, text.find("favorite-2"));
    }
    // No data is no error.
    agent.fault("homeloom_core_get_favorite_list_async", Fault::answer(-61));
    const auto answer = Ask("hl_get_favorite", {{"location_id", "lodge"}});
    ASSERT_NE(nullptr, answer);
    EXPECT_EQ((Fields{{"get_favorite_result", true}, {"location_id", "lodge"}, {"favorite_size", 0}}),
              answer->properties);
    FavoriteHandler favorites;
    EXPECT_EQ("", favorites.GetFavoriteData("flat"));
    EXPECT_EQ("", favorites.GetFavoriteData(""));
}

/// One event of the stream, and the update that it causes; an empty name is silence.
struct EventCase {
    int kind;
    const char* json;
    const char* update;
    Fields properties;
};

TEST_F(GroupsTest, EventsOfTheStreamBecomeUpdates) {
    constexpr int kScene = HOMELOOM_CORE_SSE_SCENE_LIFECYCLE;
    constexpr int kRoutine = HOMELOOM_CORE_SSE_ROUTINE_LIFECYCLE;
    const std::vector<EventCase> cases = {
        {kScene,
         R"({"lifecycle":"CREATE","locationId":"flat","sceneId":"scene-evening"})",
         "hl_create_scene",
         {{"result", true},
          {"location_id", "flat"},
          {"scene_id", "scene-evening"},
          {"scene_json", R"({"id":"scene-evening","name":"Evening"})"}}},
        {kScene,
         R"({"lifecycle":"UPDATE","locationId":"flat","sceneId":"gone"})",
         "hl_update_scene",
         {{"result", true}, {"location_id", "flat"}, {"scene_id", "gone"}}},
        {kScene,
         R"({"lifecycle":"DELETE","locationId":"flat","sceneId":"scene-evening"})",
         "hl_delete_scene",
         {{"result", true}, {"location_id", "flat"}, {"scene_id", "scene-evening"}}},
        {kScene, R"({"lifecycle":"MURMUR_CREATE","locationId":"flat","sceneId":"scene-evening"})", "", {}},
        {kScene, R"({"lifecycle":"CREATE","sceneId":"scene-evening"})", "", {}},
        {kScene, R"({"lifecycle":"CREATE","locationId":"flat"})", "", {}},
        {kScene, R"({"lifecycle":"EXECUTE","locationId":"flat","sceneId":"scene-evening"})", "", {}},
        {kScene, R"({"lifecycle":{},"locationId":[],"sceneId":1})", "", {}},
        {kScene, "{", "", {}},
        {kRoutine,
         R"({"lifecycle":"CREATE","locationId":"flat","ruleId":"routine-wake"})",
         "hl_create_routine",
         {{"result", true},
          {"location_id", "flat"},
          {"routine_id", "routine-wake"},
          {"routine_json", R"({"id":"routine-wake","name":"Wake"})"}}},
        {kRoutine,
         R"({"lifecycle":"UPDATE","locationId":"lodge","ruleId":"routine-frost"})",
         "hl_update_routine",
         {{"result", true},
          {"location_id", "lodge"},
          {"routine_id", "routine-frost"},
          {"routine_json", R"({"id":"routine-frost","meta":{"hidden":false}})"}}},
        {kRoutine, R"({"lifecycle":"CREATE","locationId":"flat","ruleId":"routine-secret"})", "", {}},
        {kRoutine, R"({"lifecycle":"UPDATE","locationId":"flat","ruleId":"routine-secret"})", "", {}},
        {kRoutine,
         R"({"lifecycle":"DELETE","locationId":"flat","ruleId":"routine-secret"})",
         "hl_delete_routine",
         {{"result", true}, {"location_id", "flat"}, {"routine_id", "routine-secret"}}},
        {kRoutine, R"({"lifecycle":"MURMUR","locationId":"flat","ruleId":"routine-wake"})", "", {}},
        {kRoutine, R"({"lifecycle":"DELETE","locationId":"flat","sceneId":"routine-wake"})", "", {}},
    };
    // After each silence an event that is told shows that nothing came before it.
    for (const EventCase& row : cases) {
        SCOPED_TRACE(row.json);
        const std::size_t from = framework::reportCount();
        agent.sendEvent(row.kind, row.json);
        const bool isSilent = *row.update == '\0';
        if (isSilent) {
            agent.sendEvent(kScene, R"({"lifecycle":"DELETE","locationId":"flat","sceneId":"sentinel"})");
        }
        const auto update = WaitForUpdate(from);
        ASSERT_NE(nullptr, update);
        if (isSilent) {
            EXPECT_EQ("sentinel", update->properties.text("scene_id"));
        } else {
            EXPECT_EQ(row.update, update->name);
            EXPECT_EQ(row.properties, update->properties);
        }
    }
}

/// The timers that wait on the default main context, which nobody runs here.
std::vector<GSource*> WaitingTimers() {
    std::vector<GSource*> timers;
    for (guint id = 1; id < 1000; ++id) {
        GSource* const source = g_main_context_find_source_by_id(nullptr, id);
        if (source != nullptr && g_source_get_ready_time(source) > 0) {
            timers.push_back(source);
        }
    }
    return timers;
}

TEST_F(GroupsTest, ABurstOfGroupChangesEndsInOneReload) {
    homeloom::desktop::log::Capture log;
    agent.sendGroupChange(0, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
    ASSERT_TRUE(log.waitFor("skip group noti_type_default"));
    for (int change = 0; change < 3; ++change) {
        agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
    }
    agent.renameRoom("bath", "Spa");
    // Each change takes away the timer of the one before.
    while (log.count("[_HomeLoomClientLocationListUpdated] after job") < 4) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    const auto timers = WaitingTimers();
    ASSERT_EQ(1U, timers.size());
    const std::size_t from = framework::reportCount();
    g_source_set_ready_time(timers[0], 0);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    const auto home = framework::waitFor([](const auto& report) { return report.endpoint("flat") != nullptr; },
                                         std::chrono::seconds(10), from);
    ASSERT_NE(nullptr, home);
    EXPECT_NE(std::string::npos, home->endpoint("flat")->extraData.text("room_info").find("Spa"));
    EXPECT_EQ(1, log.count("_LocationTimerCallback() start"));
    EXPECT_EQ(1, log.count("profileUpdate will be called"));

    // The spent timer is cleaned up by the next change, without a word of GLib.
    agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_ROOM);
    ASSERT_TRUE(log.waitFor("already has timer, remove previous one"));
}

TEST_F(GroupsTest, ATimerOutlivesItsHandlerWithoutHarm) {
    homeloom::desktop::log::Capture log;
    auto handler = std::make_shared<LocationHandler>();
    bool isCalled = false;
    handler->SetGetDevicesInfoCallback([&] { return isCalled = true; });
    handler->SetGroupListUpdateCallback();
    agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION);
    ASSERT_TRUE(log.waitFor("[_HomeLoomClientLocationListUpdated] after job"));
    EXPECT_EQ(1U, WaitingTimers().size());
    handler.reset();
    EXPECT_TRUE(WaitingTimers().empty());
    // The agent still knows the handler that has gone.
    agent.sendGroupChange(1, HOMELOOM_CLIENT_GROUP_TYPE_LOCATION);
    agent.waitIdle();
    ASSERT_NE(nullptr, Ask("hl_get_scene_icon_info", {}));
    EXPECT_TRUE(WaitingTimers().empty());
    EXPECT_FALSE(isCalled);
}

}  // namespace

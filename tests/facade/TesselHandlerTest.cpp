#include <chrono>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <vconf.h>

#include "Homeloom/Tessel/TesselHandler.h"
#include "Homeloom/Tessel/TesselReplies.h"
#include "clock/Clock.h"
#include "desktop/Log.h"
#include "facade/SmallHome.h"
#include "simulator/Agent.h"

using namespace VMFramework::HomeLoom;
using simulator::Fault;

namespace {

constexpr int kRefused = -22;
constexpr int kNoData = -61;
constexpr int kAgentsCode = -77;

// Callbacks that only free what becomes theirs.
void OnConnection(homeloom_client_error_e, homeloom_client_connection_state_e, void*) {}
void OnSignIn(bool, void*) {}
void OnSubscription(const char*, const char*, const char*, const char*, const char*, const char*, void*) {}
void OnRemote(int, const char*, const char*, const char*, const char*, void*) {}
void OnDevices(homeloom_client_device_h* list, int count, void*) {
    DestroyRecords(list, count, homeloom_client_device_destroy);
}
void OnDetails(homeloom_client_device_detail_h* list, int count, void*) {
    DestroyRecords(list, count, homeloom_client_device_detail_destroy);
}
void OnGroups(int, int, homeloom_client_group_h*, int, const char*, void*) {}
void OnMove(int, void*) {}
void OnDone(bool, void*) {}
void OnStatus(int, bool, char**, int, void*) {}
void OnStatusUpdate(void*) {}
void OnJson(int, const char*, const char*, void*) {}
void OnEvent(homeloom_core_sse_e, long long, const char*, void*) {}

class TesselHandlerTest : public testing::Test {
protected:
    void SetUp() override {
        agent.reset();
        agent.load(test::SmallHome());
        facade.Init();
    }
    void TearDown() override {
        agent.clearFaults();
        facade.Disconnect();
        const auto held = agent.holdings();
        EXPECT_EQ(0, held.records);
        EXPECT_EQ(0, held.total());
        EXPECT_TRUE(agent.escapedExceptions().empty());
        agent.reset();
    }
    void Connect() {
        ASSERT_EQ(0, facade.Connect(OnConnection, nullptr));
        agent.waitIdle();
        agent.resetCalls();
    }

    simulator::Agent& agent = simulator::Agent::instance();
    TesselHandler& facade = TesselHandler::GetInstance();
};

using F = TesselHandler;
using Operation = std::function<int(F&)>;

/// An operation, the agent's function behind it without the "homeloom_" of them all, and the texts and numbers that
/// this gets.
struct Row {
    const char* name;
    std::vector<std::string> arguments;
    Operation operation;
    int goodCode = 0;

    std::string Function() const { return std::string("homeloom_") + name; }
};

constexpr char kSwitchOn[] = R"({"commands":[{"component":"main","capability":"switch","command":"on"}]})";
constexpr char kInfraredRemote[] = R"({"name":"Remote"})";

// What the operations of the tables hand out.
std::string text, text2, text3, text4, text5;
int number = 0;
bool flag = false;

/// A list operation: reads each record and gives the list back.
template <typename Record, typename Get>
Operation Lists(Get get, int (F::*read)(Record, int, std::string&), int (F::*destroy)(Record*, int)) {
    return [=](F& f) {
        Record* list = nullptr;
        int count = 0;
        const int ret = get(f, list, count);
        EXPECT_EQ(ret == 0, count > 0);
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(0, (f.*read)(list[i], 0, text));
            EXPECT_FALSE(text.empty());
        }
        EXPECT_EQ(list != nullptr ? 0 : kRefused, (f.*destroy)(list, count));
        return ret;
    };
}

template <typename Record, typename Get>
Operation Gives(Get get, int (F::*read)(Record, int, std::string&), int (F::*destroy)(Record)) {
    return [=](F& f) {
        Record record = nullptr;
        const int ret = get(f, record);
        EXPECT_EQ(ret, (f.*read)(record, 0, text) == 0 ? 0 : ret);
        EXPECT_EQ(record != nullptr ? 0 : kRefused, (f.*destroy)(record));
        return ret;
    };
}

// Those that answer at once, or by a callback of the caller's.
const std::vector<Row> kPlain = {
    {"client_set_sign_in_state_changed_cb", {}, [](F& f) { return f.SetSignInStateChangeCb(OnSignIn, nullptr); }},
    {"client_unset_sign_in_state_changed_cb", {}, [](F& f) { return f.UnsetSignInStateChangeCb(); }},
    {"client_is_signed_in", {}, [](F& f) { return f.IsSignedIn(flag); }},
    {"client_get_login_id", {}, [](F& f) { return f.GetLoginID(text); }},
    {"client_get_device_id", {}, [](F& f) { return f.GetClientDeviceID(text); }},
    {"client_get_access_token", {}, [](F& f) { return f.GetAccessToken(text); }},
    {"client_refresh_device_information", {}, [](F& f) { return f.RefreshDeviceInformation(); }},
    {"client_internal_get_server_env", {"1"}, [](F& f) { return f.GetServerEnv(1, number); }},
    {"client_internal_set_server_env", {"1", "2"}, [](F& f) { return f.SetServerEnv(1, 2); }},
    {"client_subscribe",
     {"washer", "[\"/a\"]"},
     [](F& f) { return f.Subscribe("washer", "[\"/a\"]", OnSubscription, nullptr); }},
    {"client_unsubscribe", {"washer", "[\"/a\"]"}, [](F& f) { return f.Unsubscribe("washer", "[\"/a\"]"); }},
    {"client_set_device_list_updated_cb", {}, [](F& f) { return f.SetDeviceListUpdatedCb(OnDevices, nullptr); }},
    {"client_unset_device_list_updated_cb", {}, [](F& f) { return f.UnsetDeviceListUpdatedCb(); }},
    {"client_set_device_detail_list_updated_cb",
     {},
     [](F& f) { return f.SetDeviceDetailListUpdatedCb(OnDetails, nullptr); }},
    {"client_unset_device_detail_list_updated_cb", {}, [](F& f) { return f.UnsetDeviceDetailListUpdatedCb(); }},
    {"client_set_group_list_updated_cb", {}, [](F& f) { return f.SetGroupListUpdatedCb(OnGroups, nullptr); }},
    {"client_unset_group_list_updated_cb", {}, [](F& f) { return f.UnsetGroupListUpdatedCb(); }},
    {"client_get_ui_metadata", {"vid-washer"}, [](F& f) { return f.GetUIMetadata("vid-washer", text); }},
    {"client_move_devices",
     {"flat", "bath", "2", "washer", "lamp"},
     [](F& f) { return f.MoveDevicesToOtherRoom("washer,lamp,more", 2, "flat", "bath", OnMove, nullptr); }},
    {"client_set_remote_representation",
     {"washer", "/a", "{}"},
     [](F& f) { return f.SetRemoteRepresentation("washer", "/a", "{}", OnRemote, nullptr); }},
    {"client_set_remote_attributes",
     {"washer", "/a", "{}"},
     [](F& f) { return f.SetRemoteAttributes("washer", "/a", "{}", OnRemote, nullptr); }},
    {"client_get_remote_representation",
     {"washer", "/a"},
     [](F& f) { return f.GetRemoteRepresentation("washer", "/a", OnRemote, nullptr); }},
    {"client_get_remote_attributes",
     {"washer", "/a"},
     [](F& f) { return f.GetRemoteAttributes("washer", "/a", OnRemote, nullptr); }},
    {"client_set_third_party_notification",
     {"p", "r", "a", "l"},
     [](F& f) { return f.SetThirdPartyNotification("p", "r", "a", "l", OnDone, nullptr); }},
    {"client_set_third_party_notification_status",
     {"2", "x", "y"},
     [](F& f) {
         return f.SetThirdPartyNotificationStatus({"x", "y"}, OnDone, nullptr);
     }},
    {"client_get_third_party_notification_status",
     {},
     [](F& f) { return f.GetThirdPartyNotificationStatus(OnStatus, nullptr); }},
    {"client_set_third_party_notification_status_updated_cb",
     {},
     [](F& f) { return f.SetThirdPartyNotificationStatusUpdatedCb(OnStatusUpdate, nullptr); }},
    {"client_unset_third_party_notification_status_updated_cb",
     {},
     [](F& f) { return f.UnsetThirdPartyNotificationStatusUpdatedCb(); }},
    {"core_notify_permission_update", {""}, [](F& f) { return f.CoreNotifyPermissionUpdate(""); }},
    {"core_execute_device", {"washer", kSwitchOn}, [](F& f) { return f.ExecuteCoreDevice("washer", kSwitchOn, text); }},
    {"core_get_device_status", {"washer"}, [](F& f) { return f.GetCoreDeviceStatus("washer", text); }},
    {"core_get_device_component_status",
     {"washer", "main"},
     [](F& f) { return f.GetCoreDeviceComponentStatus("washer", "main", text); }},
    {"core_get_device_capability_status",
     {"washer", "main", "switch"},
     [](F& f) { return f.GetCoreDeviceCapabilityStatus("washer", "main", "switch", text); }},
    {"core_get_device_presentation",
     {"presentation-washer", "maker"},
     [](F& f) { return f.GetCanvas("presentation-washer", "maker", text); }},
    {"core_set_sse_cb", {"301319"}, [](F& f) { return f.SetCoreSSECb(301319, OnEvent, nullptr); }},
    {"core_unset_sse_cb", {}, [](F& f) { return f.UnsetCoreSSECb(); }},
    {"core_create_ir_device",
     {"flat", kInfraredRemote},
     [](F& f) { return f.CreateIRDevice("flat", kInfraredRemote, text); }},
    {"core_get_ir_device", {"washer"}, [](F& f) { return f.GetIRDevice("washer", text); }, kNoData},
    {"core_delete_device", {"washer"}, [](F& f) { return f.DeleteDevice("washer"); }},
    {"core_start_hub_device_discover",
     {"tv-1", "30", "true", "false", "1"},
     [](F& f) { return f.StartHubDeviceDiscover("tv-1", 30, true, false, 1); }},
    {"core_stop_hub_device_discover", {"tv-1"}, [](F& f) { return f.StopHubDeviceDiscover("tv-1"); }},
    {"core_delete_favorite", {"flat", "favorite-1"}, [](F& f) { return f.DeleteFavorite("flat", "favorite-1"); }},
    {"core_delete_favorites", {"flat"}, [](F& f) { return f.DeleteFavorite("flat", ""); }},
    {"core_get_favorite_migration_status",
     {"flat"},
     [](F& f) { return f.GetFavoriteMigrationStatus("flat", flag, text, text2); }},
    {"core_update_favorite_migration_status",
     {"flat", "{}"},
     [](F& f) { return f.UpdateFavoriteMigrationStatus("flat", "{}", text); }},
    {"core_send_active_user_event", {"1", "2", "", "{}"}, [](F& f) { return f.SendActiveUserEvent(1, 2, "", "{}"); }},
    {"core_execute_installed_app",
     {"installed-1", "{}"},
     [](F& f) { return f.ExecuteInstalledApp("installed-1", "{}", text); },
     kNoData},
    {"core_get_wifilocker_user_setting", {}, [](F& f) { return f.GetWifiLockerUserSetting(OnJson, nullptr); }},
    {"core_set_wifilocker_user_setting",
     {"{}"},
     [](F& f) { return f.SetWifiLockerUserSetting("{}", OnJson, nullptr); }},
    {"core_locksmith_create_keyvalue", {"new", "v"}, [](F& f) { return f.CreateLocksmithKeyValue("new", "v", text); }},
    {"core_locksmith_get_keyvalue", {"key"}, [](F& f) { return f.GetLocksmithKeyValue("key", text); }},
    {"core_locksmith_update_keyvalue", {"key", "v"}, [](F& f) { return f.UpdateLocksmithKeyValue("key", "v", text); }},
    {"core_locksmith_delete_keyvalue", {"key"}, [](F& f) { return f.DeleteLocksmithKeyValue("key", text); }},
};

// Those that wait for the agent's reply.
const std::vector<Row> kBlocking = {
    {"core_get_location_users_async", {"flat"}, [](F& f) { return f.GetCoreLocationUsers("flat", text); }},
    {"core_get_all_location_users_async", {}, [](F& f) { return f.GetCoreLocationUsers("", text); }},
    {"core_create_room_async", {"flat", "Attic"}, [](F& f) { return f.CreateCoreRoom("flat", "Attic", text, text2); }},
    {"core_change_room_name_async",
     {"flat", "bath", "Spa"},
     [](F& f) { return f.ChangeCoreRoomName("flat", "bath", "Spa", text, text2); }},
    {"core_delete_room_async", {"flat", "bath"}, [](F& f) { return f.DeleteCoreRoom("flat", "bath", text, text2); }},
    {"core_get_device_json_async", {"washer"}, [](F& f) { return f.GetCoreDeviceJson("washer", text); }},
    {"core_get_device_list_json_async", {""}, [](F& f) { return f.GetCoreDeviceListJson("", text); }},
    {"core_execute_scene_async",
     {"flat", "scene-evening"},
     [](F& f) { return f.ExecuteCoreScene("flat", "scene-evening", text); }},
    {"core_create_scene_async", {"flat", "{}"}, [](F& f) { return f.CreateCoreScene("flat", "{}", text); }},
    {"core_update_scene_async",
     {"flat", "scene-evening", "{}"},
     [](F& f) { return f.UpdateCoreScene("flat", "scene-evening", "{}", text); }},
    {"core_delete_scene_async",
     {"flat", "scene-evening"},
     [](F& f) { return f.DeleteCoreScene("flat", "scene-evening", text); }},
    {"core_get_scene_icon_list_async", {}, [](F& f) { return f.GetCoreSceneIconInfoJson(text); }},
    {"core_update_rule_status_async",
     {"flat", "routine-wake", "false"},
     [](F& f) { return f.UpdateCoreRoutineStatus("flat", "routine-wake", false, text); }},
    {"core_get_installed_app_dashboard_json_async_v2",
     {"installed-1", "{}"},
     [](F& f) { return f.GetInstalledAppDashboardJson("installed-1", "{}", text); }},
    {"core_get_catalog_app_list_async", {"{}"}, [](F& f) { return f.GetCatalogAppList("{}", text, text2); }},
    {"core_update_notification_profile",
     {"p", "r", "a", "l"},
     [](F& f) { return f.SetNotificationProfile("p", "r", "a", "l", text2, text); }},
    {"core_get_notification_profile",
     {},
     [](F& f) { return f.GetNotificationProfile(text2, text, text3, text4, text5); }},
};

const std::vector<Row> kPlainLists = {
    {"client_get_device_detail_list",
     {},
     Lists<homeloom_client_device_detail_h>(
         [](F& f, auto& list, int& count) { return f.GetDeviceDetailList(list, count); }, &F::DeviceDetailGetString,
         &F::DeviceDetailDestroy)},
    {"client_get_group_list",
     {"2"},
     Lists<homeloom_client_group_h>([](F& f, auto& list, int& count) { return f.GetGroupList(list, 2, count); },
                                    &F::GroupGetString, &F::GroupDestroy)},
    {"core_replace_favorites",
     {"flat", R"([{"memberId":"washer"}])"},
     Lists<homeloom_core_favorite_h>(
         [](F& f, auto& list, int& count) {
             return f.ReplaceFavorites("flat", R"([{"memberId":"washer"}])", list, count);
         },
         &F::GetFavoriteString, &F::DestroyFavoriteList)},
    {"core_create_favorite",
     {"flat", R"({"memberId":"washer"})"},
     Gives<homeloom_core_favorite_h>(
         [](F& f, auto& favorite) { return f.CreateFavorite("flat", R"({"memberId":"washer"})", favorite); },
         &F::GetFavoriteString, &F::DestroySingleFavorite)},
};

const std::vector<Row> kBlockingLists = {
    {"core_get_location_list_async",
     {},
     Lists<homeloom_core_location_h>([](F& f, auto& list, int& count) { return f.GetCoreLocationList(list, count); },
                                     &F::GetCoreLocationString, &F::CoreLocationDestroy)},
    {"core_get_device_list_async",
     {},
     Lists<homeloom_core_device_h>([](F& f, auto& list, int& count) { return f.GetCoreDeviceList(list, count); },
                                   &F::GetCoreDeviceString, &F::CoreDeviceListDestroy)},
    {"core_get_scene_list_async",
     {"flat"},
     Lists<homeloom_core_scene_h>([](F& f, auto& list, int& count) { return f.GetCoreSceneList("flat", list, count); },
                                  &F::GetCoreSceneString, &F::DestroyCoreSceneList)},
    {"core_get_scene_async",
     {"flat", "scene-evening"},
     Gives<homeloom_core_scene_h>([](F& f, auto& scene) { return f.GetCoreScene("flat", "scene-evening", scene); },
                                  &F::GetCoreSceneString, &F::DestroyCoreSingleScene)},
    {"core_get_rule_list_async",
     {"flat"},
     Lists<homeloom_core_rule_h>([](F& f, auto& list, int& count) { return f.GetCoreRoutineList("flat", list, count); },
                                 &F::GetCoreRoutineString, &F::DestroyCoreRoutineList)},
    {"core_get_rule_async",
     {"flat", "routine-wake"},
     Gives<homeloom_core_rule_h>([](F& f, auto& rule) { return f.GetCoreRoutine("flat", "routine-wake", rule); },
                                 &F::GetCoreRoutineString, &F::DestroyCoreSingleRoutine)},
    {"core_get_favorite_list_async",
     {"flat"},
     Lists<homeloom_core_favorite_h>(
         [](F& f, auto& list, int& count) { return f.GetFavoriteList("flat", list, count); }, &F::GetFavoriteString,
         &F::DestroyFavoriteList)},
    {"core_get_installed_app_list_async",
     {},
     Lists<homeloom_core_installed_app_h>(
         [](F& f, auto& list, int& count) { return f.GetInstalledAppList(list, count); }, &F::GetInstalledAppString,
         &F::DestroyInstalledApp)},
};

class TesselHandlerTableTest : public TesselHandlerTest {
protected:
    /// Each operation passes its arguments on and the agent's code back, and frees what the agent hands out: the leak
    /// sanitizer and the agent's own count watch that.
    void Walk(const std::vector<Row>& rows, const Fault& fault) {
        for (const Row& row : rows) {
            const std::string function = row.Function();
            SCOPED_TRACE(function);
            agent.load(test::SmallHome());
            agent.resetCalls();
            agent.fault(function, fault);
            EXPECT_EQ(kAgentsCode, row.operation(facade));
            EXPECT_EQ(row.arguments, agent.calls()[function].arguments);
            agent.clearFaults();

            text.clear();
            EXPECT_EQ(row.goodCode, row.operation(facade));
            EXPECT_EQ(2, agent.callCount(function));
            agent.waitIdle();
        }
    }
};

TEST_F(TesselHandlerTableTest, PlainOperationsPassArgumentsAndCodes) {
    Connect();
    Walk(kPlain, Fault::fail(kAgentsCode));
    Walk(kPlainLists, Fault::fail(kAgentsCode));
}

TEST_F(TesselHandlerTableTest, BlockingOperationsPassArgumentsAndCodes) {
    Connect();
    Walk(kBlocking, Fault::answer(kAgentsCode));
    Walk(kBlockingLists, Fault::answer(kAgentsCode));
}

TEST_F(TesselHandlerTableTest, WithoutAHandleTheAgentIsNotAsked) {
    const homeloom::desktop::log::Capture log;
    facade.Quit();  // an operation that waited in spite of that would be seen by its code
    for (const auto* rows : {&kPlain, &kPlainLists, &kBlocking, &kBlockingLists}) {
        for (const Row& row : *rows) {
            // The users of locations are asked for in any case, and so wait.
            const bool asksAnyway = row.Function().find("location_users") != std::string::npos;
            EXPECT_EQ(asksAnyway ? -999999 : kRefused, row.operation(facade)) << row.name;
            EXPECT_EQ(asksAnyway ? 1 : 0, agent.callCount(row.Function())) << row.name;
        }
    }
    EXPECT_EQ(HOMELOOM_CLIENT_ERROR_NOT_CONNECTED, facade.Disconnect());
    EXPECT_EQ(0, facade.GetState());
    EXPECT_EQ("", facade.GetUserId());
    EXPECT_TRUE(log.contains("Fail to get user id"));
    EXPECT_EQ(nullptr, facade.GetHandle());
    EXPECT_EQ(kRefused, facade.Connect(nullptr, nullptr));
}

TEST_F(TesselHandlerTest, MissingArgumentsAreRefusedWithoutAskingTheAgent) {
    homeloom_core_scene_h* scenes = nullptr;
    homeloom_core_favorite_h* favorites = nullptr;
    homeloom_core_scene_h scene = nullptr;
    homeloom_core_rule_h rule = nullptr;
    homeloom_core_favorite_h favorite = nullptr;
    int count = 0;
    std::vector<std::string> texts;
    const auto move = [](const std::string& ids, int told) -> Operation {
        return [=](F& f) { return f.MoveDevicesToOtherRoom(ids, told, "l", "r", OnMove, nullptr); };
    };
    const std::vector<std::pair<const char*, Operation>> rows = {
        {"cbFunc is null", [](F& f) { return f.SetSignInStateChangeCb(nullptr, nullptr); }},
        {"device id is empty", [](F& f) { return f.Subscribe("", "[]", OnSubscription, nullptr); }},
        {"jsonResUri is empty", [](F& f) { return f.Subscribe("d", "", OnSubscription, nullptr); }},
        {"jsonResUri is empty", [](F& f) { return f.Unsubscribe("d", ""); }},
        {"vid is empty", [](F& f) { return f.GetUIMetadata("", text); }},
        {"uri is empty", [](F& f) { return f.SetRemoteAttributes("d", "", "{}", OnRemote, nullptr); }},
        {"device id is empty", [](F& f) { return f.GetRemoteAttributes("", "/a", OnRemote, nullptr); }},
        {"device_name is empty", [](F& f) { return f.ChangeDeviceName("d", ""); }},
        {"device_ids is empty", [](F& f) { return f.MoveDeviceToOtherRoom("", "l", "r", OnMove, nullptr); }},
        {"location_id is empty", [](F& f) { return f.MoveDevicesToOtherRoom("a,b", 2, "", "r", OnMove, nullptr); }},
        {"device_ids does not hold", move("a,b", 3)},
        {"device_ids does not hold", move("a,b", 0)},
        {"device_ids does not hold", move("a,b", -1)},
        {"device_ids does not hold", move("a,,b", 2)},
        {"device_ids does not hold", move("a," + std::string(40, 'x'), 2)},
        {"condition_h is null", [](F& f) { return f.AddAppLaunchCondition(nullptr); }},
        {"condition_h is null", [](F& f) { return f.AppLaunchConditionDestroy(nullptr); }},
        {"push reg id is empty", [](F& f) { return f.SetThirdPartyNotification("p", "", "a", "l", OnDone, nullptr); }},
        {"locale is empty", [](F& f) { return f.SetNotificationProfile("p", "r", "a", "", text, text2); }},
        {"presentation_id is empty", [](F& f) { return f.GetCanvas("", "m", text); }},
        {"manufacturer_name is empty", [](F& f) { return f.GetCanvas("p", "", text); }},
        {"capability_id is empty", [](F& f) { return f.GetCoreDeviceCapabilityStatus("d", "main", "", text); }},
        {"json_str_command is empty", [](F& f) { return f.ExecuteCoreDevice("d", "", text); }},
        {"device_id is empty", [](F& f) { return f.GetCoreDeviceJson("", text); }},
        {"metadata is empty", [](F& f) { return f.SendActiveUserEvent(1, 1, "label", ""); }},
        {"location_id is empty", [](F& f) { return f.CreateCoreRoom("", "n", text, text2); }},
        {"location_id is empty", [&](F& f) { return f.GetCoreSceneList("", scenes, count); }},
        {"scene_id is empty", [&](F& f) { return f.GetCoreScene("l", "", scene); }},
        {"location_id is empty", [&](F& f) { return f.GetCoreRoutine("", "r", rule); }},
        {"location_id is empty", [&](F& f) { return f.CreateFavorite("", "{}", favorite); }},
        {"favorite_info_array is empty", [&](F& f) { return f.ReplaceFavorites("l", "", favorites, count); }},
        {"device_h is null", [](F& f) { return f.DeviceGetString(nullptr, 0, text); }},
        {"device_detail_h is null", [&](F& f) { return f.DeviceDetailGetStringArray(nullptr, 1, texts); }},
        {"favorite_h is null", [](F& f) { return f.GetFavoriteInt(nullptr, 9, number); }},
        {"scene_list_h is null", [](F& f) { return f.DestroyCoreSceneList(nullptr, 1); }},
        {"routine_h is null", [](F& f) { return f.DestroyCoreSingleRoutine(nullptr); }},
    };
    Connect();
    homeloom::desktop::log::Capture log;
    for (const auto& [complaint, operation] : rows) {
        log.clear();
        EXPECT_EQ(kRefused, operation(facade)) << complaint;
        EXPECT_TRUE(log.contains(complaint)) << complaint;
    }
    EXPECT_TRUE(agent.calls().empty());
}

TEST_F(TesselHandlerTest, ACountThatLiesHarmsNothing) {
    Connect();
    homeloom_client_device_detail_h* list = nullptr;
    int count = 0;
    ASSERT_EQ(0, facade.GetDeviceDetailList(list, count));
    EXPECT_EQ(kRefused, facade.DeviceDetailDestroy(list, -1));
    EXPECT_EQ(0, facade.DeviceDetailDestroy(list, count));

    homeloom_core_scene_h* scenes = nullptr;
    GetSceneListParam(0, nullptr, 3).records.Release(scenes, count);
    EXPECT_EQ(0, count);
}

TEST_F(TesselHandlerTest, AGroupListWithoutGroupsHasACode) {
    Connect();
    const auto codeOf = [this](int type) {
        homeloom_client_group_h* list = nullptr;
        int count = 7;
        const int ret = facade.GetGroupList(list, type, count);
        EXPECT_EQ(nullptr, list);
        EXPECT_EQ(0, count);
        return ret;
    };
    simulator::Home home = test::SmallHome();
    home.locations.clear();
    agent.load(home);
    EXPECT_EQ(kNoData, codeOf(HOMELOOM_CLIENT_GROUP_TYPE_ROOM));
    EXPECT_EQ(kNoData, codeOf(HOMELOOM_CLIENT_GROUP_TYPE_LOCATION));
    agent.fault("homeloom_client_get_group_list", Fault::fail(kAgentsCode));
    EXPECT_EQ(kAgentsCode, codeOf(HOMELOOM_CLIENT_GROUP_TYPE_ROOM));
}

TEST_F(TesselHandlerTest, ANewNameCountsOnlyWithTheAgentsReply) {
    Connect();
    EXPECT_EQ(0, facade.ChangeDeviceName("washer", "Laundry"));
    agent.fault("homeloom_core_change_device_name", Fault::fail(kAgentsCode));
    EXPECT_EQ(kRefused, facade.ChangeDeviceName("washer", "Wash"));
    EXPECT_EQ("Laundry", agent.device("washer")->nick);
}

TEST_F(TesselHandlerTest, TheSignInSummaryNamesTheServers) {
    constexpr char kKey[] = "memory/iot/client/signup_info";
    const auto summary = [&] {
        facade.StoreSigninInfo();
        char* value = vconf_get_str(kKey);
        std::string result = value != nullptr ? value : "";
        std::free(value);
        return result;
    };
    vconf_set_str(kKey, "untouched");
    EXPECT_EQ("untouched", summary()) << "without a handle";
    Connect();
    simulator::Home home = test::SmallHome();
    const std::string begin = R"({"uid":"user-mia","accessToken":"token-mia","di":"tv-1",)";
    const std::vector<std::pair<int, std::string>> names = {{0, "STG"}, {1, "PROD"}, {2, "ACC"}, {7, "PROD"}};
    for (const auto& [environment, name] : names) {
        home.serverEnvironments = {{0, environment}, {1, 1}};
        agent.load(home);
        EXPECT_EQ(begin + R"("IoTCloud":")" + name + R"(","UiMeta":"PROD"})", summary());
    }
    agent.signOut();
    vconf_set_str(kKey, "untouched");
    EXPECT_EQ("untouched", summary()) << "signed out";
}

TEST_F(TesselHandlerTest, QuitEndsAWaitAndLateOrRepeatedListsAreDestroyed) {
    Connect();
    homeloom_core_scene_h* list = nullptr;
    int count = 0;
    agent.fault("homeloom_core_get_scene_list_async", Fault::late(std::chrono::hours(1)));
    const int observer =
        agent.addCallObserver([this](const std::string&, const std::vector<std::string>&) { facade.Quit(); });
    EXPECT_EQ(-999999, facade.GetCoreSceneList("flat", list, count));
    EXPECT_EQ(nullptr, list);
    agent.removeCallObserver(observer);
    homeloom::clock::advance(std::chrono::hours(1));
    agent.waitIdle();

    facade.Init();
    agent.fault("homeloom_core_get_scene_list_async", Fault::twice());
    ASSERT_EQ(0, facade.GetCoreSceneList("flat", list, count));
    EXPECT_EQ(0, facade.DestroyCoreSceneList(list, count));
    agent.waitIdle();
}

TEST_F(TesselHandlerTest, DisconnectForgetsTheHandleWhateverTheAgentSays) {
    Connect();
    EXPECT_NE(nullptr, facade.GetHandle());
    EXPECT_EQ(HOMELOOM_CLIENT_ERROR_ALREADY_CONNECTED, facade.Connect(OnConnection, nullptr));
    EXPECT_EQ("user-mia", facade.GetUserId());
    agent.setState(2);
    EXPECT_EQ(2, facade.GetState());
    agent.fault("homeloom_client_get_state", Fault::fail(-5));
    EXPECT_EQ(0, facade.GetState());
    const homeloom_client_h handle = facade.GetHandle();
    agent.fault("homeloom_client_disconnect", Fault::fail(-5));
    EXPECT_EQ(-5, facade.Disconnect());
    EXPECT_EQ(nullptr, facade.GetHandle());
    agent.clearFaults();
    EXPECT_EQ(0, homeloom_client_disconnect(handle));
}

}  // namespace

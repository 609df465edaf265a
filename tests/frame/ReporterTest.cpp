#include "Common/CReporter.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "CPluginMgr.h"
#include "Common/CTransaction.h"
#include "Helpers/CPropertyListHelper.h"
#include "support/Desk.h"

using namespace VMFramework::HomeLoom;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Transaction = std::shared_ptr<CTransaction>;

struct Row {
    int type;
    const char* answer;  // "result" or "notify", name and fields
    const char* update;  // the name without a request, where it is another
    std::function<void(const Transaction&)> report;
};

template <typename Param, typename Fill>
Row Of(const char* answer, Fill fill, const char* update = "") {
    return {static_cast<int>(Param(nullptr).type), answer, update, [fill](const Transaction& transaction) {
                Param param(transaction);
                fill(param);
                Reporter::Report(param);
            }};
}

const auto kNothing = [](auto&) {};
const auto kResult = [](auto& p) { p.result = true; };
const auto kResultAndDevice = [](auto& p) { p.result = true, p.deviceId = "d"; };
const auto kStream = [](auto& p) { p.deviceId = "d", p.cameraStreamUrl = "u"; };
const auto kDiscovery = [](auto& p) { p.result = true, p.hlHubDi = "h"; };
const auto kCamera = [](auto& p) { p.result = true, p.deviceId = "d", p.cameraNotificationType = 7; };
const auto kScene = [](auto& p) { p.result = true, p.locationId = "l", p.sceneId = "s", p.sceneJson = "{}"; };
const auto kRoutine = [](auto& p) { p.result = true, p.locationId = "l", p.routineId = "r", p.routineJson = "{}"; };
const auto kData = [](auto& p) { p.result = true, p.deviceId = "d", p.data = "x"; };
const auto kLocksmith = [](auto& p) { p.result = true, p.locksmithInfoJson = "{}"; };

// clang-format off
const std::vector<Row>& Rows() {
    static const std::vector<Row> rows{
        Of<DoMainActionReportParam>("result hl_do_main_action result=true device_id='d'", kResultAndDevice),
        Of<GetAvpCameraUrlParam>("notify hl_get_avp_camera_url device_id='d' camera_stream_url='u' access_token='t'",
            [](auto& p) { p.deviceId = "d", p.cameraStreamUrl = "u", p.accessToken = "t"; }),
        Of<GetNoneAvpCameraUrlParam>("notify hl_get_none_avp_camera_url device_id='d' camera_stream_url='u'", kStream),
        Of<GetRingDoorbellUrlParam>("notify hl_get_ring_doorbell_url device_id='d' camera_stream_url='u'", kStream),
        Of<GetRefrigeratorInnerViewUrlParam>(
            "notify hl_get_refrigerator_innerview_url is_success=true inner_view_url='u' datetime='now'",
            [](auto& p) { p.isSuccess = true, p.innerViewUrl = "u", p.datetime = "now"; }),
        Of<GetDeviceIconsParam>("notify hl_get_device_icon_info get_device_icon_info_result=true device_icon_info='{}'",
            [](auto& p) { p.result = true, p.deviceIconInfo = "{}"; }),
        Of<GetFavoritesParam>("notify hl_get_favorite get_favorite_result=true location_id='l' favorite_size=3 "
                              "favorite_info_array='[]'",
            [](auto& p) { p.result = true, p.locationId = "l", p.favoriteSize = 3, p.favoriteInfoArray = "[]"; },
            "hl_favorite_updated"),
        Of<GetHubInfoParam>("notify hl_get_hub_info hl_hub_info='{}'", [](auto& p) { p.hlHubInfo = "{}"; }),
        Of<StartHubOnboardingParam>("result hl_start_hub_onboarding", kNothing),
        Of<StopHubOnboardingParam>("result hl_stop_hub_onboarding", kNothing),
        Of<ResetDongleParam>("result hl_reset_dongle", kNothing),
        Of<ResetHubParam>("result hl_reset_hub", kNothing),
        Of<StartHubDeviceDiscoveryParam>("result hl_start_hub_device_discovery result=true hl_hub_di='h'", kDiscovery),
        Of<StopHubDeviceDiscoveryParam>("result hl_stop_hub_device_discovery result=true hl_hub_di='h'", kDiscovery),
        Of<SetCameraNotificationTypeParam>(
            "notify hl_set_camera_notification result=true device_id='d' camera_notification_type=7", kCamera),
        Of<UnsetCameraNotificationTypeParam>(
            "notify hl_unset_camera_notification result=true device_id='d' camera_notification_type=7", kCamera),
        Of<SetThirdPartyNotificationParam>("result set_third_party_notification result=true", kResult),
        Of<GetThirdPartyNotificationParam>("result get_third_party_notification result=true push_provider='p' "
                                           "push_reg_id='r' push_app_id='a' locale='en'",
            [](auto& p) { p.result = true, p.pushProvider = "p", p.pushRegId = "r", p.pushAppId = "a", p.locale = "en"; }),
        Of<SetThirdPartyNotificationStatusParam>("notify set_third_party_notification_status result=true", kResult),
        Of<GetThirdPartyNotificationStatusParam>(
            "notify get_third_party_notification_status result=true block_device_ids='d,e'",
            [](auto& p) { p.result = true, p.blockDeviceIds = "d,e"; }),
        Of<ThirdPartyNotificationStatusUpdatedParam>("notify third_party_notification_status_updated", kNothing),
        Of<GetInstalledServiceAppInfoParam>(
            "notify hl_get_installed_service_app_info result=true location_id='l' installed_service_app_info_json='{}'",
            [](auto& p) { p.result = true, p.locationId = "l", p.installedServiceAppInfoJson = "{}"; },
            "hl_installed_service_app_info_updated"),
        Of<GetEnergyInfoParam>("notify hl_get_energy_info result=true installed_service_app_info_json='{}'",
            [](auto& p) { p.result = true, p.installedServiceAppInfoJson = "{}"; }, "hl_energy_info_updated"),
        Of<GetWifiLockerUserSettingParam>(
            "notify get_wifi_locker_user_setting result=true wifi_locker_user_setting_enabled=1",
            [](auto& p) { p.result = true, p.wifiLockerUserSettingEnabled = 1; }, "wifi_locker_user_setting_updated"),
        Of<SetWifiLockerUserSettingParam>("notify set_wifi_locker_user_setting result=true", kResult),
        Of<GetFavoriteMigrationStatusParam>(
            "notify hl_get_favorite_migration_status get_favorite_migration_status_result=true location_id='l' "
            "isMigrated=true lastUpdatedDate='now' deviceModel='m'",
            [](auto& p) {
                p.result = true, p.locationId = "l", p.isMigrated = true, p.lastUpdatedDate = "now", p.deviceModel = "m";
            }),
        Of<UpdateFavoriteMigrationStatusParam>(
            "notify hl_update_favorite_migration_status update_favorite_migration_status_result=true location_id='l' "
            "favorite_migration_status_info='{}' status_result='ok'",
            [](auto& p) {
                p.result = true, p.locationId = "l", p.favoriteMigrationStatusInfo = "{}", p.statusResult = "ok";
            }),
        // Name and key come with the parameter; the room's name stays behind.
        Of<RoomUpdatedParam>("notify hl_change_room_name change_room_name_result=true location_id='l' room_id='r'",
            [](auto& p) {
                p.property_result = "hl_change_room_name", p.result_key = "change_room_name_result", p.result = true;
                p.locationId = "l", p.roomId = "r", p.roomName = "Attic";
            }),
        Of<ChangeDeviceNameParam>(
            "notify hl_change_device_name change_device_name_result=true device_id='d' device_name='n'",
            [](auto& p) { p.result = true, p.deviceId = "d", p.deviceName = "n"; }),
        Of<MoveDevicesParam>("notify hl_move_devices move_devices_result=true dev_ids='d,e' devices_size=2",
            [](auto& p) { p.result = true, p.devIds = "d,e", p.devicesSize = 2; }),
        Of<CreateFavoriteParam>("notify hl_create_favorite create_favorite_result=true location_id='l' favorite_info='{}'",
            [](auto& p) { p.result = true, p.locationId = "l", p.favoriteInfo = "{}"; }),
        Of<DeleteFavoriteParam>("notify hl_delete_favorite delete_favorite_result=true location_id='l' favorite_id='f'",
            [](auto& p) { p.result = true, p.locationId = "l", p.favoriteId = "f"; }),
        Of<ReplaceFavoriteParam>("notify hl_replace_favorite_list replace_favorite_result=true location_id='l'",
            [](auto& p) { p.result = true, p.locationId = "l"; }),
        Of<ExecuteSceneParam>("notify hl_execute_scene result=true location_id='l' scene_id='s' result_value='v'",
            [](auto& p) { p.result = true, p.locationId = "l", p.sceneId = "s", p.resultValue = "v"; }),
        Of<CreateSceneParam>("notify hl_create_scene result=true location_id='l' scene_id='s' scene_json='{}'", kScene),
        Of<UpdateSceneParam>("notify hl_update_scene result=true location_id='l' scene_id='s' scene_json='{}'", kScene),
        Of<DeleteSceneParam>("notify hl_delete_scene result=true location_id='l' scene_id='s'",
            [](auto& p) { p.result = true, p.locationId = "l", p.sceneId = "s"; }),
        Of<GetSceneIconsParam>("notify hl_get_scene_icon_info result=true scene_icon_info='{}'",
            [](auto& p) { p.result = true, p.sceneIconInfo = "{}"; }),
        Of<CreateRoutineParam>("notify hl_create_routine result=true location_id='l' routine_id='r' routine_json='{}'",
            kRoutine),
        Of<UpdateRoutineParam>("notify hl_update_routine result=true location_id='l' routine_id='r' routine_json='{}'",
            kRoutine),
        Of<DeleteRoutineParam>("notify hl_delete_routine result=true location_id='l' routine_id='r'",
            [](auto& p) { p.result = true, p.locationId = "l", p.routineId = "r"; }),
        Of<UpdateRoutineStatusParam>("notify hl_update_routine_enable_status result=true result_value='v'",
            [](auto& p) { p.result = true, p.resultValue = "v"; }),
        Of<OnboardIRDeviceParam>("notify hl_onboard_ir_device result=true codeset='c' device_id='d'",
            [](auto& p) { p.result = true, p.codeset = "c", p.deviceId = "d"; }),
        Of<DeleteDeviceParam>("notify hl_delete_device result=true device_id='d'", kResultAndDevice),
        Of<SendActiveUserEventParam>("notify hl_send_active_user_event result=true", kResult),
        Of<GetCapabilityStatusParam>("notify get_capability_status result=true device_id='d' data='x'", kData),
        Of<ExecuteCommandParam>("result execute_command result=true device_id='d' data='x'", kData),
        Of<CreateLocksmithKeyValueParam>("notify create_locksmith_key_value result=true locksmith_info_json='{}'",
            kLocksmith),
        Of<GetLocksmithKeyValueParam>("notify get_locksmith_key_value result=true locksmith_info_json='{}'", kLocksmith),
        Of<UpdateLocksmithKeyValueParam>("notify update_locksmith_key_value result=true locksmith_info_json='{}'",
            kLocksmith),
        Of<DeleteLocksmithKeyValueParam>("notify delete_locksmith_key_value result=true locksmith_info_json='{}'",
            kLocksmith),
        Of<SetServerEnvParam>("notify hl_set_server_env result=true", kResult),
        Of<GetAccessTokenUidParam>("notify hl_get_accesstoken_uid access_token='t' uid='u'",
            [](auto& p) { p.accessToken = "t", p.uid = "u"; }),
    };
    return rows;
}
// clang-format on

/// "notify hl_x a='b'" with another name.
std::string Renamed(const std::string& line, const std::string& name) {
    const auto begin = line.find(' ') + 1;
    const auto end = std::min(line.find(' ', begin), line.size());
    return name.empty() ? line : line.substr(0, begin) + name + line.substr(end);
}

/// What the log tells of it: "notify hl_x a='b' c=true" is logged as "a : b, c : 1".
std::string LogOf(const Row& row) {
    switch (static_cast<ReportType>(row.type)) {
        case ReportType::RoomUpdated:
            return "RoomUpdated change_room_name_result : 1, location_id : l, room_id : r, room_name : Attic";
        case ReportType::SetServerEnv:
        case ReportType::GetAccessTokenUid:
            return "SetServerEnv try to report!";
        default:
            break;
    }
    std::string text;
    const std::string answer = row.answer;
    const std::regex field(R"((\w+)='?([^' ]*))");
    for (std::sregex_iterator match(answer.begin(), answer.end(), field), end; match != end; ++match) {
        const std::string value = (*match)[2] == "true" ? "1" : (*match)[2].str();
        text += (text.empty() ? " " : ", ") + (*match)[1].str() + " : " + value;
    }
    return text;
}

}  // namespace

class ReporterTest : public testing::Test {
protected:
    ReporterTest() : desk(simulator::Home()) {
        desk.setDisclaimer(0);  // nothing comes but what the tests report
        desk.start();
    }

    /// Sends its answers the way of plain reports, and counts them.
    Transaction MakeTransaction() {
        return CTransaction::Create(
            IPropertyListHelper::Create(),
            [this](const auto& list) { ++answers, CPluginMgr::GetInstance().ReportServiceNotify(list); },
            [this](const auto& list) { ++answers, CPluginMgr::GetInstance().ReportRequestResult(list); });
    }

    Desk desk;
    int answers = 0;
};

TEST_F(ReporterTest, EveryKindByNameWayAndFields) {
    std::set<int> types;
    for (const Row& row : Rows()) {
        SCOPED_TRACE(row.answer);
        EXPECT_TRUE(types.insert(row.type).second);

        desk.mark();
        answers = 0;
        row.report(MakeTransaction());
        EXPECT_THAT(desk.lines(), ElementsAre(row.answer));
        EXPECT_EQ(answers, 1) << "tied to its request";
        EXPECT_TRUE(desk.log.contains(LogOf(row))) << LogOf(row);

        desk.mark();
        row.report(nullptr);
        EXPECT_THAT(desk.lines(), ElementsAre(Renamed(row.answer, row.update)));
    }
    EXPECT_EQ(types.size(), 53u);
    EXPECT_EQ(types.count(1), 0u);
    EXPECT_EQ(*types.rbegin(), 53);
}

TEST_F(ReporterTest, AnUnknownKindIsLoggedOnly) {
    for (const int type : {1, 54, -1}) {
        ReportParam param(static_cast<ReportType>(type), MakeTransaction());
        Reporter::Report(param);
        EXPECT_TRUE(desk.log.contains("invalid report type : " + std::to_string(type)));
    }
    EXPECT_THAT(desk.lines(), IsEmpty());
    EXPECT_EQ(answers, 0);
}

// The reports' names, and how a log line, a property list and the sending follow from a report's values.
#include "Common/CReporter.h"

#include <functional>
#include <string_view>
#include <unordered_map>

#include "Common/CTransaction.h"
#include "Common/HLLog.h"
#include "Common/WayOut.h"
#include "Helpers/CPropertyListHelper.h"

namespace VMFramework::HomeLoom {

namespace {

using namespace Names;
using List = std::shared_ptr<IPropertyListHelper>;
using Send = decltype(&Reporter::sendResult);

void Push(const List& list, const char* key, bool value) {
    list->PushBooleanData(key, value);
}
void Push(const List& list, const char* key, int value) {
    list->PushIntData(key, value);
}
void Push(const List& list, const char* key, const std::string& value) {
    list->PushStringData(key, value);
}

/// Adds ", key : value" to a log line.
void Tell(std::string& line, const char* key, const std::string& value) {
    line.append(", ").append(key).append(" : ").append(value);
}
void Tell(std::string& line, const char* key, int value) {
    Tell(line, key, std::to_string(value));
}

/// Calls 'take' with key and value of each value, in their order.
template <ReportType Type, typename... Values, typename Take>
void ForEachValue(const ReportOf<Type, Values...>& param, Take take) {
    [[maybe_unused]] const auto each = [&take](const auto& value) {
        const auto& [member] = value;
        take(value.kKey, member);
    };
    (each(static_cast<const Values&>(param)), ...);
}

/// "ExecuteScene result : 1, location_id : home"
template <typename Param>
std::string LineOf(const char* function, const Param& param) {
    std::string values;
    ForEachValue(param, [&values](const char* key, const auto& value) { Tell(values, key, value); });
    return values.empty() ? function : function + values.erase(0, 1);
}

template <typename Param>
void SendAs(Send send, const char* name, const Param& param) {
    const List list = IPropertyListHelper::Create();
    list->SetName(name);
    ForEachValue(param, [&list](const char* key, const auto& value) { Push(list, key, value); });
    send(param.transaction, list);
}

/// An answer carries the request's name; a few reports have a name of their own for an update without a request.
struct Name {
    Name(const char* both) : answer(both), update(both) {}
    Name(const char* answerName, const char* updateName) : answer(answerName), update(updateName) {}

    const char* answer;
    const char* update;
};

using Row = std::pair<const ReportType, std::function<void(ReportParam&)>>;

// How most reports are told. It is one type for all of them: a type for each would bring its own code and its own name
// into the library, together 28 KB of it.
struct Told {
    void (*logAndSend)(const Told& told, ReportParam& base);
    Send send;
    const char* function;
    Name name;

    void operator()(ReportParam& base) const { logAndSend(*this, base); }
};

template <typename Param>
void LogAndSend(const Told& told, ReportParam& base) {
    const auto& param = static_cast<const Param&>(base);
    if (Log::IsTaken(DLOG_INFO, Log::kTag)) {
        Log::Write(DLOG_INFO, Log::kTag, {__FILE__, told.function, __LINE__}, "%s",
                   LineOf(told.function, param).c_str());
    }
    SendAs(told.send, param.transaction ? told.name.answer : told.name.update, param);
}

template <typename Param>
Row Describe(Send send, const char* function, const Name& name) {
    return {Param::kType, Told{LogAndSend<Param>, send, function, name}};
}

template <typename Param>
Row Result(const char* function, const Name& name) {
    return Describe<Param>(Reporter::sendResult, function, name);
}

template <typename Param>
Row Notify(const char* function, const Name& name) {
    return Describe<Param>(Reporter::sendNotify, function, name);
}

// Three have log lines that tell something else than what they send.

void RoomUpdated(ReportParam& base) {
    const auto& param = static_cast<RoomUpdatedParam&>(base);
    HL_LOGI("RoomUpdated %s : %d, location_id : %s, room_id : %s, room_name : %s", param.result_key.c_str(),
            param.result, param.locationId.c_str(), param.roomId.c_str(), param.roomName.c_str());
    const List list = IPropertyListHelper::Create();
    list->SetName(param.property_result);
    ForEachValue(param, [&](std::string_view key, const auto& value) {
        Push(list, key == RESULT ? param.result_key.c_str() : key.data(), value);
    });
    Reporter::sendNotify(param.transaction, list);
}

// These two have the same text: a search of the log for it finds both.

void SetServerEnv(ReportParam& base) {
    HL_LOGI("SetServerEnv try to report!");
    SendAs(Reporter::sendNotify, HL_SET_SERVER_ENV, static_cast<SetServerEnvParam&>(base));
}

void GetAccessTokenUid(ReportParam& base) {
    HL_LOGI("SetServerEnv try to report!");
    SendAs(Reporter::sendNotify, HL_GET_ACCESSTOKEN_UID, static_cast<GetAccessTokenUidParam&>(base));
}

const std::unordered_map<ReportType, std::function<void(ReportParam&)>> kReports = {
    Result<DoMainActionReportParam>("DoMainAction", HL_DO_MAIN_ACTION),
    Notify<GetAvpCameraUrlParam>("GetAvpCameraUrl", HL_GET_AVP_CAMERA_URL),
    Notify<GetNoneAvpCameraUrlParam>("GetNoneAvpCameraUrl", HL_GET_NONE_AVP_CAMERA_URL),
    Notify<GetRingDoorbellUrlParam>("GetRingDoorbellUrl", HL_GET_RING_DOORBELL_URL),
    Notify<GetRefrigeratorInnerViewUrlParam>("GetRefrigeratorInnerviewUrl", HL_GET_REFRIGERATOR_INNERVIEW_URL),
    Notify<GetDeviceIconsParam>("GetDeviceIcons", HL_GET_DEVICE_ICON_INFO),
    Notify<GetFavoritesParam>("GetFavorites", {HL_GET_FAVORITE, HL_FAVORITE_UPDATED}),
    Notify<GetHubInfoParam>("GetHubInfo", HL_GET_HUB_INFO),
    Result<StartHubOnboardingParam>("StartHubOnboarding", HL_START_HUB_ONBOARDING),
    Result<StopHubOnboardingParam>("StopHubOnboarding", HL_STOP_HUB_ONBOARDING),
    Result<ResetDongleParam>("ResetDongle", HL_RESET_DONGLE),
    Result<ResetHubParam>("ResetHub", HL_RESET_HUB),
    Result<StartHubDeviceDiscoveryParam>("StartHubDeviceDiscovery", HL_START_HUB_DEVICE_DISCOVERY),
    Result<StopHubDeviceDiscoveryParam>("StopHubDeviceDiscovery", HL_STOP_HUB_DEVICE_DISCOVERY),
    Notify<SetCameraNotificationTypeParam>("SetCameraNotificationType", HL_SET_CAMERA_NOTIFICATION),
    Notify<UnsetCameraNotificationTypeParam>("UnsetCameraNotificationType", HL_UNSET_CAMERA_NOTIFICATION),
    Result<SetThirdPartyNotificationParam>("SetThirdPartyNotification", SET_THIRD_PARTY_NOTIFICATION),
    Result<GetThirdPartyNotificationParam>("GetThirdPartyNotification", GET_THIRD_PARTY_NOTIFICATION),
    Notify<SetThirdPartyNotificationStatusParam>("SetThirdPartyNotificationStatus",
                                                 SET_THIRD_PARTY_NOTIFICATION_STATUS),
    Notify<GetThirdPartyNotificationStatusParam>("GetThirdPartyNotificationStatus",
                                                 GET_THIRD_PARTY_NOTIFICATION_STATUS),
    Notify<ThirdPartyNotificationStatusUpdatedParam>("ThirdPartyNotificationStatusUpdated",
                                                     THIRD_PARTY_NOTIFICATION_STATUS_UPDATED),
    Notify<GetInstalledServiceAppInfoParam>("GetInstalledServiceAppInfo",
                                            {HL_GET_INSTALLED_SERVICE_APP_INFO, HL_INSTALLED_SERVICE_APP_INFO_UPDATED}),
    Notify<GetEnergyInfoParam>("GetEnergyInfo", {HL_GET_ENERGY_INFO, HL_ENERGY_INFO_UPDATED}),
    Notify<GetWifiLockerUserSettingParam>("GetWifiLockerUserSetting",
                                          {GET_WIFI_LOCKER_USER_SETTING, WIFI_LOCKER_USER_SETTING_UPDATED}),
    Notify<SetWifiLockerUserSettingParam>("SetWifiLockerUserSetting", SET_WIFI_LOCKER_USER_SETTING),
    Notify<GetFavoriteMigrationStatusParam>("GetFavoriteMigrationStatus", HL_GET_FAVORITE_MIGRATION_STATUS),
    Notify<UpdateFavoriteMigrationStatusParam>("UpdateFavoriteMigrationStatus", HL_UPDATE_FAVORITE_MIGRATION_STATUS),
    {ReportType::RoomUpdated, RoomUpdated},
    Notify<ChangeDeviceNameParam>("ChangeDeviceName", HL_CHANGE_DEVICE_NAME),
    Notify<MoveDevicesParam>("MoveDevices", HL_MOVE_DEVICES),
    Notify<CreateFavoriteParam>("CreateFavorite", HL_CREATE_FAVORITE),
    Notify<DeleteFavoriteParam>("DeleteFavorite", HL_DELETE_FAVORITE),
    Notify<ReplaceFavoriteParam>("ReplaceFavorite", HL_REPLACE_FAVORITE_LIST),
    Notify<ExecuteSceneParam>("ExecuteScene", HL_EXECUTE_SCENE),
    Notify<CreateSceneParam>("CreateScene", HL_CREATE_SCENE),
    Notify<UpdateSceneParam>("UpdateScene", HL_UPDATE_SCENE),
    Notify<DeleteSceneParam>("DeleteScene", HL_DELETE_SCENE),
    Notify<GetSceneIconsParam>("GetSceneIcons", HL_GET_SCENE_ICON_INFO),
    Notify<CreateRoutineParam>("CreateRoutine", HL_CREATE_ROUTINE),
    Notify<UpdateRoutineParam>("UpdateRoutine", HL_UPDATE_ROUTINE),
    Notify<DeleteRoutineParam>("DeleteRoutine", HL_DELETE_ROUTINE),
    Notify<UpdateRoutineStatusParam>("UpdateRoutineEnableStatus", HL_UPDATE_ROUTINE_ENABLE_STATUS),
    Notify<OnboardIRDeviceParam>("OnboardIRDevice", HL_ONBOARD_IR_DEVICE),
    Notify<DeleteDeviceParam>("DeleteDevice", HL_DELETE_DEVICE),
    Notify<SendActiveUserEventParam>("SendActiveUserEvent", HL_SEND_ACTIVE_USER_EVENT),
    Notify<GetCapabilityStatusParam>("GetCapabilityStatus", GET_CAPABILITY_STATUS),
    Result<ExecuteCommandParam>("ExecuteCommand", EXECUTE_COMMAND),
    Notify<CreateLocksmithKeyValueParam>("CreateLocksmithKeyValue", CREATE_LOCKSMITH_KEY_VALUE),
    Notify<GetLocksmithKeyValueParam>("GetLocksmithKeyValue", GET_LOCKSMITH_KEY_VALUE),
    Notify<UpdateLocksmithKeyValueParam>("UpdateLocksmithKeyValue", UPDATE_LOCKSMITH_KEY_VALUE),
    Notify<DeleteLocksmithKeyValueParam>("DeleteLocksmithKeyValue", DELETE_LOCKSMITH_KEY_VALUE),
    {ReportType::SetServerEnv, SetServerEnv},
    {ReportType::GetAccessTokenUid, GetAccessTokenUid},
};

}  // namespace

void Reporter::Report(ReportParam& param) {
    const auto report = kReports.find(param.type);
    if (report == kReports.end()) {
        HL_LOGE("invalid report type : %d", static_cast<int>(param.type));
        return;
    }
    report->second(param);
}

void Reporter::sendResult(const std::shared_ptr<CTransaction>& transaction,
                          const std::shared_ptr<IPropertyListHelper>& list) {
    if (transaction) {
        HL_LOGI("use transaction send result");
        transaction->SendResult(list);
    } else {
        HL_LOGI("use report request result");
        IWayOut::Get().ReportRequestResult(list);
    }
}

void Reporter::sendNotify(const std::shared_ptr<CTransaction>& transaction,
                          const std::shared_ptr<IPropertyListHelper>& list) {
    if (transaction) {
        HL_LOGI("use transaction send notify");
        transaction->SendNotify(list);
    } else {
        HL_LOGI("use report service notify");
        IWayOut::Get().ReportServiceNotify(list);
    }
}

}  // namespace VMFramework::HomeLoom

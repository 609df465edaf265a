#ifndef HOMELOOM_TESTS_SUPPORT_AGENTSTUB_H
#define HOMELOOM_TESTS_SUPPORT_AGENTSTUB_H

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Homeloom/Tessel/ITesselHandler.h"

/// An agent without a simulator: each operation answers at once, on the thread that calls, what a table holds for it,
/// and calls nobody back unless the test does.
///
///     AgentStub agent;
///     agent.lists["GetCoreSceneList flat"] = {{{{HOMELOOM_CORE_SCENE_ID, "tea"}, {HOMELOOM_CORE_SCENE_JSON, "{}"}}}};
///     agent.answers["ExecuteCoreScene"] = {-5};
///
/// A call is told as the operation's name and its arguments, with blanks between. A table is asked for the whole call
/// first and then for the name alone. May be used from any thread.
class AgentStub : public VMFramework::HomeLoom::ITesselHandler {
public:
    /// What the texts and numbers among the out arguments get, in their order; none is written when there are too few.
    struct Answer {
        int ret = 0;
        std::vector<std::string> texts;
        std::vector<int> numbers;
    };
    /// The fields of a record by their number. Reading one that it lacks gives -61.
    struct Record {
        std::map<int, std::string> texts;
        std::map<int, int> numbers;
    };

    std::map<std::string, Answer> answers;
    std::map<std::string, std::vector<Record>> lists;
    std::map<std::string, Record> records;

    /// Makes one call of the operation give -5: the one after so many others from here on.
    void FailOnce(const std::string& operation, int after);
    /// The calls of that operation.
    std::vector<std::string> Calls(const std::string& operation) const;
    /// Records that were handed out and not given back.
    int Held() const;
    /// Calls the function back that the last call of that operation handed over.
    template <typename Callback, typename... Args>
    void CallBack(const std::string& operation, Args... args) const {
        const auto [function, userData] = _callbacks.at(operation);
        reinterpret_cast<Callback>(function)(args..., userData);
    }

private:
    using Text = const std::string&;
    using Out = std::string&;
    using Function = void (*)();

    struct Call {
        std::string operation;
        std::string text;
        int number = 0;  // the last one: a record's field, or the length of a list
        std::vector<std::string*> texts;
        std::vector<int*> numbers;
        std::vector<bool*> flags;
        Record* record = nullptr;
        void** newRecord = nullptr;
        void*** newList = nullptr;
        void** list = nullptr;
        Function function = nullptr;
        void* userData = nullptr;
    };

    template <typename... Args>
    int Do(const char* operation, Args&&... args) {
        Call call;
        call.text = call.operation = operation;
        (Add(call, std::forward<Args>(args)), ...);
        return Answered(call);
    }
    int Answered(Call& call);
    bool IsToFail(const std::string& operation);
    int ReadField(const Call& call) const;

    // An argument by its kind. The agent's pointers are as opaque here as to the plug-in.
    static void Add(Call& call, Text value) { call.text += " " + value; }
    static void Add(Call& call, Out value) { call.texts.push_back(&value); }
    static void Add(Call& call, int&& value) { call.text += " " + std::to_string(call.number = value); }
    static void Add(Call& call, int& value) { call.numbers.push_back(&value); }
    static void Add(Call& call, bool& value) { call.flags.push_back(&value); }
    static void Add(Call& call, void*& userData) { call.userData = userData; }
    static void Add(Call&, const std::vector<std::string>&) {}
    static void Add(Call&, std::set<std::string>&) {}
    template <typename Result, typename... Parameters>
    static void Add(Call& call, Result (*&function)(Parameters...)) {
        call.function = reinterpret_cast<Function>(function);
    }
    template <typename Handle>
    static void Add(Call& call, Handle*&& record) {
        call.record = reinterpret_cast<Record*>(record);
    }
    template <typename Handle>
    static void Add(Call& call, Handle**&& list) {
        call.list = reinterpret_cast<void**>(list);
    }
    template <typename Handle>
    static void Add(Call& call, Handle*& record) {
        call.newRecord = reinterpret_cast<void**>(&record);
    }
    template <typename Handle>
    static void Add(Call& call, Handle**& list) {
        call.newList = reinterpret_cast<void***>(&list);
    }

    // clang-format off
    homeloom_client_h GetHandle() override { return nullptr; }
    void Init() override { Do(__func__); }
    void Quit() override { Do(__func__); }
    int SetSignInStateChangeCb(homeloom_client_sign_in_state_changed_cb a, void* b) override { return Do(__func__, a, b); }
    int UnsetSignInStateChangeCb() override { return Do(__func__); }
    int IsSignedIn(bool& a) override { return Do(__func__, a); }
    int GetLoginID(Out a) override { return Do(__func__, a); }
    int GetClientDeviceID(Out a) override { return Do(__func__, a); }
    int Connect(homeloom_client_connection_state_changed_cb a, void* b) override { return Do(__func__, a, b); }
    int Disconnect() override { return Do(__func__); }
    int RefreshDeviceInformation() override { return Do(__func__); }
    int Subscribe(Text a, Text b, homeloom_client_subscribe_cb c, void* d) override { return Do(__func__, a, b, c, d); }
    int Unsubscribe(Text a, Text b) override { return Do(__func__, a, b); }
    int DeviceGetString(homeloom_client_device_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int DeviceDestroy(homeloom_client_device_h* a, int b) override { return Do(__func__, +a, +b); }
    int SetDeviceListUpdatedCb(homeloom_client_device_list_updated_cb a, void* b) override { return Do(__func__, a, b); }
    int UnsetDeviceListUpdatedCb() override { return Do(__func__); }
    int GetDeviceDetailList(homeloom_client_device_detail_h*& a, int& b) override { return Do(__func__, a, b); }
    int DeviceDetailGetString(homeloom_client_device_detail_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int DeviceDetailGetStringArray(homeloom_client_device_detail_h a, int b, std::vector<std::string>& c) override { return Do(__func__, +a, +b, c); }
    int DeviceDetailGetInt(homeloom_client_device_detail_h a, int b, int& c) override { return Do(__func__, +a, +b, c); }
    int DeviceDetailDestroy(homeloom_client_device_detail_h* a, int b) override { return Do(__func__, +a, +b); }
    int SetDeviceDetailListUpdatedCb(homeloom_client_device_detail_list_updated_cb a, void* b) override { return Do(__func__, a, b); }
    int UnsetDeviceDetailListUpdatedCb() override { return Do(__func__); }
    int GetUIMetadata(Text a, Out b) override { return Do(__func__, a, b); }
    int GetGroupList(homeloom_client_group_h*& a, int b, int& c) override { return Do(__func__, a, +b, c); }
    int GroupGetString(homeloom_client_group_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int GroupDestroy(homeloom_client_group_h* a, int b) override { return Do(__func__, +a, +b); }
    int SetGroupListUpdatedCb(homeloom_client_group_list_updated_cb a, void* b) override { return Do(__func__, a, b); }
    int UnsetGroupListUpdatedCb() override { return Do(__func__); }
    int ChangeDeviceName(Text a, Text b) override { return Do(__func__, a, b); }
    int MoveDeviceToOtherRoom(Text a, Text b, Text c, homeloom_client_move_devices_cb d, void* e) override { return Do(__func__, a, b, c, d, e); }
    int MoveDevicesToOtherRoom(Text a, int b, Text c, Text d, homeloom_client_move_devices_cb e, void* f) override { return Do(__func__, a, +b, c, d, e, f); }
    int SetRemoteRepresentation(Text a, Text b, Text c, homeloom_client_remote_cb d, void* e) override { return Do(__func__, a, b, c, d, e); }
    int SetRemoteAttributes(Text a, Text b, Text c, homeloom_client_remote_cb d, void* e) override { return Do(__func__, a, b, c, d, e); }
    int GetRemoteRepresentation(Text a, Text b, homeloom_client_remote_cb c, void* d) override { return Do(__func__, a, b, c, d); }
    int GetRemoteAttributes(Text a, Text b, homeloom_client_remote_cb c, void* d) override { return Do(__func__, a, b, c, d); }
    int AppLaunchConditionCreate(homeloom_client_app_launch_condition_h* a) override { return Do(__func__, +a); }
    int AddAppLaunchCondition(homeloom_client_app_launch_condition_h a) override { return Do(__func__, +a); }
    int RemoveAppLaunchCondition(homeloom_client_app_launch_condition_h a) override { return Do(__func__, +a); }
    int IsAppLaunchConditionAdded(homeloom_client_app_launch_condition_h a, bool& b) override { return Do(__func__, +a, b); }
    int AppLaunchConditionDestroy(homeloom_client_app_launch_condition_h* a) override { return Do(__func__, +a); }
    int AppLaunchConditionSetString(homeloom_client_app_launch_condition_h a, int b, Text c) override { return Do(__func__, +a, +b, c); }
    int SetThirdPartyNotification(Text a, Text b, Text c, Text d, homeloom_client_third_party_notification_cb e, void* f) override { return Do(__func__, a, b, c, d, e, f); }
    int SetThirdPartyNotificationStatus(const std::vector<std::string>& a, homeloom_client_third_party_notification_cb b, void* c) override { return Do(__func__, a, b, c); }
    int GetThirdPartyNotificationStatus(homeloom_client_third_party_notification_status_cb a, void* b) override { return Do(__func__, a, b); }
    int SetThirdPartyNotificationStatusUpdatedCb(homeloom_client_third_party_notification_status_updated_cb a, void* b) override { return Do(__func__, a, b); }
    int UnsetThirdPartyNotificationStatusUpdatedCb() override { return Do(__func__); }
    int GetState() override { return Do(__func__); }
    int GetAccessToken(Out a) override { return Do(__func__, a); }
    int GetServerEnv(int a, int& b) override { return Do(__func__, +a, b); }
    int SetServerEnv(int a, int b) override { return Do(__func__, +a, +b); }
    void StoreSigninInfo() override { Do(__func__); }
    std::string GetUserId() override { std::string text;
        Do(__func__, text);
        return text; }
    int GetCanvas(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int GetCoreLocationList(homeloom_core_location_h*& a, int& b) override { return Do(__func__, a, b); }
    int GetCoreLocationString(homeloom_core_location_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int CoreLocationDestroy(homeloom_core_location_h* a, int b) override { return Do(__func__, +a, +b); }
    int GetCoreLocationUsers(Text a, Out b) override { return Do(__func__, a, b); }
    int CoreNotifyPermissionUpdate(Text a) override { return Do(__func__, a); }
    int CreateCoreRoom(Text a, Text b, Out c, Out d) override { return Do(__func__, a, b, c, d); }
    int ChangeCoreRoomName(Text a, Text b, Text c, Out d, Out e) override { return Do(__func__, a, b, c, d, e); }
    int DeleteCoreRoom(Text a, Text b, Out c, Out d) override { return Do(__func__, a, b, c, d); }
    int GetCoreDeviceList(homeloom_core_device_h*& a, int& b) override { return Do(__func__, a, b); }
    int GetCoreDeviceString(homeloom_core_device_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int CoreDeviceListDestroy(homeloom_core_device_h* a, int b) override { return Do(__func__, +a, +b); }
    int GetCoreDeviceJson(Text a, Out b) override { return Do(__func__, a, b); }
    int GetCoreDeviceListJson(Text a, Out b) override { return Do(__func__, a, b); }
    int ExecuteCoreDevice(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int GetCoreDeviceStatus(Text a, Out b) override { return Do(__func__, a, b); }
    int GetCoreDeviceComponentStatus(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int GetCoreDeviceCapabilityStatus(Text a, Text b, Text c, Out d) override { return Do(__func__, a, b, c, d); }
    int GetLocalHubDeviceIDList(std::set<std::string>& a) override { return Do(__func__, a); }
    int SetCoreSSECb(int a, homeloom_core_sse_cb b, void* c) override { return Do(__func__, +a, b, c); }
    int UnsetCoreSSECb() override { return Do(__func__); }
    int GetCoreSceneList(Text a, homeloom_core_scene_h*& b, int& c) override { return Do(__func__, a, b, c); }
    int GetCoreScene(Text a, Text b, homeloom_core_scene_h& c) override { return Do(__func__, a, b, c); }
    int GetCoreSceneString(homeloom_core_scene_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int DestroyCoreSceneList(homeloom_core_scene_h* a, int b) override { return Do(__func__, +a, +b); }
    int DestroyCoreSingleScene(homeloom_core_scene_h a) override { return Do(__func__, +a); }
    int ExecuteCoreScene(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int CreateCoreScene(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int UpdateCoreScene(Text a, Text b, Text c, Out d) override { return Do(__func__, a, b, c, d); }
    int DeleteCoreScene(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int GetCoreSceneIconInfoJson(Out a) override { return Do(__func__, a); }
    int GetCoreRoutineList(Text a, homeloom_core_rule_h*& b, int& c) override { return Do(__func__, a, b, c); }
    int GetCoreRoutine(Text a, Text b, homeloom_core_rule_h& c) override { return Do(__func__, a, b, c); }
    int UpdateCoreRoutineStatus(Text a, Text b, bool c, Out d) override { return Do(__func__, a, b, +c, d); }
    int GetCoreRoutineString(homeloom_core_rule_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int DestroyCoreRoutineList(homeloom_core_rule_h* a, int b) override { return Do(__func__, +a, +b); }
    int DestroyCoreSingleRoutine(homeloom_core_rule_h a) override { return Do(__func__, +a); }
    int CreateIRDevice(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int GetIRDevice(Text a, Out b) override { return Do(__func__, a, b); }
    int DeleteDevice(Text a) override { return Do(__func__, a); }
    int StartHubDeviceDiscover(Text a, int b, bool c, bool d, int e) override { return Do(__func__, a, +b, +c, +d, +e); }
    int StopHubDeviceDiscover(Text a) override { return Do(__func__, a); }
    int CreateFavorite(Text a, Text b, homeloom_core_favorite_h& c) override { return Do(__func__, a, b, c); }
    int DeleteFavorite(Text a, Text b) override { return Do(__func__, a, b); }
    int ReplaceFavorites(Text a, Text b, homeloom_core_favorite_h*& c, int& d) override { return Do(__func__, a, b, c, d); }
    int GetFavoriteList(Text a, homeloom_core_favorite_h*& b, int& c) override { return Do(__func__, a, b, c); }
    int GetFavoriteInt(homeloom_core_favorite_h a, int b, int& c) override { return Do(__func__, +a, +b, c); }
    int GetFavoriteString(homeloom_core_favorite_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int DestroyFavoriteList(homeloom_core_favorite_h* a, int b) override { return Do(__func__, +a, +b); }
    int DestroySingleFavorite(homeloom_core_favorite_h a) override { return Do(__func__, +a); }
    int GetFavoriteMigrationStatus(Text a, bool& b, Out c, Out d) override { return Do(__func__, a, b, c, d); }
    int UpdateFavoriteMigrationStatus(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int SendActiveUserEvent(int a, int b, Text c, Text d) override { return Do(__func__, +a, +b, c, d); }
    int GetInstalledAppList(homeloom_core_installed_app_h*& a, int& b) override { return Do(__func__, a, b); }
    int GetInstalledAppDashboardJson(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int GetCatalogAppList(Text a, Out b, Out c) override { return Do(__func__, a, b, c); }
    int GetInstalledAppString(homeloom_core_installed_app_h a, int b, Out c) override { return Do(__func__, +a, +b, c); }
    int DestroyInstalledApp(homeloom_core_installed_app_h* a, int b) override { return Do(__func__, +a, +b); }
    int ExecuteInstalledApp(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int GetWifiLockerUserSetting(homeloom_core_json_cb a, void* b) override { return Do(__func__, a, b); }
    int SetWifiLockerUserSetting(Text a, homeloom_core_json_cb b, void* c) override { return Do(__func__, a, b, c); }
    int CreateLocksmithKeyValue(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int GetLocksmithKeyValue(Text a, Out b) override { return Do(__func__, a, b); }
    int UpdateLocksmithKeyValue(Text a, Text b, Out c) override { return Do(__func__, a, b, c); }
    int DeleteLocksmithKeyValue(Text a, Out b) override { return Do(__func__, a, b); }
    int SetNotificationProfile(Text a, Text b, Text c, Text d, Out e, Out f) override { return Do(__func__, a, b, c, d, e, f); }
    int GetNotificationProfile(Out a, Out b, Out c, Out d, Out e) override { return Do(__func__, a, b, c, d, e); }
    // clang-format on

    mutable std::mutex _mutex;
    std::map<std::string, std::vector<int>> _failures;
    std::map<std::string, std::pair<Function, void*>> _callbacks;
    std::vector<std::pair<std::string, std::string>> _calls;
    int _held = 0;
};

#endif

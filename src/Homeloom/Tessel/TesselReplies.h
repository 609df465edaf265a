#ifndef HOMELOOM_HOMELOOM_TESSEL_TESSELREPLIES_H
#define HOMELOOM_HOMELOOM_TESSEL_TESSELREPLIES_H

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include <homeloom_client.h>
#include <homeloom_core.h>

#include "Common/HLLog.h"
#include "Homeloom/Common/AsyncJob.h"

namespace VMFramework::HomeLoom {

inline std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}

/// Destroys a list as the agent hands it out. A count below zero is a lie that makes the list suspect: it is left
/// alone.
template <typename Record>
int DestroyRecords(Record* list, int count, int (*destroy)(Record)) {
    int ret = 0;
    for (int i = 0; i < count; ++i) {
        const int result = destroy(list[i]);
        ret = ret != 0 ? ret : result;
    }
    if (count >= 0) {
        std::free(list);
    }
    return ret;
}

/// A list of records that is destroyed unless somebody takes it.
///
/// It calls the agent without the facade's mutex, since a late reply is destroyed on the agent's own thread, which must
/// not wait for that mutex.
template <typename Record, int (*Destroy)(Record)>
class OwnedRecords {
public:
    OwnedRecords() noexcept = default;
    OwnedRecords(Record* list, int count) noexcept : _list(list), _count(list != nullptr ? count : 0) {}
    OwnedRecords(OwnedRecords&& other) noexcept
        : _list(std::exchange(other._list, nullptr)), _count(std::exchange(other._count, 0)) {}
    OwnedRecords& operator=(OwnedRecords&&) = delete;
    ~OwnedRecords() {
        if (_list != nullptr) {
            DestroyRecords(_list, _count, Destroy);
        }
    }

    Record* List() const { return _list; }
    int Count() const { return _count; }
    void Release(Record*& list, int& count) {
        list = std::exchange(_list, nullptr);
        count = std::exchange(_count, 0);
    }

private:
    Record* _list = nullptr;
    int _count = 0;
};

/// The lists that the agent's callbacks hand over. Released by whoever drops them last: a job that is dropped, cleared
/// or throws frees them too.
using ClientDeviceList = OwnedRecords<homeloom_client_device_h, homeloom_client_device_destroy>;
using ClientDeviceDetailList = OwnedRecords<homeloom_client_device_detail_h, homeloom_client_device_detail_destroy>;

/// The kinds of reply that blocking calls wait for. `ret` is the agent's code.
template <typename RecordType, int (*Destroy)(RecordType)>
struct ListReply {
    using Record = RecordType;

    ListReply() = default;
    ListReply(int error, Record* list, int count) : ret(error), records(list, count) {}
    void LogResult() const { HL_LOGI("result: %d, size: %d", ret, records.Count()); }

    std::int32_t ret = 0;
    OwnedRecords<Record, Destroy> records;
};

template <typename RecordType, int (*Destroy)(RecordType)>
struct RecordReply {
    using Record = RecordType;

    RecordReply() = default;
    RecordReply(int error, Record reply) : ret(error), record(reply) {}
    RecordReply(RecordReply&& other) noexcept : ret(other.ret), record(std::exchange(other.record, nullptr)) {}
    RecordReply& operator=(RecordReply&&) = delete;
    ~RecordReply() {
        if (record != nullptr) {
            Destroy(record);
        }
    }
    void LogResult() const { HL_LOGI("result: %d", ret); }

    std::int32_t ret = 0;
    Record record = nullptr;
};

/// What the agent says in text: the common reply.
struct TextReply {
    TextReply() = default;
    TextReply(int error, const char* message, const char* json)
        : ret(error), resultJson(TextOf(json)), errorMessage(TextOf(message)) {}
    void LogResult() const { HL_LOGI("result: %d", ret); }

    std::int32_t ret = 0;
    std::string resultJson;
    std::string errorMessage;
};

/// The callbacks' side, on the agent's thread.
template <typename Param>
void DeliverList(int error, typename Param::Record* list, int count, void* userData) {
    AsyncJob<Param>::Deliver(userData, error, list, count);
}
template <typename Param>
void DeliverRecord(int error, typename Param::Record record, void* userData) {
    AsyncJob<Param>::Deliver(userData, error, record);
}
template <typename Param>
void DeliverText(int error, const char* errorMessage, const char* resultJson, void* userData) {
    AsyncJob<Param>::Deliver(userData, error, errorMessage, resultJson);
}

// ---- One reply and one callback for each blocking operation ----

struct GetLocationListParam : ListReply<homeloom_core_location_h, homeloom_core_location_destroy> {
    using ListReply::ListReply;
};
constexpr homeloom_core_location_list_cb _CoreLocationListCb = DeliverList<GetLocationListParam>;

struct GetCoreDeviceListParam : ListReply<homeloom_core_device_h, homeloom_core_device_destroy> {
    using ListReply::ListReply;
};
constexpr homeloom_core_device_list_cb _CoreDeviceListCb = DeliverList<GetCoreDeviceListParam>;

struct GetSceneListParam : ListReply<homeloom_core_scene_h, homeloom_core_scene_destroy> {
    using ListReply::ListReply;
};
constexpr homeloom_core_scene_list_cb _CoreSceneListCb = DeliverList<GetSceneListParam>;

struct GetRoutineListParam : ListReply<homeloom_core_rule_h, homeloom_core_rule_destroy> {
    using ListReply::ListReply;
};
constexpr homeloom_core_rule_list_cb _CoreRoutineListCb = DeliverList<GetRoutineListParam>;

struct GetFavoriteListParam : ListReply<homeloom_core_favorite_h, homeloom_core_favorite_destroy> {
    using ListReply::ListReply;
};
constexpr homeloom_core_favorite_list_cb _CoreFavoriteListCb = DeliverList<GetFavoriteListParam>;

struct GetInstalledAppListParam : ListReply<homeloom_core_installed_app_h, homeloom_core_installed_app_destroy> {
    using ListReply::ListReply;
};
constexpr homeloom_core_installed_app_list_cb _CoreInstalledAppListCb = DeliverList<GetInstalledAppListParam>;

struct GetSceneParam : RecordReply<homeloom_core_scene_h, homeloom_core_scene_destroy> {
    using RecordReply::RecordReply;
};
constexpr homeloom_core_scene_cb _CoreSceneCb = DeliverRecord<GetSceneParam>;

struct GetRoutineParam : RecordReply<homeloom_core_rule_h, homeloom_core_rule_destroy> {
    using RecordReply::RecordReply;
};
constexpr homeloom_core_rule_cb _CoreRoutineCb = DeliverRecord<GetRoutineParam>;

struct GetLocationUsers : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreGetLocationUsersCb = DeliverText<GetLocationUsers>;

struct GetAllLocationUsers : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreGetAllLocationUsersCb = DeliverText<GetAllLocationUsers>;

struct CreateCoreRoomParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreCreateRoomCb = DeliverText<CreateCoreRoomParam>;

struct ChangeCoreRoomNameParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreChangeRoomNameCb = DeliverText<ChangeCoreRoomNameParam>;

struct DeleteCoreRoomParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreDeleteRoomCb = DeliverText<DeleteCoreRoomParam>;

struct GetCoreDeviceJsonParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreDeviceJsonCb = DeliverText<GetCoreDeviceJsonParam>;

struct GetCoreDeviceListJsonParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreDeviceListJsonCb = DeliverText<GetCoreDeviceListJsonParam>;

struct ExecuteCoreSceneParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreExecuteSceneCb = DeliverText<ExecuteCoreSceneParam>;

struct CreateCoreSceneParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreCreateSceneCb = DeliverText<CreateCoreSceneParam>;

struct UpdateCoreSceneParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreUpdateSceneCb = DeliverText<UpdateCoreSceneParam>;

struct DeleteCoreSceneParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreDeleteSceneCb = DeliverText<DeleteCoreSceneParam>;

struct GetCoreSceneIconListParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreSceneIconListCb = DeliverText<GetCoreSceneIconListParam>;

struct UpdateCoreRoutineStatusParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreRoutineStatusCb = DeliverText<UpdateCoreRoutineStatusParam>;

struct GetInstalledAppDashboardJsonParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreInstalledAppDashboardJsonCb = DeliverText<GetInstalledAppDashboardJsonParam>;

struct GetCatalogAppListParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreGetCatalogAppListCb = DeliverText<GetCatalogAppListParam>;

struct SetCoreNotificationProfileParam : TextReply {
    using TextReply::TextReply;
};
constexpr homeloom_core_json_cb _CoreSetNotificationProfileCb = DeliverText<SetCoreNotificationProfileParam>;

struct GetCoreNotificationProfileParam {
    GetCoreNotificationProfileParam() = default;
    GetCoreNotificationProfileParam(int error, const char* message, const char* pushProvider, const char* pushRegId,
                                    const char* pushAppId, const char* pushLocale)
        : ret(error),
          errorMessage(TextOf(message)),
          provider(TextOf(pushProvider)),
          regId(TextOf(pushRegId)),
          appId(TextOf(pushAppId)),
          locale(TextOf(pushLocale)) {}
    void LogResult() const { HL_LOGI("result: %d", ret); }

    std::int32_t ret = 0;
    std::string errorMessage;
    std::string provider;
    std::string regId;
    std::string appId;
    std::string locale;
};
inline void _CoreGetNotificationProfileCb(int error, const char* errorMessage, const char* provider, const char* regId,
                                          const char* appId, const char* locale, void* userData) {
    AsyncJob<GetCoreNotificationProfileParam>::Deliver(userData, error, errorMessage, provider, regId, appId, locale);
}

}  // namespace VMFramework::HomeLoom

#endif

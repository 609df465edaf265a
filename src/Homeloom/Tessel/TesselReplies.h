#ifndef HOMELOOM_HOMELOOM_TESSEL_TESSELREPLIES_H
#define HOMELOOM_HOMELOOM_TESSEL_TESSELREPLIES_H

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include <homeloom_client.h>
#include <homeloom_core.h>

#include "Common/CText.h"
#include "Common/HLLog.h"
#include "Homeloom/Common/AsyncJob.h"

namespace VMFramework::HomeLoom {

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

/// The lists that the agent's callbacks hand over. The last owner frees them: a job that is dropped, cleared or throws
/// frees them too.
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

// Each reply is a type of its own: AsyncJob names the call in the log after it.
#define HL_LIST_REPLY(Param, record, callback)                                               \
    struct Param : ListReply<homeloom_core_##record##_h, homeloom_core_##record##_destroy> { \
        using ListReply::ListReply;                                                          \
    };                                                                                       \
    constexpr homeloom_core_##record##_list_cb callback = DeliverList<Param>
#define HL_RECORD_REPLY(Param, record, callback)                                               \
    struct Param : RecordReply<homeloom_core_##record##_h, homeloom_core_##record##_destroy> { \
        using RecordReply::RecordReply;                                                        \
    };                                                                                         \
    constexpr homeloom_core_##record##_cb callback = DeliverRecord<Param>
#define HL_TEXT_REPLY(Param, callback) \
    struct Param : TextReply {         \
        using TextReply::TextReply;    \
    };                                 \
    constexpr homeloom_core_json_cb callback = DeliverText<Param>

HL_LIST_REPLY(GetLocationListParam, location, _CoreLocationListCb);
HL_LIST_REPLY(GetCoreDeviceListParam, device, _CoreDeviceListCb);
HL_LIST_REPLY(GetSceneListParam, scene, _CoreSceneListCb);
HL_LIST_REPLY(GetRoutineListParam, rule, _CoreRoutineListCb);
HL_LIST_REPLY(GetFavoriteListParam, favorite, _CoreFavoriteListCb);
HL_LIST_REPLY(GetInstalledAppListParam, installed_app, _CoreInstalledAppListCb);
HL_RECORD_REPLY(GetSceneParam, scene, _CoreSceneCb);
HL_RECORD_REPLY(GetRoutineParam, rule, _CoreRoutineCb);
HL_TEXT_REPLY(GetLocationUsers, _CoreGetLocationUsersCb);
HL_TEXT_REPLY(GetAllLocationUsers, _CoreGetAllLocationUsersCb);
HL_TEXT_REPLY(CreateCoreRoomParam, _CoreCreateRoomCb);
HL_TEXT_REPLY(ChangeCoreRoomNameParam, _CoreChangeRoomNameCb);
HL_TEXT_REPLY(DeleteCoreRoomParam, _CoreDeleteRoomCb);
HL_TEXT_REPLY(GetCoreDeviceJsonParam, _CoreDeviceJsonCb);
HL_TEXT_REPLY(GetCoreDeviceListJsonParam, _CoreDeviceListJsonCb);
HL_TEXT_REPLY(ExecuteCoreSceneParam, _CoreExecuteSceneCb);
HL_TEXT_REPLY(CreateCoreSceneParam, _CoreCreateSceneCb);
HL_TEXT_REPLY(UpdateCoreSceneParam, _CoreUpdateSceneCb);
HL_TEXT_REPLY(DeleteCoreSceneParam, _CoreDeleteSceneCb);
HL_TEXT_REPLY(GetCoreSceneIconListParam, _CoreSceneIconListCb);
HL_TEXT_REPLY(UpdateCoreRoutineStatusParam, _CoreRoutineStatusCb);
HL_TEXT_REPLY(GetInstalledAppDashboardJsonParam, _CoreInstalledAppDashboardJsonCb);
HL_TEXT_REPLY(GetCatalogAppListParam, _CoreGetCatalogAppListCb);
HL_TEXT_REPLY(SetCoreNotificationProfileParam, _CoreSetNotificationProfileCb);

#undef HL_TEXT_REPLY
#undef HL_RECORD_REPLY
#undef HL_LIST_REPLY

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

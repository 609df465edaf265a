// Reads what the agent keeps by location and id, makes endpoints of it, and reads its events.
#include "Homeloom/Location/LocationRecords.h"

#include <memory>
#include <type_traits>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CEndpointHelper.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Tessel/AgentList.h"

namespace VMFramework::HomeLoom {

template <typename Record>
LocationRecords<Record>::LocationRecords(ITesselHandler& agent, const std::string& handlerName, const Kind& kind)
    : Handler(handlerName), _agent(agent), _kind(kind), _quitText(handlerName + " Quit") {}

template <typename Record>
void LocationRecords<Record>::SetGetLocationsCallback(GetLocationsCallback callback) {
    const MutexLock lock(_mutex);
    _getLocationsCallback = std::move(callback);
}

template <typename Record>
void LocationRecords<Record>::throwIfQuit() const {
    if (IsQuit()) {
        throw CException(_quitText, kErrorQuit);
    }
}

template <typename Record>
bool LocationRecords<Record>::readString(Record record, int field, const char* what, std::string& value) {
    if ((_agent.*_kind.getString)(record, field, value) != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("get %s string (%s_%s) failed", _kind.name, _kind.name, what);
        return false;
    }
    return true;
}

template <typename Record>
typename LocationRecords<Record>::JsonById LocationRecords<Record>::getList(const std::string& locationId) {
    AgentList<Record> records(_agent, _kind.destroyList);
    JsonById found;
    if ((_agent.*_kind.getList)(locationId, records.list, records.count) != HOMELOOM_CLIENT_ERROR_NONE) {
        return found;
    }
    for (const Record record : records) {
        throwIfQuit();
        std::string id;
        std::string json;
        if (!readString(record, _kind.idField, "id", id) || !readString(record, _kind.jsonField, "json", json)) {
            continue;
        }
        HL_LOGI("%s_id {%s}, %s_json {%s}", _kind.name, id.c_str(), _kind.name, json.c_str());
        if (!IsHidden(json)) {
            found[id] = std::move(json);
        }
    }
    return found;
}

template <typename Record>
typename LocationRecords<Record>::JsonById LocationRecords<Record>::GetAll() {
    GetLocationsCallback getLocations;
    {
        const MutexLock lock(_mutex);
        getLocations = _getLocationsCallback;
    }
    JsonById found;
    if (!getLocations) {
        return found;
    }
    for (const auto& location : getLocations()) {
        throwIfQuit();
        found.merge(getList(location.first));
    }
    return found;
}

template <typename Record>
std::string LocationRecords<Record>::GetJson(const std::string& locationId, const std::string& id) {
    Record record = nullptr;
    const int ret = (_agent.*_kind.getOne)(locationId, id, record);
    const auto destroy = [this](Record owned) { (_agent.*_kind.destroyOne)(owned); };
    const std::unique_ptr<std::remove_pointer_t<Record>, decltype(destroy)> owner(record, destroy);
    std::string json;
    if (ret != HOMELOOM_CLIENT_ERROR_NONE || !readString(record, _kind.jsonField, "json", json)) {
        return {};
    }
    return json;
}

template <typename Record>
void LocationRecords<Record>::AppendEndpoints(const std::shared_ptr<IEndpointListHelper>& list) {
    for (const auto& [id, json] : GetAll()) {
        throwIfQuit();
        const auto endpoint = IEndpointHelper::Create();
        UnlistedEndpoint unlisted(endpoint->GetHandle());
        endpoint->SetServiceName(Names::HOMELOOM);
        endpoint->SetInterfaceType(_kind.interfaceType);
        endpoint->SetDeviceType(Names::HOMELOOM_DUMMY);
        endpoint->SetDeviceId(id);
        endpoint->SetExtraData(_kind.jsonKey, json);
        list->Push(unlisted.release(), VMF_ERROR_NONE);
    }
}

template <typename Record>
void LocationRecords<Record>::HandleEvent(const std::string& json) {
    const auto event = json::JsonValue::Create(json);
    const std::string lifecycle = event["lifecycle"].asString();
    if (lifecycle.find("MURMUR") != std::string::npos) {
        HL_LOGI("this is for MURMUR, do not handle here, will be removed later after server fixed");
        return;
    }
    const std::string locationId = event["locationId"].asString();
    if (locationId.empty()) {
        HL_LOGE("location_id is empty, do not proceed.");
        return;
    }
    const std::string id = event[_kind.idMember].asString();
    if (id.empty()) {
        HL_LOGE("%s_id is empty, do not proceed.", _kind.name);
        return;
    }
    if (lifecycle == Names::LIFECYCLE_CREATE) {
        Created(locationId, id);
    } else if (lifecycle == Names::LIFECYCLE_UPDATE) {
        Updated(locationId, id);
    } else if (lifecycle == Names::LIFECYCLE_DELETE) {
        Deleted(locationId, id);
    } else {
        HL_LOGE("do not handle lifecycle : %s", lifecycle.c_str());
    }
}

template class LocationRecords<homeloom_core_scene_h>;
template class LocationRecords<homeloom_core_rule_h>;

}  // namespace VMFramework::HomeLoom

// Facade: devices, their details, remote resources and subscriptions.
#include <algorithm>

#include "Homeloom/Tessel/TesselHandler.h"

namespace VMFramework::HomeLoom {

namespace {

// Room for one id in a move, its end included: ids are UUIDs.
constexpr std::size_t kMaxDeviceIdBytes = 40;

/// The first 'count' ids of a comma-separated list; empty if they aren't all there.
std::vector<std::string> SplitDeviceIds(const std::string& deviceIds, int count) {
    std::vector<std::string> ids;
    std::size_t begin = 0;
    for (int i = 0; i < count; ++i) {
        const std::size_t end = std::min(deviceIds.find(',', begin), deviceIds.size());
        if (begin >= end || end - begin >= kMaxDeviceIdBytes) {
            return {};
        }
        ids.push_back(deviceIds.substr(begin, end - begin));
        begin = end + 1;
    }
    return ids;
}

/// An array of texts that the agent handed out for us to free.
template <typename Use>
void TakeTexts(char** texts, int count, Use use) {
    for (int i = 0; texts != nullptr && i < count; ++i) {
        std::string text;
        TakeText(texts[i], text);
        use(std::move(text));
    }
    std::free(texts);
}

}  // namespace

int TesselHandler::Subscribe(const std::string& deviceId, const std::string& uris, homeloom_client_subscribe_cb cb,
                             void* userData) {
    return _Call({{deviceId, "device id is empty"}, {uris, "jsonResUri is empty"}, {cb != nullptr, "cbFunc is null"}},
                 homeloom_client_subscribe, deviceId, uris, cb, userData);
}

int TesselHandler::Unsubscribe(const std::string& deviceId, const std::string& uris) {
    return _Call({{deviceId, "device id is empty"}, {uris, "jsonResUri is empty"}}, homeloom_client_unsubscribe,
                 deviceId, uris);
}

int TesselHandler::DeviceGetString(homeloom_client_device_h device, int propertyId, std::string& value) {
    return _AccessText("device_h is null", homeloom_client_device_get_string, device, propertyId, value);
}

int TesselHandler::DeviceDestroy(homeloom_client_device_h* list, int count) {
    return _DestroyList("device_list_h is null", homeloom_client_device_destroy, list, count);
}

int TesselHandler::SetDeviceListUpdatedCb(homeloom_client_device_list_updated_cb cb, void* userData) {
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_device_list_updated_cb, cb, userData);
}

int TesselHandler::UnsetDeviceListUpdatedCb() {
    return _Call({}, homeloom_client_unset_device_list_updated_cb);
}

int TesselHandler::GetDeviceDetailList(homeloom_client_device_detail_h*& list, int& count) {
    return _Call({}, homeloom_client_get_device_detail_list, &list, &count);
}

int TesselHandler::DeviceDetailGetString(homeloom_client_device_detail_h detail, int propertyId, std::string& value) {
    return _AccessText("device_detail_h is null", homeloom_client_device_detail_get_string, detail, propertyId, value);
}

int TesselHandler::DeviceDetailGetStringArray(homeloom_client_device_detail_h detail, int propertyId,
                                              std::vector<std::string>& values) {
    char** texts = nullptr;
    int count = 0;
    const int ret = _Access("device_detail_h is null", homeloom_client_device_detail_get_string_array, detail,
                            propertyId, &texts, &count);
    TakeTexts(texts, count, [&values](std::string text) { values.push_back(std::move(text)); });
    if (ret != HOMELOOM_CLIENT_ERROR_NONE) {
        HL_LOGE("getting RESOURCES array failed");
    }
    return ret;
}

int TesselHandler::DeviceDetailGetInt(homeloom_client_device_detail_h detail, int propertyId, int& value) {
    return _Access("device_detail_h is null", homeloom_client_device_detail_get_int, detail, propertyId, &value);
}

int TesselHandler::DeviceDetailDestroy(homeloom_client_device_detail_h* list, int count) {
    return _DestroyList("device_detail_list_h is null", homeloom_client_device_detail_destroy, list, count);
}

int TesselHandler::SetDeviceDetailListUpdatedCb(homeloom_client_device_detail_list_updated_cb cb, void* userData) {
    return _Call({{cb != nullptr, "cbFunc is null"}}, homeloom_client_set_device_detail_list_updated_cb, cb, userData);
}

int TesselHandler::UnsetDeviceDetailListUpdatedCb() {
    return _Call({}, homeloom_client_unset_device_detail_list_updated_cb);
}

int TesselHandler::GetUIMetadata(const std::string& vid, std::string& document) {
    return _CallForText({{vid, "vid is empty"}}, document, homeloom_client_get_ui_metadata, vid);
}

int TesselHandler::ChangeDeviceName(const std::string& deviceId, const std::string& name) {
    char* resultJson = nullptr;
    const int ret = _Call({{deviceId, "device_id is empty"}, {name, "device_name is empty"}},
                          homeloom_core_change_device_name, deviceId, name, &resultJson);
    const OwnedText owner(resultJson);
    if (resultJson == nullptr) {
        HL_LOGE("result json value is null ret : %d, device_id : %s, device_name : %s", ret, deviceId.c_str(),
                name.c_str());
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    return ret;
}

int TesselHandler::MoveDeviceToOtherRoom(const std::string& deviceId, const std::string& locationId,
                                         const std::string& roomId, homeloom_client_move_devices_cb cb,
                                         void* userData) {
    return MoveDevicesToOtherRoom(deviceId, 1, locationId, roomId, cb, userData);
}

// An empty room id takes the devices out of their rooms.
int TesselHandler::MoveDevicesToOtherRoom(const std::string& deviceIds, int count, const std::string& locationId,
                                          const std::string& roomId, homeloom_client_move_devices_cb cb,
                                          void* userData) {
    std::vector<std::string> texts = SplitDeviceIds(deviceIds, count);
    std::vector<char*> ids;
    ids.reserve(texts.size());
    for (std::string& text : texts) {
        ids.push_back(text.data());
    }
    const char* const complaint =
        deviceIds.empty() ? "device_ids is empty" : "device_ids does not hold as many ids as told, or one is too long";
    return _Call({{!ids.empty(), complaint}, {locationId, "location_id is empty"}, {cb != nullptr, "cbFunc is null"}},
                 homeloom_client_move_devices, ids.data(), static_cast<int>(ids.size()), locationId, roomId, cb,
                 userData);
}

int TesselHandler::SetRemoteRepresentation(const std::string& deviceId, const std::string& uri,
                                           const std::string& payload, homeloom_client_remote_cb cb, void* userData) {
    return _Call({{deviceId, "device id is empty"}, {uri, "uri is empty"}, {cb != nullptr, "cbFunc is null"}},
                 homeloom_client_set_remote_representation, deviceId, uri, payload, cb, userData);
}

int TesselHandler::SetRemoteAttributes(const std::string& deviceId, const std::string& uri, const std::string& payload,
                                       homeloom_client_remote_cb cb, void* userData) {
    return _Call({{deviceId, "device id is empty"}, {uri, "uri is empty"}, {cb != nullptr, "cbFunc is null"}},
                 homeloom_client_set_remote_attributes, deviceId, uri, payload, cb, userData);
}

int TesselHandler::GetRemoteRepresentation(const std::string& deviceId, const std::string& uri,
                                           homeloom_client_remote_cb cb, void* userData) {
    return _Call({{deviceId, "device id is empty"}, {uri, "uri is empty"}, {cb != nullptr, "cbFunc is null"}},
                 homeloom_client_get_remote_representation, deviceId, uri, cb, userData);
}

int TesselHandler::GetRemoteAttributes(const std::string& deviceId, const std::string& uri,
                                       homeloom_client_remote_cb cb, void* userData) {
    return _Call({{deviceId, "device id is empty"}, {uri, "uri is empty"}, {cb != nullptr, "cbFunc is null"}},
                 homeloom_client_get_remote_attributes, deviceId, uri, cb, userData);
}

int TesselHandler::GetLocalHubDeviceIDList(std::set<std::string>& deviceIds) {
    char** texts = nullptr;
    int count = 0;
    const int ret = _Call({}, homeloom_core_get_hub_device_id_list, &texts, &count);
    TakeTexts(texts, count, [&deviceIds](std::string text) { deviceIds.insert(std::move(text)); });
    return ret;
}

int TesselHandler::DeleteDevice(const std::string& deviceId) {
    return _Call({{deviceId, "device_id is empty"}}, homeloom_core_delete_device, deviceId);
}

int TesselHandler::StartHubDeviceDiscover(const std::string& deviceId, int timeout, bool flagA, bool flagB, int extra) {
    return _Call({{deviceId, "device_id is empty"}}, homeloom_core_start_hub_device_discover, deviceId, timeout, flagA,
                 flagB, extra);
}

int TesselHandler::StopHubDeviceDiscover(const std::string& deviceId) {
    return _Call({{deviceId, "device_id is empty"}}, homeloom_core_stop_hub_device_discover, deviceId);
}

}  // namespace VMFramework::HomeLoom

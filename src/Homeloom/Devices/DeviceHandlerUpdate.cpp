// What arrives from the agent about the values of devices, and the notification that follows.

#include <optional>
#include <string_view>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CException.h"
#include "Common/CHLUtil.h"
#include "Common/CText.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Common/WayOut.h"
#include "Helpers/CPropertyListHelper.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Devices/DeviceHandler.h"
#include "Homeloom/Devices/DeviceStateChecker.h"
#include "Homeloom/Tessel/ITesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

// Not the "access_token" of the reports: the screens read this key in state updates.
constexpr char kStateAccessToken[] = "accesstoken";

// Of jobs that come with each update: a text made anew would be a walk to the heap.
const std::string kSubscribeChanged = "_HomeLoomClientSubscribeChanged";
const std::string kGetDeviceRemoteAttributes = "_HomeLoomClientGetDeviceRemoteAttributes";

// What the agent hands back with the values that were asked for.
struct AttributeRequest {
    std::weak_ptr<DeviceHandler> handler;
    std::string deviceId;
};

}  // namespace

bool DeviceHandler::GetProperty(const std::string& id) {
    const auto device = FindDevice(id);
    if (!device) {
        HL_LOGE("device[%s] NOT found in map", id.c_str());
        return false;
    }
    return GetProperty(device);
}

bool DeviceHandler::GetProperty(const std::shared_ptr<Device>& device) {
    if (!device) {
        return false;
    }
    {
        const auto lock = Lock();
        const DeviceStatus status = device->GetStatus();
        if (status != DEVICE_STATUS_CONNECTED) {
            HL_LOGI(
                "device[%s-%s]'s status is %d. skip! get_remote_attributes, just get device state text and icon url",
                device->GetName().c_str(), device->GetId().c_str(), status);
            Metadata::GetInstance().SetDeviceStateText(device);
            Metadata::GetInstance().UpdateDeviceIconUrl(device);
            return false;
        }
    }
    updateDeviceProperty(device);
    return true;
}

void DeviceHandler::updateDeviceProperty(const std::shared_ptr<Device>& device) {
    std::string id;
    std::string vid;
    std::vector<std::string> uris;
    bool isListEmpty = false;
    {
        const auto lock = Lock();
        id = device->GetId();
        vid = device->GetVid();
        const auto list = Metadata::GetInstance().GetSubscribeList(vid);
        isListEmpty = list.empty();
        for (const auto& uri : list) {
            if (device->HasDeviceUri(uri)) {
                uris.push_back(uri);
            }
        }
    }
    if (isListEmpty) {
        HL_LOGI("device_id : %s, subscribe list empty, just resource update with current state", id.c_str());
        OnResourceUpdateEvent({id, "", {}});
        return;
    }
    for (const auto& uri : uris) {
        void* request =
            CallbackTokens::Keep(std::make_shared<AttributeRequest>(AttributeRequest{weak_from_this(), id}));
        const int ret = _agent.GetRemoteAttributes(id, uri, _HomeLoomClientGetDeviceRemoteAttributes, request);
        if (ret != 0) {
            HL_LOGE("fail get attributes ret:%d, vid:[%s], device id:%s, subscribe url:%s", ret, vid.c_str(),
                    id.c_str(), uri.c_str());
            CallbackTokens::Take<AttributeRequest>(request);
            continue;
        }
        if (Metadata::GetInstance().IsGenericMetadata(vid)) {
            HL_LOGI("success get attributes ret : %d, device id : %s, subscribe url : %s", ret, id.c_str(),
                    uri.c_str());
            // Of a generic metadata one URI works: the first that the agent takes.
            Metadata::GetInstance().SetGenericSubscribeUri(vid, uri);
            return;
        }
    }
}

// On the agent's thread: it copies, queues and returns.
void DeviceHandler::_HomeLoomClientGetDeviceRemoteAttributes(int result, const char*, const char* attributes,
                                                             const char* uri, const char* resDataType, void* userData) {
    Guarded([&] {
        if (userData == nullptr) {
            HL_LOGE("user_data is null");
            return;
        }
        const auto request = CallbackTokens::Take<AttributeRequest>(userData);
        if (!request || result != 0) {
            return;
        }
        const auto handler = request->handler.lock();
        if (!handler) {
            return;
        }
        handler->AddJobToStatusScheduler(
            [self = handler.get(), id = request->deviceId, uriText = TextOf(uri), rep = TextOf(attributes),
             dataType = TextOf(resDataType)] {
                HL_LOGI(
                    "_HomeLoomClientGetDeviceRemoteAttributes(): Device Id: %s  URI: %s, Attributes: %s, "
                    "Res_data_type: %s",
                    id.c_str(), uriText.c_str(), rep.c_str(), dataType.c_str());
                self->applyUpdate(id, uriText, rep, dataType);
            },
            kGetDeviceRemoteAttributes);
    });
}

// On the agent's thread: it copies, queues and returns.
void DeviceHandler::_HomeLoomClientSubscribeChanged(const char* deviceId, const char* uri, const char* rcsRep,
                                                    const char* resDataType, const char* ocfErrorCode, const char*,
                                                    void* userData) {
    Guarded([&] {
        const auto handler = CallbackTokens::Find<DeviceHandler>(userData);
        if (!handler) {
            return;
        }
        std::string id = TextOf(deviceId);
        if (handler->isHubConnectedDevice(id)) {
            HL_LOGI("This device id : %s is local hub connected device, do not proceed here", id.c_str());
            return;
        }
        handler->AddJobToScheduler(
            [weak = std::weak_ptr<DeviceHandler>(handler), id = std::move(id), uriText = TextOf(uri),
             rep = TextOf(rcsRep), dataType = TextOf(resDataType), errorCode = TextOf(ocfErrorCode)]() mutable {
                const auto self = weak.lock();
                if (!self) {
                    return;
                }
                HL_LOGI(
                    "_HomeLoomClientSubscribeChanged(): Device id: %s, Rcs_rep: %s, URI: %s, Res_data_type: %s, "
                    "ocf_error_code: %s",
                    id.c_str(), rep.c_str(), uriText.c_str(), dataType.c_str(), errorCode.c_str());
                self->applyUpdate(std::move(id), std::move(uriText), rep, dataType);
            },
            kSubscribeChanged);
    });
}

void DeviceHandler::applyUpdate(std::string deviceId, std::string uri, const std::string& rep,
                                const std::string& dataType) {
    const auto lock = Lock();
    const auto device = findDeviceOfUpdate(deviceId);
    if (!device) {
        return;
    }
    const auto metadata = Metadata::GetInstance().FindUiMetadata(device->GetVid());
    device_resource_info_struct info{std::move(deviceId), std::move(uri), {}};
    // Also an update without a known property is worth a notification: it recomputes.
    readResource(device, metadata.get(), info.uri, rep, dataType, info.properties);
    showUpdate(device, metadata.get(), info);
}

bool DeviceHandler::BuildResourceData(const std::string& deviceId, const std::string& uri, const std::string& rep,
                                      const std::string& dataType,
                                      std::vector<device_property_info_struct>& properties) {
    const auto lock = Lock();
    const auto device = findDeviceOfUpdate(deviceId);
    return device && readResource(device, Metadata::GetInstance().FindUiMetadata(device->GetVid()).get(), uri, rep,
                                  dataType, properties);
}

std::shared_ptr<Device> DeviceHandler::findDeviceOfUpdate(const std::string& id) const {
    auto device = FindDevice(id);
    if (!device) {
        HL_LOGE("device[%s] NOT found in map", id.c_str());
        HL_LOGE("vid is empty");
    }
    return device;
}

bool DeviceHandler::readResource(const std::shared_ptr<Device>& device, const device_ui_metadata_struct* metadata,
                                 const std::string& uri, const std::string& rep, const std::string& dataType,
                                 std::vector<device_property_info_struct>& properties) {
    const std::string& vid = device->GetVid();
    if (vid.empty()) {
        HL_LOGE("vid is empty");
        return false;
    }
    // Shown by no metadata, but by screens of their own.
    std::vector<std::string> moreNames;
    if (std::string_view(uri) == Device::kInsideViewUri && device->IsSupportInnerView()) {
        moreNames.emplace_back("x.com.norvane.da.fileid");
    }
    if (device->IsCameraDevice()) {
        moreNames.emplace_back("stream");
    }
    if (metadata == nullptr) {
        HL_LOGE("vid not found in matadata map");
    }
    const auto& shown = metadata != nullptr ? Metadata::ShownNames(*metadata, uri) : moreNames;
    const std::size_t count = metadata != nullptr ? shown.size() + moreNames.size() : moreNames.size();
    if (count == 0) {
        return false;
    }

    const auto types = findTypes(dataType);
    const auto attributes = json::JsonValue::Create(rep);
    if (!attributes.isObject()) {
        throw CException("representation is no object", kErrorFailed);
    }
    const bool isTaken = Log::IsTaken(DLOG_INFO, Log::kTag);
    device_operation_info_struct operation{device->GetDeviceType(), uri, "", ""};
    properties.reserve(properties.size() + count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string& name = i < shown.size() ? shown[i] : moreNames[i - shown.size()];
        if (isTaken) {
            HL_LOGI("[%d] property_name: %s", static_cast<int>(i), name.c_str());
        }
        const std::string* const member = CHLUtil::FindMember(types->members, name);
        if (member == nullptr || member->empty()) {
            HL_LOGI("property_name[%s] is empty. continue", name.c_str());
            continue;
        }
        const json::JsonValue value = attributes[*member];
        if (value.isNull() && !attributes.isMember(*member)) {
            HL_LOGI("property_name[%s] not found in attributes. continue", name.c_str());
            continue;
        }
        device_property_info_struct& property =
            properties.emplace_back(device_property_info_struct{*member, "", types->typeOf(member)});
        if (!CHLUtil::GetValueOf(value, property)) {
            properties.pop_back();
            HL_LOGE("GetPropertyValue [%s] failed continue", name.c_str());
            continue;
        }
        if (isTaken) {
            HL_LOGI("property_name: %s, property_type: %s, property_value:%s", property.property_name.c_str(),
                    property.property_type.c_str(), property.property_value.c_str());
        }
        if (!device->IsControllableDevice() && Metadata::HasMainAction(vid, metadata, *member)) {
            HL_LOGI("controllable set true, device id : %s, device name : %s, property name : %s, property value : %s",
                    device->GetId().c_str(), device->GetName().c_str(), member->c_str(),
                    property.property_value.c_str());
            device->SetControllableDevice(true);
        }
        operation.property_name = *member;
        operation.property_value = property.property_value;
        handleRunningState(device, operation);
    }
    return true;
}

const std::string& DeviceHandler::ResourceTypes::typeOf(const std::string* member) const {
    const auto& type = types[static_cast<std::size_t>(member - members.data())];
    if (!type) {
        throw CException("type is no text", kErrorFailed);
    }
    return *type;
}

// A model tells the same types with each of its updates.
std::shared_ptr<const DeviceHandler::ResourceTypes> DeviceHandler::findTypes(const std::string& text) {
    constexpr std::size_t kMostTexts = 64;
    if (_lastTypes && _lastTypes->text == text) {
        return _lastTypes;
    }
    const auto found = _resourceTypes.find(text);
    if (found != _resourceTypes.end()) {
        return _lastTypes = found->second;
    }
    const auto types = std::make_shared<ResourceTypes>();
    types->text = text;
    const auto document = json::JsonValue::Create(text);
    types->members = document.getMemberNames();
    for (const std::string& member : types->members) {
        const json::JsonValue type = document[member];
        types->types.push_back(type.isString() ? std::optional(type.asString()) : std::nullopt);
    }
    if (_resourceTypes.size() >= kMostTexts) {
        _resourceTypes.clear();
    }
    _resourceTypes.emplace(text, types);
    return types;
}

void DeviceHandler::handleRunningState(const std::shared_ptr<Device>& device,
                                       const device_operation_info_struct& info) const {
    const RunningState state = DeviceStateChecker::GetRunningState(info);
    if (state != RUNNING_STATE_UNKNOWN) {
        device->SetRunningState(state == RUNNING_STATE_RUNNING);
    }
}

void DeviceHandler::OnResourceUpdateEvent(const device_resource_info_struct& info) {
    const auto lock = Lock();
    if (const auto device = FindDevice(info.device_id)) {
        showUpdate(device, Metadata::GetInstance().FindUiMetadata(device->GetVid()).get(), info);
    }
}

void DeviceHandler::showUpdate(const std::shared_ptr<Device>& device, const device_ui_metadata_struct* metadata,
                               const device_resource_info_struct& info) {
    // Only the log asks for it.
    const std::string oldStateText = Log::IsTaken(DLOG_INFO, Log::kTag) ? device->GetStateText() : std::string();
    if (CHLUtil::IsButtonDeviceType(device->GetDeviceType())) {
        handleButton(device, info);
    } else {
        device->UpdateValue(info);
    }
    Metadata::GetInstance().Refresh(*device, metadata);

    if (Log::IsTaken(DLOG_INFO, Log::kTag)) {
        HL_LOGI("DeviceId: %s, res_uri: %s, old stateText: %s  new stateText: %s", info.device_id.c_str(),
                info.uri.c_str(), oldStateText.c_str(), device->GetStateText().c_str());
        for (const auto& property : info.properties) {
            HL_LOGI("property_name %s, property_value %s, property_type %s", property.property_name.c_str(),
                    property.property_value.c_str(), property.property_type.c_str());
        }
    }
    notifyDeviceState(device, metadata, oldStateText);
}

// A notification of the same name, with fewer fields, goes out for events of hub devices. Receivers know both.
void DeviceHandler::notifyDeviceState(const std::shared_ptr<Device>& device, const device_ui_metadata_struct* metadata,
                                      const std::string& oldStateText) const {
    const std::string& vid = device->GetVid();
    const std::string& type = device->GetDeviceType();
    const auto presentation = Metadata::GetInstance().GetPresentation(*device, metadata);
    const int status = GetDeviceStatus(device);

    const auto list = IPropertyListHelper::Create();
    list->SetName(Names::HL_DEVICE_STATE_UPDATED);
    list->PushStringData(Names::DEVICE_ID, device->GetId());
    list->PushStringData(Names::SUBDEVICE_TYPE, type);
    list->PushStringData(Names::STATE_TEXT, device->GetStateText());
    list->PushStringData(Names::CONTEXT_VALUE, presentation.context_value);
    list->PushStringData(Names::ICON_URL, device->GetIconUrl());
    list->PushStringData(Names::CONTROL_TYPE, presentation.control_type);
    list->PushIntData(Names::ACTIVE_STATE, device->IsInactive() ? 0 : 1);
    list->PushBooleanData(Names::RUNNING_STATE, device->GetRunningState());
    list->PushIntData(Names::SUBDEVTYPE_ENUM, SubDeviceType(type));
    list->PushIntData(Names::CONTROLLABLE, device->IsControllableDevice() ? 1 : 0);
    list->PushStringData(Names::ACTION_STATE, presentation.action_state);
    list->PushStringData(Names::ACTION_URL, presentation.action_url);
    list->PushIntData(Names::CLOUD_DEVICE_STATUS, status);
    list->PushStringData(Names::SOLENNE_SERVER_DP_URI, presentation.solenne_server_dp_uri);
    if (presentation.has_cards) {
        list->PushStringData(Names::SUB_DEVICE_CARD_LIST_INFO, device->GetSubDeviceCardJsonInfo());
    }
    list->PushIntData(Names::NUM_OF_SUB_DEVICE_CARDS, presentation.card_count);
    const std::string cameraUrl = GetCameraUrl(device);
    if (!cameraUrl.empty()) {
        list->PushStringData(Names::CAMERA_STREAM_URL, cameraUrl);
    }
    if (vid.find(Device::kAvPlatform) != std::string::npos) {
        list->PushStringData(kStateAccessToken, getAccessToken());
    }

    HL_LOGI(
        "DeviceStateUpdatedInfo DeviceName:%s, DeviceId:%s, OldStateText:%s, NewStateText:%s, Vid:%s, DeviceType:%s, "
        "CloudState:%d, ActiveState:%d, RunningState:%d, Controllable:%d, ControlType:%s, ServerDpUri:%s, "
        "ActionState:%s, ActionUrl:%s, IconKey:%s, IconDate:%s, AnimationUrl:%s, ActivatedUrl:%s, InactivatedUrl:%s, "
        "DisconnectedUrl:%s",
        device->GetName().c_str(), device->GetId().c_str(), oldStateText.c_str(), device->GetStateText().c_str(),
        vid.c_str(), type.c_str(), status, !device->IsInactive(), device->GetRunningState(),
        device->IsControllableDevice(), presentation.control_type.c_str(), presentation.solenne_server_dp_uri.c_str(),
        presentation.action_state.c_str(), presentation.action_url.c_str(), device->GetCoreDeviceIconKey().c_str(),
        device->GetCoreDeviceIconDate().c_str(), device->GetCoreDeviceAnimationIconUrl().c_str(),
        device->GetCoreDeviceActivatedIconUrl().c_str(), device->GetCoreDeviceInactivatedIconUrl().c_str(),
        device->GetCoreDeviceDisconnectedIconUrl().c_str());
    IWayOut::Get().ReportServiceNotify(list);
}

std::string DeviceHandler::GetCameraUrl(const std::shared_ptr<Device>& device) const {
    if (!device->IsCameraDevice()) {
        return "";
    }
    const std::string uri = Metadata::GetInstance().GetStreamURI(device);
    const std::string url = device->GetValue(uri, "stream");
    return url.empty() ? device->GetValue(uri, "liveStream") : url;
}

void DeviceHandler::handleButton(const std::shared_ptr<Device>& device, const device_resource_info_struct& info) {
    if (info.properties.empty()) {
        device->UpdateValue({info.device_id, info.uri, {{"button", kButtonReady, "String"}}});
        HL_LOGI("put init value to button");
        return;
    }
    if (info.properties.front().property_value != kButtonReady) {
        setButtonStandbyTimer(device, info);
    }
    device->UpdateValue(info);
}

// A press shows for one second; a second press within it starts the second anew.
void DeviceHandler::setButtonStandbyTimer(const std::shared_ptr<Device>& device,
                                          const device_resource_info_struct& info) {
    device->SetTimer(kButtonStandbyMs, [weak = weak_from_this(), type = device->GetDeviceType(), info] {
        const auto self = weak.lock();
        if (!self) {
            return;
        }
        device_resource_info_struct standby = info;
        auto& value = standby.properties.front().property_value;
        HL_LOGI("setButtonStandbyTimer() button timer expired [%s] : [%s]->[%s], device_id : [%s]", type.c_str(),
                value.c_str(), kButtonReady, info.device_id.c_str());
        value = kButtonReady;
        self->OnResourceUpdateEvent(standby);
    });
}

}  // namespace VMFramework::HomeLoom

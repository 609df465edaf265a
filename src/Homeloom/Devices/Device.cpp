// A device's fields and resource values, what an update changed among them, and its timer.
#include "Homeloom/Devices/Device.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Helpers/CEndpointHelper.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Devices/Property.h"
#include "Homeloom/Devices/Resource.h"

namespace VMFramework::HomeLoom {

Device::Device() = default;

Device::Device(const _deviceInfo& info) : _id(info.device_id), _told(info) {}

Device::Told::Told(const _deviceInfo& info)
    : device_name(info.device_name),
      nick_name(info.nick_name),
      vid(info.vid),
      device_type(info.device_type),
      location_name(info.location_name),
      room_name(info.room_name),
      location_id(info.location_id),
      room_id(info.room_id),
      prefix(info.prefix),
      core_device_type(info.core_device_type),
      core_device_network_type(info.core_device_network_type),
      core_device_parent_device_id(info.core_device_parent_device_id),
      core_device_animation_icon_url(info.core_device_animation_icon_url),
      core_device_activated_icon_url(info.core_device_activated_icon_url),
      core_device_inactivated_icon_url(info.core_device_inactivated_icon_url),
      core_device_disconnected_icon_url(info.core_device_disconnected_icon_url),
      core_device_icon_key(info.core_device_icon_key),
      core_device_icon_date(info.core_device_icon_date),
      status(info.status) {}

Device::~Device() {
    if (_token != nullptr) {
        CallbackTokens::Unwatch(_token);
    }
}

void* Device::CallbackToken() {
    std::call_once(_tokenOnce, [this] { _token = CallbackTokens::Watch(weak_from_this()); });
    return _token;
}

std::shared_ptr<Device> Device::findByToken(void* token) {
    return CallbackTokens::Find<Device>(token);
}

// Each evaluation sets it once for each argument, mostly to what it was; only what goes out needs the text.
void Device::SetDeviceOperationalContext(const std::string& uri, const std::string& property,
                                         const std::string& value) {
    auto& context = _operationalContext;
    if (context.isSet && context.value == value && context.property.get() == property && context.uri.get() == uri) {
        return;
    }
    context = {true, SharedText(uri), SharedText(property), value, {}};
}

void Device::SetDeviceOperationalContext(const device_context_struct& context) {
    SetDeviceOperationalContext(context.uri, context.property, context.value);
}

Device::ContextKeeper::ContextKeeper(Device& device)
    : _device(device), _context(std::exchange(device._operationalContext, Context())) {}

Device::ContextKeeper::~ContextKeeper() {
    _device._operationalContext = std::move(_context);
}

const std::string& Device::GetDeviceOperationalContext() const {
    const Context& context = _operationalContext;
    if (context.isSet && context.text.get().empty()) {
        Guarded([&] {
            auto document = json::JsonValue::CreateObject();
            document.set("uri", context.uri.get());
            document.set("property", context.property.get());
            document.set("value", context.value);
            context.text = document.toString();
        });
    }
    return context.text.get();
}

bool Device::IsCameraDevice() const {
    const std::string_view type = GetDeviceType();
    return type == "oic.d.camera" || type == "x.com.hl.d.doorbell";
}

bool Device::IsFilteredDevice() const {
    if (GetDeviceType() == "x.com.hl.d.bridge" || GetDeviceType() == "oic.d.wirelessrouter" ||
        GetDeviceType() == "x.com.hl.d.mobile.presence") {
        HL_LOGI("[%s] device type is filtered", GetDeviceType().c_str());
        return true;
    }
    return false;
}

bool Device::IsAVPSupportedCamera() const {
    if (GetVid().find(kAvPlatform) == std::string::npos) {
        return false;
    }
    HL_LOGI("vid[%s] This Camera is HL Camera, device id : %s", GetVid().c_str(), _id.c_str());
    return true;
}

bool Device::IsSupportInnerView() const {
    return GetDeviceType() == "oic.d.refrigerator" && _told.status != DEVICE_STATUS_DISCONNECTED &&
           HasResource(kInsideViewUri);
}

Resource* Device::lookUp(const std::string& uri) const {
    const auto found = std::find_if(_resources.begin(), _resources.end(),
                                    [&](const auto& resource) { return resource->GetURI() == uri; });
    return found != _resources.end() ? found->get() : nullptr;
}

void Device::AddResource(const std::shared_ptr<Resource>& resource) {
    if (resource && resource->IsValidObject() && !HasResource(resource->GetURI())) {
        _resources.push_back(resource);
    }
}

std::shared_ptr<Resource> Device::FindResource(const std::string& uri, bool createNamed) const {
    const auto found = std::find_if(_resources.begin(), _resources.end(),
                                    [&](const auto& resource) { return resource->GetURI() == uri; });
    if (found != _resources.end()) {
        return *found;
    }
    return createNamed ? std::make_shared<Resource>(uri) : std::make_shared<Resource>();
}

bool Device::HasResource(const std::string& uri) const {
    return lookUp(uri) != nullptr;
}

bool Device::HasDeviceUri(const std::string& uri) const {
    if (uri.empty()) {
        HL_LOGE("uri is empty");
        return false;
    }
    return HasResource(uri);
}

void Device::DeleteResources() {
    _resources.clear();
}

std::string Device::GetValue(const std::string& uri, const std::string& property) const {
    return ValueOf(uri, property);
}

const std::string& Device::ValueOf(const std::string& uri, const std::string& property) const {
    static const std::string kNone;
    if (uri.empty() || property.empty()) {
        HL_LOGE("check arguments(one of those is null) uri : %s, property : %s", uri.c_str(), property.c_str());
        return kNone;
    }
    Resource* const resource = lookUp(uri);
    if (resource == nullptr) {
        HL_LOGE("GetValue Could NOT find resource :  %s", uri.c_str());
        return kNone;
    }
    const Property* const found = resource->LookUp(property);
    if (found == nullptr || !found->IsValidObject()) {
        HL_LOGE("GetValue Could NOT find property in resource : URI: %s  [PrpertyName:  %s ]", uri.c_str(),
                property.c_str());
        resource->DeleteProperty(property);
        return kNone;
    }
    return found->GetValue();
}

void Device::UpdateValue(const device_resource_info_struct& info) {
    if (info.device_id != _id) {
        return;
    }
    if (Resource* const resource = lookUp(info.uri)) {
        resource->BuildDetailInfo(info);
    }
}

bool Device::GetRcpValue(const std::string& uri, const std::string& property, const std::string& value,
                         std::string& rcpString) const {
    if (uri.empty() || property.empty() || value.empty()) {
        HL_LOGE("check arguments(one of those is null) uri : %s, property : %s, value : %s", uri.c_str(),
                property.c_str(), value.c_str());
        return false;
    }
    Resource* const resource = lookUp(uri);
    if (resource == nullptr) {
        HL_LOGE("GetRcpValue Could NOT find resource : %s", uri.c_str());
        return false;
    }
    resource->GetRcpString(rcpString, property, value);
    return true;
}

bool Device::GetRcpValueByStreamURL(const std::string& uri, std::string& rcpString) const {
    if (uri.empty()) {
        return false;
    }
    auto document = json::JsonValue::CreateObject();
    document.set("liveStream", true);
    rcpString = document.toString();
    HL_LOGI("camera request uri %s rcpString %s", uri.c_str(), rcpString.c_str());
    return true;
}

void Device::ApplyChanges(const std::shared_ptr<Device>& other) {
    if (!other) {
        return;
    }
    if (other->_id != _id) {
        HL_LOGE("different device Id: %s  :%s", _id.c_str(), other->_id.c_str());
        return;
    }
    // The whole of what the cloud tells, the id being equal.
    _told = other->_told;
    for (const auto& resource : other->_resources) {
        AddResource(resource);
    }
}

void Device::SetTimer(unsigned interval, std::function<void()> callback) {
    if (!callback) {
        HL_LOGE("callback null!");
        return;
    }
    const auto fire = [weak = weak_from_this(), callback = std::move(callback)] {
        // The device stays until its callback has returned.
        if (const auto self = weak.lock()) {
            callback();
        }
    };
    if (_timer.Start(interval, fire) == 0) {
        HL_LOGE("g_timeout_add failed!");
        return;
    }
    HL_LOGI("timer added[%u milisecond]", interval);
}

void Device::CancelTimer() {
    _timer.Cancel();
}

void PrintDevice(const Device& device) {
    HL_LOGI("device %s, vid : %s, type : %s, status : %d, state text : %s", device.GetId().c_str(),
            device.GetVid().c_str(), device.GetDeviceType().c_str(), static_cast<int>(device.GetStatus()),
            device.GetStateText().c_str());
}

}  // namespace VMFramework::HomeLoom

// A device's fields and resource values, what an update changed among them, and its timer.
#include "Homeloom/Devices/Device.h"

#include <exception>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/HLLog.h"
#include "Helpers/CEndpointHelper.h"
#include "Homeloom/Common/CallbackTokens.h"
#include "Homeloom/Devices/Property.h"
#include "Homeloom/Devices/Resource.h"

namespace VMFramework::HomeLoom {

Device::Device() = default;

Device::Device(const _deviceInfo& info) : _id(info.device_id), _info(info) {}

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
    if (_operationalContext && _operationalContext->value == value && _operationalContext->property == property &&
        _operationalContext->uri == uri) {
        return;
    }
    _operationalContext = device_context_struct{uri, property, value};
    _operationalContextText.clear();
}

void Device::SetDeviceOperationalContext(const device_context_struct& context) {
    SetDeviceOperationalContext(context.uri, context.property, context.value);
}

Device::ContextKeeper::ContextKeeper(Device& device)
    : _device(device),
      _context(std::exchange(device._operationalContext, std::nullopt)),
      _text(std::move(device._operationalContextText)) {}

Device::ContextKeeper::~ContextKeeper() {
    _device._operationalContext = std::move(_context);
    _device._operationalContextText = std::move(_text);
}

const std::string& Device::GetDeviceOperationalContext() const {
    if (!_operationalContext || !_operationalContextText.empty()) {
        return _operationalContextText;
    }
    try {
        auto document = json::JsonValue::CreateObject();
        document.set("uri", _operationalContext->uri);
        document.set("property", _operationalContext->property);
        document.set("value", _operationalContext->value);
        _operationalContextText = document.toString();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
    return _operationalContextText;
}

bool Device::IsCameraDevice() const {
    return _info.device_type == "oic.d.camera" || _info.device_type == "x.com.hl.d.doorbell";
}

bool Device::IsFilteredDevice() const {
    if (_info.device_type == "x.com.hl.d.bridge" || _info.device_type == "oic.d.wirelessrouter" ||
        _info.device_type == "x.com.hl.d.mobile.presence") {
        HL_LOGI("[%s] device type is filtered", _info.device_type.c_str());
        return true;
    }
    return false;
}

bool Device::IsAVPSupportedCamera() const {
    if (_info.vid.find(kAvPlatform) == std::string::npos) {
        return false;
    }
    HL_LOGI("vid[%s] This Camera is HL Camera, device id : %s", _info.vid.c_str(), _id.c_str());
    return true;
}

bool Device::IsSupportInnerView() const {
    return _info.device_type == "oic.d.refrigerator" && _info.status != DEVICE_STATUS_DISCONNECTED &&
           HasResource(kInsideViewUri);
}

void Device::AddResource(const std::shared_ptr<Resource>& resource) {
    if (resource && resource->IsValidObject()) {
        _resources.emplace(resource->GetURI(), resource);
    }
}

std::shared_ptr<Resource> Device::FindResource(const std::string& uri, bool createNamed) const {
    const auto found = _resources.find(uri);
    if (found != _resources.end()) {
        return found->second;
    }
    return createNamed ? std::make_shared<Resource>(uri) : std::make_shared<Resource>();
}

bool Device::HasResource(const std::string& uri) const {
    return _resources.find(uri) != _resources.end();
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
    const auto resource = _resources.find(uri);
    if (resource == _resources.end()) {
        HL_LOGE("GetValue Could NOT find resource :  %s", uri.c_str());
        return kNone;
    }
    const Property* const found = resource->second->LookUp(property);
    if (found == nullptr || !found->IsValidObject()) {
        HL_LOGE("GetValue Could NOT find property in resource : URI: %s  [PrpertyName:  %s ]", uri.c_str(),
                property.c_str());
        resource->second->DeleteProperty(property);
        return kNone;
    }
    return found->GetValue();
}

void Device::UpdateValue(const device_resource_info_struct& info) {
    if (info.device_id != _id) {
        return;
    }
    const auto resource = _resources.find(info.uri);
    if (resource != _resources.end()) {
        resource->second->BuildDetailInfo(info);
    }
}

bool Device::GetRcpValue(const std::string& uri, const std::string& property, const std::string& value,
                         std::string& rcpString) const {
    if (uri.empty() || property.empty() || value.empty()) {
        HL_LOGE("check arguments(one of those is null) uri : %s, property : %s, value : %s", uri.c_str(),
                property.c_str(), value.c_str());
        return false;
    }
    const auto resource = _resources.find(uri);
    if (resource == _resources.end()) {
        HL_LOGE("GetRcpValue Could NOT find resource : %s", uri.c_str());
        return false;
    }
    resource->second->GetRcpString(rcpString, property, value);
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
    _info = other->_info;
    for (const auto& [uri, resource] : other->_resources) {
        _resources.emplace(uri, resource);
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

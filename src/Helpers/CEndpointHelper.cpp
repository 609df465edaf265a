// Wraps one endpoint of the framework, and remembers what was set for the log.
#include "Helpers/CEndpointHelper.h"

#include "Common/CException.h"
#include "Common/CText.h"
#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

std::shared_ptr<IEndpointHelper> MakeHelper(vmf_endpoint_h endpoint, bool owning) {
    if (endpoint == nullptr) {
        throw CException("endpoint_h is invalid", kErrorInvalidHandle);
    }
    return std::make_shared<CEndpointHelper>(endpoint, owning);
}

}  // namespace

std::shared_ptr<IEndpointHelper> IEndpointHelper::Create() {
    return MakeHelper(vmf_endpoint_create(), false);
}

std::shared_ptr<IEndpointHelper> IEndpointHelper::Copy(vmf_endpoint_h endpoint) {
    return MakeHelper(vmf_endpoint_copy(endpoint), true);
}

CEndpointHelper::CEndpointHelper(vmf_endpoint_h endpoint, bool owning) noexcept
    : _endpoint(endpoint), _owning(owning), _isPrinted(Log::IsTaken(DLOG_INFO, Log::kTag)) {}

CEndpointHelper::~CEndpointHelper() {
    if (_owning) {
        vmf_endpoint_destroy(_endpoint);
    }
}

vmf_endpoint_h CEndpointHelper::GetHandle() const {
    return _endpoint;
}

void CEndpointHelper::SetServiceName(const std::string& value) {
    SetServiceName(value.c_str());
}

void CEndpointHelper::SetServiceName(const char* value) {
    if (_isPrinted) {
        _serviceName = value;
    }
    vmf_endpoint_set_service_name(_endpoint, value);
}

void CEndpointHelper::SetInterfaceType(const std::string& value) {
    SetInterfaceType(value.c_str());
}

void CEndpointHelper::SetInterfaceType(const char* value) {
    if (_isPrinted) {
        _interfaceType = value;
    }
    vmf_endpoint_set_interface_type(_endpoint, value);
}

void CEndpointHelper::SetDeviceId(const std::string& value) {
    if (_isPrinted) {
        _deviceId = value;
    }
    vmf_endpoint_set_device_id(_endpoint, value.c_str());
}

void CEndpointHelper::SetDeviceName(const std::string& value) {
    if (_isPrinted) {
        _deviceName = value;
    }
    vmf_endpoint_set_device_name(_endpoint, value.c_str());
}

void CEndpointHelper::SetDeviceType(const std::string& value) {
    SetDeviceType(value.c_str());
}

void CEndpointHelper::SetDeviceType(const char* value) {
    if (_isPrinted) {
        _deviceType = value;
    }
    vmf_endpoint_set_device_type(_endpoint, value);
}

void CEndpointHelper::SetSubDeviceType(const std::string& value) {
    if (_isPrinted) {
        _subDeviceType = value;
    }
    vmf_endpoint_set_sub_device_type(_endpoint, value.c_str());
}

void CEndpointHelper::SetExtraData(const std::string& key, const std::string& value) {
    SetExtraData(key.c_str(), value);
}

void CEndpointHelper::SetExtraData(const char* key, const std::string& value) {
    if (_isPrinted) {
        _extraData[key] = value;
    }
    vmf_endpoint_set_extra_data(_endpoint, key, value.c_str());
}

void CEndpointHelper::SetExtraDataInt(const std::string& key, int value) {
    SetExtraDataInt(key.c_str(), value);
}

void CEndpointHelper::SetExtraDataInt(const char* key, int value) {
    if (_isPrinted) {
        _extraDataInt[key] = value;
    }
    vmf_endpoint_set_extra_data_int(_endpoint, key, value);
}

void CEndpointHelper::SetExtraDataBool(const std::string& key, bool value) {
    SetExtraDataBool(key.c_str(), value);
}

void CEndpointHelper::SetExtraDataBool(const char* key, bool value) {
    if (_isPrinted) {
        _extraDataBool[key] = value;
    }
    vmf_endpoint_set_extra_data_bool(_endpoint, key, value);
}

std::string CEndpointHelper::GetServiceName() const {
    return TextOf(vmf_endpoint_get_service_name(_endpoint));
}

std::string CEndpointHelper::GetInterfaceType() const {
    return TextOf(vmf_endpoint_get_interface_type(_endpoint));
}

std::string CEndpointHelper::GetDeviceId() const {
    return TextOf(vmf_endpoint_get_device_id(_endpoint));
}

std::string CEndpointHelper::GetDeviceName() const {
    return TextOf(vmf_endpoint_get_device_name(_endpoint));
}

std::string CEndpointHelper::GetDeviceType() const {
    return TextOf(vmf_endpoint_get_device_type(_endpoint));
}

std::string CEndpointHelper::GetExtraData(const std::string& key) const {
    return TextOf(vmf_endpoint_get_extra_data(_endpoint, key.c_str()));
}

void CEndpointHelper::PrintData(const std::shared_ptr<Device>& device) const {
    if (!_isPrinted) {
        return;
    }
    HL_LOGI("endpoint service : %s, interface : %s, device_id : %s, name : %s, type : %s, sub type : %s",
            _serviceName.c_str(), _interfaceType.c_str(), _deviceId.c_str(), _deviceName.c_str(), _deviceType.c_str(),
            _subDeviceType.c_str());
    for (const auto& [key, value] : _extraData) {
        HL_LOGI("extra data %s : %s", key.c_str(), value.c_str());
    }
    for (const auto& [key, value] : _extraDataInt) {
        HL_LOGI("extra data %s : %d", key.c_str(), value);
    }
    for (const auto& [key, value] : _extraDataBool) {
        HL_LOGI("extra data %s : %s", key.c_str(), value ? "true" : "false");
    }
    if (device) {
        PrintDevice(*device);
    }
}

}  // namespace VMFramework::HomeLoom

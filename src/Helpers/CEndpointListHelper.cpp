// Wraps an endpoint list of the framework, which owns the endpoints pushed on it.
#include "Helpers/CEndpointListHelper.h"

#include <stdexcept>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

std::shared_ptr<IEndpointListHelper> IEndpointListHelper::Create() {
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_endpoint_list_h list = vmf_endpoint_list_create(&error);
    if (list == nullptr || error != VMF_ERROR_NONE) {
        HL_LOGE("failed to copy list");
        throw std::invalid_argument("failed to create list");
    }
    return std::make_shared<CEndpointListHelper>(list);
}

void CEndpointListHelper::Push(vmf_endpoint_h endpoint, vmf_error_e error) {
    if (error != VMF_ERROR_NONE || vmf_endpoint_list_push_endpoint(_list, endpoint) != VMF_ERROR_NONE) {
        HL_LOGE("Push is failed");
        vmf_endpoint_destroy(endpoint);
        return;
    }
    ++_count;
}

void CEndpointListHelper::Pop(void** endpoint, vmf_error_e* error) {
    // Counted whether or not there was one, so the count of an empty list goes below zero.
    --_count;
    const vmf_error_e result = vmf_endpoint_list_pop(_list, endpoint);
    if (error != nullptr) {
        *error = result;
    }
}

vmf_endpoint_h CEndpointListHelper::Find(const std::string& deviceId) {
    return vmf_endpoint_list_find(_list, deviceId.c_str());
}

int CEndpointListHelper::GetCount(const std::string& deviceType) const {
    return vmf_endpoint_list_count(_list, deviceType.c_str());
}

}  // namespace VMFramework::HomeLoom

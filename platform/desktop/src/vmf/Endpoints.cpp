#include <utility>

#include "vmf/CallFaults.h"
#include "vmf/Objects.h"

namespace homeloom::desktop {

EndpointTable& endpoints() {
    static EndpointTable* const table = new EndpointTable();
    return *table;
}

EndpointListTable& endpointLists() {
    static EndpointListTable* const table = new EndpointListTable();
    return *table;
}

void EndpointEnd::operator()(Endpoint* endpoint) const {
    endpoints().remove(endpoint->handle);
}

std::unique_ptr<Endpoint, EndpointEnd> makeEndpoint(EndpointRecord record) {
    auto made = std::make_unique<Endpoint>();
    made->record = std::move(record);
    Endpoint* const endpoint = made.get();
    const bool added = endpoints().add(std::move(made)) != nullptr;
    return std::unique_ptr<Endpoint, EndpointEnd>(added ? endpoint : nullptr);
}

namespace {

// As many as a device has; others grow.
constexpr std::size_t kUsualExtraData = 32;

using TextField = std::optional<std::string> EndpointRecord::*;

vmf_error_e errorOf(int fault) {
    return static_cast<vmf_error_e>(fault);
}

vmf_error_e setText(const char* function, vmf_endpoint_h handle, TextField field, const char* value) {
    if (const int fault = takeFault(function)) {
        return errorOf(fault);
    }
    Endpoint* const endpoint = endpoints().get(handle);
    if (endpoint == nullptr || value == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    endpoint->record.*field = value;
    return VMF_ERROR_NONE;
}

const char* getText(vmf_endpoint_h handle, TextField field) {
    const Endpoint* endpoint = endpoints().get(handle);
    return endpoint != nullptr && endpoint->record.*field ? (endpoint->record.*field)->c_str() : nullptr;
}

// The value is made in its place: a list sets thirty of them for each device.
template <typename Kind, typename Data>
vmf_error_e setExtraData(const char* function, vmf_endpoint_h handle, const char* key, Data data) {
    if (const int fault = takeFault(function)) {
        return errorOf(fault);
    }
    Endpoint* const endpoint = endpoints().get(handle);
    if (endpoint == nullptr || key == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    auto& extraData = endpoint->record.extraData;
    if (extraData.empty()) {
        extraData.reserve(kUsualExtraData);
    }
    extraData.at(key).emplace<Kind>(data);
    return VMF_ERROR_NONE;
}

void* cursorTo(const EndpointList& list, std::size_t position) {
    return position < list.endpoints.size() ? list.endpoints[position]->handle : nullptr;
}

}  // namespace

}  // namespace homeloom::desktop

using namespace homeloom::desktop;

vmf_endpoint_h vmf_endpoint_create(void) {
    return takeFault(__func__) == 0 ? endpoints().add(std::make_unique<Endpoint>()) : nullptr;
}

vmf_endpoint_h vmf_endpoint_copy(vmf_endpoint_h endpoint) {
    const Endpoint* source = endpoints().get(endpoint);
    if (takeFault(__func__) != 0 || source == nullptr) {
        return nullptr;
    }
    auto copy = std::make_unique<Endpoint>();
    copy->record = source->record;
    return endpoints().add(std::move(copy));
}

vmf_error_e vmf_endpoint_destroy(vmf_endpoint_h endpoint) {
    const Endpoint* ended = endpoints().get(endpoint);
    if (ended == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    if (ended->list != nullptr) {
        return VMF_ERROR_INVALID_STATE;
    }
    endpoints().remove(endpoint);
    return VMF_ERROR_NONE;
}

vmf_error_e vmf_endpoint_set_service_name(vmf_endpoint_h endpoint, const char* value) {
    return setText(__func__, endpoint, &EndpointRecord::serviceName, value);
}

vmf_error_e vmf_endpoint_set_interface_type(vmf_endpoint_h endpoint, const char* value) {
    return setText(__func__, endpoint, &EndpointRecord::interfaceType, value);
}

vmf_error_e vmf_endpoint_set_device_id(vmf_endpoint_h endpoint, const char* value) {
    return setText(__func__, endpoint, &EndpointRecord::deviceId, value);
}

vmf_error_e vmf_endpoint_set_device_name(vmf_endpoint_h endpoint, const char* value) {
    return setText(__func__, endpoint, &EndpointRecord::deviceName, value);
}

vmf_error_e vmf_endpoint_set_device_type(vmf_endpoint_h endpoint, const char* value) {
    return setText(__func__, endpoint, &EndpointRecord::deviceType, value);
}

vmf_error_e vmf_endpoint_set_sub_device_type(vmf_endpoint_h endpoint, const char* value) {
    return setText(__func__, endpoint, &EndpointRecord::subDeviceType, value);
}

vmf_error_e vmf_endpoint_set_extra_data(vmf_endpoint_h endpoint, const char* key, const char* value) {
    // A null text is refused as a null key is.
    return setExtraData<std::string>(__func__, endpoint, value != nullptr ? key : nullptr, value);
}

vmf_error_e vmf_endpoint_set_extra_data_int(vmf_endpoint_h endpoint, const char* key, int value) {
    return setExtraData<int>(__func__, endpoint, key, value);
}

vmf_error_e vmf_endpoint_set_extra_data_bool(vmf_endpoint_h endpoint, const char* key, bool value) {
    return setExtraData<bool>(__func__, endpoint, key, value);
}

const char* vmf_endpoint_get_service_name(vmf_endpoint_h endpoint) {
    return getText(endpoint, &EndpointRecord::serviceName);
}

const char* vmf_endpoint_get_interface_type(vmf_endpoint_h endpoint) {
    return getText(endpoint, &EndpointRecord::interfaceType);
}

const char* vmf_endpoint_get_device_id(vmf_endpoint_h endpoint) {
    return getText(endpoint, &EndpointRecord::deviceId);
}

const char* vmf_endpoint_get_device_name(vmf_endpoint_h endpoint) {
    return getText(endpoint, &EndpointRecord::deviceName);
}

const char* vmf_endpoint_get_device_type(vmf_endpoint_h endpoint) {
    return getText(endpoint, &EndpointRecord::deviceType);
}

const char* vmf_endpoint_get_extra_data(vmf_endpoint_h endpoint, const char* key) {
    const Endpoint* source = endpoints().get(endpoint);
    const Value* value = source != nullptr && key != nullptr ? source->record.extraData.find(key) : nullptr;
    const std::string* text = value != nullptr ? std::get_if<std::string>(value) : nullptr;
    return text != nullptr ? text->c_str() : nullptr;
}

vmf_endpoint_list_h vmf_endpoint_list_create(vmf_error_e* error) {
    if (error == nullptr) {
        return nullptr;
    }
    *error = errorOf(takeFault(__func__));
    if (*error != VMF_ERROR_NONE) {
        return nullptr;
    }
    const vmf_endpoint_list_h handle = endpointLists().add(std::make_unique<EndpointList>());
    if (handle == nullptr) {
        *error = VMF_ERROR_OUT_OF_MEMORY;
    }
    return handle;
}

vmf_error_e vmf_endpoint_list_destroy(vmf_endpoint_list_h list) {
    const auto ended = endpointLists().remove(list);
    if (ended == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    endpoints().endAll(ended->endpoints.begin() + static_cast<std::ptrdiff_t>(ended->first), ended->endpoints.end());
    return VMF_ERROR_NONE;
}

vmf_error_e vmf_endpoint_list_push_endpoint(vmf_endpoint_list_h list, vmf_endpoint_h endpoint) {
    if (const int fault = takeFault(__func__)) {
        return errorOf(fault);
    }
    EndpointList* const target = endpointLists().get(list);
    Endpoint* const pushed = endpoints().get(endpoint);
    if (target == nullptr || pushed == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    if (pushed->list != nullptr) {
        return VMF_ERROR_INVALID_STATE;
    }
    pushed->list = target;
    pushed->position = target->endpoints.size();
    target->endpoints.push_back(pushed);
    return VMF_ERROR_NONE;
}

vmf_error_e vmf_endpoint_list_pop(vmf_endpoint_list_h list, void** endpoint) {
    if (const int fault = takeFault(__func__)) {
        return errorOf(fault);
    }
    EndpointList* const source = endpointLists().get(list);
    if (source == nullptr || endpoint == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    if (source->first == source->endpoints.size()) {
        return VMF_ERROR_NOT_FOUND;
    }
    Endpoint* const popped = source->endpoints[source->first++];
    popped->list = nullptr;
    *endpoint = popped->handle;
    return VMF_ERROR_NONE;
}

vmf_endpoint_h vmf_endpoint_list_find(vmf_endpoint_list_h list, const char* device_id) {
    const EndpointList* source = endpointLists().get(list);
    if (source == nullptr || device_id == nullptr) {
        return nullptr;
    }
    for (std::size_t i = source->first; i < source->endpoints.size(); ++i) {
        if (source->endpoints[i]->record.deviceId == device_id) {
            return source->endpoints[i]->handle;
        }
    }
    return nullptr;
}

void* vmf_endpoint_list_get_first(vmf_endpoint_list_h list) {
    const EndpointList* source = endpointLists().get(list);
    return source != nullptr ? cursorTo(*source, source->first) : nullptr;
}

void* vmf_endpoint_list_get_next(vmf_endpoint_list_h list, void* cursor) {
    const EndpointList* source = endpointLists().get(list);
    const Endpoint* current = endpoints().get(cursor);
    if (source == nullptr || current == nullptr || current->list != source) {
        return nullptr;
    }
    return cursorTo(*source, current->position + 1);
}

bool vmf_endpoint_list_empty(vmf_endpoint_list_h list) {
    return vmf_endpoint_list_get_first(list) == nullptr;
}

int vmf_endpoint_list_count(vmf_endpoint_list_h list, const char* device_type) {
    const EndpointList* source = endpointLists().get(list);
    if (source == nullptr || device_type == nullptr) {
        return 0;
    }
    int count = 0;
    for (std::size_t i = source->first; i < source->endpoints.size(); ++i) {
        count += source->endpoints[i]->record.deviceType == device_type ? 1 : 0;
    }
    return count;
}

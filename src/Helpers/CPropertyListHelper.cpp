// Wraps a property list of the framework; a value that can't be read counts as empty.
#include "Helpers/CPropertyListHelper.h"

#include <stdexcept>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

[[noreturn]] void FailToCreate() {
    // Making and copying share one text.
    HL_LOGE("failed to copy list");
    throw std::invalid_argument("failed to create list");
}

}  // namespace

std::shared_ptr<IPropertyListHelper> IPropertyListHelper::Create() {
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_property_list_h list = vmf_property_list_create(&error);
    if (list == nullptr || error != VMF_ERROR_NONE) {
        FailToCreate();
    }
    auto helper = std::make_shared<CPropertyListHelper>(list);
    HL_LOGE("(core)property list created for (%p)", static_cast<void*>(list));
    return helper;
}

std::shared_ptr<IPropertyListHelper> IPropertyListHelper::Create(vmf_property_list_h source) {
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_property_list_h list = vmf_property_list_copy(source, &error);
    if (list == nullptr || error != VMF_ERROR_NONE) {
        FailToCreate();
    }
    auto helper = std::make_shared<CPropertyListHelper>(list);
    HL_LOGE("(core)property list created for %s(%p)", helper->GetName().c_str(), static_cast<void*>(list));
    return helper;
}

CPropertyListHelper::CPropertyListHelper(vmf_property_list_h list) noexcept : _list(list) {}

CPropertyListHelper::~CPropertyListHelper() {
    HL_LOGE("(hl)property list destroy for %s(%p)", CPropertyListHelper::GetName().c_str(), static_cast<void*>(_list));
    vmf_property_list_destroy(_list);
}

vmf_property_list_h CPropertyListHelper::GetHandle() {
    return _list;
}

void CPropertyListHelper::SetName(const std::string& name) {
    SetName(name.c_str());
}

void CPropertyListHelper::SetName(const char* name) {
    if (*name == '\0') {
        return;
    }
    HL_LOGI("name : %s", name);
    if (vmf_property_list_set_name(_list, name) != VMF_ERROR_NONE) {
        HL_LOGE("failed to set data in SetName!");
    }
}

std::string CPropertyListHelper::GetName() const {
    const char* name = vmf_property_list_get_name(_list);
    return name != nullptr ? name : "";
}

void CPropertyListHelper::Push(vmf_property_h property, vmf_error_e error) {
    if (property == nullptr || error != VMF_ERROR_NONE ||
        vmf_property_list_push_property(_list, property) != VMF_ERROR_NONE) {
        HL_LOGE("failed to set data in Push!");
    }
}

void CPropertyListHelper::PushStringData(const std::string& key, const std::string& value) {
    PushStringData(key.c_str(), value);
}

void CPropertyListHelper::PushStringData(const char* key, const std::string& value) {
    if (*key == '\0' || value.empty()) {
        return;
    }
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_property_h property = vmf_property_create_string(key, value.c_str(), &error);
    if (error != VMF_ERROR_NONE) {
        HL_LOGE("failed to set data in PushStringData!");
        return;
    }
    Push(property, error);
}

void CPropertyListHelper::PushIntData(const std::string& key, int value) {
    PushIntData(key.c_str(), value);
}

void CPropertyListHelper::PushIntData(const char* key, int value) {
    if (*key == '\0') {
        return;
    }
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_property_h property = vmf_property_create_int(key, value, &error);
    if (error != VMF_ERROR_NONE) {
        HL_LOGE("failed to set data in PushIntData!");
        return;
    }
    Push(property, error);
}

void CPropertyListHelper::PushBooleanData(const std::string& key, bool value) {
    PushBooleanData(key.c_str(), value);
}

void CPropertyListHelper::PushBooleanData(const char* key, bool value) {
    if (*key == '\0') {
        return;
    }
    vmf_error_e error = VMF_ERROR_NONE;
    const vmf_property_h property = vmf_property_create_bool(key, value, &error);
    if (error != VMF_ERROR_NONE) {
        HL_LOGE("failed to set data in PushBooleanData!");
        return;
    }
    Push(property, error);
}

void CPropertyListHelper::Pop(void** property, vmf_error_e* error) {
    const vmf_error_e result = vmf_property_list_pop(_list, property);
    if (error != nullptr) {
        *error = result;
    }
}

vmf_property_h CPropertyListHelper::Find(const std::string& key) {
    return key.empty() ? nullptr : vmf_property_list_find(_list, key.c_str());
}

void* CPropertyListHelper::GetFirst() const {
    return vmf_property_list_get_first(_list);
}

void* CPropertyListHelper::GetNext(void* cursor) const {
    return vmf_property_list_get_next(_list, cursor);
}

bool CPropertyListHelper::Empty() const {
    return vmf_property_list_empty(_list);
}

std::string CPropertyListHelper::GetString(const std::string& key) {
    const char* value = nullptr;
    vmf_property_get_string(Find(key), &value);
    return value != nullptr ? value : "";
}

int CPropertyListHelper::GetInt(const std::string& key) {
    int value = 0;
    if (vmf_property_get_int(Find(key), &value) != VMF_ERROR_NONE) {
        HL_LOGE("failed to GetInt");
    }
    return value;
}

bool CPropertyListHelper::GetBool(const std::string& key) {
    bool value = false;
    if (vmf_property_get_bool(Find(key), &value) != VMF_ERROR_NONE) {
        HL_LOGE("failed to GetBool");
    }
    return value;
}

}  // namespace VMFramework::HomeLoom

#include <cstring>
#include <utility>

#include "vmf/CallFaults.h"
#include "vmf/Objects.h"
#include "vmf/Spares.h"

namespace homeloom::desktop {

PropertyTable& properties() {
    static PropertyTable* const table = new PropertyTable();
    return *table;
}

PropertyListTable& propertyLists() {
    static PropertyListTable* const table = new PropertyListTable();
    return *table;
}

namespace {

// As many as a device's state has; longer lists grow.
constexpr std::size_t kUsualProperties = 20;
// A text beyond this size does not stay with an ended property.
constexpr std::size_t kLongText = 256;

// Most lists are made, sent and ended by one thread, one after the other. Programs have this library from their start,
// so the place can be one that is found without a call.
struct ThreadSpares {
    Spares<PropertyTable, Property, 3 * kUsualProperties> properties{homeloom::desktop::properties()};
    Spares<PropertyListTable, PropertyList, 3> lists{propertyLists()};
};
[[gnu::tls_model("initial-exec")]] thread_local ThreadSpares spares;

// A property that is used again mostly had this very text before.
void setText(std::string& text, const char* wanted) {
    if (std::strcmp(text.c_str(), wanted) != 0) {
        text = wanted;
    }
}

void setValue(Value& value, const char* text) {
    if (std::string* const before = std::get_if<std::string>(&value)) {
        setText(*before, text);
    } else {
        value.emplace<std::string>(text);
    }
}
void setValue(Value& value, int number) {
    value = number;
}
void setValue(Value& value, bool flag) {
    value = flag;
}

vmf_error_e errorOf(int fault) {
    return static_cast<vmf_error_e>(fault);
}

template <typename Data>
vmf_property_h makeProperty(const char* function, const char* key, Data data, vmf_error_e* error) {
    if (error == nullptr) {
        return nullptr;
    }
    *error = errorOf(takeFault(function));
    if (*error == VMF_ERROR_NONE && key == nullptr) {
        *error = VMF_ERROR_INVALID_PARAMETER;
    }
    if (*error != VMF_ERROR_NONE) {
        return nullptr;
    }
    std::unique_ptr<Property> property = spares.properties.take();
    const bool isResting = property != nullptr;
    if (!isResting) {
        property = std::make_unique<Property>();
    }
    setText(property->key, key);
    setValue(property->value, data);
    property->list = nullptr;
    const vmf_property_h handle =
        isResting ? properties().wake(std::move(property)) : properties().add(std::move(property));
    if (handle == nullptr) {
        *error = VMF_ERROR_OUT_OF_MEMORY;
    }
    return handle;
}

template <typename T, typename Take>
vmf_error_e readProperty(const char* function, vmf_property_h handle, const Take& take) {
    if (const int fault = takeFault(function)) {
        return errorOf(fault);
    }
    const Property* property = properties().get(handle);
    if (property == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    const T* value = std::get_if<T>(&property->value);
    if (value == nullptr) {
        return VMF_ERROR_WRONG_TYPE;
    }
    take(*value);
    return VMF_ERROR_NONE;
}

void append(PropertyList& list, Property& property) {
    property.list = &list;
    property.position = list.properties.size();
    list.properties.push_back(&property);
}

bool addCopies(PropertyList& list, const Fields& fields) {
    for (const Fields::Field& field : fields) {
        const vmf_property_h handle = properties().add(std::make_unique<Property>(field.key, field.value));
        if (handle == nullptr) {
            return false;
        }
        append(list, *properties().get(handle));
    }
    return true;
}

void* cursorTo(const PropertyList& list, std::size_t position) {
    return position < list.properties.size() ? list.properties[position]->handle : nullptr;
}

void endPropertyList(vmf_property_list_h handle) {
    auto list = propertyLists().rest(handle);
    if (!list) {
        return;
    }
    ThreadSpares& mine = spares;  // found once
    // The last one first: the next list, which mostly has the same keys, takes them in their order.
    for (auto each = list->properties.rbegin(); each != list->properties.rend(); ++each) {
        auto property = properties().rest((*each)->handle);
        const std::string* const text = std::get_if<std::string>(&property->value);
        if (property->key.capacity() > kLongText || (text != nullptr && text->capacity() > kLongText)) {
            std::string().swap(property->key);
            property->value = 0;
        }
        mine.properties.give(std::move(property));
    }
    list->properties.clear();
    list->first = 0;
    mine.lists.give(std::move(list));
}

}  // namespace

void PropertyListEnd::operator()(PropertyList* list) const {
    endPropertyList(list->handle);
}

std::unique_ptr<PropertyList, PropertyListEnd> makePropertyList(const std::string& name, const Fields& fields) {
    auto made = std::make_unique<PropertyList>();
    made->isNamed = true;
    made->name = name;
    PropertyList* const list = made.get();
    if (propertyLists().add(std::move(made)) == nullptr) {
        return nullptr;
    }
    std::unique_ptr<PropertyList, PropertyListEnd> owner(list);
    return addCopies(*list, fields) ? std::move(owner) : nullptr;
}

Fields fieldsOf(const PropertyList& list) {
    Fields fields;
    for (std::size_t i = list.first; i < list.properties.size(); ++i) {
        fields.add(list.properties[i]->key, list.properties[i]->value);
    }
    return fields;
}

}  // namespace homeloom::desktop

using namespace homeloom::desktop;

vmf_property_h vmf_property_create_string(const char* key, const char* value, vmf_error_e* error) {
    // A null text is refused as a null key is.
    return makeProperty(__func__, value != nullptr ? key : nullptr, value != nullptr ? value : "", error);
}

vmf_property_h vmf_property_create_int(const char* key, int value, vmf_error_e* error) {
    return makeProperty(__func__, key, value, error);
}

vmf_property_h vmf_property_create_bool(const char* key, bool value, vmf_error_e* error) {
    return makeProperty(__func__, key, value, error);
}

vmf_error_e vmf_property_get_string(vmf_property_h property, const char** value) {
    if (value == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    return readProperty<std::string>(__func__, property, [=](const std::string& text) { *value = text.c_str(); });
}

vmf_error_e vmf_property_get_int(vmf_property_h property, int* value) {
    if (value == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    return readProperty<int>(__func__, property, [=](int number) { *value = number; });
}

vmf_error_e vmf_property_get_bool(vmf_property_h property, bool* value) {
    if (value == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    return readProperty<bool>(__func__, property, [=](bool flag) { *value = flag; });
}

vmf_property_list_h vmf_property_list_create(vmf_error_e* error) {
    if (error == nullptr) {
        return nullptr;
    }
    *error = errorOf(takeFault(__func__));
    if (*error != VMF_ERROR_NONE) {
        return nullptr;
    }
    auto made = spares.lists.take();
    const bool isResting = made != nullptr;
    if (!isResting) {
        made = std::make_unique<PropertyList>();
        made->properties.reserve(kUsualProperties);
    }
    made->isNamed = false;
    const vmf_property_list_h handle =
        isResting ? propertyLists().wake(std::move(made)) : propertyLists().add(std::move(made));
    if (handle == nullptr) {
        *error = VMF_ERROR_OUT_OF_MEMORY;
    }
    return handle;
}

vmf_property_list_h vmf_property_list_copy(vmf_property_list_h list, vmf_error_e* error) {
    if (error == nullptr) {
        return nullptr;
    }
    *error = errorOf(takeFault(__func__));
    const PropertyList* source = propertyLists().get(list);
    if (*error == VMF_ERROR_NONE && source == nullptr) {
        *error = VMF_ERROR_INVALID_PARAMETER;
    }
    if (*error != VMF_ERROR_NONE) {
        return nullptr;
    }
    auto made = std::make_unique<PropertyList>();
    made->isNamed = source->isNamed;
    made->name = source->name;
    PropertyList* const copy = made.get();
    const vmf_property_list_h handle = propertyLists().add(std::move(made));
    if (handle == nullptr || !addCopies(*copy, fieldsOf(*source))) {
        endPropertyList(handle);
        *error = VMF_ERROR_OUT_OF_MEMORY;
        return nullptr;
    }
    return handle;
}

vmf_error_e vmf_property_list_destroy(vmf_property_list_h list) {
    if (propertyLists().get(list) == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    endPropertyList(list);
    return VMF_ERROR_NONE;
}

vmf_error_e vmf_property_list_set_name(vmf_property_list_h list, const char* name) {
    if (const int fault = takeFault(__func__)) {
        return errorOf(fault);
    }
    PropertyList* const target = propertyLists().get(list);
    if (target == nullptr || name == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    target->isNamed = true;
    setText(target->name, name);
    return VMF_ERROR_NONE;
}

const char* vmf_property_list_get_name(vmf_property_list_h list) {
    const PropertyList* source = propertyLists().get(list);
    return source != nullptr && source->isNamed ? source->name.c_str() : nullptr;
}

vmf_error_e vmf_property_list_push_property(vmf_property_list_h list, vmf_property_h property) {
    Property* const pushed = properties().get(property);
    if (pushed == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    if (pushed->list != nullptr) {
        return VMF_ERROR_INVALID_STATE;
    }
    const int fault = takeFault(__func__);
    PropertyList* const target = propertyLists().get(list);
    if (fault != 0 || target == nullptr) {
        properties().remove(property);  // given away all the same
        return fault != 0 ? errorOf(fault) : VMF_ERROR_INVALID_PARAMETER;
    }
    append(*target, *pushed);
    return VMF_ERROR_NONE;
}

vmf_error_e vmf_property_list_pop(vmf_property_list_h list, void** property) {
    if (const int fault = takeFault(__func__)) {
        return errorOf(fault);
    }
    PropertyList* const source = propertyLists().get(list);
    if (source == nullptr || property == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    if (source->first == source->properties.size()) {
        return VMF_ERROR_NOT_FOUND;
    }
    *property = source->properties[source->first++]->handle;
    return VMF_ERROR_NONE;
}

vmf_property_h vmf_property_list_find(vmf_property_list_h list, const char* key) {
    const PropertyList* source = propertyLists().get(list);
    if (source == nullptr || key == nullptr) {
        return nullptr;
    }
    for (std::size_t i = source->first; i < source->properties.size(); ++i) {
        if (source->properties[i]->key == key) {
            return source->properties[i]->handle;
        }
    }
    return nullptr;
}

void* vmf_property_list_get_first(vmf_property_list_h list) {
    const PropertyList* source = propertyLists().get(list);
    return source != nullptr ? cursorTo(*source, source->first) : nullptr;
}

void* vmf_property_list_get_next(vmf_property_list_h list, void* cursor) {
    const PropertyList* source = propertyLists().get(list);
    const Property* current = properties().get(cursor);
    if (source == nullptr || current == nullptr || current->list != source || current->position < source->first) {
        return nullptr;
    }
    return cursorTo(*source, current->position + 1);
}

bool vmf_property_list_empty(vmf_property_list_h list) {
    return vmf_property_list_get_first(list) == nullptr;
}

#include "Records.h"

#include <atomic>
#include <cstring>

#include "Functions.h"

namespace simulator {

namespace {

std::atomic<int> liveRecords{0};

template <class Fields>
auto* findField(const Fields& fields, int number) {
    for (const auto& field : fields) {
        if (field.first == number) {
            return &field.second;
        }
    }
    return static_cast<decltype(&fields.front().second)>(nullptr);
}

}  // namespace

LiveRecord::LiveRecord(SharedRecord record) : _record(std::move(record)) {
    ++liveRecords;
}

LiveRecord::~LiveRecord() {
    --liveRecords;
}

int LiveRecord::count() {
    return liveRecords;
}

SharedRecord deviceRecord(const std::string& deviceId) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CLIENT_DEVICE_PROPERTY_ID, deviceId}};
    return record;
}

SharedRecord detailRecord(const Device& device) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_DEVICE_ID, device.id},
                     {HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_NICK_NAME, device.nick},
                     {HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_PREFIX, device.prefix},
                     {HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_LOCATION_ID, device.location},
                     {HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_VID, device.vid},
                     {HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_ROOM_ID, device.room}};
    record->numbers = {{HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_CLOUD_STATUS, device.status}};
    std::vector<std::string> uris;
    std::vector<std::string> osvUris;
    for (const Resource& resource : device.resources) {
        (resource.osv ? osvUris : uris).push_back(resource.uri);
    }
    record->lists = {{HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_DEVICE_TYPES, device.types},
                     {HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_RESOURCES, std::move(uris)},
                     {HOMELOOM_CLIENT_DEVICE_DETAIL_PROPERTY_OSV_RESOURCES, std::move(osvUris)}};
    return record;
}

SharedRecord groupRecord(const Location& location) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CLIENT_GROUP_PROPERTY_ID, location.id},
                     {HOMELOOM_CLIENT_GROUP_PROPERTY_NAME, location.name},
                     {HOMELOOM_CLIENT_GROUP_PROPERTY_PARENT_ID, ""}};
    return record;
}

SharedRecord groupRecord(const Room& room, const Location& location) {
    auto record = std::make_shared<Record>();
    record->texts = {{HOMELOOM_CLIENT_GROUP_PROPERTY_ID, room.id},
                     {HOMELOOM_CLIENT_GROUP_PROPERTY_NAME, room.name},
                     {HOMELOOM_CLIENT_GROUP_PROPERTY_PARENT_ID, location.id}};
    return record;
}

char* handOut(const std::string& text) {
    return strdup(text.c_str());
}

char** handOut(const std::vector<std::string>& texts, bool withNull) {
    const std::size_t size = texts.size() + (withNull ? 1 : 0);
    if (size == 0) {
        return nullptr;
    }
    auto** copies = static_cast<char**>(std::calloc(size, sizeof(char*)));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        copies[i] = handOut(texts[i]);
    }
    return copies;
}

int getText(Function& function, const LiveRecord* record, int field, char** value) {
    function.mark(Function::AnswersText);
    const auto fault = function.enterHeld();
    if (fault && fault->code != 0) {
        return fault->code;
    }
    if (record == nullptr || value == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    if (fault && (fault->kind == Fault::Kind::Say || fault->kind == Fault::Kind::Null)) {
        *value = fault->kind == Fault::Kind::Say ? handOut(fault->text) : nullptr;
        return HOMELOOM_CLIENT_ERROR_NONE;
    }
    const std::string* text = findField((**record).texts, field);
    if (text == nullptr) {
        return HOMELOOM_CLIENT_ERROR_NO_DATA;
    }
    *value = handOut(*text);
    return HOMELOOM_CLIENT_ERROR_NONE;
}

int getNumber(Function& function, const LiveRecord* record, int field, int* value) {
    if (const int code = function.enterAndHold()) {
        return code;
    }
    if (record == nullptr || value == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    const int* number = findField((**record).numbers, field);
    if (number == nullptr) {
        return HOMELOOM_CLIENT_ERROR_NO_DATA;
    }
    *value = *number;
    return HOMELOOM_CLIENT_ERROR_NONE;
}

void giveTexts(const Fault* fault, const std::vector<std::string>& texts, char*** values, int* count) {
    const bool isMiscounted = fault != nullptr && fault->kind == Fault::Kind::Miscount;
    *values = fault != nullptr && fault->kind == Fault::Kind::Null ? nullptr : handOut(texts, isMiscounted);
    *count = static_cast<int>(texts.size()) + (isMiscounted ? 1 : 0);
}

int getList(Function& function, const LiveRecord* record, int field, char*** values, int* count) {
    function.mark(Function::AnswersList);
    const auto fault = function.enterHeld();
    if (fault && fault->code != 0) {
        return fault->code;
    }
    if (record == nullptr || values == nullptr || count == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    const std::vector<std::string>* list = findField((**record).lists, field);
    if (list == nullptr) {
        return HOMELOOM_CLIENT_ERROR_NO_DATA;
    }
    giveTexts(fault ? &*fault : nullptr, *list, values, count);
    return HOMELOOM_CLIENT_ERROR_NONE;
}

template <class Handle>
int destroy(Function& function, Handle record) {
    if (const int code = function.enterAndHold()) {
        return code;
    }
    if (record == nullptr) {
        return HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER;
    }
    delete record;
    return HOMELOOM_CLIENT_ERROR_NONE;
}

template int destroy(Function&, homeloom_client_device_h);
template int destroy(Function&, homeloom_client_device_detail_h);
template int destroy(Function&, homeloom_client_group_h);
template int destroy(Function&, homeloom_core_location_h);
template int destroy(Function&, homeloom_core_device_h);
template int destroy(Function&, homeloom_core_scene_h);
template int destroy(Function&, homeloom_core_rule_h);
template int destroy(Function&, homeloom_core_favorite_h);
template int destroy(Function&, homeloom_core_installed_app_h);

}  // namespace simulator

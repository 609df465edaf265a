#ifndef HOMELOOM_SIMULATOR_RECORDS_H
#define HOMELOOM_SIMULATOR_RECORDS_H

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <homeloom_client.h>
#include <homeloom_core.h>

#include "simulator/Home.h"

namespace simulator {

class Function;
struct Fault;

/// What a record of a list tells, by field number.
struct Record {
    std::vector<std::pair<int, std::string>> texts;
    std::vector<std::pair<int, int>> numbers;
    std::vector<std::pair<int, std::vector<std::string>>> lists;
};
using SharedRecord = std::shared_ptr<const Record>;
using Records = std::vector<SharedRecord>;

/// A record that was handed over and not yet destroyed. Each one is counted.
class LiveRecord {
public:
    explicit LiveRecord(SharedRecord record);
    ~LiveRecord();
    LiveRecord(const LiveRecord&) = delete;
    LiveRecord& operator=(const LiveRecord&) = delete;

    const Record& operator*() const { return *_record; }
    static int count();

private:
    SharedRecord _record;
};

SharedRecord deviceRecord(const std::string& deviceId);
SharedRecord detailRecord(const Device& device);
SharedRecord groupRecord(const Location& location);
SharedRecord groupRecord(const Room& room, const Location& location);

/// A malloc'ed array of new records, a null record giving a null handle; null for none.
template <class Handle>
Handle* makeList(const Records& records) {
    if (records.empty()) {
        return nullptr;
    }
    auto* list = static_cast<Handle*>(std::malloc(records.size() * sizeof(Handle)));
    for (std::size_t i = 0; i < records.size(); ++i) {
        list[i] = records[i] == nullptr ? nullptr : new std::remove_pointer_t<Handle>(records[i]);
    }
    return list;
}

/// A malloc'ed copy for the caller to free.
char* handOut(const std::string& text);
/// The same for an array of texts, and of a null behind them; null for none.
char** handOut(const std::vector<std::string>& texts, bool withNull = false);
/// Hands texts out as a fault has it; null for none.
void giveTexts(const Fault* fault, const std::vector<std::string>& texts, char*** values, int* count);

// The getters and destroyers of all kinds of records. A field that the record has not gives NO_DATA.
int getText(Function& function, const LiveRecord* record, int field, char** value);
int getNumber(Function& function, const LiveRecord* record, int field, int* value);
int getList(Function& function, const LiveRecord* record, int field, char*** values, int* count);

template <class Handle>
int destroy(Function& function, Handle record);

}  // namespace simulator

// What the contract's handles point to.
struct homeloom_client_device_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};
struct homeloom_client_device_detail_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};
struct homeloom_client_group_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};
struct homeloom_core_location_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};
struct homeloom_core_device_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};
struct homeloom_core_scene_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};
struct homeloom_core_rule_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};
struct homeloom_core_favorite_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};
struct homeloom_core_installed_app_s : simulator::LiveRecord {
    using LiveRecord::LiveRecord;
};

#endif

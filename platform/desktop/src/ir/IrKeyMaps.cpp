#include "desktop/IrKeyMaps.h"

#include <qsp_ir.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>

namespace homeloom::desktop::ir {

namespace {

constexpr std::size_t kLength = 100;

struct Table {
    std::mutex mutex;
    std::map<std::string, std::string> keyMaps = {
        {"1234", std::string(kLength, '1')},      {"2000", keyMapOf({10})},  // nothing but a power toggle
        {"2100", keyMapOf({11, 12, 13, 14, 76})},  // a power key for each way, and the fan's keys
        {"2200", keyMapOf({2, 3, 10, 78})},        // an old air conditioner
        {"2300", keyMapOf({10, 28, 39})},          // a robot cleaner
    };
};

Table& table() {
    static Table* const instance = new Table();
    return *instance;
}

}  // namespace

std::map<std::string, std::string> keyMaps() {
    const std::lock_guard<std::mutex> lock(table().mutex);
    return table().keyMaps;
}

void setKeyMap(const std::string& codeSet, std::optional<std::string> keyMap) {
    const std::lock_guard<std::mutex> lock(table().mutex);
    if (keyMap) {
        table().keyMaps[codeSet] = std::move(*keyMap);
    } else {
        table().keyMaps.erase(codeSet);
    }
}

std::string keyMapOf(const std::set<unsigned>& keys) {
    std::string keyMap(std::max<std::size_t>(kLength, keys.empty() ? 0 : *keys.rbegin() + 1), '0');
    for (const unsigned key : keys) {
        keyMap[key] = '1';
    }
    return keyMap;
}

}  // namespace homeloom::desktop::ir

char* qsp_get_supported_keymap_hcodeset(const char* codeset) {
    const auto keyMaps = homeloom::desktop::ir::keyMaps();
    const auto found = keyMaps.find(codeset != nullptr ? codeset : "");
    return found != keyMaps.end() ? strdup(found->second.c_str()) : nullptr;
}

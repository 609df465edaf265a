#include "desktop/Settings.h"

#include <glib.h>

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include <VMFramework/JsonValue.h>
#include <dlog.h>
#include <vconf.h>

#include "desktop/Guard.h"
#include "vmf/CallFaults.h"

struct vconf_keynode_s {
    std::string name;
};

namespace homeloom::desktop::settings {

namespace {

using VMFramework::json::JsonValue;

constexpr char kLogTag[] = "DESK_SETTINGS";
constexpr char kKeptPrefix[] = "db/";

struct Watch {
    std::string key;
    vconf_callback_fn callback;
    void* userData;
};

struct Store {
    std::mutex mutex;
    std::condition_variable callbackEnded;
    std::map<std::string, Value> values;
    std::vector<std::shared_ptr<const Watch>> watches;
    std::deque<std::shared_ptr<const Watch>> due;  // to be told, one source on the main loop for each
    std::set<std::pair<Operation, std::string>> failures;
    std::string file;

    // The watch whose callback runs now, and on which thread.
    const Watch* running = nullptr;
    std::thread::id runningThread;

    bool fails(Operation operation, const std::string& key) const { return failures.count({operation, key}) > 0; }
};

// Never destroyed: the main loop may still deliver when statics go.
Store& store() {
    static Store* const instance = new Store();
    return *instance;
}

bool isKept(const std::string& key) {
    return key.compare(0, std::strlen(kKeptPrefix), kKeptPrefix) == 0;
}

// Called with the store's mutex held. False if the file can't be written.
bool saveFile() {
    if (store().file.empty()) {
        return true;
    }
    JsonValue document = JsonValue::CreateObject();
    for (const auto& [key, value] : store().values) {
        if (!isKept(key)) {
            continue;
        }
        if (const int* number = std::get_if<int>(&value)) {
            document.set(key, *number);
        } else {
            document.set(key, std::get<std::string>(value));
        }
    }
    std::ofstream out(store().file, std::ios::trunc);
    out << document.toString() << '\n';
    out.flush();
    if (!out) {
        dlog_print(DLOG_ERROR, kLogTag, "settings could not be written to %s", store().file.c_str());
    }
    return bool(out);
}

// Throws std::runtime_error for anything but an object of texts and whole numbers; a missing file is an empty one.
std::map<std::string, Value> readFile(const std::string& path) {
    std::map<std::string, Value> values;
    std::ifstream in(path);
    if (!in) {
        return values;
    }
    std::stringstream text;
    text << in.rdbuf();
    const JsonValue document = JsonValue::Create(text.str());
    for (const std::string& key : document.getMemberNames()) {
        const JsonValue value = document[key];
        if (!isKept(key) || !(value.isNumber() || value.isString())) {
            throw std::runtime_error("no setting: " + key);
        }
        values[key] = value.isNumber() ? Value(value.asInt()) : Value(value.asString());
    }
    return values;
}

// On the main loop: tells one watch, if it is still there.
gboolean deliverNext(gpointer) {
    std::shared_ptr<const Watch> watch;
    {
        const std::lock_guard<std::mutex> lock(store().mutex);
        watch = std::move(store().due.front());
        store().due.pop_front();
        const auto& watches = store().watches;
        if (std::find(watches.begin(), watches.end(), watch) == watches.end()) {
            return G_SOURCE_REMOVE;
        }
        store().running = watch.get();
        store().runningThread = std::this_thread::get_id();
    }
    vconf_keynode_s node{watch->key};
    callPlugin("settings callback", [&] { watch->callback(&node, watch->userData); });
    const std::lock_guard<std::mutex> lock(store().mutex);
    store().running = nullptr;
    store().callbackEnded.notify_all();
    return G_SOURCE_REMOVE;
}

// Called with the store's mutex held.
void tellWatches(const std::string& key) {
    for (const auto& watch : store().watches) {
        if (watch->key == key) {
            store().due.push_back(watch);
            g_idle_add_full(G_PRIORITY_DEFAULT, deliverNext, nullptr, nullptr);
        }
    }
}

void setValue(const std::string& key, Value value) {
    const std::lock_guard<std::mutex> lock(store().mutex);
    store().values[key] = std::move(value);
    if (isKept(key)) {
        saveFile();
    }
    tellWatches(key);
}

}  // namespace

void setInt(const std::string& key, int value) {
    setValue(key, value);
}

void setString(const std::string& key, const std::string& value) {
    setValue(key, value);
}

void unset(const std::string& key) {
    const std::lock_guard<std::mutex> lock(store().mutex);
    store().values.erase(key);
    if (isKept(key)) {
        saveFile();
    }
    tellWatches(key);
}

std::optional<Value> get(const std::string& key) {
    const std::lock_guard<std::mutex> lock(store().mutex);
    const auto value = store().values.find(key);
    return value != store().values.end() ? std::optional<Value>(value->second) : std::nullopt;
}

std::vector<std::string> keys() {
    const std::lock_guard<std::mutex> lock(store().mutex);
    std::vector<std::string> names;
    for (const auto& entry : store().values) {
        names.push_back(entry.first);
    }
    return names;
}

void keepIn(const std::string& path) {
    std::map<std::string, Value> values;
    try {
        values = readFile(path);
    } catch (const std::runtime_error& e) {
        throw std::runtime_error(path + " holds no settings: " + e.what());
    }
    const std::lock_guard<std::mutex> lock(store().mutex);
    values.insert(store().values.begin(), store().values.end());  // what was read goes before what is there
    values.swap(store().values);
    std::string previous = std::exchange(store().file, path);
    if (!saveFile()) {
        store().values.swap(values);
        store().file = std::move(previous);
        throw std::runtime_error(path + " can't be written, so it can't keep the settings");
    }
}

void fail(Operation operation, const std::string& key, bool fails) {
    const std::lock_guard<std::mutex> lock(store().mutex);
    if (fails) {
        store().failures.insert({operation, key});
    } else {
        store().failures.erase({operation, key});
    }
}

int watchCount() {
    const std::lock_guard<std::mutex> lock(store().mutex);
    return static_cast<int>(store().watches.size());
}

void reset() {
    const std::lock_guard<std::mutex> lock(store().mutex);
    store().values.clear();
    store().failures.clear();
    store().file.clear();
}

}  // namespace homeloom::desktop::settings

using homeloom::desktop::settings::Operation;
using homeloom::desktop::settings::store;

int vconf_get_int(const char* key, int* value) {
    if (key == nullptr || value == nullptr) {
        return -1;
    }
    const bool fails = homeloom::desktop::takeFault(__func__) != 0;
    const std::lock_guard<std::mutex> lock(store().mutex);
    const auto entry = store().values.find(key);
    if (fails || store().fails(Operation::Get, key) || entry == store().values.end()) {
        return -1;
    }
    const int* number = std::get_if<int>(&entry->second);
    if (number == nullptr) {
        return -1;
    }
    *value = *number;
    return 0;
}

char* vconf_get_str(const char* key) {
    if (key == nullptr) {
        return nullptr;
    }
    const bool fails = homeloom::desktop::takeFault(__func__) != 0;
    const std::lock_guard<std::mutex> lock(store().mutex);
    const auto entry = store().values.find(key);
    if (fails || store().fails(Operation::Get, key) || entry == store().values.end()) {
        return nullptr;
    }
    const std::string* text = std::get_if<std::string>(&entry->second);
    return text != nullptr ? strdup(text->c_str()) : nullptr;
}

int vconf_set_str(const char* key, const char* value) {
    if (key == nullptr || value == nullptr) {
        return -1;
    }
    const bool fails = homeloom::desktop::takeFault(__func__) != 0;
    {
        const std::lock_guard<std::mutex> lock(store().mutex);
        if (fails || store().fails(Operation::Set, key)) {
            return -1;
        }
    }
    homeloom::desktop::settings::setString(key, value);
    return 0;
}

int vconf_notify_key_changed(const char* key, vconf_callback_fn callback, void* user_data) {
    if (key == nullptr || callback == nullptr) {
        return -1;
    }
    const bool fails = homeloom::desktop::takeFault(__func__) != 0;
    using homeloom::desktop::settings::Watch;
    const std::lock_guard<std::mutex> lock(store().mutex);
    if (fails || store().fails(Operation::Notify, key)) {
        return -1;
    }
    auto& watches = store().watches;
    watches.erase(std::remove_if(watches.begin(), watches.end(),
                                 [&](const auto& watch) { return watch->key == key && watch->callback == callback; }),
                  watches.end());
    watches.push_back(std::make_shared<const Watch>(Watch{key, callback, user_data}));
    return 0;
}

int vconf_ignore_key_changed(const char* key, vconf_callback_fn callback) {
    if (key == nullptr || callback == nullptr) {
        return -1;
    }
    std::unique_lock<std::mutex> lock(store().mutex);
    auto& watches = store().watches;
    const auto found = std::find_if(watches.begin(), watches.end(), [&](const auto& watch) {
        return watch->key == key && watch->callback == callback;
    });
    if (found == watches.end()) {
        return -1;
    }
    const auto ended = *found;
    watches.erase(found);
    store().callbackEnded.wait(
        lock, [&] { return store().running != ended.get() || store().runningThread == std::this_thread::get_id(); });
    return 0;
}

const char* vconf_keynode_get_name(keynode_t* node) {
    return node != nullptr ? node->name.c_str() : nullptr;
}

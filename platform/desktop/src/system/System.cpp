#include "desktop/System.h"

#include <cstring>
#include <map>
#include <mutex>
#include <utility>

#include <app_common.h>
#include <system_info.h>

namespace homeloom::desktop::system {

namespace {

struct Facts {
    std::mutex mutex;
    std::optional<std::string> appName = "homeloom-tv";
    std::optional<std::string> appVersion = HOMELOOM_VERSION;
    std::map<std::string, bool> features;
    std::map<std::string, std::string> platformTexts{{SYSTEM_INFO_PLATFORM_VERSION, "9.0"}};
};

Facts& facts() {
    static Facts* const instance = new Facts();
    return *instance;
}

template <typename Value>
void setOrErase(std::map<std::string, Value>& values, const std::string& key, std::optional<Value> value) {
    if (value) {
        values[key] = std::move(*value);
    } else {
        values.erase(key);
    }
}

template <typename Value>
std::optional<Value> find(const std::map<std::string, Value>& values, const std::string& key) {
    const auto found = values.find(key);
    return found != values.end() ? std::optional<Value>(found->second) : std::nullopt;
}

int copyText(const std::optional<std::string>& text, char** out) {
    if (out == nullptr || !text) {
        return -1;
    }
    *out = strdup(text->c_str());
    return *out != nullptr ? 0 : -1;
}

}  // namespace

void setAppName(std::optional<std::string> name) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    facts().appName = std::move(name);
}

void setAppVersion(std::optional<std::string> version) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    facts().appVersion = std::move(version);
}

void setFeature(const std::string& key, std::optional<bool> value) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    setOrErase(facts().features, key, value);
}

std::optional<bool> feature(const std::string& key) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    return find(facts().features, key);
}

void setPlatformText(const std::string& key, std::optional<std::string> text) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    setOrErase(facts().platformTexts, key, std::move(text));
}

}  // namespace homeloom::desktop::system

using homeloom::desktop::system::facts;
using homeloom::desktop::system::find;

int app_get_name(char** name) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    return homeloom::desktop::system::copyText(facts().appName, name);
}

int app_get_version(char** version) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    return homeloom::desktop::system::copyText(facts().appVersion, version);
}

int system_info_get_custom_bool(const char* key, bool* value) {
    if (key == nullptr || value == nullptr) {
        return -1;
    }
    const std::lock_guard<std::mutex> lock(facts().mutex);
    const auto found = find(facts().features, key);
    if (!found) {
        return -1;
    }
    *value = *found;
    return 0;
}

int system_info_get_platform_string(const char* key, char** value) {
    if (key == nullptr) {
        return -1;
    }
    const std::lock_guard<std::mutex> lock(facts().mutex);
    return homeloom::desktop::system::copyText(find(facts().platformTexts, key), value);
}

#include "desktop/System.h"

#include <cstring>
#include <mutex>
#include <utility>

#include <app_common.h>

namespace homeloom::desktop::system {

namespace {

struct Facts {
    std::mutex mutex;
    std::optional<std::string> appName = "homeloom-tv";
    std::optional<std::string> appVersion = HOMELOOM_VERSION;
};

Facts& facts() {
    static Facts* const instance = new Facts();
    return *instance;
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

}  // namespace homeloom::desktop::system

using homeloom::desktop::system::facts;

int app_get_name(char** name) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    return homeloom::desktop::system::copyText(facts().appName, name);
}

int app_get_version(char** version) {
    const std::lock_guard<std::mutex> lock(facts().mutex);
    return homeloom::desktop::system::copyText(facts().appVersion, version);
}

#include "curl/WebState.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <stdexcept>

#include "desktop/Web.h"
#include "vmf/CallFaults.h"

namespace homeloom::desktop::web {

namespace {

std::atomic<int> underWay{0};

struct State {
    std::mutex mutex;
    std::map<std::string, int> routes;
    int otherHosts = 0;
    std::string caFile;
    std::map<std::string, CallRange, std::less<>> failures;
};

State& state() {
    static State* const instance = new State();
    return *instance;
}

void requirePort(int port) {
    if (port < 0 || port > 65535) {
        throw std::invalid_argument("no port: " + std::to_string(port));
    }
}

std::string routeTo(const std::string& host, int port) {
    return host + "::127.0.0.1:" + std::to_string(port);
}

}  // namespace

void routeHost(const std::string& host, int port) {
    requirePort(port);
    const std::lock_guard lock(state().mutex);
    state().routes[host] = port;
}

void routeOtherHosts(int port) {
    requirePort(port);
    const std::lock_guard lock(state().mutex);
    state().otherHosts = port;
}

void trust(const std::string& caFile) {
    const std::lock_guard lock(state().mutex);
    state().caFile = caFile;
}

const std::vector<std::string>& steps() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all = {
            "COPYPOSTFIELDS", "CUSTOMREQUEST",  "DEBUGDATA",     "DEBUGFUNCTION", "FOLLOWLOCATION",
            "HEADERDATA",     "HEADERFUNCTION", "HTTPGET",       "HTTPHEADER",    "Initialize",
            "POST",           "POSTFIELDS",     "POSTFIELDSIZE", "TIMEOUT",       "URL",
            "VERBOSE",        "WRITEDATA",      "WRITEFUNCTION", "getInfo",       "send",
        };
        std::sort(all.begin(), all.end());
        return all;
    }();
    return names;
}

void fail(const std::string& step, CallRange range) {
    if (!std::binary_search(steps().begin(), steps().end(), step)) {
        throw std::invalid_argument("no step of a web request: " + step);
    }
    const std::lock_guard lock(state().mutex);
    state().failures[step] = range;
}

void pass() {
    const std::lock_guard lock(state().mutex);
    state().failures.clear();
}

std::vector<std::string> failingSteps() {
    const std::lock_guard lock(state().mutex);
    std::vector<std::string> names;
    for (const auto& [step, range] : state().failures) {
        if (range.times != 0) {
            names.push_back(step);
        }
    }
    return names;
}

void reset() {
    const std::lock_guard lock(state().mutex);
    state().routes.clear();
    state().otherHosts = 0;
    state().caFile.clear();
    state().failures.clear();
}

Surroundings surroundings() {
    const std::lock_guard lock(state().mutex);
    Surroundings found;
    for (const auto& [host, port] : state().routes) {
        found.connectTo.push_back(routeTo(host, port));
    }
    // The first route that fits is taken, and this one fits every host.
    found.connectTo.push_back(routeTo("", state().otherHosts));
    found.caFile = state().caFile;
    return found;
}

UnderWay::UnderWay() {
    ++underWay;
}

UnderWay::~UnderWay() {
    --underWay;
}

int requestsUnderWay() {
    return underWay;
}

bool takeFailure(std::string_view step) {
    if (takeFault(("KRCurlEasy." + std::string(step)).c_str()) != 0) {
        return true;
    }
    const std::lock_guard lock(state().mutex);
    const auto found = state().failures.find(step);
    return found != state().failures.end() && found->second.take();
}

}  // namespace homeloom::desktop::web

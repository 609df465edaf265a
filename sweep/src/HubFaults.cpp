#include "HubFaults.h"

#include <functional>
#include <stdexcept>

#include <simulator/HubApp.h>

namespace homeloom::sweep {

namespace {

using simulator::HubApp;

constexpr char kConnect[] = "hub.connect";

HubApp& hub() {
    return HubApp::instance();
}

using Faults = std::map<FaultKind, std::function<void()>>;

const std::map<std::string, Faults>& table() {
    static const std::map<std::string, Faults> faults{
        {kConnect, {{FaultKind::Fails, [] { hub().rejectConnections(true); }}}},
        {"hub.GetHubInfo",
         {{FaultKind::Never, [] { hub().setAnswers(HubApp::Answers::Held); }},
          {FaultKind::Malformed, [] { hub().setAnswers(HubApp::Answers::Malformed); }},
          {FaultKind::Miscount, [] { hub().setAnswers(HubApp::Answers::Half); }}}},
        {"hub.ResetHub",
         {{FaultKind::Error, [] { hub().setReset(HubApp::Course::Fail); }},
          {FaultKind::Never, [] { hub().setReset(HubApp::Course::Manual); }}}},
        {"hub.StartOnboarding",
         {{FaultKind::Error, [] { hub().setOnboarding(HubApp::Course::Fail); }},
          {FaultKind::Never, [] { hub().setOnboarding(HubApp::Course::Manual); }}}}};
    return faults;
}

}  // namespace

const std::vector<std::string>& hubFunctionNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const auto& [name, faults] : table()) {
            all.push_back(name);
        }
        return all;
    }();
    return names;
}

std::vector<FaultKind> hubFaultsOf(const std::string& function) {
    std::vector<FaultKind> kinds;
    for (const auto& [kind, set] : table().at(function)) {
        kinds.push_back(kind);
    }
    return kinds;
}

void armHub(const Place& place) {
    const Faults& faults = table().at(place.function);
    const auto found = faults.find(place.kind);
    if (found == faults.end() || place.number != 0) {
        throw std::invalid_argument(place.text() + ": the hub control application can't do that");
    }
    found->second();
}

void disarmHub() {
    hub().rejectConnections(false);
    hub().setAnswers(HubApp::Answers::Normal);
    hub().setReset(HubApp::Course::Succeed);
    hub().setOnboarding(HubApp::Course::Succeed);
    if (hub().isRunning()) {
        hub().releaseAnswers();
    }
}

std::map<std::string, int> hubCalls() {
    std::map<std::string, int> calls;
    if (!hub().isRunning()) {
        return calls;
    }
    for (const auto& request : hub().requests()) {
        ++calls["hub." + request.name];
    }
    if (hub().connections() > 0) {
        calls[kConnect] = 1;
    }
    return calls;
}

}  // namespace homeloom::sweep

#include "Fault.h"

#include <algorithm>
#include <stdexcept>

#include <desktop/CallFaults.h>
#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>
#include <simulator/HubApp.h>

#include "HubFaults.h"

namespace homeloom::sweep {

namespace {

using simulator::CloudFault;
using simulator::Fault;

constexpr int kAgentError = -5;
constexpr int kDeskError = -6;
constexpr int kCloudError = 500;
// Behind the agent's limit of 30 seconds, and behind the web's of 15.
constexpr std::chrono::seconds kLate{31};
constexpr char kBrokenText[] = R"({"broken": [)";
constexpr char kCloudPrefix[] = "cloud.";
constexpr char kHubPrefix[] = "hub.";
constexpr char kAll[] = "all";

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

bool isAmong(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string endpointOf(const std::string& function) {
    return function.substr(sizeof kCloudPrefix - 1);
}

Fault agentFault(FaultKind kind) {
    switch (kind) {
        case FaultKind::Fails:
            return Fault::fail(kAgentError);
        case FaultKind::Error:
            return Fault::answer(kAgentError);
        case FaultKind::Late:
            return Fault::late(kLate);
        case FaultKind::Never:
            return Fault::never();
        case FaultKind::Twice:
            return Fault::twice();
        case FaultKind::Malformed:
            return Fault::say(kBrokenText);
        case FaultKind::Null:
            return Fault::null();
        case FaultKind::Miscount:
            return Fault::miscount();
    }
    return {};
}

CloudFault cloudFault(FaultKind kind) {
    switch (kind) {
        case FaultKind::Fails:
        case FaultKind::Twice:  // the cloud can't
            return CloudFault::endless();
        case FaultKind::Error:
            return CloudFault::status(kCloudError);
        case FaultKind::Late:
            return CloudFault::late(kLate);
        case FaultKind::Never:
            return CloudFault::never();
        case FaultKind::Malformed:
            return CloudFault::body(kBrokenText);
        case FaultKind::Null:
            return CloudFault::body("null");
        case FaultKind::Miscount:
            return CloudFault::cut();
    }
    return {};
}

}  // namespace

const std::vector<FaultKind>& allFaultKinds() {
    static const std::vector<FaultKind> kinds{FaultKind::Fails, FaultKind::Error,   FaultKind::Late,
                                              FaultKind::Never, FaultKind::Twice,   FaultKind::Malformed,
                                              FaultKind::Null,  FaultKind::Miscount};
    return kinds;
}

const char* nameOf(FaultKind kind) {
    switch (kind) {
        case FaultKind::Fails:
            return "fails";
        case FaultKind::Error:
            return "error";
        case FaultKind::Late:
            return "late";
        case FaultKind::Never:
            return "never";
        case FaultKind::Twice:
            return "twice";
        case FaultKind::Malformed:
            return "malformed";
        case FaultKind::Null:
            return "null";
        case FaultKind::Miscount:
            return "miscount";
    }
    return "";
}

Party partyOf(const std::string& function) {
    if (startsWith(function, kCloudPrefix) && isAmong(simulator::Cloud::endpointNames(), endpointOf(function))) {
        return Party::Cloud;
    }
    if (startsWith(function, kHubPrefix) && isAmong(hubFunctionNames(), function)) {
        return Party::Hub;
    }
    if (isAmong(simulator::Agent::functionNames(), function)) {
        return Party::Agent;
    }
    if (isAmong(desktop::failableFunctions(), function)) {
        return Party::Desk;
    }
    throw std::invalid_argument("nobody has a function " + function);
}

std::string Place::text() const {
    return fmt::format("{}#{}={}", function, number == 0 ? kAll : std::to_string(number), nameOf(kind));
}

Place Place::parse(const std::string& text) {
    const std::size_t hash = text.find('#');
    const std::size_t equals = text.find('=', hash);
    if (hash == std::string::npos || equals == std::string::npos) {
        throw std::invalid_argument("\"" + text + "\" is no place: FUNCTION#NUMBER=FAULT, or FUNCTION#all=FAULT");
    }
    Place place;
    place.function = text.substr(0, hash);
    partyOf(place.function);
    const std::string number = text.substr(hash + 1, equals - hash - 1);
    const bool isNumber = !number.empty() && number.size() < 9 &&
                          number.find_first_not_of("0123456789") == std::string::npos && std::stoi(number) > 0;
    if (number != kAll && !isNumber) {
        throw std::invalid_argument("\"" + number + "\" is neither a number from 1 nor \"all\"");
    }
    place.number = isNumber ? std::stoi(number) : 0;
    const std::string kind = text.substr(equals + 1);
    const auto& kinds = allFaultKinds();
    const auto found = std::find_if(kinds.begin(), kinds.end(), [&](FaultKind known) { return nameOf(known) == kind; });
    if (found == kinds.end()) {
        throw std::invalid_argument("there is no fault \"" + kind + "\"");
    }
    place.kind = *found;
    return place;
}

void arm(const Place& place) {
    const int skip = place.number > 0 ? place.number - 1 : 0;
    const int times = place.number > 0 ? 1 : -1;
    switch (partyOf(place.function)) {
        case Party::Agent:
            simulator::Agent::instance().fault(place.function, agentFault(place.kind).after(skip).times(times));
            break;
        case Party::Desk:
            desktop::failCalls(place.function, kDeskError, {skip, times});
            break;
        case Party::Cloud:
            simulator::Cloud::instance().fault(endpointOf(place.function),
                                               cloudFault(place.kind).after(skip).times(times));
            break;
        case Party::Hub:
            armHub(place);
            break;
    }
}

void disarmAll() {
    simulator::Agent::instance().clearFaults();
    desktop::passCalls();
    simulator::Cloud::instance().clearFaults();
    disarmHub();
}

}  // namespace homeloom::sweep

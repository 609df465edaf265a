#include "Census.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>

#include <desktop/CallFaults.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>

#include "HubFaults.h"

namespace homeloom::sweep {

namespace {

using simulator::Agent;
using VMFramework::json::JsonValue;

constexpr char kServiceManager[] = "norvane_svcmgr_";

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Functions that only look at a record, or end it, wait for nobody.
bool canWait(const std::string& function) {
    if (function.compare(0, std::strlen(kServiceManager), kServiceManager) == 0) {
        return false;  // the host's own thread calls it
    }
    for (const char* const end :
         {"_get_string", "_get_int", "_get_string_array", "_set_string", "_create", "_destroy"}) {
        if (endsWith(function, end)) {
            return false;
        }
    }
    return true;
}

std::vector<FaultKind> faultsOf(const std::string& function, const Agent::Calls& calls) {
    std::vector<FaultKind> faults{FaultKind::Fails};
    const auto add = [&](bool applies, std::initializer_list<FaultKind> kinds) {
        if (applies) {
            faults.insert(faults.end(), kinds);
        }
    };
    add(calls.hasCallback, {FaultKind::Error});
    add(calls.hasCallback || canWait(function), {FaultKind::Late, FaultKind::Never});
    add(calls.hasCallback, {FaultKind::Twice});
    add(calls.answersText, {FaultKind::Malformed});
    add(calls.answersText || calls.answersList, {FaultKind::Null});
    add(calls.answersList, {FaultKind::Miscount});
    return faults;
}

const std::vector<FaultKind>& cloudFaults() {
    static const std::vector<FaultKind> faults{FaultKind::Fails,   FaultKind::Error,     FaultKind::Late,
                                               FaultKind::Never,   FaultKind::Malformed, FaultKind::Null,
                                               FaultKind::Miscount};
    return faults;
}

FaultKind kindNamed(const std::string& name) {
    const auto& kinds = allFaultKinds();
    return *std::find_if(kinds.begin(), kinds.end(), [&](FaultKind kind) { return nameOf(kind) == name; });
}

}  // namespace

struct CallCounter::State {
    std::function<void(int)> eachCall;
    std::atomic<int> count{0};
    int observer = 0;
    std::mutex mutex;
    std::map<std::string, int> deskCalls;

    void add() {
        const int now = ++count;
        if (eachCall) {
            eachCall(now);
        }
    }
};

CallCounter::CallCounter(std::function<void(int)> eachCall) : _state(std::make_shared<State>()) {
    _state->eachCall = std::move(eachCall);
    Agent::instance().resetCalls();
    simulator::Cloud::instance().resetRequests();
    _state->observer = Agent::instance().addCallObserver(
        [state = _state](const std::string&, const std::vector<std::string>&) { state->add(); });
    desktop::setDeskCallObserver([state = _state](const char* function) {
        {
            const std::lock_guard<std::mutex> lock(state->mutex);
            ++state->deskCalls[function];
        }
        state->add();
    });
}

CallCounter::~CallCounter() {
    Agent::instance().removeCallObserver(_state->observer);
    desktop::setDeskCallObserver(nullptr);
}

int CallCounter::count() const {
    return _state->count;
}

Census CallCounter::census() const {
    Census census;
    for (const auto& [function, calls] : Agent::instance().calls()) {
        census[function] = {calls.count, faultsOf(function, calls)};
    }
    for (const auto& request : simulator::Cloud::instance().requests()) {
        if (!request.endpoint.empty()) {
            FunctionCalls& calls = census["cloud." + request.endpoint];
            calls.faults = cloudFaults();
            ++calls.count;
        }
    }
    for (const auto& [function, count] : hubCalls()) {
        const auto& names = hubFunctionNames();
        if (std::find(names.begin(), names.end(), function) != names.end()) {
            census[function] = {count, hubFaultsOf(function)};
        }
    }
    const std::lock_guard<std::mutex> lock(_state->mutex);
    for (const auto& [function, count] : _state->deskCalls) {
        census[function] = {count, {FaultKind::Fails}};
    }
    return census;
}

JsonValue toJson(const Census& census) {
    JsonValue json = JsonValue::CreateObject();
    for (const auto& [function, calls] : census) {
        JsonValue kinds = JsonValue::CreateArray();
        for (const FaultKind kind : calls.faults) {
            kinds.append(nameOf(kind));
        }
        JsonValue entry = JsonValue::CreateObject();
        entry.set("count", calls.count);
        entry.set("faults", kinds);
        json.set(function, entry);
    }
    return json;
}

Census censusFromJson(const JsonValue& json) {
    Census census;
    for (const std::string& function : json.getMemberNames()) {
        FunctionCalls& calls = census[function];
        calls.count = json[function]["count"].asInt();
        const JsonValue kinds = json[function]["faults"];
        for (std::size_t i = 0; i < kinds.size(); ++i) {
            calls.faults.push_back(kindNamed(kinds[i].asString()));
        }
    }
    return census;
}

}  // namespace homeloom::sweep

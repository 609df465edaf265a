#include "RequestLog.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <simulator/Agent.h>

#include "RequestTable.h"

namespace homeloom::sweep {

namespace {

namespace framework = desktop::framework;
using tv::RequestSpec;

// With this the plug-in lets go of the session, and of all that it still waits for there.
constexpr char kDisconnect[] = "homeloom_client_disconnect";

}  // namespace

RequestLog::RequestLog() {
    _listener = framework::addListener([this](const framework::ReportPtr& report) { note(*report); });
    framework::setRequestObserver(
        [this](framework::TransactionId id, const std::string& name, const desktop::Fields& arguments) {
            const std::lock_guard<std::mutex> lock(_mutex);
            _requests[id] = {name, arguments.text("device_id"), false, !isMet(name), false};
        });
    _callObserver = simulator::Agent::instance().addCallObserver(
        [this](const std::string& function, const std::vector<std::string>&) {
            if (function == kDisconnect) {
                noteEndOfSession();
            }
        });
}

RequestLog::~RequestLog() {
    simulator::Agent::instance().removeCallObserver(_callObserver);
    framework::setRequestObserver(nullptr);
    framework::removeListener(_listener);
}

void RequestLog::noteEndOfSession() {
    const std::lock_guard<std::mutex> lock(_mutex);
    for (auto& [id, request] : _requests) {
        request.lackedNeed = request.lackedNeed || (!request.isClosed && _answers.count(id) == 0);
    }
}

bool RequestLog::isAnswered(framework::TransactionId id, const Request& request) const {
    const RequestSpec* const spec = tv::findRequest(request.name);
    return spec != nullptr && spec->answer == RequestSpec::Answer::State ? request.hasState : _answers.count(id) > 0;
}

bool RequestLog::areOpen() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return std::any_of(_requests.begin(), _requests.end(), [this](const auto& entry) {
        const auto& [id, request] = entry;
        const RequestSpec* const spec = tv::findRequest(request.name);
        return id != 0 && spec != nullptr && spec->answer != RequestSpec::Answer::None && !request.lackedNeed &&
               !isAnswered(id, request);
    });
}

void RequestLog::closeOpen() {
    const std::lock_guard<std::mutex> lock(_mutex);
    for (auto& [id, request] : _requests) {
        request.isClosed = true;
    }
}

void RequestLog::note(const framework::Report& report) {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (report.transaction != 0) {
        _answers[report.transaction].push_back(report.name);
    }
    if (report.name == "sign_in_state_changed") {
        _isSignedIn = report.properties.flag("is_sign_in");
    }
    if (report.name == "hl_device_state_updated") {
        for (auto& [id, request] : _requests) {
            request.hasState = request.hasState || request.device == report.properties.text("device_id");
        }
    }
}

bool RequestLog::isMet(const std::string& request) const {
    const RequestSpec* const spec = tv::findRequest(request);
    const RequestSpec::Need need = spec != nullptr ? spec->need : RequestSpec::Need::Nothing;
    // Nobody is signed in for the plug-in without a connection.
    return need == RequestSpec::Need::Nothing ||
           (simulator::Agent::instance().isConnected() && (need == RequestSpec::Need::ConnectedAgent || _isSignedIn));
}

void RequestLog::look() {
    const std::lock_guard<std::mutex> lock(_mutex);
    for (auto& [id, request] : _requests) {
        request.lackedNeed =
            request.lackedNeed || (!request.isClosed && _answers.count(id) == 0 && !isMet(request.name));
    }
}

int RequestLog::count() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return static_cast<int>(_requests.size());
}

std::vector<Problem> RequestLog::judge() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    std::vector<Problem> problems;
    for (const auto& [id, request] : _requests) {
        const RequestSpec* const spec = tv::findRequest(request.name);
        if (id == 0 || spec == nullptr) {
            continue;  // nobody took it, or nobody knows how it ends
        }
        const auto found = _answers.find(id);
        const std::vector<std::string> answers = found != _answers.end() ? found->second : std::vector<std::string>();
        const auto add = [&](const std::string& what) {
            problems.push_back({Judge::Answers, fmt::format("{} {}", request.name, what)});
        };
        const bool hasAnswer = isAnswered(id, request);
        if (spec->answer != RequestSpec::Answer::None && !hasAnswer) {
            if (!request.lackedNeed) {
                add("was not answered");
            }
        } else if (spec->answer == RequestSpec::Answer::None && hasAnswer) {
            add(fmt::format("was answered: {}", fmt::join(answers, ", ")));
        } else if (answers.size() > 1) {
            add(fmt::format("was answered {} times: {}", answers.size(), fmt::join(answers, ", ")));
        }
    }
    return problems;
}

}  // namespace homeloom::sweep

#include "RequestLog.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "RequestTable.h"

namespace homeloom::sweep {

namespace {

namespace framework = desktop::framework;
using tv::RequestSpec;

}  // namespace

RequestLog::RequestLog() {
    _listener = framework::addListener([this](const framework::ReportPtr& report) { note(*report); });
    framework::setRequestObserver(
        [this](framework::TransactionId id, const std::string& name, const desktop::Fields& arguments) {
            const std::lock_guard<std::mutex> lock(_mutex);
            _requests[id].name = name;
            _requests[id].device = arguments.text("device_id");
        });
}

RequestLog::~RequestLog() {
    framework::setRequestObserver(nullptr);
    framework::removeListener(_listener);
}

void RequestLog::note(const framework::Report& report) {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (report.transaction != 0) {
        _answers[report.transaction].push_back(report.name);
    }
    if (report.name == "hl_device_state_updated") {
        for (auto& [id, request] : _requests) {
            request.hasState = request.hasState || request.device == report.properties.text("device_id");
        }
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
        const bool isAnswered = spec->answer == RequestSpec::Answer::State ? request.hasState : !answers.empty();
        if (spec->answer != RequestSpec::Answer::None && !isAnswered) {
            add("was not answered");
        } else if (spec->answer == RequestSpec::Answer::None && isAnswered) {
            add(fmt::format("was answered: {}", fmt::join(answers, ", ")));
        } else if (answers.size() > 1) {
            add(fmt::format("was answered {} times: {}", answers.size(), fmt::join(answers, ", ")));
        }
    }
    return problems;
}

}  // namespace homeloom::sweep

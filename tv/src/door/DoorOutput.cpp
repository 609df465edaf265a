#include "DoorOutput.h"

#include <VMFramework/JsonValue.h>
#include <fmt/format.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "HomeView.h"
#include "JsonOutput.h"
#include "door/EventStream.h"

namespace homeloom::tv {

namespace {

// What came beyond that is only counted: it's all in the stream of events.
constexpr std::size_t kMostReportBytes = std::size_t{64} << 20;

std::string quoted(const std::string& text) {
    return VMFramework::json::JsonValue(text).toString();
}

// Without its last bracket: more may follow.
std::string commandDocument(const std::string& id, const std::string& line, const std::string& error,
                            const std::vector<std::string>& said) {
    std::string document = jsonLine(line, error.empty(), said);
    document.pop_back();
    if (!id.empty()) {
        document = fmt::format("{{\"id\":{},{}", id, document.substr(1));
    }
    return error.empty() ? document : document + ",\"error\":" + quoted(error);
}

}  // namespace

DoorOutput::DoorOutput(Output& console, EventStream& events, bool followsClients)
    : Output(console.style()), _console(console), _events(events), _followsClients(followsClients) {}

std::string DoorOutput::run(Desk& desk, const CommandBody& body) {
    _client = &body;
    setStyle(Style());
    runLine(desk, body.line);
    setStyle(_console.style());
    _client = nullptr;
    return std::exchange(_answer, {});
}

std::optional<std::string> DoorOutput::runAtOnce(const CommandBody& body) {
    std::string error;
    try {
        if (!tv::runAtOnce(body.line)) {
            return std::nullopt;
        }
    } catch (const CommandError& e) {
        error = e.what();
    }
    const std::string document = commandDocument(body.id, body.line, error, {});
    _events.publish("command", document + "}");
    return document + ",\"reports\":[]}";
}

void DoorOutput::endStart(const HomeView& home) {
    _console.endStart(home);
}

void DoorOutput::beginCommand(const std::string& line) {
    _line = line;
    _said.clear();
    _reports.clear();
    _leftOut = 0;
    if (reachesConsole()) {
        _console.beginCommand(line);
    }
}

void DoorOutput::endCommand(const std::string& error, const HomeView& home) {
    const std::string document = commandDocument(_client != nullptr ? _client->id : "", _line, error, _said);
    // Those who listen to the events had the reports already.
    _events.publish("command", document + "}");
    _events.publishSimChange();  // faults and the like, of which nobody else tells
    if (_client != nullptr) {
        _answer = fmt::format("{},\"reports\":[{}]", document, _reports);
        _answer += _leftOut > 0 ? fmt::format(",\"reports_left_out\":{}}}", _leftOut) : "}";
    }
    if (reachesConsole()) {
        _console.endCommand(error, home);
    }
}

void DoorOutput::say(const std::string& line) {
    _said.push_back(line);
    if (reachesConsole()) {
        _console.say(line);
    }
}

void DoorOutput::report(const Report& report, const HomeView& home) {
    if (_client != nullptr) {
        if (_reports.size() < kMostReportBytes) {
            _reports += (_reports.empty() ? "" : ",") + jsonLine(report);
        } else {
            ++_leftOut;
        }
    }
    _console.report(report, home);
}

void DoorOutput::mute(bool muted) {
    _console.mute(muted);
}

}  // namespace homeloom::tv

#include "Recorder.h"

#include <regex>
#include <utility>

#include <fmt/format.h>

#include "Differences.h"
#include "HomeView.h"
#include "JsonOutput.h"

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

// What this command says is measured, and differs from run to run.
constexpr char kMeasuring[] = "stats";

// Ports are picked anew in each run.
std::string withoutPorts(const std::string& text) {
    static const std::regex port(R"((127\.0\.0\.1|localhost):[0-9]+)");
    return text.find("127.0.0.1:") == std::string::npos && text.find("localhost:") == std::string::npos
               ? text
               : std::regex_replace(text, port, "$1:PORT");
}

// Whether a device has an empty text or none depends on what came first, its list or its metadata; to the screen it is
// the same.
JsonValue withoutEmptyTexts(const JsonValue& home) {
    JsonValue devices = JsonValue::CreateArray();
    const JsonValue all = home["devices"];
    for (std::size_t i = 0; i < all.size(); ++i) {
        const JsonValue device = all[i];
        JsonValue kept = JsonValue::CreateObject();
        for (const std::string& name : device.getMemberNames()) {
            const JsonValue value = device[name];
            if (!value.isString() || !value.asString().empty()) {
                kept.set(name, value);
            }
        }
        devices.append(kept);
    }
    JsonValue result = JsonValue::CreateObject();
    for (const std::string& name : home.getMemberNames()) {
        result.set(name, name == "devices" ? devices : home[name]);
    }
    return result;
}

std::string lineOf(const char* name, const std::string& text) {
    return fmt::format("{{\"{}\":{}}}", name, JsonValue(text).toString());
}

}  // namespace

Recorder::Recorder(Write write, bool brief, std::unique_ptr<Output> behind)
    : Output(Style()), _write(std::move(write)), _brief(brief), _behind(std::move(behind)) {}

void Recorder::line(const std::string& text) {
    _write(withoutPorts(text));
}

void Recorder::writeStep(const HomeView& home) {
    for (const std::string& call : _step.take(home)) {
        line(call);
    }
    JsonValue now = withoutEmptyTexts(JsonValue::Create(jsonLine(home))["home"]);
    if (_view != nullptr || !_brief) {
        for (const Difference& difference : differences(_home, now)) {
            const std::string place = JsonValue(difference.place).toString();
            line(difference.after ? fmt::format("{{\"at\":{},\"is\":{}}}", place, *difference.after)
                                  : fmt::format("{{\"at\":{},\"gone\":true}}", place));
        }
    }
    _home = std::move(now);
}

void Recorder::endStart(const HomeView& home) {
    _home = JsonValue::Create(R"({"locations":[],"devices":[],"scenes":[],"routines":[]})");
    writeStep(home);
    line(lineOf("start", "ends"));
    _view = &home;
    _quietSince = Clock::now();
    if (_behind) {
        _behind->endStart(home);
    }
}

void Recorder::writeEnd(const std::string& command, const std::string& error, const HomeView& home) {
    if (!error.empty()) {
        line(lineOf("failed", error));
    }
    writeStep(home);
    line(fmt::format("{{\"end\":{},\"succeeded\":{}}}", JsonValue(command).toString(), error.empty()));
    _quietSince = Clock::now();
}

void Recorder::writeWaiting() {
    if (_step.isEmpty() || _view == nullptr) {
        return;
    }
    const auto quiet = std::chrono::ceil<std::chrono::seconds>(Clock::now() - _quietSince);
    const std::string watch = fmt::format("watch {}", quiet.count());
    line(lineOf("command", watch));
    writeEnd(watch, "", *_view);
}

void Recorder::beginCommand(const std::string& command) {
    writeWaiting();
    _command = command;
    line(lineOf("command", command));
    if (_behind) {
        _behind->beginCommand(command);
    }
}

void Recorder::endCommand(const std::string& error, const HomeView& home) {
    writeEnd(std::exchange(_command, ""), error, home);
    if (_behind) {
        _behind->endCommand(error, home);
    }
}

void Recorder::say(const std::string& text) {
    if (!_command.empty() && _command != kMeasuring) {
        line(lineOf("said", text));
    }
    if (_behind) {
        _behind->say(text);
    }
}

void Recorder::report(const Report& report, const HomeView& home) {
    _step.add(report);
    if (_behind) {
        _behind->report(report, home);
    }
}

void Recorder::mute(bool muted) {
    if (_behind) {
        _behind->mute(muted);
    }
}

void Recorder::end() {
    writeWaiting();
}

}  // namespace homeloom::tv

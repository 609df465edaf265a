#include "Tape.h"

#include <fstream>
#include <stdexcept>
#include <variant>

#include <VMFramework/JsonValue.h>
#include <desktop/Settings.h>
#include <fmt/format.h>
#include <simulator/HomeLoader.h>
namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;
namespace settings = desktop::settings;

constexpr int kTapeVersion = 1;
constexpr char kApartment[] = "apartment";
constexpr std::pair<const char*, Arguments::Hub> kHubs[] = {
    {"on", Arguments::Hub::On}, {"uninstalled", Arguments::Hub::Uninstalled}, {"off", Arguments::Hub::Off}};

JsonValue homeJson(const Arguments& arguments, const simulator::Home& home) {
    if (arguments.generate > 0) {
        return arguments.generate;
    }
    return arguments.home.empty() ? JsonValue(kApartment) : JsonValue::Create(simulator::writeHome(home));
}

JsonValue settingsJson() {
    JsonValue all = JsonValue::CreateObject();
    for (const std::string& key : settings::keys()) {
        if (const auto value = settings::get(key)) {
            all.set(key, std::visit([](const auto& known) { return JsonValue(known); }, *value));
        }
    }
    return all;
}

JsonValue headOf(const Tape& tape) {
    return JsonValue::Create(tape.lines.front());
}

}  // namespace

std::vector<std::string> Tape::commands() const {
    std::vector<std::string> commands;
    for (const std::string& line : lines) {
        if (const JsonValue command = JsonValue::Create(line)["command"]; command.isString()) {
            commands.push_back(command.asString());
        }
    }
    return commands;
}

Tape readTape(const std::string& file) {
    std::ifstream stream(file);
    if (!stream) {
        throw std::runtime_error(fmt::format("{} can't be read", file));
    }
    Tape tape;
    for (std::string line; std::getline(stream, line);) {
        if (!JsonValue::Create(line).isObject()) {
            throw std::runtime_error(fmt::format("{}: line {} is no JSON object", file, tape.lines.size() + 1));
        }
        tape.lines.push_back(std::move(line));
    }
    const JsonValue version = tape.lines.empty() ? JsonValue() : headOf(tape)["tape"];
    if (!version.isNumber() || version.asInt() != kTapeVersion) {
        throw std::runtime_error(fmt::format("{} is no tape of this version", file));
    }
    return tape;
}

void writeTape(const std::string& file, const Tape& tape) {
    std::ofstream stream(file);
    for (const std::string& line : tape.lines) {
        stream << line << '\n';
    }
    if (!stream.flush()) {
        throw std::runtime_error(fmt::format("{} can't be written", file));
    }
}

std::string tapeHead(const Arguments& arguments, const simulator::Home& home) {
    JsonValue head = JsonValue::CreateObject();
    head.set("tape", kTapeVersion);
    head.set("home", homeJson(arguments, home));
    for (const auto& [name, hub] : kHubs) {
        if (arguments.hub == hub) {
            head.set("hub", name);
        }
    }
    head.set("limit_ms", static_cast<long long>(arguments.limit.count()));
    if (arguments.brief) {
        head.set("brief", true);
    }
    head.set("settings", settingsJson());
    return head.toString();
}

void applyTapeOptions(const Tape& tape, Arguments& arguments) {
    const JsonValue head = headOf(tape);
    arguments.generate = head["home"].isNumber() ? head["home"].asInt() : 0;
    arguments.brief = head["brief"].asBool();
    bool knowsHub = false;
    for (const auto& [name, hub] : kHubs) {
        if (head["hub"].isString() && head["hub"].asString() == name) {
            arguments.hub = hub;
            knowsHub = true;
        }
    }
    const bool knowsLimit = head["limit_ms"].isNumber() && head["limit_ms"].asInt() > 0;
    const bool knowsHome = head["home"].isObject() || arguments.generate > 0 ||
                           (head["home"].isString() && head["home"].asString() == kApartment);
    if (!knowsHub || !knowsLimit || !knowsHome || !head["settings"].isObject()) {
        throw std::runtime_error(fmt::format("the tape's head tells no {}", !knowsHub     ? "hub"
                                                                            : !knowsLimit ? "limit"
                                                                            : !knowsHome  ? "home"
                                                                                          : "settings"));
    }
    arguments.limit = std::chrono::milliseconds(head["limit_ms"].asInt());
    arguments.commands = tape.commands();
}

std::string homeOfTape(const Tape& tape) {
    const JsonValue home = headOf(tape)["home"];
    return home.isObject() ? home.toString() : "";
}

void applyTapeSettings(const Tape& tape) {
    const JsonValue wanted = headOf(tape)["settings"];
    for (const std::string& key : settings::keys()) {
        if (!wanted.isMember(key)) {
            settings::unset(key);
        }
    }
    for (const std::string& key : wanted.getMemberNames()) {
        const JsonValue value = wanted[key];
        value.isString() ? settings::setString(key, value.asString()) : settings::setInt(key, value.asInt());
    }
}

}  // namespace homeloom::tv

#include <array>
#include <stdexcept>

#include <desktop/Launches.h>
#include <desktop/Settings.h>
#include <desktop/Web.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <simulator/Agent.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "DeviceNames.h"
#include "Output.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

namespace web = desktop::web;

constexpr char kServerEnvKey[] = "db/homeloom/server/env";

// As the agent numbers them.
std::string environmentText(int environment) {
    static constexpr std::array<const char*, 3> names{"STG", "PROD", "ACC"};
    const auto index = static_cast<std::size_t>(environment);
    return fmt::format("{} {}", environment, index < names.size() ? names[index] : "unknown");
}

void environment(Desk& desk, const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
    const auto setting = desktop::settings::get(kServerEnvKey);
    const std::string* const text = setting ? std::get_if<std::string>(&*setting) : nullptr;
    const auto environments = simulator::Agent::instance().home().serverEnvironments;
    Table table;
    table.add({"the agent's IoT cloud", environmentText(environments.at(0))});
    table.add({"the agent's UI metadata", environmentText(environments.at(1))});
    table.add({"the setting", text != nullptr ? *text : "none, which means PROD"});
    desk.out().say(table);
}

void launches(Desk& desk, const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
    Table table;
    for (const auto& launch : desktop::launches::all()) {
        Words extras;
        for (const auto& [key, value] : launch.extras) {
            extras.push_back(fmt::format("{}={}", key, value));
        }
        table.add({launch.appId, fmt::format("{}", fmt::join(extras, " "))});
    }
    desk.out().say(table);
}

void webFail(Desk&, const Words& words) {
    const auto times = words.size() == 2 ? parseInt(words[1]) : std::optional<int>(-1);
    if (words.empty() || words.size() > 2 || !times || *times == 0 || *times < -1) {
        throw UsageError();
    }
    try {
        web::fail(words[0], {0, *times});
    } catch (const std::invalid_argument&) {
        throw CommandError(
            fmt::format("a web request has no step {}{}", words[0], nearHint(nearTo(words[0], web::steps()))));
    }
}

void webPass(Desk& desk, const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
    for (const std::string& step : web::failingSteps()) {
        desk.out().say(step + " failed until now");
    }
    web::pass();
}

}  // namespace

std::vector<Command> simWebCommands() {
    return {
        {"sim environment",
         "",
         "tells which server environments the agent has, and what the setting says",
         {"sim environment"},
         environment,
         {}},
        {"sim launches", "", "lists the applications that the plug-in launched", {"sim launches"}, launches, {}},
        {"sim web-fail",
         "STEP [CALLS]",
         "has a step of the plug-in's web requests fail: an option by its name, Initialize, send or getInfo",
         {"sim web-fail send", "sim web-fail HTTPHEADER 1"},
         webFail,
         {Hint(web::steps())}},
        {"sim web-pass", "", "takes that back", {"sim web-pass"}, webPass, {}},
    };
}

}  // namespace homeloom::tv

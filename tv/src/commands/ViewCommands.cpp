#include <algorithm>
#include <fstream>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <simulator/Agent.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "HomeText.h"
#include "Lookups.h"
#include "Output.h"
#include "ReportText.h"
#include "RequestTable.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

constexpr char kWhole[] = "--whole";

void requireNothing(const Words& words) {
    if (!words.empty()) {
        throw UsageError();
    }
}

void requireHome(Desk& desk) {
    if (!desk.home().isKnown()) {
        throw CommandError("the plug-in has reported no home");
    }
}

/// A command that shows a part of the home.
std::function<void(Desk&, const Words&)> showing(void (*show)(Output&, const HomeView&)) {
    return [show](Desk& desk, const Words& words) {
        requireNothing(words);
        requireHome(desk);
        show(desk.out(), desk.home());
    };
}

void device(Desk& desk, const Words& words) {
    Words rest = words;
    const auto whole = std::find(rest.begin(), rest.end(), kWhole);
    const bool isWhole = whole != rest.end();
    if (isWhole) {
        rest.erase(whole);
    }
    requireHome(desk);
    showDevice(desk.out(), *desk.home().device(deviceLookup(desk.home()).takeAll(rest, 0)), isWhole);
}

std::string titleOf(const Command& command) {
    return command.name + (command.usage.empty() ? "" : " " + command.usage);
}

const CommandGroup* groupOf(const Command& command) {
    const auto& groups = commandGroups();
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const auto& g) { return g.holds(command); });
    return found != groups.end() ? &*found : nullptr;
}

void listCommands(Desk& desk, bool ofTheOtherSide) {
    Table table(2, Table::Fit::WrapLast);
    const CommandGroup* last = nullptr;
    for (const Command& command : commandTable()) {
        if ((command.name.compare(0, 4, "sim ") == 0) != ofTheOtherSide) {
            continue;
        }
        const CommandGroup* const group = groupOf(command);
        if (group == nullptr) {
            table.add({{titleOf(command), Tone::Strong}, command.summary});
        } else if (group != last) {
            table.add({{group->name + " ...", Tone::Strong},
                       fmt::format("{}; \"help {}\" lists its commands", group->summary, group->name)});
        }
        last = group;
    }
    desk.out().say(table);
}

void explain(Desk& desk, const CommandGroup& group) {
    desk.out().say(fmt::format("{}: {}", desk.out().style().paint(Tone::Strong, group.name), group.summary));
    Table table(2, Table::Fit::WrapLast);
    for (const Command& command : commandTable()) {
        if (group.holds(command)) {
            table.add({{titleOf(command), Tone::Strong}, command.summary});
        }
    }
    desk.out().say(table);
}

void explain(Desk& desk, const Command& command) {
    Output& out = desk.out();
    out.say(out.style().paint(Tone::Strong, titleOf(command)));
    out.say("  " + command.summary);
    for (const std::string& example : command.examples) {
        out.say(out.style().paint(Tone::Dim, "  for example:  ") + example);
    }
}

void listRequests(Desk& desk) {
    Table table(2);
    for (const RequestSpec& spec : requestTable()) {
        table.add({usageOf(spec), {spec.overtakes ? "overtakes others" : "", Tone::Dim}});
    }
    desk.out().say(table);
}

void explainRequest(Desk& desk, const RequestSpec& spec) {
    Output& out = desk.out();
    out.say(out.style().paint(Tone::Strong, "request " + usageOf(spec)));
    if (spec.overtakes) {
        out.say("  Served ahead of other requests, on a thread of its own.");
    }
    if (spec.answer == RequestSpec::Answer::State) {
        out.say("  Answered by the device's state notification.");
    } else if (spec.answer == RequestSpec::Answer::None) {
        out.say("  Has no answer.");
    } else {
        const std::string fields = textOf(spec.answerFields);
        out.say(fmt::format("  Answered by {}{}.", spec.answerName, fields.empty() ? "" : ": " + fields));
    }
    if (spec.need != RequestSpec::Need::Nothing) {
        out.say(fmt::format("  Needs {}.", nameOf(spec.need)));
    }
    if (!spec.refusals.empty()) {
        out.say(fmt::format("  Gets no answer: {}.", spec.refusals));
    }
    out.say(out.style().paint(Tone::Dim, "  for example:  ") + exampleOf(spec));
}

void help(Desk& desk, const Words& words) {
    std::size_t at = 0;
    const auto& groups = commandGroups();
    const auto group = std::find_if(groups.begin(), groups.end(),
                                    [&words](const auto& g) { return g.name == lowered(joinWords(words)); });
    if (group != groups.end()) {
        explain(desk, *group);
    } else if (words.empty()) {
        desk.out().say("The TV's side:");
        listCommands(desk, false);
        desk.out().say("The other side (agent, home, cloud):");
        listCommands(desk, true);
        desk.out().say("\"help COMMAND\" explains one, with an example.");
    } else if (words.size() == 1 && lowered(words[0]) == "sim") {
        listCommands(desk, true);
    } else if (words.size() == 1 && lowered(words[0]) == "request") {
        explain(desk, findCommand(words, at));
        listRequests(desk);
    } else if (const RequestSpec* const spec = findRequest(words.back())) {
        explainRequest(desk, *spec);
    } else {
        explain(desk, findCommand(words, at));
    }
}

void models(Desk& desk, const Words& words) {
    requireNothing(words);
    const simulator::Home home = simulator::Agent::instance().home();
    Table table;
    for (const auto& [vid, model] : home.models) {
        const auto count = std::count_if(home.devices.begin(), home.devices.end(),
                                         [&vid = vid](const auto& device) { return device.vid == vid; });
        table.add({vid,
                   {model.name, Tone::Strong},
                   fmt::format("{}", fmt::join(model.types, ", ")),
                   counted(static_cast<std::size_t>(count), "device")});
    }
    if (table.empty()) {
        desk.out().say("The home has no models.");
    }
    desk.out().say(table);
}

std::string memoryText() {
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);) {
        if (line.compare(0, 6, "VmRSS:") == 0) {
            return line.substr(line.find_first_not_of(" \t", 6));
        }
    }
    return "unknown";
}

void stats(Desk& desk, const Words& words) {
    requireNothing(words);
    const auto& agent = simulator::Agent::instance();
    const auto holdings = agent.holdings();
    int calls = 0;
    for (const auto& [name, call] : agent.calls()) {
        calls += call.count;
    }
    Table table;
    const auto add = [&table](const std::string& label, const std::string& text) {
        table.add({{label, Tone::Dim}, text});
    };
    add("plug-in", desk.loadStatus() < 0 ? "has reported no status" : loadStatusText(desk.loadStatus()));
    add("home", homeText(desk.home()));
    for (const auto& [name, count] : desk.reportCounts()) {
        add("reported", fmt::format("{} × {}", count, name));
    }
    add("agent calls", std::to_string(calls));
    add("held of the agent",
        fmt::format("{}, {}, {}, {}, {}", counted(static_cast<std::size_t>(holdings.clients), "connection"),
                    counted(static_cast<std::size_t>(holdings.registrations), "registration"),
                    counted(static_cast<std::size_t>(holdings.subscriptions), "subscription"),
                    counted(static_cast<std::size_t>(holdings.records), "record"),
                    counted(static_cast<std::size_t>(holdings.pendingCalls), "call") + " under way"));
    add("memory", memoryText());
    desk.out().say(table);
}

}  // namespace

std::vector<Command> viewCommands() {
    using Kind = Hint::Kind;
    return {
        {"help",
         "[COMMAND]",
         "lists the commands, or explains one",
         {"help do", "help request hl_create_room"},
         help,
         {Kind::Command, Kind::Request}},
        {"rooms", "", "shows locations and rooms with their devices", {"rooms"}, showing(showRooms), {}},
        {"devices", "", "lists all devices with their ids", {"devices"}, showing(showDevices), {}},
        {"device",
         "[--whole] DEVICE",
         "shows everything that is reported of a device; --whole, also what is longer than the screen is wide",
         {"device washer", "device living room camera", "device --whole air conditioner"},
         device,
         {Kind::Device}},
        {"scenes", "", "lists the scenes", {"scenes"}, showing(showScenes), {}},
        {"routines", "", "lists the routines", {"routines"}, showing(showRoutines), {}},
        {"models",
         "",
         "lists the device models of the home, from which \"sim add device\" makes new ones",
         {"models"},
         models,
         {}},
        {"stats", "", "counts what was reported, called and held", {"stats"}, stats, {}},
    };
}

}  // namespace homeloom::tv

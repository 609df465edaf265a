#include <algorithm>
#include <charconv>

#include <fmt/format.h>
#include <simulator/Agent.h>

#include "Command.h"
#include "CommandError.h"
#include "Desk.h"
#include "DeviceChanges.h"
#include "Lookups.h"
#include "Output.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

using simulator::DeviceCommand;

simulator::Agent& agent() {
    return simulator::Agent::instance();
}

void list(Output& out) {
    Table table;
    for (const std::string& id : agent().driven()) {
        table.add({{"driven", Tone::Dim}, {id, Tone::Strong}});
    }
    for (const DeviceCommand& command : agent().openCommands()) {
        table.add({{"open", Tone::Dim}, jsonLine(command)});
    }
    table.empty() ? out.say("No device is driven by a program.") : out.say(table);
}

void drive(Desk& desk, const Words& words) {
    if (words.empty()) {
        list(desk.out());
        return;
    }
    std::size_t at = 0;
    const std::string id = deviceLookup(agent().home()).take(words, at);
    const bool isOn = words.size() == at + 1 && words[at] == "on";
    if (!isOn && (words.size() != at + 1 || words[at] != "off")) {
        throw UsageError();
    }
    // Whoever drives it is told by an event, and answers when it likes.
    agent().setDriver(id, isOn ? [](const DeviceCommand&) { return simulator::Verdict::Open; } : simulator::Driver());
    if (!isOn) {
        desk.settle();  // what was open is refused now
    }
}

DeviceCommand openCommand(const Words& words) {
    long long number = 0;
    const std::string text = words.empty() ? "" : words[0];
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw UsageError();
    }
    const auto commands = agent().openCommands();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [number](const DeviceCommand& command) { return command.number == number; });
    if (found == commands.end()) {
        throw CommandError(fmt::format("no command {} is open; \"sim driver\" lists them", number));
    }
    return *found;
}

void accept(const Words& words) {
    agent().accept(openCommand(words).number);
}

void refuse(const Words& words) {
    agent().refuse(openCommand(words).number);
}

void confirm(const Words& words) {
    const DeviceCommand command = openCommand(words);
    const auto device = agent().device(command.deviceId);
    std::vector<simulator::Change> values;
    if (words.size() > 1 && device) {
        values = readChanges(*device, words, 1);
    }
    if (!agent().confirm(command.number, values)) {
        throw CommandError(fmt::format("{} takes no such value", command.deviceId));
    }
}

Command verdict(const char* name, const char* usage, const char* summary, Words examples,
                void (*tell)(const Words& words)) {
    const auto run = [tell](Desk& desk, const Words& words) {
        desk.pump();
        tell(words);
        desk.settleOrSay();
    };
    return {name, usage, summary, std::move(examples), run, {}, tell};
}

}  // namespace

std::vector<Command> simDriverCommands() {
    using Kind = Hint::Kind;
    return {
        {"sim driver",
         "[DEVICE on|off]",
         "has a program carry out what the TV wants of a device: it's told by events, and answers by the commands "
         "below; "
         "alone, lists such devices and what is open",
         {"sim driver bedside-lamp on", "sim driver bedside-lamp off", "sim driver"},
         drive,
         {Kind::Device, Hint({"on", "off"})}},
        verdict("sim driver accept", "NUMBER",
                "accepts a command for a driven device: the TV's request succeeds, and \"sim set\" tells the values",
                {"sim driver accept 7"}, accept),
        verdict("sim driver confirm", "NUMBER [URI PROPERTY VALUE | PROPERTY=VALUE ...]",
                "the same, and sets the values that were wanted, or those",
                {"sim driver confirm 7", "sim driver confirm 7 level=20"}, confirm),
        verdict("sim driver refuse", "NUMBER", "refuses a command for a driven device: the TV's request fails",
                {"sim driver refuse 7"}, refuse),
    };
}

}  // namespace homeloom::tv

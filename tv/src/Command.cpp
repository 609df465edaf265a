#include "Command.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <clock/Clock.h>
#include <clock/Turner.h>
#include <fmt/format.h>

#include "CommandError.h"
#include "Desk.h"
#include "DeviceNames.h"
#include "Output.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

constexpr std::size_t kMostNameWords = 3;

std::vector<Command> makeTable() {
    std::vector<Command> table;
    for (const auto& family :
         {viewCommands, requestCommands, deskCommands, simDeviceCommands, simDriverCommands, simHomeCommands,
          simSessionCommands, simTimeCommands, simFaultCommands, simWebCommands, simCloudCommands, simHubCommands}) {
        std::vector<Command> commands = family();
        std::move(commands.begin(), commands.end(), std::back_inserter(table));
    }
    return table;
}

const Command* named(const std::string& name) {
    const auto& table = commandTable();
    const auto found = std::find_if(table.begin(), table.end(), [&name](const Command& c) { return c.name == name; });
    return found != table.end() ? &*found : nullptr;
}

Words firstWords(const Words& words, std::size_t count) {
    return Words(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(count));
}

}  // namespace

const char* nameOf(Hint::Kind kind) {
    switch (kind) {
        case Hint::Kind::Nothing:
            break;
        case Hint::Kind::Device:
            return "device";
        case Hint::Kind::Location:
            return "location";
        case Hint::Kind::Room:
            return "room";
        case Hint::Kind::Model:
            return "model";
        case Hint::Kind::Request:
            return "request";
        case Hint::Kind::AgentFunction:
            return "agent_function";
        case Hint::Kind::Setting:
            return "setting";
        case Hint::Kind::Command:
            return "command";
        case Hint::Kind::Choice:
            return "choice";
    }
    return "anything";
}

const std::vector<Command>& commandTable() {
    static const std::vector<Command> table = makeTable();
    return table;
}

const std::vector<CommandGroup>& commandGroups() {
    static const std::vector<CommandGroup> groups{
        {"sim cloud", "the cloud's web endpoints: has them misbehave, tells what they were asked"},
        {"sim hub", "the hub control application: installs, ends and steers it, tells what it was asked"},
    };
    return groups;
}

const Command& findCommand(const Words& words, std::size_t& at) {
    for (at = std::min(kMostNameWords, words.size()); at > 0; --at) {
        if (const Command* const command = named(lowered(joinWords(firstWords(words, at))))) {
            return *command;
        }
    }
    // What was meant has as many words as the names of the group that it begins like.
    std::size_t length = 1;
    for (const Command& command : commandTable()) {
        for (std::size_t i = length; i < std::min(kMostNameWords, words.size()); ++i) {
            const std::string begun = lowered(joinWords(firstWords(words, i))) + ' ';
            length = command.name.compare(0, begun.size(), begun) == 0 ? i + 1 : length;
        }
    }
    const std::string wanted = joinWords(firstWords(words, length));
    const auto& groups = commandGroups();
    if (std::any_of(groups.begin(), groups.end(), [&](const auto& g) { return g.name == lowered(wanted); })) {
        throw CommandError(fmt::format("\"{}\" wants a word behind it; \"help {}\" lists them", wanted, wanted));
    }
    Words names;
    for (const Command& command : commandTable()) {
        names.push_back(command.name);
    }
    throw CommandError(fmt::format("there is no command \"{}\"{}; \"help{}\" lists all", wanted,
                                   nearHint(nearTo(wanted, names)),
                                   length > 1 ? ' ' + lowered(joinWords(firstWords(words, length - 1))) : ""));
}

namespace {

void runWith(const Command& command, const std::function<void()>& run) {
    try {
        run();
    } catch (const UsageError&) {
        throw CommandError("usage: " + command.name + (command.usage.empty() ? "" : " " + command.usage));
    }
}

Words behind(const Words& words, std::size_t at) {
    return Words(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
}

}  // namespace

void runCommand(Desk& desk, const std::string& line) {
    const Words words = splitWords(line);
    if (words.empty()) {
        return;
    }
    std::size_t at = 0;
    const Command& command = findCommand(words, at);
    // Where the command itself waits for others it must not wait for a clock that nobody turns.
    std::optional<clock::Turner> turner;
    if (clock::isStanding()) {
        turner.emplace();
    }
    runWith(command, [&] { command.run(desk, behind(words, at)); });
}

bool runAtOnce(const std::string& line) {
    const Command* command = nullptr;
    Words words;
    std::size_t at = 0;
    try {
        words = splitWords(line);
        command = words.empty() ? nullptr : &findCommand(words, at);
    } catch (const CommandError&) {
        return false;  // the console says it
    }
    if (command == nullptr || !command->atOnce) {
        return false;
    }
    runWith(*command, [&] { command->atOnce(behind(words, at)); });
    return true;
}

namespace {

void settle(Desk& desk, std::string& error) {
    try {
        desk.settle();
    } catch (const CommandError& e) {
        error = error.empty() ? e.what() : error;
    }
}

}  // namespace

bool runLine(Desk& desk, const std::string& line) {
    Output& out = desk.out();
    desk.pump();
    out.beginCommand(line);
    std::string error;
    try {
        runCommand(desk, line);
    } catch (const CommandError& e) {
        error = e.what();
    }
    if (out.wantsWholeSteps() && !desk.hasQuit()) {
        settle(desk, error);
    }
    out.endCommand(error, desk.home());
    return error.empty();
}

}  // namespace homeloom::tv

#include "Command.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "CommandError.h"
#include "DeviceNames.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

std::vector<Command> makeTable() {
    std::vector<Command> table;
    for (const auto& family :
         {viewCommands, requestCommands, deskCommands, simDeviceCommands, simHomeCommands, simSessionCommands,
          simFaultCommands, simWebCommands, simCloudCommands, simHubCommands}) {
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

}  // namespace

const std::vector<Command>& commandTable() {
    static const std::vector<Command> table = makeTable();
    return table;
}

const Command& findCommand(const Words& words, std::size_t& at) {
    for (at = std::min<std::size_t>(2, words.size()); at > 0; --at) {
        const Words first(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(at));
        if (const Command* const command = named(lowered(joinWords(first)))) {
            return *command;
        }
    }
    const bool isSim = words.size() > 1 && lowered(words[0]) == "sim";
    const std::string wanted = isSim ? "sim " + words[1] : joinWords({words[0]});
    Words names;
    for (const Command& command : commandTable()) {
        names.push_back(command.name);
    }
    throw CommandError(
        fmt::format("there is no command \"{}\"{}; \"help\" lists all", wanted, nearHint(nearTo(wanted, names))));
}

void runCommand(Desk& desk, const std::string& line) {
    const Words words = splitWords(line);
    if (words.empty()) {
        return;
    }
    std::size_t at = 0;
    const Command& command = findCommand(words, at);
    try {
        command.run(desk, Words(words.begin() + static_cast<std::ptrdiff_t>(at), words.end()));
    } catch (const UsageError&) {
        throw CommandError(fmt::format("usage: {} {}", command.name, command.usage));
    }
}

}  // namespace homeloom::tv

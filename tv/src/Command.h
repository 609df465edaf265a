#ifndef HOMELOOM_TV_COMMAND_H
#define HOMELOOM_TV_COMMAND_H

#include <functional>
#include <string>
#include <vector>

#include "Words.h"

namespace homeloom::tv {

class Desk;

/// What fits at one place of a command, for completion.
struct Hint {
    enum class Kind { Nothing, Device, Location, Room, Model, Request, AgentFunction, Setting, Command, Choice };

    Hint(Kind hintKind, std::string firstWord = {}) : kind(hintKind), behind(std::move(firstWord)) {}
    Hint(std::vector<std::string> hintChoices) : kind(Kind::Choice), choices(std::move(hintChoices)) {}

    Kind kind;
    std::vector<std::string> choices;
    std::string behind;  // fits only if this is the command's first argument; empty: always
};

/// "device", "agent_function", ...
const char* nameOf(Hint::Kind kind);

struct Command {
    std::string name;   // one to three words: "do", "sim set", "sim hub event"
    std::string usage;  // what follows the name
    std::string summary;
    Words examples;
    /// Gets what follows the name. Throws CommandError when it fails.
    std::function<void(Desk& desk, const Words& words)> run;
    std::vector<Hint> hints;  // by place
    /// Set where other commands may be waiting for this one, so that it can't wait for its turn. On any thread.
    std::function<void(const Words& words)> atOnce = nullptr;
};

/// Commands whose names begin alike, and what they have in common. Where all commands are listed, one line stands for
/// the group.
struct CommandGroup {
    std::string name;  // "sim hub"
    std::string summary;

    bool holds(const Command& command) const { return command.name.compare(0, name.size() + 1, name + ' ') == 0; }
};

/// All commands, in the order of the help.
const std::vector<Command>& commandTable();
const std::vector<CommandGroup>& commandGroups();

/// The command at the start of the words; `at` becomes the number of words that name it. Throws CommandError.
const Command& findCommand(const Words& words, std::size_t& at);

/// Runs one line. Throws CommandError.
void runCommand(Desk& desk, const std::string& line);

/// Runs one line, and tells the desk's output when it begins and how it ends. Returns whether it succeeded.
bool runLine(Desk& desk, const std::string& line);

/// Runs a line that can't wait for its turn, on any thread. False for all others. Throws CommandError.
bool runAtOnce(const std::string& line);

// The families of which the table is made.
std::vector<Command> viewCommands();
std::vector<Command> requestCommands();
std::vector<Command> deskCommands();
std::vector<Command> simDriverCommands();
std::vector<Command> simHomeCommands();
std::vector<Command> simDeviceCommands();
std::vector<Command> simSessionCommands();
std::vector<Command> simFaultCommands();
std::vector<Command> simTimeCommands();
std::vector<Command> simWebCommands();
std::vector<Command> simCloudCommands();
std::vector<Command> simHubCommands();

}  // namespace homeloom::tv

#endif

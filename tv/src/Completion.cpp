#include "Completion.h"

#include <algorithm>

#include <desktop/Settings.h>
#include <simulator/Agent.h>

#include "Command.h"
#include "CommandError.h"
#include "HomeView.h"
#include "RequestTable.h"
#include "Words.h"

namespace homeloom::tv {

namespace {

// The words that follow `begun` in commands' names.
Words commandNames(const std::string& begun) {
    Words names;
    for (const Command& command : commandTable()) {
        if (command.name.compare(0, begun.size(), begun) == 0) {
            names.push_back(command.name.substr(begun.size(), command.name.find(' ', begun.size()) - begun.size()));
        }
    }
    return names;
}

Words requestNames() {
    Words names;
    for (const RequestSpec& spec : requestTable()) {
        names.push_back(spec.name);
    }
    return names;
}

Words choicesOf(const Hint& hint, const HomeView& home) {
    Words choices;
    switch (hint.kind) {
        case Hint::Kind::Nothing:
            break;
        case Hint::Kind::Device:
            for (const auto& device : home.devices()) {
                choices.push_back(device.id);
            }
            break;
        case Hint::Kind::Location:
            for (const auto& location : home.locations()) {
                choices.push_back(location.id);
            }
            break;
        case Hint::Kind::Room:
            for (const auto& location : home.locations()) {
                for (const auto& room : location.rooms) {
                    choices.push_back(room.id);
                }
            }
            break;
        case Hint::Kind::Model:
            for (const auto& [vid, model] : simulator::Agent::instance().home().models) {
                choices.push_back(vid);
            }
            break;
        case Hint::Kind::Request:
            return requestNames();
        case Hint::Kind::AgentFunction:
            return simulator::Agent::functionNames();
        case Hint::Kind::Setting:
            return desktop::settings::keys();
        case Hint::Kind::Command:
            return commandNames("");
        case Hint::Kind::Choice:
            return hint.choices;
    }
    return choices;
}

Words keysOf(const std::string& request) {
    Words keys;
    if (const RequestSpec* const spec = findRequest(request)) {
        for (const auto& argument : spec->arguments) {
            keys.push_back(argument.key + "=");
        }
    }
    return keys;
}

Words choicesBehind(const Words& before, const HomeView& home) {
    const Words names = commandNames(before.empty() ? "" : joinWords(before) + ' ');
    if (!names.empty()) {
        return names;
    }
    if (before.size() > 1 && before[0] == "request") {
        return keysOf(before[1]);
    }
    std::size_t at = 0;
    const Command& command = findCommand(before, at);
    const std::size_t place = before.size() - at;
    if (place >= command.hints.size()) {
        return {};
    }
    const Hint& hint = command.hints[place];
    return hint.behind.empty() || (place > 0 && before[at] == hint.behind) ? choicesOf(hint, home) : Words();
}

}  // namespace

std::string lastWord(const std::string& line) {
    const std::size_t blank = line.find_last_of(" \t");
    return blank == std::string::npos ? line : line.substr(blank + 1);
}

std::vector<std::string> completions(const std::string& line, const HomeView& home) {
    const std::string begun = lastWord(line);
    Words found;
    try {
        for (const std::string& choice : choicesBehind(splitWords(line.substr(0, line.size() - begun.size())), home)) {
            if (choice.compare(0, begun.size(), begun) == 0) {
                found.push_back(choice);
            }
        }
    } catch (const CommandError&) {
        return {};  // an unknown command, or an open quote
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

}  // namespace homeloom::tv

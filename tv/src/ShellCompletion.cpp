#include "ShellCompletion.h"

#include <vector>

#include <fmt/format.h>

#include "Arguments.h"
#include "Command.h"

namespace homeloom::tv {

namespace {

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string inQuotes(const std::string& text) {
    return "'" + replaced(text, "'", "'\\''") + "'";
}

bool isFile(const OptionSpec& option) {
    return option.value == "FILE" || option.value == "PATH";
}

bool isChoice(const OptionSpec& option) {
    return option.value.find('|') != std::string::npos;
}

std::string bashCompletion() {
    std::string files;
    std::string free;
    std::string choices;
    std::string options;
    for (const OptionSpec& option : optionTable()) {
        options += option.name + "\n";
        if (isFile(option)) {
            files += (files.empty() ? "" : " | ") + option.name;
        } else if (isChoice(option)) {
            choices +=
                fmt::format("        {}) words={} ;;\n", option.name, inQuotes(replaced(option.value, "|", "\n")));
        } else if (!option.value.empty() && option.value != "COMMAND") {
            free += (free.empty() ? "" : " | ") + option.name;
        }
    }
    std::string commands;
    for (const Command& command : commandTable()) {
        commands += command.name + "\n";
    }
    return fmt::format(R"(# Completes homeloom-tv in bash. Made by homeloom-tv --completion bash.
_homeloom_tv() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} words= open= candidate
    local IFS=$'\n'
    COMPREPLY=()
    case ${{COMP_WORDS[COMP_CWORD - 1]}} in
{}        --exec)
            words={}
            # Within quotes the shell puts in what is missing; outside, blanks need a backslash.
            case $word in [\"\']*) open=1 word=${{word:1}} ;; *) word=${{word//\\/}} ;; esac
            for candidate in $(compgen -W "$words" -- "$word"); do
                [ "$open" ] || candidate=$(printf %q "$candidate")
                COMPREPLY+=("$candidate")
            done
            return
            ;;
        {}) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- "$word")); return ;;
        {}) return ;;
        *) words={} ;;
    esac
    COMPREPLY=($(compgen -W "$words" -- "$word"))
}}
complete -F _homeloom_tv homeloom-tv
)",
                       choices, inQuotes(commands), files, free, inQuotes(options));
}

// What stands in brackets or before a colon can't hold either unescaped.
std::string zshEscaped(const std::string& text) {
    return replaced(replaced(replaced(text, "[", "\\["), "]", "\\]"), ":", "\\:");
}

std::string zshValue(const OptionSpec& option) {
    if (option.value.empty()) {
        return "";
    }
    if (isChoice(option)) {
        return ":value:(" + replaced(option.value, "|", " ") + ")";
    }
    if (option.value == "COMMAND") {
        return ":command:_homeloom_tv_commands";
    }
    return ":" + zshEscaped(option.value) + ":" + (isFile(option) ? "_files" : "");
}

std::string zshCompletion() {
    std::string commands;
    for (const Command& command : commandTable()) {
        commands += "        " + inQuotes(zshEscaped(command.name) + ":" + command.summary) + "\n";
    }
    std::string options;
    for (const OptionSpec& option : optionTable()) {
        options += " \\\n    " + inQuotes(fmt::format("{}{}[{}]{}", option.value == "COMMAND" ? "*" : "", option.name,
                                                      zshEscaped(option.description), zshValue(option)));
    }
    return fmt::format(R"(#compdef homeloom-tv
# Completes homeloom-tv in zsh. Made by homeloom-tv --completion zsh.
_homeloom_tv_commands() {{
    local -a commands=(
{}    )
    _describe command commands
}}

_arguments{}
)",
                       commands, options);
}

}  // namespace

std::string shellCompletion(const std::string& shell) {
    return shell == "zsh" ? zshCompletion() : bashCompletion();
}

}  // namespace homeloom::tv

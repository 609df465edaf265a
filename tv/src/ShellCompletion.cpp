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

// Patterns for the beginnings of commands behind which the id of a model fits.
std::vector<std::string> modelPlaces() {
    std::vector<std::string> patterns;
    for (const Command& command : commandTable()) {
        for (std::size_t place = 0; place < command.hints.size(); ++place) {
            const Hint& hint = command.hints[place];
            if (hint.kind != Hint::Kind::Model) {
                continue;
            }
            std::string pattern = '^' + command.name + ' ';
            for (std::size_t i = 0; i < place; ++i) {
                pattern += (i == 0 && !hint.behind.empty() ? hint.behind : "[^ ]+") + ' ';
            }
            patterns.push_back(pattern + "[^ ]*$");
        }
    }
    return patterns;
}

// A shell function that tells the models of the home that a command line names.
constexpr char kModels[] = R"(_homeloom_tv_models() {
    local home=()
    while [ $# -gt 1 ]; do
        [ "$2" != --home ] || home=(--home "$3")
        set -- "$1" "${@:3}"
    done
    "$1" "${home[@]}" --hub off --exec models 2>/dev/null | sed '1,/^> models$/d; s/ .*//'
}
)";

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
    std::string models;
    for (const std::string& pattern : modelPlaces()) {
        models += " " + inQuotes(pattern);
    }
    return fmt::format(R"(# Completes homeloom-tv in bash. Made by homeloom-tv --completion bash.
{}
_homeloom_tv() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} words= open= begun= candidate pattern
    local IFS=$'\n'
    COMPREPLY=()
    case ${{COMP_WORDS[COMP_CWORD - 1]}} in
{}        --exec)
            words={}
            # Within quotes the shell puts in what is missing; outside, blanks need a backslash.
            case $word in [\"\']*) open=1 word=${{word:1}} ;; *) word=${{word//\\/}} ;; esac
            for pattern in{}; do
                if [[ $word =~ $pattern ]]; then
                    words=$(_homeloom_tv_models "${{COMP_WORDS[@]:0:COMP_CWORD}}")
                    begun=${{word% *}}" " word=${{word##* }}
                fi
            done
            for candidate in $words; do
                [[ $candidate == "$word"* ]] || continue
                candidate=$begun$candidate
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
                       kModels, choices, inQuotes(commands), models, files, free, inQuotes(options));
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
    std::string models;
    for (const std::string& pattern : modelPlaces()) {
        models += " " + inQuotes(pattern);
    }
    std::string options;
    for (const OptionSpec& option : optionTable()) {
        options += " \\\n    " + inQuotes(fmt::format("{}{}[{}]{}", option.value == "COMMAND" ? "*" : "", option.name,
                                                      zshEscaped(option.description), zshValue(option)));
    }
    return fmt::format(R"zsh(#compdef homeloom-tv
# Completes homeloom-tv in zsh. Made by homeloom-tv --completion zsh.
{}
_homeloom_tv_commands() {{
    local pattern line=${{(Q)PREFIX}}
    for pattern in{}; do
        if [[ $line =~ $pattern ]]; then
            local -a models=(${{(f)"$(_homeloom_tv_models "${{(@Q)words[1,CURRENT-1]}}")"}})
            compadd -- "${{line% *}} "$^models
            return
        fi
    done
    local -a commands=(
{}    )
    _describe command commands
}}

_arguments{}
)zsh",
                       kModels, models, commands, options);
}

}  // namespace

std::string shellCompletion(const std::string& shell) {
    return shell == "zsh" ? zshCompletion() : bashCompletion();
}

}  // namespace homeloom::tv

#include "Arguments.h"

#include <algorithm>

#include <desktop/Log.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <CLI/CLI.hpp>

#include "Schemas.h"
#include "Text.h"

namespace homeloom::tv {

namespace {

std::string checkLevel(const std::string& text) {
    log_priority priority = DLOG_ERROR;
    return desktop::log::parsePriority(text, priority) ? "" : "is none of debug, info, warn, error";
}

std::string checkAddress(const std::string& text) {
    return parseDoorAddress(text) ? "" : "is no port and no address with one: 8080, 127.0.0.1:8080, [::1]:8080";
}

std::string checkToken(const std::string& text) {
    return isDoorToken(text) ? "" : "is no token: 8 to 256 letters, digits and any of - . _ ~";
}

std::string checkDuration(const std::string& text) {
    return parseDuration(text) ? "" : "is no time: 5, 500ms, 2m";
}

/// What the options are read into: those that have a form of their own as text.
struct Texts {
    Arguments arguments;
    std::string disclaimer;
    std::string hub = "on";
    std::string level;
    std::string limit;
    std::string serve;
    std::string time;
};

std::string withBars(const std::vector<std::string>& words) {
    return fmt::format("{}", fmt::join(words, "|"));
}

void addOptions(CLI::App& app, Texts& texts) {
    Arguments& arguments = texts.arguments;
    app.set_version_flag("--version", std::string("homeloom-tv ") + HOMELOOM_VERSION);
    auto* const home =
        app.add_option("--home", arguments.home, "The home to begin with; the apartment if none is given")
            ->type_name("FILE");
    app.add_option("--generate", arguments.generate, "Begin with a made-up home of that many devices")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000))
        ->excludes(home);
    app.add_option("--script", arguments.script, "Run the commands of a file, one a line, and end")->type_name("FILE");
    app.add_option("--exec", arguments.commands, "Run a command, and end; may be given more than once")
        ->type_name("COMMAND")
        ->allow_extra_args(false);
    auto* const json =
        app.add_flag("--json", arguments.json, "One JSON document a line for every call that the plug-in makes");
    app.add_flag("--settled", arguments.settled,
                 "With --json: what stands at the end of each command, in a fixed order, so that runs can be compared")
        ->needs(json);
    app.add_option("--disclaimer", texts.disclaimer, "Whether the disclaimer is accepted at the start")
        ->type_name("on|off")
        ->check(CLI::IsMember({"on", "off"}));
    app.add_option("--settings", arguments.settings, "Take the TV's settings from a file, and keep them there")
        ->type_name("FILE");
    app.add_option("--hub", texts.hub,
                   "Whether this TV can be a hub (on if not given), and lacks only the hub control application")
        ->type_name("on|uninstalled|off")
        ->check(CLI::IsMember({"on", "uninstalled", "off"}));
    app.add_option("--limit", texts.limit, "How long a command waits for what it caused; 5s if not given")
        ->type_name("TIME")
        ->check(CLI::Validator(checkDuration, ""));
    app.add_option(
           "--time", texts.time,
           "auto: the clock stands still while anybody works and goes to the next deadline when all wait (if not "
           "given, for --script, --exec and --replay without --serve); real: it goes as the machine's")
        ->type_name("auto|real")
        ->check(CLI::IsMember({"auto", "real"}));
    app.add_option("--log", texts.level, "Write log lines from that level on to standard error")
        ->type_name("debug|info|warn|error")
        ->check(CLI::Validator(checkLevel, ""));
    app.add_option("--plugin", arguments.plugin, "The plug-in to load; the one beside the program if none is given")
        ->type_name("PATH");
    app.add_flag("--catalogue", arguments.catalogue,
                 "Print all requests, notifies, endpoint fields and commands as one JSON document, and end");
    app.add_option("--schema", arguments.schema, "Print the JSON Schema of these documents, and end")
        ->type_name(withBars(schemaNames()))
        ->check(CLI::IsMember(schemaNames()));
    // For those who build packages: an empty group hides them from the help.
    app.add_option("--completion", arguments.completion)->check(CLI::IsMember({"bash", "zsh"}))->group("");
    app.add_option("--man", arguments.manPage)->check(CLI::IsMember({"homeloom-tv", "homeloom-home"}))->group("");
    app.add_option("--serve", texts.serve,
                   "Let other programs in by HTTP, on loopback unless an address is given; 0: any port")
        ->type_name("[ADDRESS:]PORT")
        ->check(CLI::Validator(checkAddress, ""));
    app.add_option("--token", arguments.token, "What they have to show; needed for an address other than loopback")
        ->type_name("TEXT")
        ->envname("HOMELOOM_TOKEN")
        ->check(CLI::Validator(checkToken, ""));
    auto* const record = app.add_option("--record", arguments.record, "Write the session to a file that --replay takes")
                             ->type_name("FILE");
    app.add_flag("--brief", arguments.brief, "With --record: leave out the home with which the session begins")
        ->needs(record);
    auto* const replay = app.add_option("--replay", arguments.replay,
                                        "Run a recorded session again, show what differs, and fail if anything does")
                             ->type_name("FILE");
    for (const char* other : {"--home", "--generate", "--script", "--exec", "--json", "--settings", "--record", "--hub",
                              "--disclaimer", "--limit"}) {
        replay->excludes(app.get_option(other));
    }
    app.add_option("--agent-tape", arguments.agentTape,
                   "Play the agent from what homeloom-agent-recorder wrote, in place of the simulated one")
        ->type_name("FILE")
        ->excludes(record)
        ->excludes(replay);
    app.add_flag("--update", arguments.update, "With --replay: write what came out to the file")->needs(replay);
}

}  // namespace

std::vector<OptionSpec> optionsOf(const CLI::App& app) {
    std::vector<OptionSpec> table;
    for (const CLI::Option* const option :
         app.get_options([](const CLI::Option* each) { return !each->get_group().empty(); })) {
        // What checks the value stands behind a colon.
        const std::string value = option->get_expected_max() == 0 ? "" : option->get_type_name();
        table.push_back({"--" + option->get_lnames().at(0),
                         value.substr(0, std::min(value.find(":{"), value.find(":INT"))), option->get_description()});
    }
    return table;
}

std::vector<OptionSpec> optionTable() {
    CLI::App app;
    Texts texts;
    addOptions(app, texts);
    return optionsOf(app);
}

std::variant<Arguments, int> parseArguments(int argc, char** argv) {
    CLI::App app("A desk TV: runs the HomeLoom plug-in with a simulated home behind it.", "homeloom-tv");
    Texts texts;
    addOptions(app, texts);
    Arguments& arguments = texts.arguments;
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? kExitSuccess : kExitUsage;
    }
    arguments.serve = parseDoorAddress(texts.serve);
    if (arguments.serve && !arguments.serve->isLoopback() && arguments.token.empty()) {
        fmt::print(stderr,
                   "--serve: an address other than loopback needs --token, or HOMELOOM_TOKEN in the environment\n");
        return kExitUsage;
    }
    if (!texts.disclaimer.empty()) {
        arguments.disclaimer = texts.disclaimer == "on";
    }
    arguments.hub = texts.hub == "on"            ? Arguments::Hub::On
                    : texts.hub == "uninstalled" ? Arguments::Hub::Uninstalled
                                                 : Arguments::Hub::Off;
    const bool isBatch = !arguments.script.empty() || !arguments.commands.empty() || !arguments.replay.empty();
    arguments.isTimeAuto = texts.time.empty() ? isBatch && !arguments.serve : texts.time == "auto";
    if (!texts.limit.empty()) {
        arguments.limit = parseDuration(texts.limit).value();
    }
    if (log_priority priority = DLOG_ERROR; desktop::log::parsePriority(texts.level, priority)) {
        arguments.log = priority;
    }
    return arguments;
}

}  // namespace homeloom::tv

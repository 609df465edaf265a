#include "Options.h"

#include <stdexcept>
#include <thread>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "Manual.h"

namespace homeloom::sweep {

namespace {

std::string checkPlace(const std::string& text) {
    try {
        Place::parse(text);
        return "";
    } catch (const std::invalid_argument& e) {
        return e.what();
    }
}

std::string checkFunction(const std::string& text) {
    try {
        partyOf(text);
        return "";
    } catch (const std::invalid_argument& e) {
        return e.what();
    }
}

std::string checkLevel(const std::string& text) {
    log_priority priority = DLOG_ERROR;
    return desktop::log::parsePriority(text, priority) ? "" : "is none of debug, info, warn, error";
}

std::optional<Options::Seeds> parseSeeds(const std::string& text) {
    const std::size_t dots = text.find("..");
    try {
        Options::Seeds seeds;
        std::size_t end = 0;
        seeds.first = seeds.last = std::stoull(text, &end);
        if (dots != std::string::npos) {
            seeds.last = std::stoull(text.substr(dots + 2));
        }
        const bool isWhole = end == (dots == std::string::npos ? text.size() : dots);
        return isWhole && seeds.first <= seeds.last ? std::optional<Options::Seeds>(seeds) : std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::string checkSeeds(const std::string& text) {
    return parseSeeds(text) ? "" : "is neither a number nor two with .. between them";
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    Options options;
    options.jobs = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    std::vector<std::string> places;
    std::string seeds;
    std::string level;
    int limit = static_cast<int>(options.limit.count());

    CLI::App app(
        "Tries what goes wrong: runs a script of homeloom-tv once as it is, notes every call that the plug-in makes to "
        "agent, cloud, hub control application, settings and framework, and runs it again for each fault at each of "
        "these places. Judges each run: it ends, nothing crashes or gets out, nothing is left after unloading, "
        "requests "
        "are answered, and the home heals: with the faults gone and one scan later it is what a freshly loaded plug-in "
        "shows.",
        "homeloom-sweep");
    app.set_version_flag("--version", std::string("homeloom-sweep ") + HOMELOOM_VERSION);
    app.add_option("--script", options.script,
                   "The commands of homeloom-tv to run; a day with the apartment if none is given")
        ->type_name("FILE");
    auto* const home =
        app.add_option("--home", options.stage.home, "The home to begin with; the apartment if none is given")
            ->type_name("FILE");
    app.add_option("--generate", options.stage.generate, "Begin with a made-up home of that many devices")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000))
        ->excludes(home);
    app.add_option("--plugin", options.stage.plugin, "The plug-in to load; the one beside the program if none is given")
        ->type_name("PATH");
    app.add_option("--jobs", options.jobs, "So many runs at a time; one for each processor if not given")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    app.add_option("--limit", limit,
                   "After so many seconds of the machine's time a run counts as one that hangs; 120 if "
                   "not given")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 86400));

    const std::string sweeping = "The sweep";
    app.add_option("--only", options.only, "Only faults of this function; may be given more than once")
        ->type_name("FUNCTION")
        ->allow_extra_args(false)
        ->check(CLI::Validator(checkFunction, ""))
        ->group(sweeping);
    app.add_option("--depth", options.depth,
                   "So many single calls of each function at most, from the first to the last, "
                   "besides all of them at once; 0 means each one; 4 if not given")
        ->type_name("N")
        ->check(CLI::Range(0, 1000000))
        ->group(sweeping);
    app.add_option("--quarter", options.quarter, "Only a quarter of the places, chosen by this text, a commit for one")
        ->type_name("TEXT")
        ->group(sweeping);
    app.add_flag("--plan", options.plan, "Print the places, and run nothing")->group(sweeping);
    app.add_option("--junit", options.junit, "Write the outcome as a JUnit document, too")
        ->type_name("FILE")
        ->group(sweeping);

    const std::string others = "In place of it";
    auto* const at = app.add_option("--at", places,
                                    "One run with a fault: FUNCTION#NUMBER=FAULT or FUNCTION#all=FAULT, where "
                                    "FAULT is fails, error, late, never, twice, malformed, null or miscount; "
                                    "may be given more than once")
                         ->type_name("PLACE")
                         ->allow_extra_args(false)
                         ->check(CLI::Validator(checkPlace, ""))
                         ->group(others);
    bool once = false;
    app.add_flag("--once", once, "One run of the script as it is")->group(others);
    app.add_flag("--may-fail", options.commandsMayFail, "With --once: nobody minds that a command fails")
        ->group(others);
    auto* const storm = app.add_option("--storm", seeds,
                                       "Storms: what persons, cloud, agent, hub and framework do, mixed by "
                                       "chance, one storm for each seed from A to B")
                            ->type_name("A[..B]")
                            ->check(CLI::Validator(checkSeeds, ""))
                            ->group(others);
    app.add_option("--length", options.length, "So many commands make a storm; 40 if not given")
        ->type_name("N")
        ->check(CLI::Range(1, 100000))
        ->needs(storm)
        ->group(others);
    auto* const shrink = app.add_flag("--shrink", options.shrink,
                                      "Makes the shortest script that still fails of a storm, or of --script")
                             ->group(others);
    app.add_flag("--print", options.printsStorm, "Prints a storm's script, and runs nothing")
        ->needs(storm)
        ->group(others);
    app.add_option("--unload", options.unload,
                   "Runs that end in the middle: the plug-in is unloaded at each of N equally "
                   "spread moments of the script, and loaded again")
        ->type_name("N")
        ->check(CLI::Range(1, 1000000))
        ->group(others);
    app.add_option("--unload-at", options.unloadAt,
                   "The same at the plug-in's call of that number; may be given more than once")
        ->type_name("CALL")
        ->allow_extra_args(false)
        ->check(CLI::Range(1, 100000000))
        ->group(others);
    app.add_option("--log", level, "With --at, --once or --unload-at: log lines from that level on, on standard error")
        ->type_name("debug|info|warn|error")
        ->check(CLI::Validator(checkLevel, ""))
        ->group(others);
    app.add_option("--verdicts", options.verdicts)->group("");
    bool man = false;
    app.add_flag("--man", man)->group("");
    static_cast<void>(shrink);
    static_cast<void>(at);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? kExitSuccess : kExitUsage;
    }
    if (man) {
        fmt::print("{}", manualOf(app));
        return kExitSuccess;
    }
    for (const std::string& place : places) {
        options.faults.push_back(Place::parse(place));
    }
    options.isOneRun = once || !places.empty();
    if (!seeds.empty()) {
        options.storm = parseSeeds(seeds);
    }
    options.limit = std::chrono::seconds(limit);
    log_priority priority = DLOG_ERROR;
    if (desktop::log::parsePriority(level, priority)) {
        options.log = priority;
    }
    return options;
}

std::vector<std::string> commonArguments(const Options& options) {
    std::vector<std::string> arguments;
    const auto add = [&](const char* name, const std::string& value) {
        if (!value.empty()) {
            arguments.insert(arguments.end(), {name, value});
        }
    };
    add("--script", options.script);
    add("--home", options.stage.home);
    add("--generate", options.stage.generate > 0 ? std::to_string(options.stage.generate) : "");
    add("--plugin", options.stage.plugin);
    return arguments;
}

}  // namespace homeloom::sweep

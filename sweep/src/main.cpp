#include <clocale>
#include <exception>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Options.h"
#include "Runner.h"
#include "Session.h"
#include "Storm.h"
#include "Storms.h"
#include "Sweep.h"
#include "Unload.h"

namespace {

using namespace homeloom::sweep;

int tell(const Options& options, const Verdict& verdict) {
    if (options.verdicts >= 0) {
        sendVerdict(options.verdicts, verdict);
    } else {
        for (const Problem& problem : verdict.problems) {
            fmt::print("{}: {}\n", nameOf(problem.judge), problem.text);
        }
        fmt::print("{}", verdict.isClean() ? "All is well.\n" : "");
    }
    return verdict.isClean() ? kExitSuccess : kExitFailure;
}

int runStorm(const Options& options) {
    const bool isOne = options.storm->first == options.storm->last;
    const bool isHere = isOne && (options.verdicts >= 0 || options.shrink || options.printsStorm);
    if (!isHere) {
        return runStorms(options);
    }
    const Script script = stormOf(options.storm->first, options.length, homeOf(options.stage));
    if (options.printsStorm) {
        fmt::print("{}\n", fmt::join(script, "\n"));
        return kExitSuccess;
    }
    return options.shrink ? shrinkScript(options, script)
                          : tell(options, runSession(options.stage, script, options.faults, true));
}

int run(Options options) {
    if (options.log) {
        homeloom::desktop::log::toStderr(*options.log);
    }
    if (options.storm) {
        return runStorm(options);
    }
    if (options.script.empty()) {
        options.script = findShared("sweep/standard.script");
    }
    const Script script = readScript(options.script);
    if (options.shrink) {
        return shrinkScript(options, script);
    }
    if (options.isOneRun) {
        return tell(options, runSession(options.stage, script, options.faults, options.commandsMayFail));
    }
    if (!options.unloadAt.empty()) {
        bool isClean = true;
        unloadAt(options.stage, script, options.unloadAt,
                 [&](const Verdict& verdict) { isClean = tell(options, verdict) == kExitSuccess && isClean; });
        return isClean ? kExitSuccess : kExitFailure;
    }
    return options.unload > 0 ? sweepMoments(options) : sweepFaults(options);
}

}  // namespace

int main(int argc, char** argv) {
    // The texts of a home are UTF-8.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const auto parsed = parseOptions(argc, argv);
    if (const int* const status = std::get_if<int>(&parsed)) {
        return *status;
    }
    try {
        return run(std::get<Options>(parsed));
    } catch (const std::exception& e) {
        fmt::print(stderr, "homeloom-sweep: {}\n", e.what());
        return kExitUsage;
    }
}

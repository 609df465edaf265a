#include "Sweep.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include <fmt/format.h>

#include "Outcome.h"
#include "Plan.h"
#include "Runner.h"

namespace homeloom::sweep {

namespace {

Arguments argumentsFor(const Options& options, const std::vector<std::string>& more) {
    Arguments arguments = commonArguments(options);
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

std::string commandOf(const Arguments& arguments) {
    std::string command = "homeloom-sweep";
    for (const std::string& word : arguments) {
        const bool isPlain = word.find_first_of(" '\"$&|;<>(){}[]*?") == std::string::npos;
        command += isPlain ? " " + word : " '" + word + "'";
    }
    return command;
}

// The run as it is, from which the places come. Throws if that alone fails.
Verdict runOnce(const Options& options, const Runner& runner) {
    Verdict verdict;
    const Arguments arguments = argumentsFor(options, {"--once"});
    runner.run({arguments}, [&](std::size_t, const Ending& ending) { verdict = runner.judge(ending); });
    if (!verdict.isClean()) {
        std::string text = "the script fails although nothing goes wrong:";
        for (const Problem& problem : verdict.problems) {
            text += fmt::format("\n    {}: {}", nameOf(problem.judge), problem.text);
        }
        throw std::runtime_error(text + "\n    again: " + commandOf(arguments));
    }
    return verdict;
}

std::vector<Place> choosePlaces(const Options& options, const Verdict& verdict) {
    std::vector<Place> places = planOf(verdict.census, options.depth, options.only);
    if (!options.quarter.empty()) {
        const int quarter = quarterOf(options.quarter);
        const std::size_t all = places.size();
        places = placesIn(quarter, places);
        fmt::print("Quarter {} of 4, chosen by {}: {} of {} places.\n", quarter, options.quarter, places.size(), all);
    }
    return places;
}

/// One line that tells how far it is, where somebody looks on.
class Progress {
public:
    explicit Progress(std::size_t all) : _all(all) {}
    ~Progress() {
        if (_isShown) {
            fmt::print(stderr, "\r\033[K");
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void step(bool failed) {
        ++_done;
        _failed += failed ? 1 : 0;
        if (_isShown) {
            fmt::print(stderr, "\r{} of {} runs, {} failed", _done, _all, _failed);
        }
    }

private:
    const std::size_t _all;
    const bool _isShown = isatty(STDERR_FILENO) != 0;
    std::size_t _done = 0;
    std::size_t _failed = 0;
};

std::vector<Outcome> runAll(const Options& options, const Runner& runner, const std::vector<Place>& places) {
    std::vector<Arguments> processes;
    for (const Place& place : places) {
        processes.push_back(argumentsFor(options, {"--at", place.text()}));
    }
    std::vector<Outcome> outcomes(places.size());
    Progress progress(places.size());
    runner.run(processes, [&](std::size_t number, const Ending& ending) {
        outcomes[number] = outcomeOf(places[number], runner.judge(ending));
        outcomes[number].duration = ending.duration;
        outcomes[number].command = commandOf(processes[number]);
        progress.step(!outcomes[number].failures.empty());
    });
    return outcomes;
}

}  // namespace

int sweepFaults(const Options& options) {
    const auto begun = std::chrono::steady_clock::now();
    const Runner runner(options.jobs, options.limit);
    const Verdict verdict = runOnce(options, runner);
    const std::vector<Place> places = choosePlaces(options, verdict);
    if (options.plan) {
        for (const Place& place : places) {
            fmt::print("{}\n", place.text());
        }
        return kExitSuccess;
    }
    std::ofstream junit;
    if (!options.junit.empty()) {
        junit.open(options.junit);
        if (!junit) {
            throw std::runtime_error(options.junit + " can't be written");
        }
    }
    fmt::print("{} calls of {} functions, {} requests; {} runs, {} at a time.\n\n", verdict.calls,
               verdict.census.size(), verdict.requests, places.size(), options.jobs);
    std::fflush(stdout);
    const std::vector<Outcome> outcomes = runAll(options, runner, places);
    junit << junitOf(outcomes);

    const auto failed = std::count_if(outcomes.begin(), outcomes.end(),
                                      [](const Outcome& outcome) { return !outcome.failures.empty(); });
    const std::string exceptions = exceptionsOf(outcomes);
    fmt::print("{}\n", tableOf(outcomes));
    fmt::print("{}", exceptions.empty() ? "" : "Known exceptions (*):\n" + exceptions + "\n");
    fmt::print("{}", failed == 0 ? "" : "Failures:\n" + failuresOf(outcomes) + "\n");
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - begun);
    fmt::print("{} runs in {} s, {} failed.\n", outcomes.size(), seconds.count(), failed);
    return failed == 0 ? kExitSuccess : kExitFailure;
}

}  // namespace homeloom::sweep

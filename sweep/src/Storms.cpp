#include "Storms.h"

#include <glib.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Runner.h"

namespace homeloom::sweep {

namespace {

// What fails by chance is tried so often before it counts as well.
constexpr std::size_t kTries = 4;

/// A file that goes with this.
class ScriptFile {
public:
    explicit ScriptFile(const Script& script) {
        gchar* name = nullptr;
        const int file = g_file_open_tmp("homeloom-sweep-XXXXXX", &name, nullptr);
        if (file < 0) {
            throw std::runtime_error("no file for a script");
        }
        close(file);
        _name = name;
        g_free(name);
        std::ofstream stream(_name);
        for (const std::string& line : script) {
            stream << line << '\n';
        }
    }
    ~ScriptFile() { unlink(_name.c_str()); }
    ScriptFile(const ScriptFile&) = delete;
    ScriptFile& operator=(const ScriptFile&) = delete;

    const std::string& name() const { return _name; }

private:
    std::string _name;
};

// What is the same when a shorter script fails in the same way: who found what, without how it differs.
std::string kindOf(const Problem& problem) {
    return fmt::format("{}: {}", nameOf(problem.judge), problem.text.substr(0, problem.text.find_first_of(":;")));
}

/// Runs scripts, and remembers what the last one that failed failed by.
class Trial {
public:
    explicit Trial(const Options& options) : _options(options), _runner(options.jobs, options.limit) {}

    /// In the way in which the first one failed.
    bool fails(const Script& script) {
        const ScriptFile file(script);
        Options options = _options;
        options.script = file.name();
        Arguments arguments = commonArguments(options);
        arguments.insert(arguments.end(), {"--once", "--may-fail"});
        for (const Place& place : options.faults) {
            arguments.insert(arguments.end(), {"--at", place.text()});
        }
        bool failed = false;
        _runner.run(std::vector<Arguments>(kTries, arguments), [&](std::size_t, const Ending& ending) {
            const Verdict verdict = _runner.judge(ending);
            if (!verdict.isClean() && isAlike(verdict.problems)) {
                failed = true;
                problems = verdict.problems;
            }
        });
        return failed;
    }

    std::vector<Problem> problems;

private:
    bool isAlike(const std::vector<Problem>& others) const {
        return problems.empty() || std::any_of(others.begin(), others.end(), [this](const Problem& other) {
                   return kindOf(other) == kindOf(problems.front());
               });
    }

    const Options& _options;
    const Runner _runner;
};

Script without(const Script& script, std::size_t from, std::size_t count) {
    Script rest(script.begin(), script.begin() + static_cast<std::ptrdiff_t>(from));
    const std::size_t end = std::min(from + count, script.size());
    rest.insert(rest.end(), script.begin() + static_cast<std::ptrdiff_t>(end), script.end());
    return rest;
}

void printProblems(const std::vector<Problem>& problems) {
    for (const Problem& problem : problems) {
        fmt::print("    {}: {}\n", nameOf(problem.judge), problem.text);
    }
}

}  // namespace

int shrinkScript(const Options& options, const Script& script) {
    Trial trial(options);
    if (!trial.fails(script)) {
        fmt::print("It does not fail.\n");
        return kExitSuccess;
    }
    Script shortest = script;
    for (std::size_t part = shortest.size() / 2; part > 0;) {
        bool shrank = false;
        for (std::size_t from = 0; from < shortest.size();) {
            const Script candidate = without(shortest, from, part);
            if (!candidate.empty() && trial.fails(candidate)) {
                shortest = candidate;
                shrank = true;
            } else {
                from += part;
            }
        }
        // Single lines are tried until none can go.
        part = part == 1 && shrank ? 1 : part / 2;
    }
    fmt::print("# The shortest script that still fails, {} of {} commands:\n", shortest.size(), script.size());
    for (const Problem& problem : trial.problems) {
        fmt::print("#     {}: {}\n", nameOf(problem.judge), problem.text);
    }
    fmt::print("{}\n", fmt::join(shortest, "\n"));
    return kExitFailure;
}

int runStorms(const Options& options) {
    const auto begun = std::chrono::steady_clock::now();
    const Runner runner(options.jobs, options.limit);
    std::vector<Arguments> processes;
    std::vector<std::uint64_t> seeds;
    for (std::uint64_t seed = options.storm->first; seed <= options.storm->last; ++seed) {
        Arguments arguments = commonArguments(options);
        arguments.insert(arguments.end(),
                         {"--storm", std::to_string(seed), "--length", std::to_string(options.length)});
        processes.push_back(arguments);
        seeds.push_back(seed);
    }
    std::vector<std::uint64_t> failed;
    runner.run(processes, [&](std::size_t number, const Ending& ending) {
        const Verdict verdict = runner.judge(ending);
        if (!verdict.isClean()) {
            failed.push_back(seeds[number]);
            fmt::print("storm {}\n", seeds[number]);
            printProblems(verdict.problems);
            fmt::print("    again: homeloom-sweep {}\n", fmt::join(processes[number], " "));
            std::fflush(stdout);
        }
    });
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - begun);
    fmt::print("{} storms of {} commands in {} s, {} failed.\n", seeds.size(), options.length, seconds.count(),
               failed.size());
    return failed.empty() ? kExitSuccess : kExitFailure;
}

}  // namespace homeloom::sweep

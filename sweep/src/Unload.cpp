#include "Unload.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include <desktop/Guard.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <simulator/Agent.h>

#include "Census.h"
#include "CommandError.h"
#include "Desk.h"
#include "HomeDifference.h"
#include "JsonOutput.h"
#include "Runner.h"

namespace homeloom::sweep {

namespace {

// So many in one process: few enough that one which crashes is soon found.
constexpr std::size_t kMomentsOfAProcess = 20;

void play(tv::Desk& desk, const Script& script) {
    try {
        settleStart(desk);
    } catch (const tv::CommandError&) {
        return;
    }
    for (const std::string& line : script) {
        if (desk.hasQuit()) {
            return;
        }
        try {
            runScriptLine(desk, line);
        } catch (const tv::CommandError&) {
            // The plug-in went away in the middle of it.
        }
    }
}

std::string freshHome(Stage& stage, std::vector<std::string>& left) {
    std::string home;
    stage.restore();
    left = stage.perform([&](tv::Desk& desk) {
        settleStart(desk);
        home = tv::jsonLine(desk.home());
    });
    return home;
}

Verdict judgeMoment(Stage& stage, const Script& script, int call, const std::string& expected) {
    Verdict verdict;
    const auto add = [&](Judge judge, const std::vector<std::string>& texts, const char* when) {
        for (const std::string& text : texts) {
            verdict.problems.push_back({judge, when + text});
        }
    };
    stage.restore();
    {
        const CallCounter counter([&](int count) {
            if (count == call) {
                stage.interrupt();
            }
        });
        add(Judge::Leftovers, stage.perform([&](tv::Desk& desk) { play(desk, script); }), "");
    }
    std::vector<std::string> left;
    const std::string home = freshHome(stage, left);
    add(Judge::Leftovers, left, "after the next loading: ");
    add(Judge::Healing, differences(home, expected), "after the next loading: ");
    return verdict;
}

}  // namespace

void unloadAt(const StageOptions& options, const Script& script, const std::vector<int>& calls,
              const std::function<void(const Verdict&)>& judged) {
    Stage stage(options);
    std::vector<std::string> left;
    const std::string home = freshHome(stage, left);
    for (const int call : calls) {
        judged(judgeMoment(stage, script, call, home));
    }
}

int sweepMoments(const Options& options) {
    const auto begun = std::chrono::steady_clock::now();
    const Runner runner(options.jobs, options.limit * static_cast<int>(kMomentsOfAProcess));
    Verdict whole;
    Arguments once = commonArguments(options);
    once.push_back("--once");
    runner.run({once}, [&](std::size_t, const Ending& ending) { whole = runner.judge(ending); });
    if (whole.calls == 0) {
        throw std::runtime_error("the script does not run to its end");
    }

    std::vector<std::vector<int>> moments;
    std::vector<Arguments> processes;
    for (int i = 0; i < options.unload; ++i) {
        if (i % static_cast<int>(kMomentsOfAProcess) == 0) {
            moments.emplace_back();
            processes.push_back(commonArguments(options));
        }
        const int call = 1 + static_cast<int>(std::int64_t{whole.calls - 1} * i / std::max(1, options.unload - 1));
        moments.back().push_back(call);
        processes.back().insert(processes.back().end(), {"--unload-at", std::to_string(call)});
    }
    fmt::print("{} calls; {} moments, {} at a time.\n", whole.calls, options.unload, options.jobs);
    int failed = 0;
    runner.run(processes, [&](std::size_t number, const Ending& ending) {
        for (std::size_t i = 0; i < moments[number].size(); ++i) {
            Verdict verdict;
            if (i < ending.verdicts.size()) {
                verdict = Verdict::fromJson(ending.verdicts[i]);
            }
            // The one after the last verdict is where the process ended.
            const bool isLast = i == ending.verdicts.size() || i + 1 == moments[number].size();
            if (isLast) {
                const Verdict ended = runner.judge(ending);
                verdict.problems.insert(verdict.problems.end(), ended.problems.begin(), ended.problems.end());
            }
            if (!verdict.isClean()) {
                ++failed;
                fmt::print("call {}\n", moments[number][i]);
                for (const Problem& problem : verdict.problems) {
                    fmt::print("    {}: {}\n", nameOf(problem.judge), problem.text);
                }
                Arguments again = commonArguments(options);
                again.insert(again.end(), {"--unload-at", std::to_string(moments[number][i])});
                fmt::print("    again: homeloom-sweep {}\n", fmt::join(again, " "));
            }
            if (i >= ending.verdicts.size()) {
                fmt::print("{} moments behind it were not reached.\n", moments[number].size() - i - 1);
                break;
            }
        }
    });
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - begun);
    fmt::print("{} moments in {} s, {} failed.\n", options.unload, seconds.count(), failed);
    return failed == 0 ? kExitSuccess : kExitFailure;
}

}  // namespace homeloom::sweep

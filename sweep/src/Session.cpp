#include "Session.h"

#include <algorithm>

#include <clock/Clock.h>
#include <clock/Turner.h>
#include <desktop/Guard.h>
#include <desktop/Web.h>
#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/HubApp.h>

#include "Census.h"
#include "CommandError.h"
#include "Desk.h"
#include "Exceptions.h"
#include "HomeDifference.h"
#include "JsonOutput.h"
#include "RequestLog.h"

namespace homeloom::sweep {

namespace {

// The longest limit, with the late answer behind it.
constexpr std::chrono::seconds kLongestLimit{32};
// More often than that nobody tries again; and no try waits longer.
constexpr int kMostTries = 15;
constexpr std::chrono::minutes kLongestPause{11};
constexpr std::chrono::milliseconds kStep{100};
constexpr int kMostWaits = 60;  // one behind the other
constexpr std::chrono::seconds kSettleLimit{30};

void addAll(std::vector<Problem>& problems, Judge judge, const std::vector<std::string>& texts) {
    for (const std::string& text : texts) {
        problems.push_back({judge, text});
    }
}

class Session {
public:
    /// `isStorm`: sessions end in the middle of everything, and commands may fail.
    Session(const StageOptions& options, const Script& script, const std::vector<Place>& faults, bool isStorm)
        : _stage(options),
          _script(script),
          _faults(faults),
          _isStorm(isStorm),
          _isUndisturbed(faults.empty() && !isStorm) {}

    Verdict run() {
        {
            // Faults may hit from the first call on.
            const CallCounter calls;
            RequestLog requests;
            for (const Place& fault : _faults) {
                arm(fault);
            }
            const auto play = [&](tv::Desk& desk) { playScript(desk, calls, requests); };
            judgeUnloading([&] { return _stage.perform(play); });
        }
        const int threads = threadCount();
        judgeUnloading([&] {
            return _stage.perform([&](tv::Desk& desk) {
                settleStart(desk);
                _verdict.home = tv::jsonLine(desk.home());
            });
        });
        if (threadCount() > threads) {
            add(Judge::Leftovers, fmt::format("{} more threads after another unloading", threadCount() - threads));
        }
        addAll(_verdict.problems, Judge::Exception, desktop::pluginExceptions());
        addAll(_verdict.problems, Judge::Exception, simulator::Agent::instance().escapedExceptions());
        addAll(_verdict.problems, Judge::Healing, differences(_afterScan, _verdict.home));
        addAll(_verdict.problems, Judge::Recovery, differences(_afterSignIn, _verdict.home));
        return _verdict;
    }

private:
    void add(Judge judge, const std::string& text) { _verdict.problems.push_back({judge, text}); }

    // Exceptions are told once, at the end.
    template <typename Perform>
    void judgeUnloading(const Perform& perform) {
        for (const std::string& thing : perform()) {
            if (thing.find("exception") == std::string::npos) {
                add(Judge::Leftovers, thing);
            }
        }
    }

    void playScript(tv::Desk& desk, const CallCounter& calls, RequestLog& requests) {
        settleStart(desk);
        for (const std::string& line : _script) {
            if (!_isStorm && endsSession(line) && requests.areOpen()) {
                passTime(desk);
                // Whoever is held inside a call, and all behind it, can't answer.
                if (!isOwed() && !simulator::Agent::instance().keepsCallers()) {
                    requests.closeOpen();
                }
            }
            runLine(desk, line);
            requests.look();
        }
        _verdict.census = calls.census();
        _verdict.calls = calls.count();
        _verdict.requests = requests.count();
        disarmAll();
        passTime(desk);
        runLine(desk, "scan");
        const std::vector<Problem> answers = requests.judge();
        _verdict.problems.insert(_verdict.problems.end(), answers.begin(), answers.end());
        _afterScan = tv::jsonLine(desk.home());
        runLine(desk, "sim sign-out");
        runLine(desk, "sim sign-in");
        passTime(desk);
        runLine(desk, "scan");
        _afterSignIn = tv::jsonLine(desk.home());
    }

    // After this, whatever a fault has kept waiting has come or is given up, retries included. A pause between two
    // tries is one leap: in its own steps it would take most of a run's time, for the threads that wake every half
    // second.
    static void passTime(tv::Desk& desk) {
        if (isOwed()) {
            desk.watch(kLongestLimit);
        }
        for (int i = 0; i < kMostTries; ++i) {
            {
                const clock::Turner::Pause pause;
                clock::advance(kLongestPause);
            }
            desk.settle(kSettleLimit);
            for (int waits = 0; isCounting() && waits < kMostWaits; ++waits) {
                desk.watch(kLongestLimit);
            }
        }
    }

    // Who waits for the agent counts its steps up to the limit, and a leap is one of them. The steps are shorter than
    // what all others wait for, and after a leap all have begun anew.
    static bool isCounting() { return clock::nextDeadline() - clock::now() <= kStep; }

    static bool endsSession(const std::string& line) { return line == "sim sign-out" || line == "sim update start"; }

    static bool isOwed() {
        return simulator::Agent::instance().isOwing() || desktop::web::requestsUnderWay() > 0 ||
               simulator::HubApp::instance().isOwing();
    }

    // That a command fails where something goes wrong is as it should be.
    void runLine(tv::Desk& desk, const std::string& line) {
        try {
            runScriptLine(desk, line);
        } catch (const tv::CommandError& e) {
            if (_isUndisturbed) {
                add(Judge::Commands, fmt::format("\"{}\": {}", line, e.what()));
            }
        }
    }

    Stage _stage;
    const Script& _script;
    const std::vector<Place>& _faults;
    const bool _isStorm;
    const bool _isUndisturbed;
    Verdict _verdict;
    // The settled home as it has healed.
    std::string _afterScan;
    std::string _afterSignIn;
};

}  // namespace

Verdict runSession(const StageOptions& options, const Script& script, const std::vector<Place>& faults,
                   bool commandsMayFail) {
    Verdict verdict = Session(options, script, faults, commandsMayFail).run();
    if (commandsMayFail) {
        // The script brings faults of its own.
        auto& problems = verdict.problems;
        problems.erase(std::remove_if(problems.begin(), problems.end(), isMeantSomewhere), problems.end());
    }
    return verdict;
}

}  // namespace homeloom::sweep

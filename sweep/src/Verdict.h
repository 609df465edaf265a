#ifndef HOMELOOM_SWEEP_VERDICT_H
#define HOMELOOM_SWEEP_VERDICT_H

#include <string>
#include <vector>

#include "Census.h"

namespace homeloom::sweep {

/// Who found fault with a run.
enum class Judge {
    Crash,      // the process ended by itself, or a sanitizer had something to say
    Time,       // something did not come to its end
    Exception,  // an exception got out of the plug-in
    Leftovers,  // something was left after unloading
    Answers,    // a request that should be answered was not, or one that shouldn't was, or twice
    Healing,    // after a scan the home was not what a freshly loaded plug-in shows
    Recovery,   // nor after the user had signed out and in again
    Commands    // the script failed although nothing went wrong
};
const char* nameOf(Judge judge);

struct Problem {
    Judge judge = Judge::Crash;
    std::string text;
};

struct Verdict {
    std::vector<Problem> problems;
    Census census;  // of the script alone
    int calls = 0;  // to agent and desk until the first unloading
    int requests = 0;
    std::string home;  // the settled home of the fresh plug-in

    bool isClean() const { return problems.empty(); }
    /// One line, for the process that asked for the run.
    std::string toJson() const;
    /// Throws std::runtime_error for a text that is none.
    static Verdict fromJson(const std::string& line);
};

}  // namespace homeloom::sweep

#endif

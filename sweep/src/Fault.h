#ifndef HOMELOOM_SWEEP_FAULT_H
#define HOMELOOM_SWEEP_FAULT_H

#include <string>
#include <vector>

namespace homeloom::sweep {

/// What goes wrong with a call of agent, cloud, hub control application, settings or framework.
enum class FaultKind {
    Fails,      // the call fails at once
    Error,      // the answer is an error
    Late,       // the answer comes behind every limit
    Never,      // no answer comes
    Twice,      // the answer comes twice
    Malformed,  // the answer is a text that nobody can read
    Null,       // the answer is a success, with null for its text or its list
    Miscount    // the answer tells of more than it brings
};

const std::vector<FaultKind>& allFaultKinds();
const char* nameOf(FaultKind kind);

/// Whose function it is decides how a fault is made. Names need no more than themselves: the agent's and the desk's are
/// C functions, "cloud." stands before endpoints and "hub." before what the hub control application is asked for.
enum class Party { Agent, Desk, Cloud, Hub };
/// Throws std::invalid_argument for a name that is no function of any of them.
Party partyOf(const std::string& function);

/// One call of a function, or all of them, and what goes wrong there: "homeloom_client_connect#1=never", or "#all".
struct Place {
    std::string function;
    int number = 0;  // counted from 1; 0: all calls
    FaultKind kind = FaultKind::Fails;

    std::string text() const;
    /// Throws std::invalid_argument for what is no place.
    static Place parse(const std::string& text);
};

/// The fault is there from now on. Calls are counted from now on.
void arm(const Place& place);
/// Nothing goes wrong any more, and those who waited go on.
void disarmAll();

}  // namespace homeloom::sweep

#endif

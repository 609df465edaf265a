#ifndef HOMELOOM_TV_AGENT_AGENTTAPE_H
#define HOMELOOM_TV_AGENT_AGENTTAPE_H

#include <chrono>
#include <string>
#include <vector>

#include <boost/json/array.hpp>

namespace homeloom::tv {

/// What libhomeloom-agent-recorder.so wrote down, in memory.
struct AgentTape {
    using Time = std::chrono::microseconds;

    struct Callback {
        std::size_t line = 0;
        Time at{};
        std::size_t call = 0;  // that gave it to the agent, as index
        std::size_t gate = 0;  // of an event: the last call before it that changed something
        boost::json::array in;
    };
    struct Call {
        std::size_t line = 0;
        Time at{};
        Time duration{};
        std::string function;
        std::string key;        // function and arguments
        bool isActing = false;  // changes something, and does not only ask
        bool isRegistration = false;
        bool isAnswered = false;  // false where the tape ends within the call
        int code = 0;
        boost::json::array out;  // empty if nothing was handed out
        std::vector<Callback> replies;
    };

    bool hasNames = false;
    std::vector<Call> calls;
    std::vector<Callback> events;
};

/// Throws std::runtime_error with file, line and reason for what is none.
AgentTape readAgentTape(const std::string& file);

/// A call as one text, so that calls can be compared: `in` is the JSON array of its arguments. What was blanked out
/// compares as equal.
std::string agentCallKey(const std::string& function, const std::string& in, bool hasNames);

/// Whether a function only ends what another began. It does so whether the tape has the call or not: a tape may end
/// before the plug-in does.
bool endsSomething(const std::string& function);

/// The access token that the tape's agent gave out; empty if it gave none.
std::string accessTokenOf(const AgentTape& tape);

/// What is going on between the plug-in and a tape that is played. Nothing if none is.
struct AgentTapeState {
    int records = 0;                      // that were handed out and not destroyed
    std::vector<std::string> exceptions;  // that callbacks let through
    std::vector<std::string> missing;     // calls that the tape doesn't have
    std::size_t calls = 0;                // of the tape that change something
    std::size_t madeCalls = 0;            // of these, those that the plug-in made
    std::size_t openEvents = 0;           // that have not come
    std::string waitsFor;                 // the call that the next event waits for; empty: none
};

/// From now on the agent's functions are answered from the tape. To be called before the plug-in is loaded.
void playAgentTape(const AgentTape& tape);
/// Whether a reply is still to come.
bool isAgentTapeOwing();
AgentTapeState agentTapeState();

}  // namespace homeloom::tv

#endif

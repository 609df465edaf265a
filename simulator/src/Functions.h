#ifndef HOMELOOM_SIMULATOR_FUNCTIONS_H
#define HOMELOOM_SIMULATOR_FUNCTIONS_H

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "simulator/Agent.h"
#include "simulator/Fault.h"

namespace simulator {

/// A fault that hit a call.
struct Hit : Fault {
    int clearings = 0;  // of the function, when it hit
};

/// One C function of the simulated parties: its calls, and the fault that it was given.
class Function {
public:
    explicit Function(std::string name);

    const std::string& name() const { return _name; }

    /// Counts a call and gives the fault that hits it.
    std::optional<Hit> enter(std::vector<std::string> arguments = {});
    /// Keeps the caller of a function that has no callback waiting, as Late or Never say.
    void hold(const Hit& hit);
    /// Both, for a function without a callback. A fault with a code ends the call.
    std::optional<Hit> enterHeld(std::vector<std::string> arguments = {});
    /// The same, for one that answers nothing but its code: gives the code with which the call ends, or 0 for one that
    /// goes on.
    int enterAndHold(std::vector<std::string> arguments = {});

    void setFault(const Fault& fault);
    void clearFault();
    std::optional<Fault> fault() const;

    /// What the function is like, told by those who serve it.
    enum Trait : unsigned { HasCallback = 1, AnswersText = 2, AnswersList = 4 };
    void mark(Trait trait) { _traits.fetch_or(trait, std::memory_order_relaxed); }

    int callCount() const { return _calls; }
    /// Callers that a fault keeps waiting for a while.
    int lateCallers() const { return _lateCallers; }
    /// Callers that a fault keeps waiting until it is cleared.
    int stuckCallers() const { return _stuckCallers; }
    Agent::Calls calls() const;
    void resetCalls();

private:
    std::optional<Hit> takeFault();

    const std::string _name;
    std::atomic<int> _calls{0};
    std::atomic<int> _lateCallers{0};
    std::atomic<int> _stuckCallers{0};
    std::atomic<unsigned> _traits{0};
    std::atomic<bool> _isFaulty{false};
    mutable std::mutex _mutex;
    std::condition_variable _released;
    std::vector<std::string> _arguments;
    std::optional<Fault> _fault;
    int _clearings = 0;
};

/// By its name; throws std::invalid_argument for any other.
Function& functionNamed(const std::string& name);
/// All of them, by name.
std::map<std::string, Function>& allFunctions();

using CallObserver = Agent::CallObserver;
int addCallObserver(CallObserver observer);
void removeCallObserver(int number);

}  // namespace simulator

#endif

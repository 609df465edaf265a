#ifndef HOMELOOM_SWEEP_CENSUS_H
#define HOMELOOM_SWEEP_CENSUS_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>

#include "Fault.h"

namespace homeloom::sweep {

/// The calls that a session makes to one function, and what can go wrong with them.
struct FunctionCalls {
    int count = 0;
    std::vector<FaultKind> faults;
};
/// By function.
using Census = std::map<std::string, FunctionCalls>;

VMFramework::json::JsonValue toJson(const Census& census);
Census censusFromJson(const VMFramework::json::JsonValue& json);

/// Counts the calls that the plug-in makes while it lives; one at a time.
class CallCounter {
public:
    /// `eachCall` is told how many there were, this one among them, on the thread that makes it; may be empty.
    explicit CallCounter(std::function<void(int count)> eachCall = {});
    ~CallCounter();
    CallCounter(const CallCounter&) = delete;
    CallCounter& operator=(const CallCounter&) = delete;

    Census census() const;
    /// Calls to agent and desk.
    int count() const;

private:
    struct State;
    const std::shared_ptr<State> _state;
};

}  // namespace homeloom::sweep

#endif

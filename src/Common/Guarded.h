#ifndef HOMELOOM_COMMON_GUARDED_H
#define HOMELOOM_COMMON_GUARDED_H

#include <exception>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

// The catch shell. The log names the function and line that put the shell there. Anything that is no std::exception
// passes.

/// Runs the function and logs what it throws.
template <typename Function>
void Guarded(const Function& function, const Log::Place& caller = HL_CALLER) {
    try {
        function();
    } catch (const std::exception& e) {
        Log::WriteException(caller, e);
    }
}

/// The function's result, or the other one if it throws, which is logged.
template <typename Result, typename Function>
Result GuardedOr(Result otherwise, const Function& function, const Log::Place& caller = HL_CALLER) {
    try {
        return function();
    } catch (const std::exception& e) {
        Log::WriteException(caller, e);
        return otherwise;
    }
}

/// The function's result. What it throws is logged and thrown on.
template <typename Function>
auto LogThrown(const Function& function, const Log::Place& caller = HL_CALLER) -> decltype(function()) {
    try {
        return function();
    } catch (const std::exception& e) {
        Log::WriteException(caller, e);
        throw;
    }
}

}  // namespace VMFramework::HomeLoom

#endif

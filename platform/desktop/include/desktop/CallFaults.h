#ifndef HOMELOOM_DESKTOP_CALLFAULTS_H
#define HOMELOOM_DESKTOP_CALLFAULTS_H

#include <string>
#include <vector>

namespace homeloom::desktop {

/// Makes calls of the framework's functions (vmf_*.h) and of app_control.h's fail, by name.
///
///     failCalls("vmf_service_handler_create", VMF_ERROR_FAILED);         // null
///     failCalls("vmf_service_handler_notify", -5, {2});                    // the third and all that follow
///     failCalls("vmf_property_list_create", VMF_ERROR_FAILED, firstCalls(1));
///
/// A function that fails does nothing. It returns the code, or hands it out through its error argument; functions that
/// return something else give null, false or 0.
struct CallRange {
    int skip = 0;    // calls that pass first
    int times = -1;  // calls that fail then; -1: all

    /// Counts a call: whether it is to fail.
    bool take();
};
inline CallRange firstCalls(int count) {
    return {0, count};
}

/// Throws std::invalid_argument for a name that is no such function, and for code 0. Replaces what was set for it.
void failCalls(const std::string& function, int code, CallRange range = {});
void passCalls();

/// The names of all functions that can be made to fail, sorted.
const std::vector<std::string>& failableFunctions();

}  // namespace homeloom::desktop

#endif

#ifndef HOMELOOM_DESKTOP_CALLFAULTS_H
#define HOMELOOM_DESKTOP_CALLFAULTS_H

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace homeloom::desktop {

/// Watches the calls of the desk's C functions and makes them fail, by name: the framework's (vmf_*.h), those of
/// app_control.h and vconf.h, those of rpc_port.h that can fail by themselves, and the steps of web requests
/// ("KRCurlEasy.send", and "KRCurlEasy." with any other name of web::steps()). All operations are thread-safe.
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
void passCalls(const std::string& function);
/// What was set so and isn't used up, with the codes.
std::map<std::string, int> failingCalls();

/// Told of each call of such a function, on the caller's thread, before anything else happens. Null takes it away.
void setDeskCallObserver(std::function<void(const char* function)> observer);

/// The names of all functions that can be made to fail, sorted.
const std::vector<std::string>& failableFunctions();

}  // namespace homeloom::desktop

#endif

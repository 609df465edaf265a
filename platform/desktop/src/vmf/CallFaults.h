#ifndef HOMELOOM_DESKTOP_VMF_CALLFAULTS_H
#define HOMELOOM_DESKTOP_VMF_CALLFAULTS_H

#include <atomic>

namespace homeloom::desktop {

/// Whether anybody watches calls or lets them fail.
extern std::atomic<bool> callsAreWatched;
int takeFaultOfWatched(const char* function);

/// The code with which this call is to fail, or 0. Each function asks once, with its own name.
inline int takeFault(const char* function) {
    return callsAreWatched.load(std::memory_order_relaxed) ? takeFaultOfWatched(function) : 0;
}

}  // namespace homeloom::desktop

#endif

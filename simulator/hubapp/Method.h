#ifndef HOMELOOM_SIMULATOR_HUBAPP_METHOD_H
#define HOMELOOM_SIMULATOR_HUBAPP_METHOD_H

#include <cstdint>

/// What stands first in each parcel.
enum class Method : std::int32_t {
    Result = 0,
    DelegateEvent = 1,
    StartOnboarding = 2,
    StopOnboarding = 3,
    ResetHub = 4,
    ResetDongle = 5,
    GetHubInfo = 6,
    SetEventCallback = 7,
    CheckHubPpAgreement = 8,
    SetHubPpAgreement = 9
};

/// Null for what is no call.
const char* nameOf(Method method);

/// What an event tells.
enum Event {
    kEventProgress = 0,
    kEventOnboarded = 1,
    kEventOnboardingFailed = 3,
    kEventReset = 4,
    kEventResetFailed = 5,
    kEventInstallStarted = 9,
    kEventDongleChanged = 10
};

/// How an event finds the one whom it is for.
struct Delegate {
    std::int32_t id = 0;
    std::int32_t sequence = 0;
    bool once = false;
};

#endif

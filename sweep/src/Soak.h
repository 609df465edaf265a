#ifndef HOMELOOM_SWEEP_SOAK_H
#define HOMELOOM_SWEEP_SOAK_H

#include "Options.h"

namespace homeloom::sweep {

/// Lets a home live for that many minutes of the machine, by the clock an hour for each 60,000 events: devices move,
/// people sign out and in, the agent is updated, things go wrong. Prints what the process holds, and fails if that is
/// more at the end than after the first hour. Returns the exit status.
int soak(const Options& options);

}  // namespace homeloom::sweep

#endif

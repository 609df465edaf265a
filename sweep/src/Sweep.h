#ifndef HOMELOOM_SWEEP_SWEEP_H
#define HOMELOOM_SWEEP_SWEEP_H

#include "Options.h"

namespace homeloom::sweep {

/// Runs the script with each fault at each place, and prints what came of it. Returns the exit status.
int sweepFaults(const Options& options);

}  // namespace homeloom::sweep

#endif

#ifndef HOMELOOM_SWEEP_SESSION_H
#define HOMELOOM_SWEEP_SESSION_H

#include <vector>

#include "Fault.h"
#include "Script.h"
#include "Stage.h"
#include "Verdict.h"

namespace homeloom::sweep {

/// Runs the script with these faults from the start on, lets the home heal, and judges all of it. Once in a process.
/// That a command fails matters only where nothing is to go wrong, and not even there if `commandsMayFail`.
Verdict runSession(const StageOptions& options, const Script& script, const std::vector<Place>& faults,
                   bool commandsMayFail);

}  // namespace homeloom::sweep

#endif

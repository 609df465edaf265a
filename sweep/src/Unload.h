#ifndef HOMELOOM_SWEEP_UNLOAD_H
#define HOMELOOM_SWEEP_UNLOAD_H

#include <functional>
#include <vector>

#include "Options.h"
#include "Script.h"
#include "Verdict.h"

namespace homeloom::sweep {

/// Runs the script once for each of these calls of the plug-in, unloads it at that call, in whatever it is doing, and
/// loads it again. Tells the verdict about each, in their order.
void unloadAt(const StageOptions& options, const Script& script, const std::vector<int>& calls,
              const std::function<void(const Verdict&)>& judged);

/// The same at `options.unload` equally spread moments, in processes of their own. Returns the exit status.
int sweepMoments(const Options& options);

}  // namespace homeloom::sweep

#endif

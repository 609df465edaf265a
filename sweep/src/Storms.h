#ifndef HOMELOOM_SWEEP_STORMS_H
#define HOMELOOM_SWEEP_STORMS_H

#include "Options.h"
#include "Script.h"

namespace homeloom::sweep {

/// A storm for each seed, each in a process of its own; with --shrink, the shortest script that still fails of each one
/// that does. Returns the exit status.
int runStorms(const Options& options);

/// Prints the shortest script that still fails, made of this one. Returns the exit status: 0 if it doesn't fail.
int shrinkScript(const Options& options, const Script& script);

}  // namespace homeloom::sweep

#endif

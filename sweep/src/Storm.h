#ifndef HOMELOOM_SWEEP_STORM_H
#define HOMELOOM_SWEEP_STORM_H

#include <cstdint>

#include <simulator/Home.h>

#include "Script.h"

namespace homeloom::sweep {

/// A script of valid commands, mixed by chance: what persons, cloud, agent, hub and framework do, faults among them.
/// About half of them are not waited for. At its end everything outside the plug-in is as it should be, so that the
/// home can heal. The same seed, length and home give the same storm on every machine.
Script stormOf(std::uint64_t seed, int length, const simulator::Home& home);

}  // namespace homeloom::sweep

#endif

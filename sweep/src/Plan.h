#ifndef HOMELOOM_SWEEP_PLAN_H
#define HOMELOOM_SWEEP_PLAN_H

#include <string>
#include <vector>

#include "Census.h"
#include "Fault.h"

namespace homeloom::sweep {

/// The places of a session at which something shall go wrong: of each function the first call, some others up to the
/// last, `depth` of them in all (0: each one), and all calls at once; each with every fault that fits the function.
/// `only` leaves out all other functions, if it names any.
std::vector<Place> planOf(const Census& census, int depth, const std::vector<std::string>& only);

/// Which quarter of all places a text chooses, from 1.
int quarterOf(const std::string& text);
/// The places that belong to a quarter. What belongs together depends on nothing but the places' own texts.
std::vector<Place> placesIn(int quarter, const std::vector<Place>& places);

}  // namespace homeloom::sweep

#endif

#ifndef HOMELOOM_SWEEP_OUTCOME_H
#define HOMELOOM_SWEEP_OUTCOME_H

#include <chrono>
#include <string>
#include <vector>

#include "Exceptions.h"
#include "Fault.h"
#include "Verdict.h"

namespace homeloom::sweep {

/// What a run with a fault came to.
struct Outcome {
    Place place;
    std::vector<Problem> failures;                  // that nobody can explain
    std::vector<const KnownException*> exceptions;  // that explained the others
    std::chrono::milliseconds duration{0};
    std::string command;  // repeats it
};

Outcome outcomeOf(const Place& place, const Verdict& verdict);

/// Functions by faults: how many runs, and how many of them failed.
std::string tableOf(const std::vector<Outcome>& outcomes);
/// Each failure with the command that repeats it; "" if there is none.
std::string failuresOf(const std::vector<Outcome>& outcomes);
/// The exceptions that were met, and the places that came out well in spite of one.
std::string exceptionsOf(const std::vector<Outcome>& outcomes);
/// A JUnit document; a test for each place.
std::string junitOf(const std::vector<Outcome>& outcomes);

}  // namespace homeloom::sweep

#endif

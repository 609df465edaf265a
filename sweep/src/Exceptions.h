#ifndef HOMELOOM_SWEEP_EXCEPTIONS_H
#define HOMELOOM_SWEEP_EXCEPTIONS_H

#include <string>
#include <vector>

#include "Fault.h"
#include "Verdict.h"

namespace homeloom::sweep {

/// Where the system is meant to come out of a fault otherwise than unharmed.
struct KnownException {
    std::string function;  // with * and ?, as file names have them
    std::string fault;     // the same, for "NUMBER=FAULT": "all=never"
    Judge judge = Judge::Healing;
    std::string text;  // part of what the judge says; empty: anything
    std::string reason;
};

const std::vector<KnownException>& knownExceptions();

/// Whether the exception is about this place at all.
bool concerns(const KnownException& exception, const Place& place);
/// Whether it explains the problem.
bool explains(const KnownException& exception, const Place& place, const Problem& problem);
/// Whether some fault, wherever it was, is meant to leave that request without its answer.
bool isMeantSomewhere(const Problem& problem);

}  // namespace homeloom::sweep

#endif

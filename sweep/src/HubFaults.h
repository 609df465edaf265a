#ifndef HOMELOOM_SWEEP_HUBFAULTS_H
#define HOMELOOM_SWEEP_HUBFAULTS_H

#include <map>
#include <string>
#include <vector>

#include "Fault.h"

namespace homeloom::sweep {

/// What the hub control application is asked for, and how that goes wrong: for all calls at once.
const std::vector<std::string>& hubFunctionNames();
std::vector<FaultKind> hubFaultsOf(const std::string& function);
void armHub(const Place& place);
void disarmHub();
/// How often it was asked for each of them since it was started; empty if it doesn't run.
std::map<std::string, int> hubCalls();

}  // namespace homeloom::sweep

#endif

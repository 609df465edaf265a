#ifndef HOMELOOM_TESTS_SUPPORT_HOMES_H
#define HOMELOOM_TESTS_SUPPORT_HOMES_H

#include <string>
#include <vector>

#include "simulator/Home.h"

namespace homeloom::test {

/// The home that tests, benchmarks and fuzzers stand in.
simulator::Home apartment();
/// The apartment with no other devices than these.
simulator::Home apartmentWith(const std::vector<std::string>& deviceIds);

}  // namespace homeloom::test

#endif

#ifndef HOMELOOM_SWEEP_HOMEDIFFERENCE_H
#define HOMELOOM_SWEEP_HOMEDIFFERENCE_H

#include <string>
#include <vector>

namespace homeloom::sweep {

/// Where two settled homes differ, a line for each place: "devices washer state_text: Ready, not Running". `actual` and
/// `expected` are the JSON documents.
std::vector<std::string> differences(const std::string& actual, const std::string& expected);

}  // namespace homeloom::sweep

#endif

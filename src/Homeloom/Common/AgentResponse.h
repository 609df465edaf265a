#ifndef HOMELOOM_HOMELOOM_COMMON_AGENTRESPONSE_H
#define HOMELOOM_HOMELOOM_COMMON_AGENTRESPONSE_H

#include <string>

namespace VMFramework::HomeLoom {

/// The word of a platform response that says that it was carried out.
inline constexpr char kResponseSuccess[] = "SUCCESS";

/// The "message" of a platform response; empty, and logged, when it has none.
std::string GetResponseMessage(const std::string& json);

}  // namespace VMFramework::HomeLoom

#endif

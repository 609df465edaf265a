#ifndef HOMELOOM_SIMULATOR_HOMENAMES_H
#define HOMELOOM_SIMULATOR_HOMENAMES_H

#include <utility>

#include "Json.h"
#include "simulator/Home.h"

namespace simulator {

/// The words of a home document for a device's status.
inline constexpr std::pair<const char*, int> kStatusNames[] = {
    {"connected", Connected}, {"disconnected", Disconnected}, {"inactive", Inactive}, {"hidden", Hidden}};

/// The type that a home document takes a property to have whose type it doesn't tell.
const char* typeOf(const json::value& value);

}  // namespace simulator

#endif

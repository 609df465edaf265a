#ifndef HOMELOOM_TV_LOOKUPS_H
#define HOMELOOM_TV_LOOKUPS_H

#include "DeviceNames.h"

namespace simulator {
struct Home;
}

namespace homeloom::tv {

class HomeView;

/// By what people call things in the home that the plug-in shows,
NameLookup deviceLookup(const HomeView& home);
/// and in the one behind the agent, which may hold more.
NameLookup deviceLookup(const simulator::Home& home);
NameLookup roomLookup(const simulator::Home& home);
NameLookup locationLookup(const simulator::Home& home);

}  // namespace homeloom::tv

#endif

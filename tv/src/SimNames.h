#ifndef HOMELOOM_TV_SIMNAMES_H
#define HOMELOOM_TV_SIMNAMES_H

#include <map>
#include <string>
#include <vector>

#include <simulator/Agent.h>

namespace homeloom::tv {

/// The words of the commands for the other side, by which its state is also told.

/// By simulator::DeviceStatus.
const std::vector<std::string>& deviceStatusNames();
const std::map<std::string, simulator::Agent::Connection>& connectionNames();

}  // namespace homeloom::tv

#endif

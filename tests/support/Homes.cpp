#include "support/Homes.h"

#include <algorithm>

#include "simulator/HomeLoader.h"
#include "support/Places.h"

namespace homeloom::test {

simulator::Home apartment() {
    return simulator::loadHome(apartmentFile());
}

simulator::Home apartmentWith(const std::vector<std::string>& deviceIds) {
    simulator::Home home = apartment();
    const auto isUnwanted = [&](const simulator::Device& device) {
        return std::find(deviceIds.begin(), deviceIds.end(), device.id) == deviceIds.end();
    };
    home.devices.erase(std::remove_if(home.devices.begin(), home.devices.end(), isUnwanted), home.devices.end());
    return home;
}

}  // namespace homeloom::test

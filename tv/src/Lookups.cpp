#include "Lookups.h"

#include <simulator/Home.h>

#include "HomeView.h"

namespace homeloom::tv {

NameLookup deviceLookup(const HomeView& home) {
    std::vector<Named> things;
    for (const auto& device : home.devices()) {
        things.push_back({device.id, {device.nick, device.name}});
    }
    return {"device", things};
}

NameLookup deviceLookup(const simulator::Home& home) {
    std::vector<Named> things;
    for (const auto& device : home.devices) {
        things.push_back({device.id, {device.nick, device.name}});
    }
    return {"device", things};
}

NameLookup roomLookup(const simulator::Home& home) {
    std::vector<Named> things;
    for (const auto& location : home.locations) {
        for (const auto& room : location.rooms) {
            things.push_back({room.id, {room.name}});
        }
    }
    return {"room", things};
}

NameLookup locationLookup(const simulator::Home& home) {
    std::vector<Named> things;
    for (const auto& location : home.locations) {
        things.push_back({location.id, {location.name}});
    }
    return {"location", things};
}

}  // namespace homeloom::tv

// What the plug-in keeps in memory for each device of a home of ten thousand. The floor is what the agent told of a
// device: the texts alone, without anything around them.
#include <cstdio>
#include <string>

#include <desktop/Framework.h>
#include <simulator/Agent.h>
#include <simulator/HomeLoader.h>

#include "support/Desk.h"
#include "support/Figures.h"
#include "support/Heap.h"

namespace framework = homeloom::desktop::framework;

namespace {

constexpr int kDevices = 10000;

std::size_t lengthOfTexts(const simulator::Device& device) {
    std::size_t length = device.id.size() + device.name.size() + device.nick.size() + device.prefix.size() +
                         device.vid.size() + device.location.size() + device.room.size();
    for (const std::string& type : device.types) {
        length += type.size();
    }
    for (const simulator::Resource& resource : device.resources) {
        length += resource.uri.size();
        for (const simulator::Property& property : resource.properties) {
            length += property.name.size() + property.type.size() + property.value.size();
        }
    }
    return length;
}

std::string bytes(double count) {
    char text[32];
    std::snprintf(text, sizeof text, "%.0f bytes", count);
    return text;
}

}  // namespace

int main() {
    const simulator::Home home = simulator::generateHome(kDevices);
    double texts = 0;
    for (const simulator::Device& device : home.devices) {
        texts += static_cast<double>(lengthOfTexts(device));
    }
    texts /= kDevices;

    bench::Desk desk(home);
    desk.show();
    framework::keepReports(0);
    const double whole = bench::heapAtRest();
    double agents = 0;
    {
        // The simulated agent keeps the subscriptions' texts; a copy of them is as large.
        const auto subscriptions = simulator::Agent::instance().subscriptions();
        agents = bench::heapInUse() - whole;
    }
    desk.close();
    const double perDevice = (whole - agents - bench::heapAtRest()) / kDevices;
    bench::print({"heap for each of 10,000 devices", bytes(perDevice), "the texts that the agent told of it",
                  bytes(texts), perDevice / texts, "", true});
    return bench::exitStatus();
}

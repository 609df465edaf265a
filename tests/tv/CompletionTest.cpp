#include <gtest/gtest.h>

#include <simulator/Agent.h>

#include "Completion.h"
#include "HomeView.h"

using namespace homeloom::tv;

namespace {

TEST(Completion, FitsThePlaceInTheLine) {
    Report list;
    list.kind = Report::Kind::DeviceList;
    for (const char* const id : {"washer", "washer-2", "dryer"}) {
        EndpointRecord device;
        device.deviceId = id;
        device.deviceType = "homeloom-device";
        list.endpoints.push_back(device);
    }
    HomeView home;
    home.apply(list);
    simulator::Home simulated;
    simulated.models["HL-WASHER"];
    simulator::Agent::instance().load(simulated);
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"dev", {"device", "devices"}},
        {"do ", {"dryer", "washer", "washer-2"}},
        {"do wa", {"washer", "washer-2"}},
        {"do washer ", {}},
        {"sim upd", {"update"}},
        {"sim update ", {"end", "start"}},
        {"sim h", {"hub"}},
        {"sim cloud c", {"chunks", "clear", "cut"}},
        {"sim cloud cut fi", {"file_links", "files"}},
        {"sim status dryer hi", {"hidden"}},
        {"request hl_do", {"hl_do_main_action"}},
        {"request hl_do_main_action d", {"device_id="}},
        {"sim fail homeloom_client_conn", {"homeloom_client_connect"}},
        {"sim add device new HL-W", {"HL-WASHER"}},
        {"sim add room home HL-W", {}},
        {"dance ", {}},
        {"do \"wa", {}},
    };
    for (const auto& [line, words] : cases) {
        EXPECT_EQ(completions(line, home), words) << line;
    }
}

}  // namespace

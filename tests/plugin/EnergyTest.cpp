// Energy: consumption at once, saving mode later, and whatever the agent says.

#include <functional>
#include <future>
#include <string>
#include <vector>

#include <VMFramework/JsonValue.h>
#include <gmock/gmock.h>

#include "simulator/Fault.h"
#include "simulator/ServiceManager.h"
#include "support/Desk.h"
#include "support/Screen.h"

using simulator::Fault;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using VMFramework::json::JsonValue;

namespace {

constexpr char kStatus[] = "homeloom_core_get_device_status";
constexpr char kUpdated[] = "hl_energy_info_updated";

class EnergyRequest : public testing::Test {
protected:
    EnergyRequest() {
        desk.startAndShow();
        desk.settle();
        desk.mark();
    }

    Desk::ReportPtr Ask() { return desk.ask("hl_get_energy_info", {{"installed_app_id", "installed-energy"}}); }

    /// "DEVICE CONSUMPTION SAVING" of each device.
    static std::vector<std::string> DevicesOf(const Desk::Report& report) {
        const auto json = JsonValue::Create(report.properties.text("installed_service_app_info_json"));
        EXPECT_EQ(JsonValue(json["installedAppId"]).asString(), "installed-energy");
        const JsonValue info = json["energyInfoJson"];
        EXPECT_TRUE(info.isArray());
        std::vector<std::string> devices;
        for (std::size_t i = 0; i < info.size(); ++i) {
            const JsonValue device = info[i];
            devices.push_back(device["device_id"].asString() + " " + device["consumed_energy"].asString() + " " +
                              device["energy_saving_mode"].asString());
        }
        return devices;
    }

    /// Runs the function while the second stage waits for a device, and lets that answer when the scheduler is told to
    /// stop.
    void InTheMiddle(const std::function<void()>& function) {
        desk.agent.fault(kStatus, Fault::never());
        Ask();
        auto running = std::async(std::launch::async, function);
        EXPECT_TRUE(desk.log.waitFor("[SGTMsgDispatcher] Enter. Q Count"));
        desk.agent.clearFault(kStatus);
        running.get();
        EXPECT_LE(desk.agent.callCount(kStatus), 1) << "the other devices are not asked any more";
    }

    Desk desk{homeloom::test::apartmentWith({"washer", "dryer", "aircon", "purifier", "fridge", "oven"})};
};

}  // namespace

TEST_F(EnergyRequest, LeavesTheRequestThreadFreeForTheNext) {
    desk.agent.fault(kStatus, Fault::never());
    Ask();
    // Answered by the same thread, while the second stage waits for a device.
    EXPECT_THAT(toText(*desk.ask("hl_change_device_name", {{"device_id", "washer"}})),
                HasSubstr("change_device_name_result=false"));
    EXPECT_EQ(desk.screen().lists, 2);
    desk.agent.clearFault(kStatus);
    EXPECT_TRUE(desk.waitForNotify(kUpdated)->properties.flag("result"));
}

TEST_F(EnergyRequest, TheSecondStageEndsSoonWithThePlugin) {
    InTheMiddle([this] { desk.stop(); });
    EXPECT_THAT(desk.lines(), testing::Each(testing::Not(HasSubstr(kUpdated))));
}

TEST_F(EnergyRequest, AnUpdateOfTheAgentEndsTheSecondStageAndANewRequestIsServed) {
    InTheMiddle([] { simulator::ServiceManager::instance().startUpdate(); });
    ASSERT_TRUE(desk.log.waitFor("deinitClientByAgentUpdate End"));
    simulator::ServiceManager::instance().endUpdate();
    ASSERT_TRUE(desk.log.waitFor("initClientByAgentUpdate End"));
    desk.waitForState("washer", "Ready");
    desk.settle();
    desk.mark();
    Ask();
    EXPECT_THAT(DevicesOf(*desk.waitForNotify(kUpdated)), testing::Contains("washer 9200 true"));
}

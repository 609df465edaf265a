#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/Desk.h"

using testing::IsEmpty;

class Update : public testing::Test {
protected:
    Update() {
        desk.startAndShow();
        desk.waitForState("washer", "Ready");
        desk.waitForState("bedside-button", "Ready");
        desk.waitForState("hub-contact", "Closed");
        desk.settle();
        desk.mark();
    }

    Desk::Fields NotifyOf(const std::string& deviceId, const std::string& stateText) {
        return desk
            .waitForReport(deviceId + " " + stateText,
                           [&](const Desk::Report& report) {
                               return report.name == "hl_device_state_updated" &&
                                      report.properties.text("device_id") == deviceId &&
                                      report.properties.text("state_text") == stateText;
                           })
            ->properties;
    }

    Desk desk{Desk::apartmentWith({"washer", "bedside-button", "hub-button", "hub-contact", "tv-hub"})};
};

TEST_F(Update, ADeviceThatChangesByItselfIsShown) {
    desk.agent.set("washer", "/operational/state/vs/0", "x.com.norvane.da.state", "Run");
    const auto running = NotifyOf("washer", "Washing · 42 min left");
    EXPECT_EQ(running.number("active_state"), 1);
    EXPECT_TRUE(running.flag("running_state"));
    desk.agent.set("washer", "/operational/state/vs/0", "x.com.norvane.da.remainingMinutes", "7");
    NotifyOf("washer", "Washing · 7 min left");

    desk.agent.set("hub-contact", "/capability/contactSensor/main/0", "contact", "open");
    EXPECT_EQ(NotifyOf("hub-contact", "Open").number("active_state"), 1);
}

TEST_F(Update, APressShowsUntilTheTimerGoesOff) {
    for (const std::string button : {"bedside-button", "hub-button"}) {
        for (const char* press : {"pushed", "held"}) {
            desk.agent.set(button, "/capability/button/main/0", "button", press);
            NotifyOf(button, press == std::string("held") ? "Held" : "Pressed");
            desk.mark();
            EXPECT_EQ(desk.armedTimers(), 1);
            desk.fireTimer();
            EXPECT_EQ(NotifyOf(button, "Ready").number("active_state"), 0);
        }
    }
    EXPECT_EQ(desk.armedTimers(), 0);
}

TEST_F(Update, AnEventThatIsNoneHarmsNothing) {
    for (const char* json :
         {"", "no JSON", "[]", R"({"deviceId":7})", R"({"deviceId":"hub-contact","stateChange":"x"})"}) {
        for (const int kind : {0x1, 0x2, 0x4, 0x100, 0x800, 0x1000, 0x8000, 0x40000}) {
            desk.agent.sendEvent(kind, json);
        }
    }
    desk.agent.set("washer", "/operational/state/vs/0", "x.com.norvane.da.state", "Run");
    NotifyOf("washer", "Washing · 42 min left");
}

TEST_F(Update, AStormEndsInTheLastState) {
    for (int minutes = 300; minutes > 0; --minutes) {
        desk.agent.set("washer", "/operational/state/vs/0", "x.com.norvane.da.remainingMinutes",
                       std::to_string(minutes));
    }
    desk.agent.set("washer", "/operational/state/vs/0", "x.com.norvane.da.state", "Pause");
    desk.settle();
    EXPECT_EQ(desk.screen().stateText("washer"), "Paused · 1 min left");
}

TEST_F(Update, OfWhatTheHomeConsistsOf) {
    desk.agent.setStatus("washer", simulator::Disconnected);
    desk.waitFor("disconnected",
                 [](const Screen& shown) { return shown.number("washer", "cloud_device_status") == 1; });
    desk.agent.renameDevice("washer", "Laundry");
    desk.waitFor("renamed", [](const Screen& shown) { return shown.text("washer", "nick") == "Laundry"; });
    desk.agent.moveDevice("washer", "home", "kitchen");
    desk.waitFor("moved", [](const Screen& shown) { return shown.text("washer", "room") == "Kitchen"; });

    simulator::Device second = *desk.agent.device("washer");
    second.id = "washer-2";
    second.status = simulator::Connected;
    desk.agent.addDevice(second);
    desk.waitForState("washer-2", "Ready");
    desk.agent.removeDevice("washer");
    desk.agent.renameDevice("washer-2", "Only One");
    const Screen shown =
        desk.waitFor("renamed", [](const Screen& now) { return now.text("washer-2", "nick") == "Only One"; });
    EXPECT_FALSE(shown.has("washer"));
    EXPECT_EQ(desk.agent.set("washer-2", "/operational/state/vs/0", "x.com.norvane.da.state", "Run"), true);
    desk.waitForState("washer-2", "Washing · 42 min left");
}

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/Desk.h"

using namespace std::chrono_literals;
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

    Desk desk{homeloom::test::apartmentWith({"washer", "bedside-button", "hub-button", "hub-contact", "tv-hub"})};
};

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

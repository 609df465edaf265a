#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
using simulator::Fault;

namespace {

constexpr char kSetAttributes[] = "homeloom_client_set_remote_attributes";
constexpr char kState[] = "/operational/state/vs/0";
constexpr char kStateProperty[] = "x.com.norvane.da.state";

std::string Answer(bool result, const std::string& deviceId) {
    return std::string("result hl_do_main_action result=") + (result ? "true" : "false") + " device_id='" + deviceId +
           "'";
}

}  // namespace

class MainAction : public testing::Test {
protected:
    MainAction() {
        desk.startAndShow();
        desk.waitForState("washer", "Ready");
        desk.waitForState("hub-plug", "Off");
        desk.settle();
    }

    std::string Do(const std::string& deviceId, const std::string& actionUrl = "") {
        return toText(*desk.ask("hl_do_main_action", {{"action_url", actionUrl}, {"device_id", deviceId}}));
    }
    framework::TransactionId Start(const std::string& deviceId) {
        return framework::request("hl_do_main_action", {{"action_url", std::string()}, {"device_id", deviceId}});
    }
    std::string WasherState() { return desk.agent.value("washer", kState, kStateProperty); }

    Desk desk{
        Desk::apartmentWith({"washer", "aircon", "bedside-button", "climate", "tv-bedroom", "hub-plug", "tv-hub"})};
};

TEST_F(MainAction, OfACloudDevice) {
    EXPECT_EQ(Do("washer"), Answer(true, "washer"));
    EXPECT_EQ(WasherState(), "\"Run\"");
    Screen shown = desk.waitForState("washer", "Washing · 42 min left");
    EXPECT_EQ(shown.number("washer", "active_state"), 1);
    EXPECT_TRUE(shown.endpoints["washer"].flag("running_state"));

    EXPECT_EQ(Do("washer"), Answer(true, "washer"));
    EXPECT_EQ(WasherState(), "\"Pause\"") << "the action goes on from the state that was set";
    desk.waitForState("washer", "Paused · 42 min left");
}

TEST_F(MainAction, OfASubDeviceCardByItsUrl) {
    desk.waitFor("both zones", [](const Screen& shown) {
        return shown.stateText("aircon") == "Cooling · 24°C" &&
               shown.text("aircon", "sub_device_card_list_info").find("On · 25°") != std::string::npos;
    });
    EXPECT_EQ(Do("aircon", "/power/zone2/vs/0"), Answer(true, "aircon"));
    EXPECT_EQ(desk.agent.value("aircon", "/power/zone2/vs/0", "x.com.norvane.da.power"), "\"Off\"");
    EXPECT_EQ(desk.agent.value("aircon", "/power/vs/0", "x.com.norvane.da.power"), "\"On\"") << "as before";
    EXPECT_EQ(Do("aircon"), Answer(true, "aircon"));
    desk.waitForState("aircon", "Off");
}

TEST_F(MainAction, OfADeviceOnTheHub) {
    for (const std::string state : {"On", "Off"}) {
        EXPECT_EQ(Do("hub-plug"), Answer(true, "hub-plug"));
        desk.waitForReport("the plug " + state, [&](const Desk::Report& report) {
            return report.name == "hl_device_state_updated" && report.properties.text("device_id") == "hub-plug" &&
                   report.properties.text("state_text") == state;
        });
        desk.mark();
    }
    EXPECT_EQ(desk.agent.callCount(kSetAttributes), 0) << "by capability only";
    for (const char* function : {"homeloom_core_get_device_capability_status", "homeloom_core_execute_device"}) {
        desk.agent.fault(function, Fault::fail(-5).times(1));
        EXPECT_EQ(Do("hub-plug"), Answer(false, "hub-plug")) << function;
    }
}

TEST_F(MainAction, ThatCannotBeDoneAnswersFalse) {
    EXPECT_EQ(Do("no-such-device"), Answer(false, "no-such-device"));
    EXPECT_EQ(Do(""), "result hl_do_main_action result=false");
    EXPECT_EQ(Do("climate"), Answer(false, "climate")) << "a sensor";
    EXPECT_EQ(Do("bedside-button"), Answer(false, "bedside-button"));
    EXPECT_EQ(Do("washer", "/no/such/url"), Answer(false, "washer"));
    desk.agent.fault(kSetAttributes, Fault::fail(-5).times(1));
    EXPECT_EQ(Do("washer"), Answer(false, "washer")) << "the agent refuses";
    EXPECT_EQ(WasherState(), "\"Ready\"");
    EXPECT_EQ(Do("washer"), Answer(true, "washer"));
}

TEST_F(MainAction, IsAnsweredOnceAndOnlyWhenTheAgentConfirmsIt) {
    const auto answersWith = [&](const Fault& fault) {
        desk.agent.fault(kSetAttributes, fault.times(1));
        const auto request = Start("washer");
        const auto count = [&] {
            desk.settle();
            int answers = 0;
            for (const auto& report : framework::reports()) {
                answers += report->transaction == request ? 1 : 0;
            }
            return answers;
        };
        const int atOnce = count();
        desk.agent.hurry();
        return std::pair(atOnce, count());
    };
    EXPECT_EQ(answersWith(Fault::answer(-5)), std::pair(0, 0));
    EXPECT_EQ(answersWith(Fault::never()), std::pair(0, 0));
    EXPECT_EQ(answersWith(Fault::twice()), std::pair(1, 1));
    EXPECT_EQ(answersWith(Fault::late(std::chrono::hours(1))), std::pair(0, 1));
    EXPECT_EQ(Do("washer"), Answer(true, "washer")) << "and nobody is held up";
}

TEST_F(MainAction, OfADeviceThatWentMeanwhileAnswersFalse) {
    desk.agent.fault(kSetAttributes, Fault::late(std::chrono::hours(1)).times(1));
    const auto request = Start("washer");
    desk.waitForLateCall();
    desk.agent.sendDeviceList({"aircon"});
    desk.settle();
    desk.agent.hurry();
    desk.settle();
    ASSERT_TRUE(desk.isAnswered(request));
    EXPECT_THAT(desk.lines(), testing::Contains(Answer(false, "washer")));
    EXPECT_EQ(Do("washer"), Answer(false, "washer"));
}

TEST_F(MainAction, WakesASleepingTv) {
    EXPECT_EQ(desk.screen().number("tv-bedroom", "cloud_device_status"), 0) << "counts as connected";
    EXPECT_EQ(Do("tv-bedroom"), Answer(true, "tv-bedroom"));
    desk.waitForState("tv-bedroom", "On · Home");
}

#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
using namespace std::chrono_literals;
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

    Desk desk{homeloom::test::apartmentWith(
        {"washer", "aircon", "bedside-button", "climate", "tv-bedroom", "hub-plug", "tv-hub"})};
};

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
        desk.elapse(10s);
        return std::pair(atOnce, count());
    };
    EXPECT_EQ(answersWith(Fault::answer(-5)), std::pair(0, 0));
    EXPECT_EQ(answersWith(Fault::never()), std::pair(0, 0));
    EXPECT_EQ(answersWith(Fault::twice()), std::pair(1, 1));
    EXPECT_EQ(answersWith(Fault::late(10s)), std::pair(0, 1));
    EXPECT_EQ(Do("washer"), Answer(true, "washer")) << "and nobody is held up";
}

TEST_F(MainAction, OfADeviceThatWentMeanwhileAnswersFalse) {
    desk.agent.fault(kSetAttributes, Fault::late(10s).times(1));
    const auto request = Start("washer");
    desk.waitForLateCall();
    desk.agent.sendDeviceList({"aircon"});
    desk.settle();
    desk.elapse(10s);
    desk.settle();
    ASSERT_TRUE(desk.isAnswered(request));
    EXPECT_THAT(desk.lines(), testing::Contains(Answer(false, "washer")));
    EXPECT_EQ(Do("washer"), Answer(false, "washer"));
}

// The stream of server-sent events and the agent's device list: what each causes, and what causes nothing.

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/Desk.h"
#include "support/Screen.h"

using testing::Each;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

constexpr int kLifecycle = 2;

class Event : public testing::Test {
protected:
    Event() {
        desk.startAndShow();
        desk.waitForState("washer", "Ready");
        desk.waitForState("hub-plug", "Off");
        desk.settle();
        desk.mark();
    }

    /// The lines that the event causes.
    std::vector<std::string> CausedBy(int kind, const std::string& json) {
        desk.mark();
        desk.agent.sendEvent(kind, json);
        desk.settle();
        return desk.lines();
    }

    Desk desk{homeloom::test::apartmentWith({"washer", "hub-plug", "hub-button", "tv-hub"})};
};

}  // namespace

TEST_F(Event, OnlyAnUpdateOfTheDeviceListReadsTheHomeAnew) {
    const struct {
        const char* json;
        std::size_t lists;
        int readings;
    } cases[] = {{R"({"lifecycle":"CREATE"})", 1, 0}, {R"({"lifecycle":"UPDATE","update":""})", 1, 1},
                 {R"({"lifecycle":"UPDATE"})", 1, 1}, {R"({"lifecycle":"UPDATE","update":"name"})", 0, 0},
                 {R"({"lifecycle":"DELETE"})", 0, 0}, {"no JSON", 0, 0}};
    for (const auto& [json, lists, readings] : cases) {
        desk.agent.resetCalls();
        const auto lines = CausedBy(kLifecycle, json);
        EXPECT_THAT(lines, SizeIs(lists)) << json;
        EXPECT_THAT(lines, Each(StartsWith("device_list"))) << json;
        EXPECT_EQ(desk.agent.callCount("homeloom_client_get_device_detail_list"), readings) << json;
        EXPECT_EQ(desk.agent.callCount("homeloom_core_get_hub_device_id_list"), readings) << json;
    }
}

TEST_F(Event, ADeviceThatLeavesTheListIsGone) {
    desk.agent.resetCalls();
    desk.agent.sendDeviceList({"tv-hub", "hub-button", "washer"});
    desk.settle();
    // The local hub's devices have no subscription to end, and no list goes out for this.
    EXPECT_EQ(desk.agent.callCount("homeloom_client_unsubscribe"), 0);
    desk.agent.sendDeviceList({"tv-hub", "hub-button"});
    desk.settle();
    EXPECT_EQ(desk.agent.callCount("homeloom_client_unsubscribe"), 1);
    EXPECT_THAT(desk.lines(), IsEmpty());
    CausedBy(kLifecycle, R"({"lifecycle":"CREATE"})");
    EXPECT_FALSE(desk.screen().has("washer"));
    EXPECT_FALSE(desk.screen().has("hub-plug"));
    EXPECT_TRUE(desk.screen().has("hub-button"));

    desk.agent.sendDeviceList({});
    desk.settle();
    EXPECT_FALSE(desk.screen().has("hub-button"));
    EXPECT_TRUE(desk.screen().has("movie-time"));  // scenes, routines and locations still go
    EXPECT_TRUE(desk.screen().has("home"));
}

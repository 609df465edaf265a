#include <atomic>
#include <future>
#include <thread>

#include "AgentTest.h"
#include "clock/Clock.h"

using namespace std::chrono_literals;
using simulator::Agent;
using simulator::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

using AgentSession = AgentTest;

TEST_F(AgentSession, AHandleIsUsedAgainAfterItsConnectionWasLost) {
    agent.fault("homeloom_client_connect", Fault::late(1h).times(1));
    ASSERT_EQ(homeloom_client_connect(&client, onConnection, this), 0);
    EXPECT_EQ(homeloom_client_connect(&client, onConnection, this), HOMELOOM_CLIENT_ERROR_CONNECTION_IN_PROGRESS);
    bool isSignedIn = false;
    EXPECT_EQ(homeloom_client_is_signed_in(client, &isSignedIn), HOMELOOM_CLIENT_ERROR_NOT_CONNECTED);
    homeloom::clock::advance(1h);
    EXPECT_THAT(taken(), ElementsAre("connection 0 0"));
    EXPECT_EQ(homeloom_client_connect(&client, onConnection, this), HOMELOOM_CLIENT_ERROR_ALREADY_CONNECTED);
    ASSERT_EQ(homeloom_core_set_sse_cb(client, 1, onEvent, this), 0);

    agent.changeConnection(Agent::Connection::IoError);
    agent.waitIdle();
    agent.sendEvent(1, "nobody is told");
    EXPECT_THAT(taken(), ElementsAre("connection 3 -5"));
    homeloom_client_h same = client;
    EXPECT_EQ(homeloom_client_connect(&client, onConnection, this), 0);
    EXPECT_EQ(client, same);
    agent.waitIdle();
    agent.sendEvent(1, "{}");
    agent.sendEvent(1, std::string("cut\0short", 9));
    EXPECT_THAT(taken(), ElementsAre("connection 0 0", "event 1 {}", "event 1 cut"));
}

TEST_F(AgentSession, DisconnectDropsWhatIsPending) {
    connect();
    ASSERT_EQ(homeloom_core_set_sse_cb(client, -1, onEvent, this), 0);
    ASSERT_EQ(homeloom_client_subscribe(client, "washer", R"(["/course/vs/0"])", onUpdate, this), 0);
    agent.fault("homeloom_core_get_scene_icon_list_async", Fault::late(1h));
    agent.fault("homeloom_core_get_all_location_users_async", Fault::never());
    ASSERT_EQ(homeloom_core_get_scene_icon_list_async(client, onJson, this), 0);
    ASSERT_EQ(homeloom_core_get_all_location_users_async(client, onJson, this), 0);
    const Agent::Holdings held = agent.holdings();
    EXPECT_EQ(held.pendingCalls, 2);
    EXPECT_EQ(held.subscriptions, 1);
    EXPECT_EQ(held.registrations, 2) << "the connection and the stream of events";
    agent.set("washer", "/course/vs/0", "x.com.norvane.da.course", "Wool");
    ASSERT_EQ(homeloom_client_disconnect(std::exchange(client, nullptr)), 0);
    heard.clear();
    homeloom::clock::advance(1h);
    EXPECT_THAT(taken(), IsEmpty());
    EXPECT_EQ(agent.holdings().total(), 0);
}

TEST_F(AgentSession, DisconnectWaitsForTheCallbackInFlight) {
    connect();
    struct Slow {
        std::promise<void> entered;
        std::promise<void> go;
        std::atomic<bool> isOver{false};
    } slow;
    const auto onSlow = [](int, const char*, const char*, void* userData) {
        Slow& state = *static_cast<Slow*>(userData);
        state.entered.set_value();
        state.go.get_future().wait();
        state.isOver = true;
    };
    ASSERT_EQ(homeloom_core_get_scene_icon_list_async(client, onSlow, &slow), 0);
    slow.entered.get_future().wait();
    std::thread releaser([&] { slow.go.set_value(); });
    EXPECT_EQ(homeloom_client_disconnect(std::exchange(client, nullptr)), 0);
    EXPECT_TRUE(slow.isOver);
    releaser.join();
}

TEST_F(AgentSession, DisconnectFromACallbackReturns) {
    connect();
    const auto onJsonDisconnect = [](int, const char*, const char*, void* userData) {
        AgentTest& test = self(userData);
        test.note(std::to_string(homeloom_client_disconnect(std::exchange(test.client, nullptr))));
    };
    ASSERT_EQ(homeloom_core_get_scene_icon_list_async(client, onJsonDisconnect, this), 0);
    EXPECT_THAT(taken(), ElementsAre("0"));
}

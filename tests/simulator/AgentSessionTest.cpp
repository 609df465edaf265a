#include <norvane_svcmgr.h>

#include <atomic>
#include <future>
#include <thread>

#include "AgentTest.h"
#include "simulator/ServiceManager.h"

using namespace std::chrono_literals;
using simulator::Agent;
using simulator::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

using AgentSession = AgentTest;

TEST_F(AgentSession, OutcomesOfAConnection) {
    const struct {
        Agent::Connection outcome;
        const char* told;
    } cases[] = {{Agent::Connection::Connected, "connection 0 0"},
                 {Agent::Connection::Disconnected, "connection 1 -5"},
                 {Agent::Connection::Rejected, "connection 2 -13"},
                 {Agent::Connection::IoError, "connection 3 -5"}};
    for (const auto& [outcome, told] : cases) {
        agent.setConnectOutcome(outcome);
        homeloom_client_h handle = nullptr;
        ASSERT_EQ(homeloom_client_connect(&handle, onConnection, this), 0);
        EXPECT_THAT(taken(), ElementsAre(told));
        EXPECT_EQ(homeloom_client_disconnect(handle), 0);
        EXPECT_EQ(homeloom_client_disconnect(handle), HOMELOOM_CLIENT_ERROR_INVALID_PARAMETER);
    }
    agent.setConnectOutcome(Agent::Connection::Updating);
    EXPECT_EQ(homeloom_client_connect(&client, onConnection, this), HOMELOOM_CLIENT_ERROR_UPDATING);
    EXPECT_EQ(client, nullptr);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(AgentSession, AHandleIsUsedAgainAfterItsConnectionWasLost) {
    agent.fault("homeloom_client_connect", Fault::late(1h).times(1));
    ASSERT_EQ(homeloom_client_connect(&client, onConnection, this), 0);
    EXPECT_EQ(homeloom_client_connect(&client, onConnection, this), HOMELOOM_CLIENT_ERROR_CONNECTION_IN_PROGRESS);
    bool isSignedIn = false;
    EXPECT_EQ(homeloom_client_is_signed_in(client, &isSignedIn), HOMELOOM_CLIENT_ERROR_NOT_CONNECTED);
    agent.hurry();
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

TEST_F(AgentSession, TheServiceManagerTakesTheAgentAwayAndBringsItBack) {
    connect();
    simulator::ServiceManager& manager = simulator::ServiceManager::instance();
    const auto onStatus = [](norvane_svcmgr_update_status_e status, void* userData) {
        self(userData).note("update " + std::to_string(status));
    };
    EXPECT_EQ(norvane_svcmgr_set_update_status_cb(onStatus, this), 0);
    manager.startUpdate();
    manager.waitIdle();
    EXPECT_THAT(taken(), ElementsAre("update 2", "connection 1 -1073741828"));
    EXPECT_EQ(homeloom_client_connect(&client, onConnection, this), HOMELOOM_CLIENT_ERROR_UPDATING);
    manager.endUpdate();
    manager.waitIdle();
    EXPECT_THAT(taken(), ElementsAre("update 3"));
    EXPECT_EQ(norvane_svcmgr_unset_update_status_cb(), 0);
    manager.announce(2);
    manager.waitIdle();
    EXPECT_THAT(taken(), IsEmpty());
    EXPECT_EQ(homeloom_client_connect(&client, onConnection, this), 0);
    EXPECT_THAT(taken(), ElementsAre("connection 0 0"));
}

TEST_F(AgentSession, SignOutAndAnotherLogin) {
    connect();
    const auto onSignIn = [](bool isSignedIn, void* userData) {
        char* login = nullptr;
        const int code = homeloom_client_get_login_id(self(userData).client, &login);
        self(userData).note(std::to_string(isSignedIn) + " " + std::to_string(code) + " " + text(login));
        std::free(login);
    };
    ASSERT_EQ(homeloom_client_set_sign_in_state_changed_cb(client, onSignIn, this), 0);
    agent.signOut();
    agent.waitIdle();
    homeloom_client_device_detail_h* list = nullptr;
    int count = 0;
    EXPECT_EQ(homeloom_client_get_device_detail_list(client, &list, &count), HOMELOOM_CLIENT_ERROR_PERMISSION_DENIED);
    agent.signIn({"jun@home.example", "user-jun", "", ""});
    EXPECT_THAT(taken(), ElementsAre("0 -13 null", "1 0 jun@home.example"));
    EXPECT_EQ(agent.home().account.accessToken, "token-of-mina");
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
    agent.hurry();
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

TEST_F(AgentSession, ManyThreadsAtOnce) {
    static std::atomic<int> answers;
    answers = 0;
    const auto count = [](int, const char*, const char*, void*) { ++answers; };
    const auto countRemote = [](int, const char*, const char*, const char*, const char*, void*) { ++answers; };
    const int rounds = 200;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            homeloom_client_h own = nullptr;
            ASSERT_EQ(homeloom_client_connect(
                          &own, [](homeloom_client_error_e, homeloom_client_connection_state_e, void*) {}, nullptr),
                      0);
            while (homeloom_client_refresh_device_information(own) != 0) {
                std::this_thread::yield();
            }
            for (int round = 0; round < rounds; ++round) {
                agent.set("washer", "/course/vs/0", "x.com.norvane.da.course", std::to_string(round));
                homeloom_core_get_scene_icon_list_async(own, count, nullptr);
                homeloom_client_get_remote_attributes(own, "washer", "/course/vs/0", countRemote, nullptr);
                agent.fault("homeloom_core_delete_device", Fault::fail(-1));
                agent.clearFaults();
            }
            agent.waitIdle();
            EXPECT_EQ(homeloom_client_disconnect(own), 0);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(answers, 4 * 2 * rounds);
}

#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>

#include "AgentTest.h"
#include "clock/Clock.h"

using namespace std::chrono_literals;
using simulator::Fault;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using AgentFault = AgentTest;

TEST_F(AgentFault, OfAFunctionWithACallback) {
    connect();
    const char* const name = "homeloom_core_create_room_async";
    const auto call = [&] { return homeloom_core_create_room_async(client, "home", "Attic", onJson, this); };
    const auto rooms = [&] { return agent.home().location("home")->rooms.size(); };
    ASSERT_EQ(rooms(), 5u);

    agent.fault(name, Fault::fail(-7));
    EXPECT_EQ(call(), -7);
    EXPECT_THAT(taken(), IsEmpty());

    agent.fault(name, Fault::answer(-8));
    EXPECT_EQ(call(), 0);
    EXPECT_THAT(taken(), ElementsAre("json -8 null"));
    EXPECT_EQ(rooms(), 5u);

    agent.fault(name, Fault::never());
    EXPECT_EQ(call(), 0);
    homeloom::clock::advance(1h);
    EXPECT_THAT(taken(), IsEmpty());

    agent.fault(name, Fault::late(1h).times(1));
    EXPECT_EQ(call(), 0);
    EXPECT_EQ(rooms(), 5u) << "nothing is done before its time";
    EXPECT_THAT(taken(), IsEmpty());
    homeloom::clock::advance(1h);
    EXPECT_THAT(taken(), ElementsAre(StartsWith("json 0 {\"roomId\"")));
    EXPECT_EQ(rooms(), 6u);

    agent.fault(name, Fault::twice());
    EXPECT_EQ(call(), 0);
    EXPECT_THAT(taken(), ElementsAre(StartsWith("json 0"), StartsWith("json 0")));
    EXPECT_EQ(rooms(), 7u) << "done once, answered twice";

    agent.clearFault(name);
    agent.fault(name, Fault::answer(-9).after(1).times(1));
    call();
    call();
    call();
    EXPECT_THAT(taken(), ElementsAre(StartsWith("json 0"), "json -9 null", StartsWith("json 0")));
    EXPECT_THAT(agent.faults(), IsEmpty()) << "used up";
    EXPECT_THROW(agent.fault("homeloom_core_no_such_function", Fault::never()), std::invalid_argument);
}

TEST_F(AgentFault, OfAFunctionThatAnswersAtOnce) {
    connect();
    const char* const name = "homeloom_core_delete_device";
    for (const Fault& fault : {Fault::fail(-5), Fault::answer(-5)}) {
        agent.fault(name, fault);
        EXPECT_EQ(homeloom_core_delete_device(client, "washer"), -5);
    }
    // Never: until somebody clears the fault. Late: until its time has come.
    for (const auto& [fault, release, code] :
         {std::tuple<Fault, std::function<void()>, int>{Fault::never(), [&] { agent.clearFault(name); }, -5},
          {Fault::late(1h), [&] { homeloom::clock::advance(1h); }, 0}}) {
        agent.fault(name, fault.times(1));
        auto result = std::async(std::launch::async, [&] { return homeloom_core_delete_device(client, "washer"); });
        while (!agent.faults().empty()) {
            std::this_thread::yield();
        }
        release();
        EXPECT_EQ(result.get(), code);
    }
    EXPECT_FALSE(agent.device("washer"));
}

TEST_F(AgentFault, OfAFunctionThatSaysAnotherText) {
    connect();
    for (const auto& [name, fault] : {std::pair("homeloom_core_get_device_status", Fault::say("rubbish")),
                                      {"homeloom_core_delete_device", Fault::say("no text to say")},
                                      {"homeloom_core_create_room_async", Fault::say("[]").times(1)}}) {
        agent.fault(name, fault);
    }
    char* text = nullptr;
    EXPECT_EQ(homeloom_core_get_device_status(client, "nobody", &text), 0);
    EXPECT_STREQ(text, "rubbish");
    std::free(text);
    EXPECT_EQ(homeloom_core_delete_device(client, "washer"), 0);
    EXPECT_FALSE(agent.device("washer"));
    EXPECT_EQ(homeloom_core_create_room_async(client, "home", "Attic", onJson, this), 0);
    EXPECT_THAT(taken(), ElementsAre("json 0 []"));
    EXPECT_EQ(agent.home().location("home")->rooms.size(), 5u);
    agent.signOut();
    EXPECT_NE(homeloom_core_get_device_status(client, "nobody", &text), 0);
}

TEST_F(AgentFault, OfAListAnsweredTwiceGivesTwoLists) {
    connect();
    static int records;
    records = 0;
    const auto onScenes = [](int, homeloom_core_scene_h* list, int count, void*) {
        for (int i = 0; i < count; ++i) {
            records += homeloom_core_scene_destroy(list[i]) == 0 ? 1 : 0;
        }
        std::free(list);
    };
    agent.fault("homeloom_core_get_scene_list_async", Fault::twice());
    ASSERT_EQ(homeloom_core_get_scene_list_async(client, "home", onScenes, nullptr), 0);
    agent.waitIdle();
    EXPECT_EQ(records, 4);
}

TEST_F(AgentFault, AnExceptionOutOfACallbackIsKeptAndTheAgentGoesOn) {
    connect();
    const auto onThrow = [](int, const char*, const char*, void*) { throw std::runtime_error("oops"); };
    ASSERT_EQ(homeloom_core_get_scene_icon_list_async(client, onThrow, nullptr), 0);
    ASSERT_EQ(homeloom_core_get_scene_icon_list_async(client, onJson, this), 0);
    EXPECT_THAT(taken(), ElementsAre(StartsWith("json 0")));
    EXPECT_THAT(agent.escapedExceptions(), ElementsAre("homeloom_core_get_scene_icon_list_async: oops"));
    ASSERT_EQ(homeloom_client_disconnect(std::exchange(client, nullptr)), 0);
    agent.reset();
}

TEST_F(AgentFault, CallsAreCountedWithTheirLastArguments) {
    connect();
    agent.resetCalls();
    EXPECT_EQ(homeloom_core_start_hub_device_discover(client, "nobody", 30, true, false, 1), -61);
    EXPECT_EQ(homeloom_core_start_hub_device_discover(client, "tv-hub", 60, false, false, 1), 0);
    EXPECT_EQ(homeloom_core_delete_device(nullptr, "washer"), -22);
    EXPECT_EQ(homeloom_core_delete_device(client, nullptr), -22);
    const auto calls = agent.calls();
    EXPECT_EQ(calls.at("homeloom_core_start_hub_device_discover").count, 2);
    EXPECT_THAT(calls.at("homeloom_core_start_hub_device_discover").arguments,
                ElementsAre("tv-hub", "60", "false", "false", "1"));
    EXPECT_EQ(calls.at("homeloom_core_delete_device").count, 2);
    EXPECT_EQ(calls.size(), 2u);
}

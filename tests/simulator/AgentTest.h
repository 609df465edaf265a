#ifndef HOMELOOM_TESTS_SIMULATOR_AGENTTEST_H
#define HOMELOOM_TESTS_SIMULATOR_AGENTTEST_H

#include <gmock/gmock.h>
#include <homeloom_client.h>
#include <homeloom_core.h>

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "simulator/Agent.h"
#include "simulator/HomeLoader.h"
#include "support/Places.h"

/// A client of the agent with the apartment behind it, which must have let go of everything at the end.
///
/// What callbacks bring is written down as text; the agent must be idle when it is read.
class AgentTest : public ::testing::Test {
public:
    AgentTest() : agent(simulator::Agent::instance()) {
        agent.reset();
        agent.load(simulator::loadHome(homeloom::test::apartmentFile()));
    }

    ~AgentTest() override {
        if (client != nullptr) {
            EXPECT_EQ(homeloom_client_disconnect(client), 0);
        }
        EXPECT_EQ(agent.holdings().total(), 0);
        EXPECT_THAT(agent.escapedExceptions(), ::testing::IsEmpty());
    }

    void connect() {
        ASSERT_EQ(homeloom_client_connect(&client, onConnection, this), 0);
        agent.waitIdle();
        taken();
    }

    /// What came since the last look.
    std::vector<std::string> taken() {
        agent.waitIdle();
        const std::lock_guard<std::mutex> lock(mutex);
        return std::exchange(heard, {});
    }

    static AgentTest& self(void* userData) { return *static_cast<AgentTest*>(userData); }
    void note(const std::string& text) {
        const std::lock_guard<std::mutex> lock(mutex);
        heard.push_back(text);
    }
    static std::string text(const char* value) { return value == nullptr ? "null" : value; }

    static void onConnection(homeloom_client_error_e result, homeloom_client_connection_state_e state, void* userData) {
        self(userData).note("connection " + std::to_string(state) + " " + std::to_string(result));
    }
    static void onUpdate(const char* deviceId, const char* uri, const char* representation, const char* types,
                         const char*, const char*, void* userData) {
        self(userData).note("update " + text(deviceId) + " " + text(uri) + " " + text(representation) + " " +
                            text(types));
    }
    static void onRemote(int result, const char* deviceId, const char* attributes, const char* uri, const char*,
                         void* userData) {
        self(userData).note("remote " + std::to_string(result) + " " + text(deviceId) + " " + text(uri) + " " +
                            text(attributes));
    }
    static void onJson(int error, const char*, const char* json, void* userData) {
        self(userData).note("json " + std::to_string(error) + " " + text(json));
    }
    static void onEvent(homeloom_core_sse_e type, long long, const char* json, void* userData) {
        self(userData).note("event " + std::to_string(type) + " " + text(json));
    }

    simulator::Agent& agent;
    homeloom_client_h client = nullptr;
    std::mutex mutex;  // turning the clock puts nothing in order between the test and a callback that it brings
    std::vector<std::string> heard;
};

#endif

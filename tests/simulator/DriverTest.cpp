#include <atomic>
#include <cstdlib>
#include <thread>

#include "AgentTest.h"
#include "clock/Clock.h"

using simulator::DeviceCommand;
using simulator::Verdict;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

const char* const kLamp = "bedside-lamp";
const char* const kSwitch = "/capability/switch/main/0";
const char* const kOn = R"({"switch":"on"})";
const char* const kOnCommand = R"({"commands":[{"component":"main","capability":"switch","command":"on"}]})";

}  // namespace

class DriverTest : public AgentTest {
public:
    void drive(simulator::Driver driver) { ASSERT_TRUE(agent.setDriver(kLamp, std::move(driver))); }
    void write() { ASSERT_EQ(homeloom_client_set_remote_attributes(client, kLamp, kSwitch, kOn, onRemote, this), 0); }
    std::string lamp() const { return agent.value(kLamp, kSwitch, "switch"); }
    long long open() const { return agent.openCommands().empty() ? -1 : agent.openCommands().front().number; }
};

TEST_F(DriverTest, AnswersAWriteAndTellsTheValueWhenItLikes) {
    connect();
    ASSERT_EQ(homeloom_client_subscribe(client, kLamp, R"(["/capability/switch/main/0"])", onUpdate, this), 0);
    const std::string answered = std::string("remote 0 ") + kLamp + " " + kSwitch + " {\"switch\":";
    const std::string refused = std::string("remote -13 ") + kLamp + " " + kSwitch + " ";
    std::vector<std::string> asked;
    Verdict verdict = Verdict::Accept;
    drive([&](const DeviceCommand& command) {
        asked.push_back(command.deviceId + command.uri + " " + command.changes.front().value);
        return verdict;
    });
    write();
    EXPECT_THAT(taken(), ElementsAre(answered + "\"off\"}")) << "accepted, and nothing happens";
    agent.set(kLamp, kSwitch, "switch", "on");
    EXPECT_THAT(taken(), ElementsAre(HasSubstr(R"({"switch":"on"})")));
    agent.set(kLamp, kSwitch, "switch", "off");
    taken();

    verdict = Verdict::Refuse;
    write();
    EXPECT_THAT(taken(), ElementsAre(refused));
    EXPECT_EQ(lamp(), "\"off\"");

    verdict = Verdict::Open;
    write();
    EXPECT_THAT(taken(), IsEmpty());
    EXPECT_EQ(agent.holdings().pendingCalls, 1);
    EXPECT_FALSE(agent.confirm(open(), {{"/no/such", "switch", "on"}}));
    EXPECT_TRUE(agent.confirm(open()));
    EXPECT_THAT(taken(), ElementsAre(answered + "\"on\"}", HasSubstr("update")));
    write();
    agent.waitIdle();
    EXPECT_TRUE(agent.confirm(open(), {{kSwitch, "switch", "dim"}}));
    EXPECT_THAT(taken(), ElementsAre(answered + "\"dim\"}", HasSubstr("update")));
    write();
    agent.waitIdle();
    const long long last = open();
    EXPECT_TRUE(agent.accept(last));
    EXPECT_FALSE(agent.refuse(last)) << "it was accepted";
    EXPECT_THAT(taken(), ElementsAre(answered + "\"dim\"}"));
    EXPECT_THAT(asked, testing::Each(std::string(kLamp) + kSwitch + " \"on\""));

    // What is open when the driver goes is refused.
    write();
    agent.waitIdle();
    drive(nullptr);
    EXPECT_THAT(taken(), ElementsAre(refused));
    write();
    EXPECT_THAT(taken(), ElementsAre(answered + "\"on\"}", HasSubstr("update"))) << "by itself again";
    drive([](const DeviceCommand&) -> Verdict { throw std::runtime_error("no current"); });
    write();
    EXPECT_THAT(taken(), ElementsAre(refused));
    EXPECT_THAT(agent.escapedExceptions(), ElementsAre("driver: no current"));
    agent.reset();
    client = nullptr;
}

TEST_F(DriverTest, AnswersScenesAndCommandsThatWait) {
    connect();
    std::atomic<int> asked{0};
    drive([this, &asked](const DeviceCommand& command) {
        // Some answer while they are asked.
        return ++asked % 2 == 1 ? Verdict::Refuse : agent.confirm(command.number) ? Verdict::Open : Verdict::Refuse;
    });
    for (const char* result : {"Failure", "Success"}) {
        EXPECT_EQ(homeloom_core_execute_scene_async(client, "home", "good-night", onJson, this), 0);
        EXPECT_THAT(taken(), ElementsAre(HasSubstr(result)));
    }
    EXPECT_EQ(lamp(), "\"on\"");
    for (const char* status : {"FAILED", "ACCEPTED"}) {
        char* reply = nullptr;
        EXPECT_EQ(homeloom_core_execute_device(client, kLamp, kOnCommand, &reply), 0);
        EXPECT_THAT(reply, HasSubstr(status));
        std::free(reply);
    }

    // A caller that waits goes on when the device is gone.
    drive([](const DeviceCommand&) { return Verdict::Open; });
    char* reply = nullptr;
    int code = -1;
    std::thread caller([&] { code = homeloom_core_execute_device(client, kLamp, kOnCommand, &reply); });
    while (open() < 0) {
        std::this_thread::yield();
    }
    EXPECT_TRUE(agent.isOwing());
    agent.removeDevice(kLamp);
    caller.join();
    EXPECT_EQ(code, 0);
    EXPECT_THAT(reply, HasSubstr("FAILED"));
    std::free(reply);
}

TEST_F(DriverTest, AModelConfirmsLateRefusesOrWithAnotherValue) {
    connect();
    const struct {
        const char* device;
        const char* uri;
        const char* payload;
        int code;
        const char* at_once;
        const char* later;
    } cases[] = {
        {"blind", "/capability/windowShade/0", R"({"windowShade":"closed"})", 0, "\"open\"", "\"closed\""},
        {"living-camera", kSwitch, R"({"switch":"off"})", 0, "\"off\"", "\"off\""},
        {"living-camera", kSwitch, R"({"switch":"on"})", -13, "\"off\"", "\"off\""},
        {"ceiling-light", "/capability/switchLevel/main/0", R"({"level":10})", 0, "15", "15"},
        {"ceiling-light", "/capability/switchLevel/main/0", R"({"level":20})", 0, "20", "20"},
    };
    for (const auto& [device, uri, payload, code, atOnce, later] : cases) {
        ASSERT_EQ(homeloom_client_set_remote_attributes(client, device, uri, payload, onRemote, this), 0);
        EXPECT_THAT(taken(), ElementsAre(HasSubstr("remote " + std::to_string(code)))) << device;
        const std::string property = agent.device(device)->find(uri)->properties.front().name;
        EXPECT_EQ(agent.value(device, uri, property), atOnce) << device;
        homeloom::clock::advance(std::chrono::minutes(1));
        EXPECT_EQ(agent.value(device, uri, property), later) << device;
    }
}

TEST_F(DriverTest, AValueThatIsNotKnownIsLeftOut) {
    connect();
    EXPECT_TRUE(agent.set(kLamp, kSwitch, "switch", "null"));
    ASSERT_EQ(homeloom_client_get_remote_attributes(client, kLamp, kSwitch, onRemote, this), 0);
    EXPECT_THAT(taken(), ElementsAre(testing::EndsWith(" {}")));
    write();
    EXPECT_THAT(taken(), ElementsAre(testing::EndsWith(kOn)));
}

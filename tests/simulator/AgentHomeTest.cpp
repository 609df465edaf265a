#include <cstdlib>

#include "AgentTest.h"
#include "clock/Clock.h"

using simulator::Change;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

const char* const stateUri = "/operational/state/vs/0";
const char* const state = "x.com.norvane.da.state";

/// Takes a text that the agent handed out.
std::string owned(char* text) {
    const std::string copy = text == nullptr ? "null" : text;
    std::free(text);
    return copy;
}

}  // namespace

/// Each test here also proves, under the leak sanitizer and by the fixture's last look, who owns what.
class AgentHome : public AgentTest {
public:
    /// Writes down the ids of a list, and destroys it.
    template <class Handle, int (*Get)(Handle, int, char**), int (*Destroy)(Handle)>
    static void onDeviceList(Handle* list, int count, void* userData) {
        std::string ids;
        for (int i = 0; i < count; ++i) {
            char* id = nullptr;
            EXPECT_EQ(Get(list[i], 0, &id), 0);
            ids += " " + owned(id);
            EXPECT_EQ(Destroy(list[i]), 0);
        }
        std::free(list);
        self(userData).note("list" + ids);
    }
    static void onGroups(int notiType, int groupType, homeloom_client_group_h*, int count, const char* id,
                         void* userData) {
        self(userData).note("groups " + std::to_string(notiType) + " " + std::to_string(groupType) + " " +
                            std::to_string(count) + " " + text(id));
    }

    void registerLists() {
        const auto onDevices =
            onDeviceList<homeloom_client_device_h, homeloom_client_device_get_string, homeloom_client_device_destroy>;
        const auto onDetails = onDeviceList<homeloom_client_device_detail_h, homeloom_client_device_detail_get_string,
                                            homeloom_client_device_detail_destroy>;
        ASSERT_EQ(homeloom_client_set_device_list_updated_cb(client, onDevices, this), 0);
        ASSERT_EQ(homeloom_client_set_device_detail_list_updated_cb(client, onDetails, this), 0);
        ASSERT_EQ(homeloom_client_set_group_list_updated_cb(client, onGroups, this), 0);
    }
};

TEST_F(AgentHome, ChangesOfTheHomeAreTold) {
    connect();
    registerLists();
    taken();
    simulator::Device lamp = *agent.device("bedside-lamp");
    lamp.id = "lamp-2";
    lamp.resources.clear();

    EXPECT_TRUE(agent.addDevice(lamp));
    EXPECT_FALSE(agent.addDevice(lamp));
    EXPECT_THAT(taken(), ElementsAre(HasSubstr(" parents-light lamp-2"), "list lamp-2"));
    EXPECT_EQ(agent.device("lamp-2")->resources.size(), 2u) << "as its model has them";

    std::vector<simulator::Device> more(3, lamp);
    EXPECT_FALSE(agent.addDevices(more)) << "none of them is new";
    for (std::size_t i = 0; i < more.size(); ++i) {
        more[i].id = "lamp-" + std::to_string(3 + i);
    }
    EXPECT_TRUE(agent.addDevices(more));
    EXPECT_THAT(taken(), ElementsAre(HasSubstr(" lamp-2 lamp-3 lamp-4 lamp-5"), "list lamp-3 lamp-4 lamp-5"));

    EXPECT_TRUE(agent.renameDevice("lamp-2", "Lamp"));
    EXPECT_TRUE(agent.moveDevice("lamp-2", "parents", "porch"));
    EXPECT_FALSE(agent.moveDevice("lamp-2", "parents", "kitchen"));
    EXPECT_TRUE(agent.setStatus("lamp-2", simulator::Disconnected));
    EXPECT_THAT(taken(), ElementsAre("list lamp-2", "list lamp-2", "list lamp-2"));

    EXPECT_TRUE(agent.removeDevice("lamp-2"));
    EXPECT_THAT(taken(), ElementsAre(AllOf(StartsWith("list"), Not(HasSubstr("lamp-2")))));

    const std::string room = agent.addRoom("home", "Attic");
    EXPECT_TRUE(agent.renameRoom(room, "Loft"));
    EXPECT_TRUE(agent.removeRoom("laundry"));
    EXPECT_TRUE(agent.renameLocation("home", "Flat"));
    EXPECT_FALSE(agent.removeRoom("laundry"));
    EXPECT_THAT(taken(), ElementsAre("groups 1 2 8 " + room, "groups 1 2 8 " + room, "groups 1 2 7 laundry",
                                     "groups 1 1 2 home"));
    EXPECT_EQ(agent.device("washer")->room, "");
}

TEST_F(AgentHome, WritesThatFailChangeNothing) {
    connect();
    const struct {
        const char* device;
        const char* uri;
        const char* payload;
        const char* answer;
    } cases[] = {
        {"nobody", stateUri, "{}", "remote -61"},
        {"washer", "/no/such", "{}", "remote -61"},
        {"washer", stateUri, "Run", "remote -22"},
        {"washer", stateUri, R"({"x.com.norvane.da.remainingMinutes":"soon"})", "remote -22"},
        {"parents-light", "/capability/switch/main/0", R"({"switch":"on"})", "remote -5"},
    };
    for (const auto& [device, uri, payload, answer] : cases) {
        ASSERT_EQ(homeloom_client_set_remote_attributes(client, device, uri, payload, onRemote, this), 0);
        EXPECT_THAT(taken(), ElementsAre(StartsWith(answer))) << payload;
    }
    EXPECT_EQ(agent.value("washer", stateUri, "x.com.norvane.da.remainingMinutes"), "0");
    EXPECT_EQ(homeloom_client_set_remote_attributes(client, "washer", stateUri, "{}", nullptr, this), -22);
}

TEST_F(AgentHome, ASubscriptionIsItsDeviceAndItsText) {
    connect();
    const char* const both = R"(["/operational/state/vs/0","/course/vs/0"])";
    const char* const one = R"(["/course/vs/0"])";
    const auto onSecond = [](const char*, const char*, const char*, const char*, const char*, const char*,
                             void* userData) { self(userData).note("second"); };
    ASSERT_EQ(homeloom_client_subscribe(client, "washer", both, onUpdate, this), 0);
    ASSERT_EQ(homeloom_client_subscribe(client, "washer", one, onUpdate, this), 0);
    ASSERT_EQ(homeloom_client_subscribe(client, "washer", one, onSecond, this), 0);
    EXPECT_EQ(agent.subscriptions().size(), 2u) << "the same text again replaces";
    agent.set("washer", "/course/vs/0", "x.com.norvane.da.course", "Wool");
    EXPECT_THAT(taken(), ElementsAre(HasSubstr("Wool"), "second"));
    agent.set("washer", stateUri, state, "Run");
    EXPECT_THAT(taken(), ElementsAre(HasSubstr("Run")));

    EXPECT_EQ(homeloom_client_unsubscribe(client, "washer", R"(["/course/vs/0"] )"), -61) << "not this text";
    EXPECT_EQ(homeloom_client_unsubscribe(client, "dryer", one), -61);
    EXPECT_EQ(homeloom_client_unsubscribe(client, "washer", both), 0);
    agent.set("washer", stateUri, state, "Pause");
    EXPECT_THAT(taken(), IsEmpty());
    EXPECT_EQ(homeloom_client_subscribe(client, "washer", "no array", onUpdate, this), -22);
}

TEST_F(AgentHome, PlainTextsBecomeValuesOfTheDeclaredType) {
    const struct {
        const char* device;
        Change change;
        const char* value;  // empty: refused
    } cases[] = {
        {"washer", {stateUri, state, "Run"}, "\"Run\""},
        {"washer", {stateUri, state, "21"}, "\"21\""},
        {"washer", {stateUri, "x.com.norvane.da.remainingMinutes", "21"}, "21"},
        {"washer", {stateUri, "x.com.norvane.da.remainingMinutes", "21.9"}, "21"},
        {"washer", {stateUri, "x.com.norvane.da.remainingMinutes", "1e300"}, ""},
        {"washer", {stateUri, "x.com.norvane.da.remainingMinutes", "soon"}, ""},
        {"aircon", {"/temperatures/vs/0", "x.com.norvane.da.current", "24.5"}, "24.5"},
        {"coffee-plug", {"/switch/binary/vs/0", "value", "true"}, "true"},
        {"coffee-plug", {"/switch/binary/vs/0", "value", "\"false\""}, "false"},
        {"coffee-plug", {"/switch/binary/vs/0", "value", "on"}, ""},
        {"speaker", {"/capability/mediaPlayback/main/0", "modes", "play"}, "[\"play\"]"},
        {"speaker", {"/capability/mediaPlayback/main/0", "modes", "[\"stop\"]"}, "[\"stop\"]"},
        {"washer", {"/no/such", "x", "1"}, ""},
    };
    for (const auto& [device, change, value] : cases) {
        EXPECT_EQ(agent.set(device, change.uri, change.property, change.value), *value != '\0') << change.value;
        if (*value != '\0') {
            EXPECT_EQ(agent.value(device, change.uri, change.property), value);
        }
    }
}

TEST_F(AgentHome, DevicesOfTheHubTellByEventsAlone) {
    connect();
    ASSERT_EQ(homeloom_core_set_sse_cb(client, 1 | 4, onEvent, this), 0);
    ASSERT_EQ(homeloom_client_subscribe(client, "hub-plug", R"(["/capability/switch/main/0"])", onUpdate, this), 0);
    char* reply = nullptr;
    const char* const on = R"({"commands":[{"component":"main","capability":"switch","command":"on"}]})";
    ASSERT_EQ(homeloom_core_execute_device(client, "hub-plug", on, &reply), 0);
    EXPECT_THAT(owned(reply), HasSubstr("ACCEPTED"));
    agent.setStatus("hub-plug", simulator::Disconnected);
    agent.sendEvent(256, "{}");
    EXPECT_THAT(taken(),
                ElementsAre(AllOf(StartsWith("event 1 {\"deviceId\":\"hub-plug\""), HasSubstr("\"value\":\"on\""),
                                  HasSubstr("\"valueType\":\"string\""), HasSubstr("\"stateChange\":true")),
                            R"(event 4 {"deviceId":"hub-plug","locationId":"home","status":"OFFLINE"})"));
    agent.setStatus("hub-plug", simulator::Connected);
    ASSERT_EQ(homeloom_core_get_device_capability_status(client, "hub-plug", "main", "switch", &reply), 0);
    EXPECT_EQ(owned(reply), R"({"switch":{"value":"on"}})");
    EXPECT_EQ(homeloom_core_execute_device(client, "hub-plug", R"({"commands":[{"command":"fly"}]})", &reply), -22);
}

TEST_F(AgentHome, ASceneSetsItsDevicesAndAnInfraredDeviceGetsItsModel) {
    connect();
    EXPECT_EQ(homeloom_core_execute_scene_async(client, "home", "good-night", onJson, this), 0);
    EXPECT_THAT(taken(), ElementsAre(R"(json 0 {"id":"good-night","result":"Success"})"));
    EXPECT_EQ(agent.value("front-door", "/capability/lock/main/0", "lock"), "\"locked\"");
    EXPECT_EQ(agent.value("blind", "/capability/windowShade/0", "windowShade"), "\"open\"") << "it takes its time";
    homeloom::clock::advance(std::chrono::minutes(1));
    EXPECT_EQ(agent.value("blind", "/capability/windowShade/0", "windowShade"), "\"closed\"");

    const char* const fan = R"({"ocfDeviceType":"oic.d.fan","parentDeviceId":"tv-living","label":"Fan"})";
    char* reply = nullptr;
    ASSERT_EQ(homeloom_core_create_ir_device(client, "home", fan, &reply), 0);
    EXPECT_EQ(owned(reply), R"({"deviceId":"ir-new-1"})");
    EXPECT_EQ(agent.device("ir-new-1")->vid, "HL-IR-FAN");
}

#include <cstdlib>

#include "AgentTest.h"

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
    template <class Handle, int (*Get)(Handle, int, char**), int (*Destroy)(Handle)>
    static void onList(int error, Handle* list, int count, void* userData) {
        EXPECT_EQ(error, 0);
        onDeviceList<Handle, Get, Destroy>(list, count, userData);
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

TEST_F(AgentHome, PresentListsComeAfterRegistration) {
    connect();
    registerLists();
    EXPECT_THAT(taken(), ElementsAre(StartsWith("list tv-living tv-bedroom washer"),
                                     StartsWith("list tv-living tv-bedroom washer")));
    agent.load(simulator::Home());
    registerLists();
    EXPECT_THAT(taken(), ElementsAre("list")) << "an empty home has no details";
    homeloom_client_device_detail_h* list = nullptr;
    int count = 0;
    EXPECT_EQ(homeloom_client_get_device_detail_list(client, &list, &count), HOMELOOM_CLIENT_ERROR_NO_DATA);
}

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

TEST_F(AgentHome, WritingAnswersThenTellsTheSubscribers) {
    connect();
    ASSERT_EQ(homeloom_client_subscribe(client, "washer", R"(["/operational/state/vs/0"])", onUpdate, this), 0);
    const int code = homeloom_client_set_remote_attributes(client, "washer", stateUri,
                                                           R"({"x.com.norvane.da.state":"Run"})", onRemote, this);
    ASSERT_EQ(code, 0);
    const std::string run =
        R"({"x.com.norvane.da.state":"Run","x.com.norvane.da.progress":"Wash","x.com.norvane.da.remainingMinutes":42})";
    EXPECT_THAT(taken(),
                ElementsAre("remote 0 washer /operational/state/vs/0 " + run,
                            StartsWith("update washer /operational/state/vs/0 " + run +
                                       R"( {"x.com.norvane.da.state":"String","x.com.norvane.da.progress":"String")")));
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

TEST_F(AgentHome, ReactionsMayTakeTheirTime) {
    connect();
    const char* const uri = "/capability/videoStream/main/0";
    ASSERT_EQ(
        homeloom_client_subscribe(client, "porch-camera", R"(["/capability/videoStream/main/0"])", onUpdate, this), 0);
    ASSERT_EQ(
        homeloom_client_set_remote_attributes(client, "porch-camera", uri, R"({"liveStream":true})", onRemote, this),
        0);
    EXPECT_THAT(taken(), ElementsAre(HasSubstr("remote 0"), HasSubstr("\"stream\":\"\"")));
    agent.hurry();
    EXPECT_THAT(taken(), ElementsAre(HasSubstr("InHomeURL")));
}

TEST_F(AgentHome, TextsInsideACallbackAreGoneAfterwards) {
    connect();
    static std::string seen;
    const auto onJsonCopy = [](int, const char*, const char* json, void*) { seen = json; };
    ASSERT_EQ(homeloom_core_get_scene_icon_list_async(client, onJsonCopy, nullptr), 0);
    agent.waitIdle();
    EXPECT_THAT(seen, HasSubstr("moon"));
}

TEST_F(AgentHome, ListsOfEveryFamily) {
    connect();
    const auto onScenes = onList<homeloom_core_scene_h, homeloom_core_scene_get_string, homeloom_core_scene_destroy>;
    const auto onRules = onList<homeloom_core_rule_h, homeloom_core_rule_get_string, homeloom_core_rule_destroy>;
    const auto onLocations =
        onList<homeloom_core_location_h, homeloom_core_location_get_string, homeloom_core_location_destroy>;
    const auto onFavorites =
        onList<homeloom_core_favorite_h, homeloom_core_favorite_get_string, homeloom_core_favorite_destroy>;
    const auto onApps = onList<homeloom_core_installed_app_h, homeloom_core_installed_app_get_string,
                               homeloom_core_installed_app_destroy>;
    const auto onScene = [](int error, homeloom_core_scene_h scene, void* userData) {
        self(userData).note("scene " + std::to_string(error));
        if (scene != nullptr) {
            homeloom_core_scene_destroy(scene);
        }
    };
    EXPECT_EQ(homeloom_core_get_scene_list_async(client, "parents", onScenes, this), 0);
    EXPECT_EQ(homeloom_core_get_scene_async(client, "home", "movie-time", onScene, this), 0);
    EXPECT_EQ(homeloom_core_get_scene_async(client, "parents", "movie-time", onScene, this), 0);
    EXPECT_EQ(homeloom_core_get_rule_list_async(client, "parents", onRules, this), 0);
    EXPECT_EQ(homeloom_core_get_location_list_async(client, onLocations, this), 0);
    EXPECT_EQ(homeloom_core_get_favorite_list_async(client, "home", onFavorites, this), 0);
    EXPECT_EQ(homeloom_core_get_favorite_list_async(client, "parents", onFavorites, this), 0);
    EXPECT_EQ(homeloom_core_get_installed_app_list_async(client, onApps, this), 0);
    EXPECT_THAT(taken(), ElementsAre("list parents-welcome", "scene 0", "scene -61", "list parents-heating",
                                     "list home parents", "list fav-washer fav-light fav-night", "list",
                                     "list installed-energy installed-dr installed-savings installed-dr-parents"));

    char** ids = nullptr;
    int count = 0;
    ASSERT_EQ(homeloom_core_get_hub_device_id_list(client, &ids, &count), 0);
    EXPECT_EQ(count, 3);
    for (int i = 0; i < count; ++i) {
        std::free(ids[i]);
    }
    std::free(ids);

    homeloom_client_device_detail_h* details = nullptr;
    ASSERT_EQ(homeloom_client_get_device_detail_list(client, &details, &count), 0);
    char** types = nullptr;
    int typeCount = 0;
    int status = -1;
    ASSERT_EQ(homeloom_client_device_detail_get_string_array(details[2], 1, &types, &typeCount), 0);
    ASSERT_EQ(typeCount, 2);
    EXPECT_EQ(owned(types[0]) + owned(types[1]), "oic.wk.doic.d.washer");
    std::free(types);
    EXPECT_EQ(homeloom_client_device_detail_get_int(details[1], 5, &status), 0);
    EXPECT_EQ(status, 2);
    EXPECT_EQ(agent.holdings().records, count);
    for (int i = 0; i < count; ++i) {
        homeloom_client_device_detail_destroy(details[i]);
    }
    std::free(details);
}

TEST_F(AgentHome, AnswersOfTheCloud) {
    connect();
    EXPECT_EQ(homeloom_core_execute_scene_async(client, "home", "good-night", onJson, this), 0);
    EXPECT_EQ(homeloom_core_create_scene_async(client, "home", R"({"name":"New"})", onJson, this), 0);
    EXPECT_EQ(homeloom_core_update_scene_async(client, "home", "scene-new-1", R"({"name":"Old"})", onJson, this), 0);
    EXPECT_EQ(homeloom_core_delete_scene_async(client, "home", "scene-new-1", onJson, this), 0);
    EXPECT_EQ(homeloom_core_update_rule_status_async(client, "home", "night-watch", true, onJson, this), 0);
    EXPECT_EQ(homeloom_core_get_location_users_async(client, "parents", onJson, this), 0);
    EXPECT_EQ(homeloom_core_set_wifilocker_user_setting(client, R"({"enabled":0})", onJson, this), 0);
    EXPECT_EQ(homeloom_core_get_wifilocker_user_setting(client, onJson, this), 0);
    EXPECT_EQ(homeloom_core_get_device_json_async(client, "nobody", onJson, this), 0);
    EXPECT_THAT(
        taken(),
        ElementsAre(R"(json 0 {"id":"good-night","result":"Success"})", R"(json 0 {"id":"scene-new-1","name":"New"})",
                    R"(json 0 {"id":"scene-new-1","name":"Old"})", R"(json 0 {"id":"scene-new-1","name":"Old"})",
                    HasSubstr(R"("status":"Enabled")"),
                    R"(json 0 {"locationId":"parents","owner":{"norvaneAccountId":"user-jun","name":"Jun"}})",
                    R"(json 0 {"message":"SUCCESS"})", R"(json 0 {"message":"SUCCESS","data":{"enabled":0}})",
                    "json -61 null"));
    EXPECT_EQ(agent.value("front-door", "/capability/lock/main/0", "lock"), "\"locked\"");
    EXPECT_EQ(agent.value("blind", "/capability/windowShade/0", "windowShade"), "\"closed\"");

    char* reply = nullptr;
    const char* const energy = R"({"method":"GET","uri":"/v3/tv/consumped-energy-devices?period=thisMonth"})";
    ASSERT_EQ(homeloom_core_execute_installed_app(client, "installed-energy", energy, &reply), 0);
    EXPECT_THAT(owned(reply), HasSubstr(R"({"deviceId":"washer","consumpedEnergy":9200})"));
    ASSERT_EQ(
        homeloom_core_create_ir_device(
            client, "home", R"({"ocfDeviceType":"oic.d.fan","parentDeviceId":"tv-living","label":"Fan"})", &reply),
        0);
    EXPECT_EQ(owned(reply), R"({"deviceId":"ir-new-2"})");
    EXPECT_EQ(agent.device("ir-new-2")->vid, "HL-IR-FAN");
    ASSERT_EQ(homeloom_core_locksmith_create_keyvalue(client, "k", "v", &reply), 0);
    EXPECT_EQ(owned(reply), R"({"key":"k","value":"v"})");
    ASSERT_EQ(homeloom_core_locksmith_delete_keyvalue(client, "k", &reply), 0);
    owned(reply);
    EXPECT_EQ(homeloom_core_locksmith_get_keyvalue(client, "k", &reply), -61);
    homeloom_core_favorite_h favorite = nullptr;
    ASSERT_EQ(homeloom_core_create_favorite(client, "home", R"({"memberId":"oven","order":3})", &favorite), 0);
    int order = 0;
    EXPECT_EQ(homeloom_core_favorite_get_int(favorite, 9, &order), 0);
    EXPECT_EQ(order, 3);
    homeloom_core_favorite_destroy(favorite);
}

TEST_F(AgentHome, LaunchConditionsAreKeptAsCopies) {
    connect();
    homeloom_client_app_launch_condition_h condition = nullptr;
    ASSERT_EQ(homeloom_client_app_launch_condition_create(client, &condition), 0);
    EXPECT_EQ(homeloom_client_app_launch_condition_set_string(condition, 1, "doorbell"), 0);
    EXPECT_EQ(homeloom_client_app_launch_condition_set_string(condition, 99, "x"), -22);
    EXPECT_EQ(homeloom_client_remove_app_launch_condition(client, condition), -61);
    EXPECT_EQ(homeloom_client_add_app_launch_condition(client, condition), 0);
    bool isAdded = false;
    EXPECT_EQ(homeloom_client_is_app_launch_condition_added(client, condition, &isAdded), 0);
    EXPECT_TRUE(isAdded);
    EXPECT_EQ(agent.holdings().records, 1);
    EXPECT_EQ(homeloom_client_app_launch_condition_destroy(condition), 0);
    ASSERT_EQ(agent.conditions().size(), 1u);
    EXPECT_EQ(agent.conditions().front().deviceId, "doorbell");
}

#include "Homeloom/Devices/DeviceHandler.h"
#include "clock/Clock.h"

#include <chrono>
#include <future>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <vconf.h>

#include "HandlerFixture.h"
#include "Helpers/CEndpointListHelper.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "Homeloom/UIMeta/Metadata.h"
#include "support/Screen.h"

namespace VMFramework::HomeLoom {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr char OPERATION[] = "/operational/state/vs/0";
constexpr char DETAIL[] = "/detail/vs/0";
constexpr char WASHER[] = R"({"message":"SUCCESS","data":{"version":"1","vid":"washer-vid",
  "iconUrl":{"mid":"preload://washer.png"},"dpInfo":[{"os":"solenne","serverDpUri":"dp://washer"}],
  "language":[{"locale":"en","poCodes":[{"po":"__run","label":"Running"},{"po":"__ready","label":"Ready"}]}],
  "ms":[{"order":1,"label":{"label":"<st>","arguments":[{"n":"st","href":"/operational/state/vs/0",
    "property":"x.com.norvane.da.state","alternatives":[{"key":"Run","value":"__run"},
    {"key":"Ready","value":"__ready","type":"inactive"}]}]}},
    {"order":2,"label":{"label":"<d>","arguments":[{"n":"d","href":"/detail/vs/0","property":"detail"}]}}],
  "ma":[{"controlType":"ToggleSwitch","link":{"href":"/operational/state/vs/0"},
    "property":"x.com.norvane.da.state","order":1,
    "alternatives":[{"key":"Run","type":"on"},{"key":"Ready","type":"off"}]}]}})";
constexpr char RUN[] = R"({"x.com.norvane.da.state":"Run","x.com.norvane.da.remainingTime":"00:42"})";
constexpr char RUN_TYPES[] = R"({"x.com.norvane.da.state":"String","x.com.norvane.da.remainingTime":"String"})";

constexpr char BUTTON[] = R"({"message":"SUCCESS","data":{"version":"1","ms":[{"label":{"label":"<b>",
  "arguments":[{"n":"b","href":"/capability/button/0","property":"button"}]}}]}})";
constexpr char BUTTON_URI[] = "/capability/button/0";

constexpr char TV[] = R"({"message":"SUCCESS","data":{"version":"1","ms":[{"label":{"label":"<t>",
  "arguments":[{"n":"t","href":"/nvn/tv/contentinfo","property":"title"}]}},{"label":{"label":"<p>",
  "arguments":[{"n":"p","href":"/power/vs/0","property":"power"}]}}]}})";
const std::vector<std::string> TV_URIS = {"/nvn/tv/contentinfo", "/power/vs/0"};

constexpr char CAMERA[] = R"({"message":"SUCCESS","data":{"version":"1",
  "dpResources":[{"link":{"href":"/capability/videoStream/main/0"},"property":"stream"}]}})";

class DeviceHandlerTest : public HandlerFixture {
protected:
    std::shared_ptr<Device> addWasher() {
        parse("washer-vid", WASHER);
        const auto washer = add("washer", "washer-vid", "oic.d.washer", {OPERATION, DETAIL});
        settle();
        takeNotifications();
        return washer;
    }
};

TEST_F(DeviceHandlerTest, AnUpdateIsEvaluatedAndNotified) {
    addWasher();
    agent.sendUpdate("washer", OPERATION, RUN, RUN_TYPES);
    settle();
    const auto sent = takeNotifications();
    ASSERT_THAT(sent, SizeIs(1));
    EXPECT_EQ(
        "notify hl_device_state_updated device_id='washer' subdevice_type='oic.d.washer' state_text='Running' "
        "context_value='{\"uri\":\"/operational/state/vs/0\",\"property\":\"x.com.norvane.da.state\","
        "\"value\":\"Running\"}' icon_url='washer.png' control_type='ToggleSwitch' active_state=1 "
        "running_state=true subdevtype_enum=10 controllable=1 action_state='on' "
        "action_url='/operational/state/vs/0' cloud_device_status=0 solenne_server_dp_uri='dp://washer' "
        "num_of_sub_device_cards=0",
        toText(*sent.front()));
}

TEST_F(DeviceHandlerTest, AnUpdateThatSaysNothingStillNotifiesAndABadOneDoesNot) {
    const auto washer = addWasher();
    const struct {
        const char* what;
        const char* device;
        const char* rep;
        const char* types;
        std::size_t notifications;
    } cases[] = {
        {"unknown device", "nobody", RUN, RUN_TYPES, 0},
        {"unknown property", "washer", R"({"a":1})", R"({"a":"Integer"})", 1},
        {"property without a value", "washer", "{}", RUN_TYPES, 1},
        {"unknown type", "washer", RUN, R"({"x.com.norvane.da.state":"Float"})", 1},
        {"representation that is no object", "washer", "[]", RUN_TYPES, 0},
        {"malformed types", "washer", RUN, "{", 0},
        {"empty texts", "washer", "", "", 0},
        {"value of another type", "washer", R"({"x.com.norvane.da.state":{}})", RUN_TYPES, 0},
        {"first of two properties in other case", "washer",
         R"({"X.com.norvane.da.State":"Run","X.COM.norvane.da.state":"Ready"})",
         R"({"X.com.norvane.da.State":"String","X.COM.norvane.da.state":"String"})", 1},
    };
    for (const auto& c : cases) {
        agent.sendUpdate(c.device, OPERATION, c.rep, c.types);
        settle();
        EXPECT_THAT(takeNotifications(), SizeIs(c.notifications)) << c.what;
    }
    // Stored as the device spells it.
    EXPECT_EQ("Run", washer->GetValue(OPERATION, "X.com.norvane.da.State"));
}

TEST_F(DeviceHandlerTest, OnlyWhatConcernsItChangesTheRunningState) {
    const auto washer = addWasher();
    agent.sendUpdate("washer", OPERATION, RUN, RUN_TYPES);
    agent.sendUpdate("washer", DETAIL, R"({"detail":"x"})", R"({"detail":"String"})");
    settle();
    takeNotifications();
    hubDevices = {"washer"};
    agent.sendUpdate("washer", OPERATION, R"({"x.com.norvane.da.state":"Ready"})", RUN_TYPES);
    settle();
    EXPECT_TRUE(washer->GetRunningState());
    EXPECT_THAT(takeNotifications(), IsEmpty()) << "a hub device's updates come another way";
    hubDevices.clear();
    agent.sendUpdate("washer", OPERATION, R"({"x.com.norvane.da.state":"Ready"})", RUN_TYPES);
    settle();
    EXPECT_FALSE(washer->GetRunningState());
    EXPECT_EQ(0, takeNotifications().back()->properties.number("active_state"));
}

TEST_F(DeviceHandlerTest, APressOfAButtonShowsForOneTimer) {
    parse("button-vid", BUTTON);
    const auto button = add("button", "button-vid", "x.com.hl.d.remotecontroller", {BUTTON_URI});
    settle();
    takeNotifications();
    const auto press = [&](const char* value) {
        agent.sendUpdate("button", BUTTON_URI, std::string(R"({"button":")") + value + "\"}", R"({"button":"String"})");
        settle();
        return takeTexts("state_text");
    };
    EXPECT_THAT(press("Ready"), ElementsAre("Ready"));
    EXPECT_EQ(0, elapsedTimers());
    EXPECT_THAT(press("pushed"), ElementsAre("pushed"));
    EXPECT_THAT(press("held"), ElementsAre("held"));
    EXPECT_EQ(1, elapsedTimers()) << "a second press takes the first one's timer";
    EXPECT_THAT(takeTexts("state_text"), ElementsAre("Ready"));
    EXPECT_EQ(0, elapsedTimers());

    handler->OnResourceUpdateEvent({"button", BUTTON_URI, {{"button", "held", "String"}}});
    handler->OnResourceUpdateEvent({"button", BUTTON_URI, {}});
    EXPECT_EQ("Ready", button->GetValue(BUTTON_URI, "button"));
    handler->ClearTimers();
    EXPECT_EQ(0, elapsedTimers());
}

TEST_F(DeviceHandlerTest, SubscribesWhatTheMetadataNamesAndTheDeviceHas) {
    parse("tv-vid", TV);
    parse("washer-vid", WASHER);
    add("awake-tv", "tv-vid", "oic.d.tv", TV_URIS);
    add("asleep-tv", "tv-vid", "oic.d.tv", TV_URIS, 2);
    add("self", "tv-vid", "oic.d.tv", TV_URIS);
    hubDevices = {"hub-washer"};
    add("hub-washer", "washer-vid", "oic.d.washer", {OPERATION});
    add("poor-washer", "washer-vid", "oic.d.washer", {DETAIL, "/not/in/metadata"});
    add("empty-washer", "washer-vid", "oic.d.washer", {"/not/in/metadata"});
    add("unparsed", "other-vid", "oic.d.washer", {OPERATION});
    const auto expected = std::set<std::string>{R"(awake-tv ["/nvn/tv/contentinfo","/power/vs/0"])",
                                                R"(asleep-tv ["/power/vs/0"])", R"(poor-washer ["/detail/vs/0"])"};
    EXPECT_EQ(expected, subscriptions());

    for (const auto& [id, device] : handler->GetAllDevice()) {
        handler->UnsubscribeResourceUri(device);
    }
    EXPECT_THAT(subscriptions(), IsEmpty());
    handler->SubscribeForAllDevices();
    EXPECT_EQ(expected, subscriptions());
}

TEST_F(DeviceHandlerTest, ATVThatWakesIsReadAgainAndAWasherIsNot) {
    parse("tv-vid", TV);
    const auto tv = add("tv", "tv-vid", "oic.d.tv", TV_URIS, 1);
    const auto washer = addWasher();
    agent.resetCalls();
    handler->HandleDeviceInfo(infoOf("tv", "tv-vid", "oic.d.tv", 0), TV_URIS, {});
    settle();
    EXPECT_EQ(2, agent.callCount("homeloom_client_get_remote_attributes"));
    EXPECT_EQ(1, agent.callCount("homeloom_client_subscribe"));
    EXPECT_EQ(DEVICE_STATUS_CONNECTED, tv->GetStatus());

    agent.resetCalls();
    takeNotifications();
    for (const auto& [status, text] : {std::pair{1, "Disconnected"}, {2, "Inactive"}, {3, ""}}) {
        handler->HandleDeviceInfo(infoOf("washer", "washer-vid", "oic.d.washer", status), {}, {"/new"});
        EXPECT_EQ(text, washer->GetStateText());
    }
    settle();
    EXPECT_THAT(agent.calls(), IsEmpty());
    EXPECT_THAT(takeNotifications(), IsEmpty());
    EXPECT_TRUE(washer->HasResource(OPERATION));
    EXPECT_TRUE(washer->HasResource("/new"));
}

TEST_F(DeviceHandlerTest, ParsesTheMetadataOfEachVidThenReadsAndSubscribes) {
    setUiMetadata("washer-vid", WASHER);
    add("washer", "washer-vid", "oic.d.washer", {OPERATION});
    add("moved", "old-vid", "oic.d.washer", {DETAIL});
    handler->HandleDeviceInfo(infoOf("moved", "washer-vid", "oic.d.washer"), {}, {});
    handler->addVidDeviceMap("washer-vid", "gone");  // costs nobody else's turn
    EXPECT_THAT(subscriptions(), IsEmpty());

    agent.resetCalls();
    handler->ParseMetadata();
    settle();
    EXPECT_EQ(1, agent.callCount("homeloom_client_get_ui_metadata"));
    EXPECT_THAT(subscriptions(),
                UnorderedElementsAre(R"(washer ["/operational/state/vs/0"])", R"(moved ["/detail/vs/0"])"));
    EXPECT_EQ(2, agent.callCount("homeloom_client_get_remote_attributes"));
    EXPECT_THAT(takeTexts("device_id"), UnorderedElementsAre("washer", "moved"));

    // A document that has gone bad since: the one before serves.
    setUiMetadata("washer-vid", "no JSON");
    handler->ParseMetadata();
    settle();
    EXPECT_EQ(4, agent.callCount("homeloom_client_get_remote_attributes"));

    for (const char* id : {"washer", "moved", "gone", "gone"}) {
        handler->DeleteVidDeviceMap("washer-vid", id);
    }
    agent.resetCalls();
    handler->ParseMetadata();
    settle();
    EXPECT_THAT(agent.calls(), IsEmpty());
}

TEST_F(DeviceHandlerTest, ADeviceThatFailsCostsNoOtherOfItsVid) {
    parse("camera-AVPlatform", CAMERA);
    add("one", "camera-AVPlatform", "oic.d.camera", {});
    add("two", "camera-AVPlatform", "oic.d.camera", {});
    int asked = 0;
    handler->SetAccessTokenGetter([&asked]() -> std::string {
        ++asked;
        throw std::runtime_error("no token");
    });
    handler->ParseMetadata();
    settle();
    EXPECT_EQ(2, asked);
}

TEST_F(DeviceHandlerTest, ReadsAttributesOfConnectedDevices) {
    const auto washer = addWasher();
    const auto other = add("other", "other-vid", "oic.d.light", {"/u"});
    agent.resetCalls();
    EXPECT_FALSE(handler->GetProperty("nobody"));
    EXPECT_FALSE(handler->GetProperty(std::shared_ptr<Device>()));
    washer->SetStatus(DEVICE_STATUS_DISCONNECTED);
    EXPECT_FALSE(handler->GetProperty(washer));
    EXPECT_EQ("Disconnected", washer->GetStateText());
    EXPECT_THAT(agent.calls(), IsEmpty());
    EXPECT_THAT(takeNotifications(), IsEmpty());

    // Nothing to ask for: the present state goes out.
    EXPECT_TRUE(handler->GetProperty("other"));
    EXPECT_THAT(takeNotifications(), SizeIs(1));

    // Of its two resources a failed call costs one, and so does a failed answer. An answer that comes twice is one.
    washer->SetStatus(DEVICE_STATUS_CONNECTED);
    for (const auto& [fault, notifications] :
         {std::pair(simulator::Fault::fail(-5), 1u), std::pair(simulator::Fault::answer(-5), 1u),
          std::pair(simulator::Fault::twice(), 2u)}) {
        agent.resetCalls();
        agent.fault("homeloom_client_get_remote_attributes", fault.times(1));
        EXPECT_TRUE(handler->GetProperty(washer));
        settle();
        EXPECT_EQ(2, agent.callCount("homeloom_client_get_remote_attributes"));
        EXPECT_THAT(takeNotifications(), SizeIs(notifications));
    }
}

TEST_F(DeviceHandlerTest, OfAGenericMetadataTheFirstUriThatAnswersIsTheOne) {
    std::string document = WASHER;
    document.replace(document.find("washer-vid"), 10, "generic-default-metadata");
    parse("generic-vid", document);
    add("washer", "generic-vid", "oic.d.washer", {OPERATION, DETAIL});
    agent.fault("homeloom_client_get_remote_attributes", simulator::Fault::fail(-5).times(1));
    agent.resetCalls();
    EXPECT_TRUE(handler->GetProperty("washer"));
    EXPECT_TRUE(handler->GetProperty("washer"));
    settle();
    EXPECT_EQ(3, agent.callCount("homeloom_client_get_remote_attributes"));
    agent.fault("homeloom_client_get_remote_attributes", simulator::Fault::fail(-5));
    EXPECT_TRUE(handler->GetProperty("washer"));
    EXPECT_EQ(OPERATION, Metadata::GetInstance().FindUiMetadata("generic-vid")->generic_subscribe_uri);
}

TEST_F(DeviceHandlerTest, ReportsTheStatusByType) {
    const struct {
        const char* type;
        int status;
        int reported;
    } cases[] = {{"oic.d.tv", 2, 0}, {"oic.d.krefrigerator", 2, 0}, {"oic.d.refrigerator", 2, 2}, {"oic.d.tv", 1, 1},
                 {"oic.d.tv", 3, 3}, {"oic.d.washer", 7, 7}};
    for (const auto& [type, status, reported] : cases) {
        EXPECT_EQ(reported, handler->GetDeviceStatus(std::make_shared<Device>(infoOf("id", "vid", type, status))))
            << type << " " << status;
    }
    EXPECT_EQ(0, handler->SubDeviceType("oic.d.unheardof"));
    EXPECT_EQ(6, handler->SubDeviceType("x.com.hl.d.monitor"));
    EXPECT_EQ(48, handler->SubDeviceType("device-type"));
}

TEST_F(DeviceHandlerTest, CountsWhatTheUserSees) {
    EXPECT_EQ(0, handler->GetVisibleDeviceCount());
    EXPECT_TRUE(handler->IsEmpty());
    for (const char* type :
         {"x.com.hl.d.hub", "x.com.hl.d.bridge", "oic.d.wirelessrouter", "x.com.hl.d.mobile.presence", "oic.d.light"}) {
        add(type, "vid", type, {});
    }
    add("self", "vid", "oic.d.tv", {});
    add("other-tv", "vid", "oic.d.tv", {});
    add("light", "vid", "oic.d.light", {});
    EXPECT_EQ(3, handler->GetVisibleDeviceCount());
    EXPECT_THAT(handler->UpdateDeviceList({"light", "self", "nobody", "oic.d.light", "x.com.hl.d.hub"}),
                ElementsAre("oic.d.wirelessrouter", "other-tv", "x.com.hl.d.bridge", "x.com.hl.d.mobile.presence"));
    EXPECT_EQ(8u, handler->GetDeviceMapSize());
    handler->DeleteDevice("light");
    EXPECT_EQ("", handler->GetVid("light"));
    handler->Quit();
    EXPECT_EQ(0, handler->GetVisibleDeviceCount());
    handler->DeleteDeviceMap();
    EXPECT_TRUE(handler->IsEmpty());
}

TEST_F(DeviceHandlerTest, KnowsThisTVOnceTheSettingTellsIt) {
    const auto other = std::make_shared<DeviceHandler>(TesselHandler::GetInstance());
    for (const char* setting : {"", "no json", "{}", R"({"di":""})", R"({"di":{}})"}) {
        vconf_set_str("db/es_master/signup_info", setting);
        EXPECT_FALSE(other->IsMyTV("")) << setting;
    }
    vconf_set_str("db/es_master/signup_info", R"({"di":"tv"})");
    EXPECT_TRUE(other->IsMyTV("tv"));
    vconf_set_str("db/es_master/signup_info", R"({"di":"another"})");
    EXPECT_TRUE(other->IsMyTV("tv"));
}

TEST_F(DeviceHandlerTest, ACameraTellsItsStream) {
    constexpr char STREAM[] = "/capability/videoStream/main/0";
    parse("camera-AVPlatform", CAMERA);
    add("camera", "camera-AVPlatform", "oic.d.camera", {STREAM});
    handler->SetAccessTokenGetter([] { return std::string("token"); });
    // No state of the metadata names it, so it is told in answer to requests only.
    std::vector<device_property_info_struct> properties;
    ASSERT_TRUE(handler->BuildResourceData("camera", STREAM, R"({"stream":"rtsp://here"})", R"({"stream":"String"})",
                                           properties));
    handler->OnResourceUpdateEvent({"camera", STREAM, properties});
    const auto reports = takeNotifications();
    ASSERT_THAT(reports, SizeIs(1));
    EXPECT_EQ("rtsp://here", reports[0]->properties.text("camera_stream_url"));
    EXPECT_EQ("token", reports[0]->properties.text("accesstoken"));
    handler->UpdateAllDevicesByMetadata();
    EXPECT_TRUE(handler->FindDevice("camera")->IsControllableDevice());
}

// A thread that wants the handler's mutex while the agent is asked must get it: every reply would wait for it.
TEST_F(DeviceHandlerTest, HoldsItsMutexAcrossNoAgentCall) {
    setUiMetadata("tv-vid", TV);
    add("tv", "tv-vid", "oic.d.tv", TV_URIS, 1);
    add("camera", "camera-vid", "oic.d.camera", {"/capability/button/0", "/capability/button/main/0"});
    agent.resetCalls();
    std::set<std::string> blocking;
    const int observer = agent.addCallObserver([&](const std::string& function, const std::vector<std::string>&) {
        auto isFree = std::async(std::launch::async, [&] { handler->Lock(); });
        if (isFree.wait_for(std::chrono::seconds(2)) != std::future_status::ready) {
            blocking.insert(function);
        }
    });
    handler->ParseMetadata();
    settle();
    handler->HandleDeviceInfo(infoOf("tv", "tv-vid", "oic.d.tv", 0), TV_URIS, {});
    settle();
    handler->UnsubscribeResourceUri(handler->FindDevice("tv"));
    handler->GetDeviceData(IEndpointListHelper::Create());
    handler->GetDeviceIcons(nullptr, "tv");
    handler->GetDeviceIcons(nullptr, "");
    agent.removeCallObserver(observer);
    EXPECT_THAT(blocking, IsEmpty());
    for (const char* function :
         {"homeloom_client_get_ui_metadata", "homeloom_client_get_remote_attributes", "homeloom_client_subscribe",
          "homeloom_client_unsubscribe", "homeloom_client_is_app_launch_condition_added",
          "homeloom_core_get_device_json_async", "homeloom_core_get_device_list_json_async"}) {
        EXPECT_LT(0, agent.callCount(function)) << function;
    }
}

TEST_F(DeviceHandlerTest, RepliesThatComeAfterItsEndFindNothing) {
    addWasher();
    agent.fault("homeloom_client_get_remote_attributes", simulator::Fault::late(std::chrono::hours(1)));
    handler->GetProperty("washer");
    handler->Deinit();
    const std::weak_ptr<DeviceHandler> weak = handler;
    handler.reset();
    EXPECT_TRUE(weak.expired());
    homeloom::clock::advance(std::chrono::hours(1));
    agent.sendUpdate("washer", OPERATION, RUN, RUN_TYPES);
    handler = std::make_shared<DeviceHandler>(TesselHandler::GetInstance());
    settle();
    EXPECT_THAT(takeNotifications(), IsEmpty());
    EXPECT_THAT(agent.escapedExceptions(), IsEmpty());
}

}  // namespace
}  // namespace VMFramework::HomeLoom

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <homeloom_client.h>

#include "clock/Turner.h"
#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
namespace settings = homeloom::desktop::settings;
using namespace std::chrono_literals;
using simulator::Device;
using simulator::Fault;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr char kDetailList[] = "homeloom_client_get_device_detail_list";
constexpr char kSetDetailCallback[] = "homeloom_client_set_device_detail_list_updated_cb";
constexpr char kExists[] = "memory/velmora/hl_dev_exist";
const auto kLate = Fault::late(10s);

std::string ExistsSetting() {
    const auto value = settings::get(kExists);
    return value ? std::get<std::string>(*value) : "";
}

std::atomic<bool> isListWithheld{false};

std::vector<std::string> Ids(const Screen& screen) {
    std::vector<std::string> ids;
    for (const auto& [id, fields] : screen.endpoints) {
        ids.push_back(id);
    }
    return ids;
}

/// A TV whose agent tells nobody of details by itself.
struct QuietDesk : Desk {
    explicit QuietDesk(simulator::Home home) : Desk(std::move(home)) {
        agent.fault(kSetDetailCallback, Fault::fail(-5));
        start();
        waitForStatus(0);
        settle();
    }
};

const std::vector<std::string> kNoDevices{"good-night",  "home",    "lights-at-sunset", "movie-time",
                                          "night-watch", "parents", "parents-heating",  "parents-welcome"};

}  // namespace

// Stands before the agent's, which keeps its list and its count together.
extern "C" int homeloom_client_get_device_detail_list(homeloom_client_h client, homeloom_client_device_detail_h** list,
                                                      int* count) {
    static const auto real = reinterpret_cast<decltype(&homeloom_client_get_device_detail_list)>(
        dlsym(RTLD_NEXT, "homeloom_client_get_device_detail_list"));
    const int result = real(client, list, count);
    for (int i = 0; isListWithheld && i < *count; ++i) {
        homeloom_client_device_detail_destroy((*list)[i]);
    }
    if (isListWithheld) {
        std::free(std::exchange(*list, nullptr));
    }
    return result;
}

// ---- What a home looks like ----

TEST(DeviceList, ShowsTheWholeApartment) {
    Desk desk;
    desk.startAndShow();
    const struct {
        const char* device;
        const char* state;
        int active;
        const char* controlType;
    } cases[] = {
        {"washer", "Ready", 0, "PlayPauseButton"},
        {"dryer", "Drying · 18 min left", 1, "PlayPauseButton"},
        {"aircon", "Cooling · 24°C", 1, "ToggleSwitch"},
        {"bedside-button", "Ready", 0, ""},
        {"hub-plug", "Off", 0, "ToggleSwitch"},
        {"hub-contact", "Closed", 0, ""},
        {"hub-button", "Ready", 0, ""},
    };
    for (const auto& [device, state, active, controlType] : cases) {
        const Screen shown = desk.waitForState(device, state);
        EXPECT_EQ(shown.number(device, "active_state"), active) << device;
        EXPECT_EQ(shown.text(device, "control_type"), controlType) << device;
        EXPECT_NE(shown.text(device, "icon_url"), "") << device;
    }
    EXPECT_EQ(ExistsSetting(), "hl_dev_exist_true");
}

TEST(DeviceList, ComesWithTheDevicesAndTheirStatesFollow) {
    Desk desk(homeloom::test::apartmentWith({"washer", "hub-plug", "tv-hub"}));
    desk.agent.fault("homeloom_client_get_remote_attributes", kLate);
    desk.start();
    const Screen first = desk.waitForLists(2);
    EXPECT_EQ(first.text("washer", "nick"), "Washer");
    EXPECT_EQ(first.text("washer", "room") + ", " + first.text("washer", "location"), "Laundry Room, Home");
    EXPECT_EQ(first.stateText("washer"), "") << "its values are not there yet";
    desk.elapse(10s);
    desk.waitForState("washer", "Ready");
    framework::requestDeviceList();
    EXPECT_EQ(desk.waitForLists(3).stateText("washer"), "Ready");

    // Scenes, routines, locations, devices: in this order, whatever was quicker.
    std::vector<std::string> kinds;
    const auto list =
        desk.waitForReport("a list", [](const auto& r) { return r.kind == Desk::Report::Kind::DeviceList; });
    for (const auto& endpoint : list->endpoints) {
        EXPECT_EQ(endpoint.serviceName, "homeloom");
        const std::string kind = endpoint.interfaceType.value_or("") + " " + endpoint.deviceType.value_or("");
        if (kinds.empty() || kinds.back() != kind) {
            kinds.push_back(kind);
        }
    }
    EXPECT_THAT(kinds, ElementsAre("homeloom-scene homeloom-dummy", "homeloom-routine homeloom-dummy", testing::_,
                                   "homeloom-interfacetype homeloom-device"));
}

TEST(DeviceList, SaysWhetherThereIsAnythingToShow) {
    simulator::Home scenesOnly = homeloom::test::apartmentWith({"tv-living", "tv-hub"});
    Desk desk(scenesOnly);
    desk.startAndShow();
    EXPECT_EQ(ExistsSetting(), "hl_dev_exist_true") << "scenes";
    desk.agent.fault("homeloom_core_get_scene_list_async", Fault::answer(-61));
    settings::unset(kExists);
    framework::request("set_cost_efficiency");
    desk.settle();
    EXPECT_EQ(ExistsSetting(), "hl_dev_exist_false") << "this TV and its hub do not count";
    settings::fail(settings::Operation::Set, kExists);
    framework::request("set_cost_efficiency");
    EXPECT_TRUE(desk.log.waitFor("fail to set vconf device exist false"));

    // A change of locations brings a list and leaves the setting alone.
    settings::fail(settings::Operation::Set, kExists, false);
    settings::unset(kExists);
    desk.settle();
    const int lists = desk.screen().lists;
    desk.agent.renameLocation("home", "Flat");
    desk.elapse(500ms);
    desk.waitForLists(lists + 1);
    EXPECT_EQ(ExistsSetting(), "");
}

// ---- The framework's own request ----

TEST(DeviceList, ThatIsAskedForReadsTheAgentOnlyWhenNothingIsThere) {
    QuietDesk desk(homeloom::test::apartmentWith({"washer"}));
    desk.agent.fault(kDetailList, Fault::fail(-5).times(1));
    framework::requestDeviceList();
    EXPECT_TRUE(desk.log.waitFor("get device detail list error!"));
    desk.settle();
    EXPECT_EQ(desk.screen().lists, 0);

    framework::requestDeviceList();
    desk.waitForState("washer", "Ready");
    desk.settle();
    const int lists = desk.screen().lists;
    const int reads = desk.agent.callCount(kDetailList);
    framework::requestDeviceList();
    desk.waitForLists(lists + 1);
    EXPECT_EQ(desk.agent.callCount(kDetailList), reads);
}

TEST(DeviceList, ThatHoldsLessThanItSaysIsNoEmptyHome) {
    QuietDesk desk(homeloom::test::apartmentWith({"washer"}));
    isListWithheld = true;
    framework::requestDeviceList();
    EXPECT_TRUE(desk.log.waitFor("device detail list does not hold what it says, count : "));
    desk.settle();
    EXPECT_EQ(desk.screen().lists, 0);
    isListWithheld = false;
    framework::requestDeviceList();
    desk.waitForState("washer", "Ready");
}

TEST(DeviceList, OfAHomeWithoutDevicesShowsTheRest) {
    QuietDesk desk(homeloom::test::apartmentWith({}));
    desk.waitForLists(1);
    framework::requestDeviceList();  // and the agent answers that there is no data
    EXPECT_THAT(Ids(desk.waitForLists(2)), ElementsAreArray(kNoDevices));
    EXPECT_EQ(desk.agent.callCount("homeloom_client_get_ui_metadata"), 0);
}

// ---- Records that lack something ----

TEST(DeviceList, LeavesOutWhatHasNoIdModelOrType) {
    Desk desk(homeloom::test::apartmentWith({}));
    desk.start();
    desk.waitForLists(1);
    Device good = *homeloom::test::apartmentWith({"washer"}).device("washer");
    Device nameless = good, modelless = good, typeless = good, plain = good, bare = good;
    nameless.id = "";
    modelless.id = "modelless", modelless.vid = "";
    typeless.id = "typeless", typeless.types = {};
    plain.id = "plain", plain.types = {"oic.wk.d"};
    bare.id = "bare", bare.nick = bare.prefix = bare.location = bare.room = "", bare.resources = {};

    desk.agent.sendDeviceDetailList({nameless, modelless, typeless});
    desk.waitForLists(2);
    desk.settle();
    EXPECT_THAT(Ids(desk.screen()), ElementsAreArray(kNoDevices));
    EXPECT_EQ(desk.agent.callCount("homeloom_client_get_ui_metadata"), 0) << "nothing came, nothing is parsed";

    desk.agent.sendDeviceDetailList({nameless, modelless, good, typeless, plain, bare});
    const Screen shown = desk.waitFor("the good ones", [](const Screen& s) { return s.has("washer"); });
    EXPECT_TRUE(shown.has("plain"));
    EXPECT_TRUE(shown.has("bare"));
    EXPECT_FALSE(shown.has("modelless") || shown.has("typeless") || shown.has(""));
    for (const char* words : {"geting device_id failed or device_id is null", "geting vid failed or vid is null",
                              "geting device_type_array failed or size is 0", "room name is empty"}) {
        EXPECT_TRUE(desk.log.contains(words)) << words;
    }
    const auto list =
        desk.waitForReport("them", [](const auto& report) { return report.endpoint("plain") != nullptr; });
    EXPECT_EQ(list->endpoint("plain")->subDeviceType, "unknown");
}

// ---- An agent that fails the functions of the build ----

class ListFault : public testing::TestWithParam<const char*> {
protected:
    Desk desk{homeloom::test::apartmentWith({"washer", "hub-plug", "tv-hub"})};
};
class LateAnswer : public ListFault {};

const auto kNameOf = [](const auto& function) { return std::string(function.param); };
const char* const kAsyncFunctions[] = {
    "homeloom_core_get_device_list_async",        "homeloom_core_get_scene_list_async",
    "homeloom_core_get_rule_list_async",          "homeloom_core_get_location_list_async",
    "homeloom_core_get_all_location_users_async", "homeloom_core_get_favorite_list_async",
    "homeloom_client_get_remote_attributes"};
INSTANTIATE_TEST_SUITE_P(DeviceListAsync, ListFault, testing::ValuesIn(kAsyncFunctions), kNameOf);
INSTANTIATE_TEST_SUITE_P(DeviceList, ListFault,
                         testing::Values("homeloom_client_get_group_list", "homeloom_core_get_hub_device_id_list",
                                         "homeloom_core_get_device_presentation", "homeloom_client_get_ui_metadata",
                                         "homeloom_client_subscribe", "homeloom_client_device_detail_get_int"),
                         kNameOf);
INSTANTIATE_TEST_SUITE_P(DeviceList, LateAnswer, testing::ValuesIn(kAsyncFunctions), kNameOf);

TEST_P(ListFault, LastsUntilTheNextConnection) {
    desk.agent.fault(GetParam(), Fault::answer(-5));
    desk.start();
    desk.waitForStatus(0);
    if (GetParam() != std::string("homeloom_client_get_group_list")) {  // without names of rooms there is no list
        desk.waitFor("the washer", [](const Screen& shown) { return shown.lists == 2 && shown.has("washer"); });
    }
    desk.settle();
    desk.agent.fault(GetParam(), Fault::twice());
    desk.agent.changeConnection(simulator::Agent::Connection::IoError);
    desk.elapse(5s);
    desk.waitFor("a second connection", [](const Screen& shown) { return shown.signInNotices == 2; });
    desk.waitForState("washer", "Ready");
    desk.waitForState("hub-plug", "Off");
    desk.settle();
}

TEST_P(LateAnswer, IsWaitedFor) {
    desk.agent.fault(GetParam(), Fault::late(2s));
    const homeloom::clock::Turner turner;
    desk.start();
    desk.waitFor("the states", [](const Screen& shown) {
        return shown.lists == 2 && shown.stateText("washer") == "Ready" && shown.stateText("hub-plug") == "Off";
    });
}

// ---- The user leaves in the middle of a build ----

TEST(DeviceList, ThatIsAbandonedLeavesNoDeviceOfTheOldUser) {
    QuietDesk desk(simulator::generateHome(50));
    const auto isSignedOut = [](const Screen& shown) { return shown.signInNotices == 2; };
    desk.atLogLine("old device map size", [&] {
        desk.agent.signOut();
        desk.waitFor("the notice", isSignedOut);
    });
    framework::requestDeviceList();
    desk.waitFor("the notice", isSignedOut);
    desk.settle();
    EXPECT_EQ(desk.screen().lists, 0);
    EXPECT_TRUE(desk.log.contains("manager not available"));
    EXPECT_EQ(desk.agent.subscriptions().size(), 0u);

    desk.agent.signIn();
    desk.waitFor("the notice", [](const Screen& shown) { return shown.signInNotices == 3; });
    framework::requestDeviceList();
    EXPECT_TRUE(desk.waitForLists(1).has("device-49"));
}

TEST(DeviceList, ThatIsBeingBuiltLeavesNoDeviceThatGoesMeanwhile) {
    QuietDesk desk(simulator::generateHome(50));
    for (const auto& staying : std::vector<std::vector<std::string>>{{}, {"device-0"}}) {
        desk.log.clear();
        desk.atLogLine("old device map size", [&] {
            desk.agent.sendDeviceList(staying);
            EXPECT_TRUE(desk.log.waitFor("[_HomeLoomClientDeviceListChanged] before job"));
        });
        framework::requestDeviceList();
        desk.settle();
        desk.agent.sendEvent(2, R"({"lifecycle":"CREATE"})");  // brings one more list
        desk.settle();
        EXPECT_EQ(desk.screen().has("device-0"), !staying.empty());
        EXPECT_FALSE(desk.screen().has("device-49"));
    }
}

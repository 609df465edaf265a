// The TV as a hub, with the hub control application at the other end.

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "Homeloom/Devices/DeviceFactory.h"
#include "Homeloom/Devices/HubDevice.h"
#include "Homeloom/IoTHub/HubIPCProxy.h"
#include "Homeloom/Tessel/TesselHandler.h"
#include "desktop/Guard.h"
#include "desktop/Packages.h"
#include "desktop/RpcPort.h"
#include "desktop/System.h"
#include "simulator/HubApp.h"
#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
namespace packages = homeloom::desktop::packages;
namespace rpc = homeloom::desktop::rpc;
using namespace std::chrono_literals;
using homeloom::desktop::Fields;
using homeloom::desktop::system::setFeature;
using simulator::Agent;
using simulator::CloudFault;
using simulator::Fault;
using simulator::HubApp;
using testing::ElementsAre;
using testing::IsEmpty;
using VMFramework::HomeLoom::HubIPCProxy;

namespace {

constexpr char kFeature[] = "com.norvane/featureconf/iot_hub.support";
constexpr char kUser[] = "mina@home.example";
constexpr char kHub[] = "tv-hub";
const std::string kHubInfo = R"({"hub_di":"tv-hub","user_id":"mina@home.example"})";
const std::string kHubInfoLine = "notify hl_get_hub_info hl_hub_info='" + kHubInfo + "'";

/// The hub control application of one test; it outlives the desk, to which nothing of it may be left.
class App {
public:
    ~App() {
        if (hub.isRunning()) {
            EXPECT_TRUE(hub.waitForConnections(0));
            hub.stop();
        }
    }
    void start(const std::string& info = kHubInfo) {
        hub.start();
        hub.setIdentity(kUser, kHub);
        hub.setHubInfo(info);
    }

    HubApp& hub = HubApp::instance();
};

}  // namespace

class Hub : public testing::Test {
protected:
    Hub() {
        setFeature(kFeature, true);
        packages::setInstalled(HubApp::kAppId);
    }

    /// Starts, and is connected when it returns; from here on reports count.
    void Connect() {
        app.start();
        desk.startAndShow();
        desk.waitForReport("the hub info", [](const auto& report) { return toText(report) == kHubInfoLine; });
        desk.settle();
        desk.mark();
    }

    /// The same in the middle of an onboarding that the test's events carry on.
    void ConnectAndOnboard() {
        Connect();
        app.hub.setOnboarding(HubApp::Course::Manual);
        Expect({"result hl_start_hub_onboarding"}, Ask("hl_start_hub_onboarding", {{"hl_hub_location_id", "home"}}));
    }

    /// That the action makes the plug-in report just these.
    void Expect(const std::vector<std::string>& lines, const std::function<void()>& action) {
        SCOPED_TRACE(testing::PrintToString(lines));
        desk.mark();
        action();
        std::size_t seen = 0;
        if (!lines.empty()) {
            desk.waitForReport("as many reports", [&](const auto&) { return ++seen == lines.size(); });
        }
        if (app.hub.isRunning()) {
            app.hub.waitIdle();
        }
        desk.settle();
        EXPECT_EQ(desk.lines(), lines);
    }
    std::function<void()> Ask(const std::string& name, const Fields& arguments = {}) {
        return [name, arguments] { framework::request(name, arguments); };
    }
    std::function<void()> Event(int number, const std::string& data = "") {
        return [this, number, data] { app.hub.sendEvent(number, data); };
    }
    long Resets() {
        app.hub.waitIdle();
        const auto requests = app.hub.requests();
        return std::count_if(requests.begin(), requests.end(), [](const auto& r) { return r.name == "ResetHub"; });
    }
    bool WaitFor(const std::string& line) { return desk.log.waitFor(line, std::chrono::seconds(30)); }
    void ExpectUnconnected() {
        desk.settle();
        Expect({"result hl_start_hub_onboarding"}, Ask("hl_start_hub_onboarding", {{"hl_hub_location_id", "home"}}));
        Expect({"result hl_start_hub_onboarding"}, Ask("hl_start_hub_onboarding"));
        Expect({"result hl_stop_hub_onboarding"}, Ask("hl_stop_hub_onboarding"));
        Expect({"result hl_reset_hub"}, Ask("hl_reset_hub"));
        Expect({"result hl_reset_dongle"}, Ask("hl_reset_dongle"));
        Expect({"notify hl_get_hub_info"}, Ask("hl_get_hub_info"));
    }

    App app;
    Desk desk{homeloom::test::apartmentWith({kHub, "hub-plug"})};
};

// ---- Onboarding and reset ----

TEST_F(Hub, BadDataOfAnEventHarmsNobody) {
    ConnectAndOnboard();
    for (const char* data : {"", "soon", "99999999999"}) {
        Expect({}, Event(0, data));
        EXPECT_EQ(homeloom::desktop::pluginExceptions().size(), 1u) << data;
        homeloom::desktop::forgetPluginExceptions();
    }
    Expect({"notify hl_hub_onboarding_progress hl_hub_progress=7"}, Event(0, "7 %"));
}

TEST_F(Hub, InfoIsPassedOnAsItStandsAndKeptIfItIsAnObject) {
    ConnectAndOnboard();
    auto& proxy = HubIPCProxy::GetInstance();
    const std::string success = "notify hl_hub_onboarding_progress hl_hub_onboarding_success_data='done'";
    for (const char* info : {"no JSON", "[]", "7", R"({"hub_di":{},"user_id":"jun"})"}) {
        app.hub.setHubInfo(info);
        Expect({success, std::string("notify hl_get_hub_info hl_hub_info='") + info + "'"}, Event(1, "done"));
        EXPECT_EQ(proxy.GetLoginIDHubOnboarded() + " " + proxy.GetHubDeviceID(), "mina@home.example tv-hub") << info;
    }
    // Only an onboarding's end changes what is kept.
    const std::string other = R"({"hub_di":"other"})";
    app.hub.setHubInfo(other);
    Expect({"notify hl_get_hub_info hl_hub_info='" + other + "'"}, Ask("hl_get_hub_info"));
    Expect({"notify hl_get_hub_info hl_hub_info='" + other + "'"}, Event(10, "detached"));
    EXPECT_EQ(proxy.GetHubDeviceID(), kHub);
    Expect({success, "notify hl_get_hub_info hl_hub_info='" + other + "'"}, Event(1, "done"));
    EXPECT_EQ(proxy.GetLoginIDHubOnboarded() + " " + proxy.GetHubDeviceID(), " other");

    app.hub.setAnswers(HubApp::Answers::Malformed);
    Expect({"notify hl_get_hub_info"}, Ask("hl_get_hub_info"));
}

// ---- Connection ----

TEST_F(Hub, WithoutTheFeatureNothingIsArmed) {
    app.start();
    for (const std::optional<bool> feature : {std::optional<bool>(false), std::optional<bool>()}) {
        setFeature(kFeature, feature);
        HubIPCProxy::GetInstance().Start();
        EXPECT_EQ(packages::managerCount() + rpc::holdings().proxies, 0);
    }
    EXPECT_TRUE(desk.log.contains("Fail to get system info com.norvane/featureconf/iot_hub.support"));
    desk.startAndShow();
    packages::install(HubApp::kAppId);
    desk.settle();
    EXPECT_EQ(desk.armedTimers(), 0);
    ExpectUnconnected();
    EXPECT_THAT(app.hub.requests(), IsEmpty());
}

TEST_F(Hub, WithoutIpcThePluginRunsUnconnected) {
    app.start();
    rpc::failCreate(-5);
    desk.startAndShow();
    EXPECT_TRUE(desk.log.contains("RPC PORT InvalidIOException"));
    rpc::failCreate(0);
    ExpectUnconnected();
    EXPECT_THAT(app.hub.requests(), IsEmpty());
}

TEST_F(Hub, ARefusedConnectionIsLoggedByItsKind) {
    for (const auto& [code, line] : {std::pair<int, std::string>{-5, "RPC PORT InvalidIOException"},
                                     {-13, "RPC PORT PermissionDeniedException"},
                                     {-22, "RPC PORT InvalidIDException"}}) {
        rpc::failConnect(code);
        HubIPCProxy::GetInstance().Start();
        EXPECT_TRUE(desk.log.contains(line));
        EXPECT_EQ(desk.armedTimers(), 0);
    }
    EXPECT_TRUE(desk.log.contains("HubIPCProxy.cpp : ConnectHub("));
    HubIPCProxy::GetInstance().Stop();
}

TEST_F(Hub, AnApplicationThatIsInstalledLaterIsConnectedTo) {
    packages::setInstalled(HubApp::kAppId, false);
    app.start();
    desk.startAndShow();
    EXPECT_TRUE(desk.log.contains("hub control app is not installed, do not proceed."));
    EXPECT_EQ(packages::watchCount(), 1);
    for (const packages::Event& other :
         {packages::Event{"com.norvane.tv.else"},
          {HubApp::kAppId, PACKAGE_MANAGER_EVENT_TYPE_UNINSTALL},
          {HubApp::kAppId, PACKAGE_MANAGER_EVENT_TYPE_INSTALL, PACKAGE_MANAGER_EVENT_STATE_FAILED},
          {HubApp::kAppId, PACKAGE_MANAGER_EVENT_TYPE_INSTALL, PACKAGE_MANAGER_EVENT_STATE_COMPLETED, 100,
           PACKAGE_MANAGER_ERROR_IO_ERROR}}) {
        packages::tell(other);
    }
    desk.settle();
    EXPECT_EQ(desk.armedTimers(), 0);
    EXPECT_EQ(app.hub.connections(), 0);

    packages::install(HubApp::kAppId);
    desk.elapse(5s);
    desk.waitForNotify("hl_get_hub_info");
    EXPECT_TRUE(desk.log.contains("5 sec delayed, will connect hub"));
    packages::install(HubApp::kAppId);
    EXPECT_TRUE(WaitFor("hub control app is already connected, do not proceed."));
}

TEST_F(Hub, AnApplicationThatEndedComesBackWithItsNextPackage) {
    Connect();
    app.hub.kill();
    EXPECT_TRUE(WaitFor("Hub TIDL OnDisconnected"));
    EXPECT_EQ(desk.armedTimers(), 0);
    Expect({"notify hl_get_hub_info"}, Ask("hl_get_hub_info"));
    app.start();
    packages::install(HubApp::kAppId);
    Expect({kHubInfoLine}, [this] { desk.elapse(5s); });
    Expect({kHubInfoLine}, Event(10));
}

TEST_F(Hub, ARejectionIsTriedAgainOnce) {
    app.start();
    app.hub.rejectConnections(true);
    desk.startAndShow();
    desk.elapse(5s);
    EXPECT_TRUE(WaitFor("already has timer, do not proceed."));
    EXPECT_EQ(desk.log.count("Hub TIDL OnRejected"), 2);
    EXPECT_EQ(desk.armedTimers(), 0);
    ExpectUnconnected();
}

// A timer that finds the hub connected makes room for the next; the count goes on.
TEST_F(Hub, TheThirteenthTryIsNotMade) {
    app.start();
    app.hub.rejectConnections(true);
    desk.start();
    auto& proxy = HubIPCProxy::GetInstance();
    for (int retry = 1; retry <= 12; ++retry) {
        if (retry > 1) {
            proxy.HandleHubConnection();
        } else {
            EXPECT_TRUE(WaitFor("5 sec delayed, will connect hub"));
        }
        proxy.SetHubControlEnable(true);
        desk.elapse(5s);
        desk.settle();
        proxy.SetHubControlEnable(false);
    }
    EXPECT_EQ(desk.log.count("already connected"), 12);
    proxy.HandleHubConnection();
    EXPECT_TRUE(desk.log.contains("retry count is max, do not proceed."));
    EXPECT_EQ(desk.armedTimers(), 0);
    proxy.HandleDisconnectedHub();
    proxy.HandleHubConnection();
    EXPECT_EQ(desk.armedTimers(), 1);  // and none when the desk has ended
}

TEST_F(Hub, PackageManagerThatFailsLeavesTheConnection) {
    for (const char* function : {"package_manager_create", "package_manager_set_event_cb"}) {
        packages::fail(function, -12);
        HubIPCProxy::GetInstance().Start();
        EXPECT_EQ(packages::managerCount(), 0) << function;
        packages::fail(function, 0);
    }
    EXPECT_TRUE(desk.log.contains("fail to create package manager, result : -12"));
    EXPECT_TRUE(desk.log.contains("fail to set package event handler, result : -12"));
    Connect();
}

// ---- Discovery ----

// ---- A hub that has gone from the account ----

class HubOfTheAccount : public Hub {
protected:
    /// The account's list lacks the hub, and then is empty.
    void ConnectAndLoseTheHub() {
        Connect();
        app.hub.setReset(HubApp::Course::Manual);
        desk.agent.removeDevice(kHub);
        EXPECT_TRUE(WaitFor("No TV hub di in the device list"));
        desk.agent.sendDeviceList({});
        EXPECT_TRUE(WaitFor("No TV hub di in the detail info list"));
    }
    void Forget(const char* line) {
        desk.log.clear();
        cloud.resetRequests();
        desk.agent.sendDeviceList({"hub-plug"});
        EXPECT_TRUE(WaitFor(line));
        desk.settle();
    }

    simulator::Cloud& cloud = desk.startCloud();
};

TEST_F(HubOfTheAccount, IsResetOnlyIfTheCloudDeniesIt) {
    Connect();
    app.hub.setReset(HubApp::Course::Manual);
    for (const auto& fault : {CloudFault::status(404), CloudFault::cut()}) {
        cloud.fault("devices", fault);
        Forget("hub device is exist on cloud, do not delete");
        ASSERT_EQ(cloud.requests().size(), 1u);
        EXPECT_EQ(cloud.requests()[0].target, "/v1/devices/tv-hub");
        EXPECT_EQ(cloud.requests()[0].header("Authorization"), "Bearer token-of-mina");
    }
    EXPECT_EQ(Resets(), 0);

    cloud.clearFaults();
    desk.agent.sendDeviceList({kHub, "hub-plug"});
    EXPECT_TRUE(WaitFor("hub device id is in device_list, do not delete"));

    desk.agent.removeDevice(kHub);
    desk.waitForReport("the reset", [](const auto& report) { return toText(report) == "result hl_reset_hub"; });
    EXPECT_TRUE(desk.log.contains("No TV hub di in the device list"));
    EXPECT_EQ(Resets(), 1);

    // Whoever has no hub any more asks no cloud.
    Expect({"notify hl_reset_hub_result hl_reset_hub_result_data='success'"}, Event(4));
    Forget("hub onboarded id is empty, do not delete");
    EXPECT_THAT(cloud.requests(), IsEmpty());
    EXPECT_EQ(Resets(), 1);
}

TEST_F(HubOfTheAccount, IsLeftAloneIfItIsAnothersOrUnknown) {
    ConnectAndOnboard();
    for (const auto& [info, line] :
         {std::pair<const char*, const char*>{R"({"hub_di":"tv-hub","user_id":"jun"})",
                                              "different hub onboarding id and login id, do not delete"},
          {R"({"user_id":"mina@home.example"})", "hub id is empty, do not delete"},
          {R"({"hub_di":"tv-hub"})", "hub onboarded id is empty, do not delete"}}) {
        app.hub.setHubInfo(info);
        desk.mark();
        app.hub.sendEvent(1, "");
        desk.waitForNotify("hl_get_hub_info");
        Forget(line);
    }
    EXPECT_THAT(cloud.requests(), IsEmpty());
    EXPECT_EQ(Resets(), 0);
}

TEST_F(HubOfTheAccount, IsLookedForWhenTheListIsEmptyOrMadeAnew) {
    ConnectAndLoseTheHub();
    framework::requestDeviceList();
    desk.waitForReport("the third reset", [count = 0](const auto& report) mutable {
        return toText(report) == "result hl_reset_hub" && ++count == 3;
    });
    EXPECT_EQ(Resets(), 3);
    desk.log.clear();
    desk.agent.addDevice(*homeloom::test::apartment().device(kHub));
    desk.agent.sendDeviceList({});
    EXPECT_TRUE(WaitFor("hub device is exist on cloud, do not delete"));
    framework::requestDeviceList();
    EXPECT_TRUE(WaitFor("hub device is exist in device handler map, do not delete"));
    EXPECT_EQ(Resets(), 3);
}

TEST_F(HubOfTheAccount, TheSessionGoesOnWhileTheCloudIsAsked) {
    ConnectAndLoseTheHub();
    cloud.fault("devices", CloudFault::never());
    desk.log.clear();
    framework::requestDeviceList();
    desk.waitUntil("the question", [this] { return cloud.pendingRequests() > 0; });
    desk.mark();
    desk.agent.sendDeviceDetailList(desk.agent.home().devices);
    desk.waitForReport("a list", [](const auto& report) { return report.kind == Desk::Report::Kind::DeviceList; });
    EXPECT_FALSE(desk.log.contains("HttpError"));
    cloud.clearFaults();
    EXPECT_TRUE(WaitFor("HttpError"));
}

TEST_F(HubOfTheAccount, ADeviceAsksForItself) {
    desk.start();
    desk.waitForStatus(0);
    VMFramework::HomeLoom::Device::_deviceInfo info;
    info.device_type = "x.com.hl.d.hub";
    for (const auto& [id, exists] : {std::pair<const char*, bool>{kHub, true}, {"gone", false}}) {
        info.device_id = id;
        const auto device =
            VMFramework::HomeLoom::DeviceFactory::Create(info, VMFramework::HomeLoom::TesselHandler::GetInstance());
        const auto hub = std::dynamic_pointer_cast<VMFramework::HomeLoom::HubDevice>(device);
        ASSERT_NE(hub, nullptr);
        EXPECT_EQ(hub->RequestIsHubExist("token-of-mina"), exists) << id;
    }
}

// ---- Stopped in the middle ----

struct HubMoment {
    const char* name;
    const char* line;
    void (*cause)(HubApp& app);  // null for what happens in the start
};
void PrintTo(const HubMoment& moment, std::ostream* out) {
    *out << moment.name;
}

const HubMoment kHubMoments[] = {
    {"Connecting", "Hub TIDL OnConnected", nullptr},
    {"SavingTheInfo", "hub onboarded login id", nullptr},
    {"TakingAnEvent", "Event received...[10]", [](HubApp& app) { app.sendEvent(10, ""); }},
    {"LosingTheConnection", "Hub TIDL OnDisconnected", [](HubApp& app) { app.kill(); }},
    {"HearingOfAPackage", "iot-hub-control app is installed or updated",
     [](HubApp& app) {
         app.kill();
         packages::install(HubApp::kAppId);
     }},
    {"InARequest", "StartOnboarding location_id",
     [](HubApp&) {
         framework::request("hl_start_hub_onboarding", {{"hl_hub_location_id", std::string("home")}});
     }},
};

class HubStoppedWhile : public Hub, public testing::WithParamInterface<HubMoment> {};
INSTANTIATE_TEST_SUITE_P(Hub, HubStoppedWhile, testing::ValuesIn(kHubMoments),
                         [](const auto& moment) { return std::string(moment.param.name); });

TEST_P(HubStoppedWhile, _) {
    std::promise<void> caught;
    if (GetParam().cause != nullptr) {
        Connect();
    } else {
        app.start();
    }
    desk.atLogLine(GetParam().line, [&] {
        caught.set_value();
        desk.log.waitFor("Stop START", std::chrono::seconds(1));
    });
    GetParam().cause != nullptr ? GetParam().cause(app.hub) : desk.start();
    ASSERT_EQ(caught.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    desk.stop();
}

TEST_F(Hub, ALateRejectionArmsNothing) {
    app.start();
    app.hub.rejectConnections(true);
    std::promise<void> rejected;
    desk.atLogLine("Hub TIDL OnRejected", [&] {
        rejected.set_value();
        WaitFor("called dispose callback");
    });
    desk.start();
    ASSERT_EQ(rejected.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    desk.stop();
    EXPECT_EQ(desk.armedTimers(), 0);
    EXPECT_FALSE(desk.log.contains("will connect hub"));
    HubIPCProxy::GetInstance().Stop();
    EXPECT_TRUE(desk.log.contains("package manager handle doesn't exist, do not proceed."));
}

TEST_F(Hub, AStopWhileAnAnswerIsWaitedFor) {
    Connect();
    app.hub.setAnswers(HubApp::Answers::Held);
    const auto before = app.hub.requests().size();
    framework::request("hl_get_hub_info");
    EXPECT_TRUE(app.hub.waitForRequests(static_cast<int>(before) + 1));
    desk.atLogLine("Stop START", [this] { app.hub.releaseAnswers(); });
    desk.stop();
}

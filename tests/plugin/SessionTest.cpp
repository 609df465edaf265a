#include <unistd.h>

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "simulator/ServiceManager.h"
#include "support/Desk.h"

namespace framework = homeloom::desktop::framework;
namespace settings = homeloom::desktop::settings;
using namespace std::chrono_literals;
using simulator::Agent;
using simulator::Fault;
using simulator::ServiceManager;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char kConnect[] = "homeloom_client_connect";
constexpr char kSignedIn[] = "notify sign_in_state_changed is_sign_in=true";
constexpr char kSignedOut[] = "notify sign_in_state_changed is_sign_in=false";
constexpr char kRunning[] = "Washing · 42 min left";

bool IsShown(const Screen& screen) {
    return screen.stateText("washer") == "Ready";
}

void StartWasher(Desk& desk) {
    desk.agent.set("washer", "/operational/state/vs/0", "x.com.norvane.da.state", "Run");
    desk.waitForState("washer", kRunning);
}

}  // namespace

class Session : public testing::Test {
protected:
    void StartAndShow() {
        desk.start();
        desk.waitFor("the washer", IsShown);
        desk.settle();
    }

    Desk desk{homeloom::test::apartmentWith({"washer"})};
};

// ---- The first connection ----

TEST_F(Session, SignedInFromTheStart) {
    desk.start();
    const Screen shown = desk.waitFor("the washer", IsShown);
    EXPECT_EQ(shown.status, 0);
    desk.settle();
    EXPECT_THAT(std::vector<std::string>({desk.lines()[0], desk.lines()[1]}), ElementsAre(kSignedIn, "load_result 0"));
    EXPECT_EQ(desk.agent.callCount("homeloom_client_get_device_detail_list"), 0) << "the list comes by itself";
    EXPECT_EQ(desk.agent.subscriptions().size(), 1u);
    const auto boosts = ServiceManager::instance().boosts();
    ASSERT_EQ(boosts.size(), 1u);
    EXPECT_EQ(boosts[0].callerPid, static_cast<int>(getpid()));
}

TEST_F(Session, SignedOutAtFirst) {
    desk.agent.signOut();
    desk.start();
    desk.waitForStatus(1);
    desk.settle();
    EXPECT_THAT(desk.lines(), ElementsAre(kSignedOut, "load_result 1"));
    EXPECT_EQ(desk.agent.holdings().registrations, 2) << "connection and sign-in";

    desk.agent.signIn();
    const Screen shown = desk.waitFor("the washer", IsShown);
    EXPECT_EQ(shown.status, 1) << "the sign-in notification is the sign, no other status comes";
    EXPECT_TRUE(shown.isSignedIn);
}

// ---- The disclaimer ----

TEST_F(Session, StaysSilentUntilTheDisclaimerIsAccepted) {
    desk.setDisclaimer(0);
    desk.start();
    desk.setDisclaimer(2);
    settings::setString("db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree", "1");
    settings::unset("db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree");
    desk.loop.call([] {});
    EXPECT_THAT(desk.lines(), IsEmpty());
    EXPECT_EQ(desk.agent.callCount(kConnect), 0);

    desk.setDisclaimer(1);
    desk.waitFor("the washer", IsShown);
}

TEST_F(Session, LetsGoOfTheAgentWhenTheDisclaimerIsWithdrawn) {
    StartAndShow();
    desk.setDisclaimer(0);
    desk.loop.call([] {});
    EXPECT_EQ(desk.agent.holdings().total(), 0);
    // The session still counts as connected: it asks, and fails.
    EXPECT_EQ(toText(*desk.ask("hl_delete_device", {{"device_id", "washer"}})),
              "notify hl_delete_device result=false device_id='washer'");
    EXPECT_TRUE(desk.log.contains("client handle is null"));

    const int lists = desk.screen().lists;
    desk.setDisclaimer(1);
    desk.waitFor("the home again", [&](const Screen& shown) { return shown.lists > lists + 1 && IsShown(shown); });
    desk.settle();
    StartWasher(desk);
}

// ---- Connections that fail or are lost ----

struct BadConnection {
    const char* name;
    Agent::Connection outcome;
    int status;  // that is reported; -1 for none
};
const BadConnection kBadConnections[] = {{"Disconnected", Agent::Connection::Disconnected, -1},
                                         {"Rejected", Agent::Connection::Rejected, 1},
                                         {"IoError", Agent::Connection::IoError, -1}};
void PrintTo(const BadConnection& bad, std::ostream* out) {
    *out << bad.name;
}

class BadSession : public Session, public testing::WithParamInterface<BadConnection> {};
INSTANTIATE_TEST_SUITE_P(Session, BadSession, testing::ValuesIn(kBadConnections));

TEST_P(BadSession, FailsAtFirstAndIsTriedAgain) {
    desk.agent.setConnectOutcome(GetParam().outcome);
    desk.start();
    ASSERT_TRUE(desk.log.waitFor("5 sec delayed, will start Reinit"));
    EXPECT_EQ(desk.screen().status, GetParam().status);
    desk.agent.setConnectOutcome(Agent::Connection::Connected);
    desk.elapse(5s);
    desk.waitForStatus(0);
    desk.waitFor("the washer", IsShown);
    EXPECT_EQ(desk.log.count("start build devices"), 1) << "not left to the agent's list after a failure";
}

TEST_P(BadSession, IsLostAndTheMapIsBuiltAnew) {
    StartAndShow();
    const int lists = desk.screen().lists;
    desk.agent.changeConnection(GetParam().outcome);
    ASSERT_TRUE(desk.log.waitFor("5 sec delayed, will start Reinit"));
    // The cached token outlives the connection; who asks the agent gets no answer.
    EXPECT_EQ(desk.ask("hl_get_accesstoken_uid", {})->properties.text("access_token"), "token-of-mina");
    const auto refused = framework::request("hl_delete_device", {{"device_id", "washer"}});
    desk.settle();
    EXPECT_FALSE(desk.isAnswered(refused));

    desk.elapse(5s);
    const Screen shown = desk.waitFor("the home again", [&](const Screen& now) {
        return now.lists > lists && now.signInNotices == 2 && IsShown(now);
    });
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(desk.log.count("start build devices"), 1);
    StartWasher(desk);
}

TEST_F(Session, AConnectionThatIsLetGoOfBeforeItIsHandledIsTriedAgain) {
    // The scheduler is busy while the connection is lost and, because the setting is set, made anew.
    desk.atLogLine("createCanvas() start", [&] {
        desk.agent.changeConnection(Agent::Connection::IoError);
        desk.agent.waitIdle();
        desk.setDisclaimer(1);
        desk.loop.call([] {});
        desk.agent.waitIdle();
    });
    desk.start();
    desk.elapse(5s);
    desk.waitFor("the washer", [](const Screen& shown) { return shown.signInNotices == 2 && IsShown(shown); });
}

TEST_F(Session, FailuresCountOnThroughASignedOutConnection) {
    desk.agent.signOut();
    desk.agent.fault(kConnect, Fault::fail(-5).times(3));
    desk.start();
    for (int tries = 1; tries <= 3; ++tries) {
        desk.elapse(5s);
    }
    desk.waitForStatus(1);
    desk.agent.fault(kConnect, Fault::fail(-5));
    desk.agent.changeConnection(Agent::Connection::Disconnected);
    for (int tries = 4; tries <= 12; ++tries) {
        desk.elapse(5s);
    }
    EXPECT_TRUE(desk.log.waitFor("retry count is max, do not execute retry logic"));
    EXPECT_EQ(desk.log.count("5 sec delayed, will start Reinit"), 12);
}

TEST_F(Session, AConnectionThatIsThereOrUnderWayNeedsNoTimer) {
    for (const int code : {-0x40000009, -0x40000008}) {
        desk.agent.fault(kConnect, Fault::fail(code).times(1));
        if (code == -0x40000009) {
            desk.start();
        } else {
            desk.setDisclaimer(1);
        }
        EXPECT_TRUE(desk.log.waitFor("Agent is already connected or in progress"));
        EXPECT_EQ(desk.armedTimers(), 0);
        desk.log.clear();
    }
    desk.setDisclaimer(1);
    desk.waitFor("the washer", IsShown);
}

TEST_F(Session, ATimerThatFindsTheConnectionUpReportsIt) {
    StartAndShow();
    desk.agent.fault(kConnect, Fault::fail(-5).times(1));
    desk.setDisclaimer(1);  // connects, and the failure arms the timer
    desk.elapse(5s);
    EXPECT_TRUE(desk.log.waitFor("already connected"));
    EXPECT_TRUE(desk.log.waitFor("already loaded"));
    EXPECT_EQ(desk.agent.callCount(kConnect), 2);
}

// ---- An update of the agent ----

TEST_F(Session, AnUpdateLetsGoOfTheAgentAndWaitsForTheServiceManager) {
    StartAndShow();
    desk.agent.changeConnection(Agent::Connection::Updating);
    EXPECT_TRUE(desk.log.waitFor("Agent Updating - Should be reconnect after update completed"));
    desk.settle();
    EXPECT_EQ(desk.armedTimers(), 0);

    ServiceManager::instance().startUpdate();
    ServiceManager::instance().waitIdle();
    EXPECT_EQ(desk.agent.holdings().total(), 0);
    EXPECT_EQ(desk.armedTimers(), 0);
    const auto request = framework::request("hl_do_main_action", {{"device_id", "washer"}, {"action_url", ""}});
    EXPECT_TRUE(desk.log.waitFor("manager not available"));
    EXPECT_FALSE(desk.isAnswered(request));
}

// ---- The user ----

TEST_F(Session, SigningOutEmptiesTheHomeAndSigningInBringsItBack) {
    StartAndShow();
    desk.mark();
    desk.agent.signOut();
    desk.waitFor("the notice", [](const Screen& shown) { return !shown.isSignedIn; });
    const auto refused = framework::request("hl_do_main_action", {{"device_id", "washer"}, {"action_url", ""}});
    framework::requestDeviceList();
    desk.settle();
    EXPECT_FALSE(desk.isAnswered(refused));
    EXPECT_EQ(desk.lines()[0], kSignedOut);
    const int lists = desk.screen().lists;

    desk.agent.signIn();
    desk.waitFor("the home again", [&](const Screen& shown) { return shown.lists > lists + 1 && IsShown(shown); });
    EXPECT_EQ(desk.screen().status, 0);
}

TEST_F(Session, OnlyAnotherLoginDropsParsedMetadata) {
    StartAndShow();
    // The cloud's document changes, its version doesn't: it is read again only if the old one is gone.
    const simulator::Home home = desk.agent.home();
    simulator::Model model = home.models.at("HL-WASHER-WF24");
    const std::string old = R"("Ready"})";
    const auto at = model.uiMetadata.find(old);
    ASSERT_NE(at, std::string::npos) << model.uiMetadata;
    model.uiMetadata.replace(at, old.size(), R"("Waiting"})");
    desk.agent.setModel(model);

    const auto signInAs = [&](const simulator::Account& account, bool isSignedOutBefore) {
        const int lists = desk.screen().lists;
        if (isSignedOutBefore) {
            desk.agent.signOut();
        }
        desk.agent.signIn(account);
        desk.waitFor("the home again", [&](const Screen& shown) {
            return shown.lists > lists + 1 && shown.isSignedIn && !shown.stateText("washer").empty();
        });
    };
    signInAs(home.account, true);
    EXPECT_EQ(desk.screen().stateText("washer"), "Ready");
    signInAs({"jun@home.example", "user-jun", "token-of-jun", ""}, true);
    EXPECT_TRUE(desk.log.contains("login id Changed : old(mina@home.example)->new(jun@home.example)"));
    EXPECT_EQ(desk.screen().stateText("washer"), "Waiting");
    EXPECT_EQ(desk.ask("hl_get_accesstoken_uid", {})->properties.text("access_token"), "token-of-jun");

    signInAs(home.account, false);
    StartWasher(desk);
}

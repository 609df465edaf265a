#include "support/Desk.h"

#include <glib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

#include <gmock/gmock.h>

#include "clock/Clock.h"
#include "clock/Rest.h"
#include "desktop/Guard.h"
#include "desktop/Packages.h"
#include "desktop/RpcPort.h"
#include "desktop/Web.h"
#include "plugin_interface.h"
#include "simulator/ServiceManager.h"

namespace framework = homeloom::desktop::framework;
namespace settings = homeloom::desktop::settings;
using framework::Report;
using simulator::Agent;

namespace {

// Far above what anything takes, sanitizers on a busy machine included.
constexpr std::chrono::seconds kLimit(30);

// The main loop counts in whole milliseconds.
constexpr std::chrono::milliseconds kTimerPrecision(1);

constexpr char kDisclaimerKey[] = "db/menu/glade_deck/homedatacontrol/defaultdisclaimeragree";

// How many timers wait on the main loop for a time that is still to come; to be called on it.
int timers() {
    GSource* probe = g_idle_source_new();
    const guint last = g_source_attach(probe, nullptr);
    g_source_destroy(probe);
    g_source_unref(probe);
    int count = 0;
    for (guint id = 1; id < last; ++id) {
        GSource* source = g_main_context_find_source_by_id(nullptr, id);
        if (source != nullptr && g_source_get_ready_time(source) > 0) {
            ++count;
        }
    }
    return count;
}

}  // namespace

Desk::Desk(simulator::Home home) {
    // Nothing that the plug-in does may make GLib complain.
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
    if (std::getenv("HOMELOOM_TEST_LOG") != nullptr) {
        homeloom::desktop::log::toStderr(DLOG_INFO);
    }
    settings::setInt(kDisclaimerKey, 1);
    settings::setString("db/menu_widget/language", "en_US.utf8");
    settings::setString("db/es_master/signup_info", R"({"di":")" + home.account.deviceId + R"("})");
    agent.load(std::move(home));
}

Desk::~Desk() {
    if (_isRunning) {
        stop();
    }
    homeloom::desktop::log::setTraceSink(nullptr);
    simulator::Cloud::instance().stop();
    expectNothingLeft();
}

void Desk::start() {
    _isRunning = true;
    EXPECT_TRUE(CreatePlugin());
}

void Desk::startAndShow() {
    start();
    waitForLists(2);
}

void Desk::stop(bool onMainLoop) {
    _isRunning = false;
    const auto destroy = [] { EXPECT_TRUE(DestroyPlugin()); };
    runWithLimit("DestroyPlugin", [&] { onMainLoop ? loop.call(destroy) : destroy(); });
}

// What hangs for good would leave its test without a word.
void Desk::runWithLimit(const std::string& what, const std::function<void()>& function) const {
    std::future<void> done = std::async(std::launch::async, function);
    if (done.wait_for(kLimit) != std::future_status::ready) {
        std::cerr << what << " does not return" << story() << std::endl;
        std::_Exit(EXIT_FAILURE);
    }
    done.get();
}

void Desk::setDisclaimer(int value) {
    settings::setInt(kDisclaimerKey, value);
}

simulator::Cloud& Desk::startCloud() {
    simulator::Cloud& cloud = simulator::Cloud::instance();
    cloud.start();
    homeloom::desktop::web::routeOtherHosts(cloud.port());
    homeloom::desktop::web::trust(cloud.caFile());
    return cloud;
}

void Desk::expectNothingLeft() {
    const Agent::Holdings held = agent.holdings();
    EXPECT_EQ(held.clients, 0);
    EXPECT_EQ(held.records, 0);
    EXPECT_EQ(held.registrations, 0);
    EXPECT_EQ(held.subscriptions, 0);
    EXPECT_EQ(held.pendingCalls, 0);
    const framework::Handles handles = framework::liveHandles();
    EXPECT_EQ(handles.properties, 0u);
    EXPECT_EQ(handles.propertyLists, 0u);
    EXPECT_EQ(handles.endpoints, 0u);
    EXPECT_EQ(handles.endpointLists, 0u);
    EXPECT_EQ(handles.serviceHandlers, 0u);
    EXPECT_EQ(handles.transactions, 0u);
    EXPECT_EQ(settings::watchCount(), 0);
    EXPECT_FALSE(simulator::ServiceManager::instance().isWatched());
    EXPECT_EQ(homeloom::desktop::packages::managerCount(), 0);
    EXPECT_EQ(homeloom::desktop::packages::appInfoCount(), 0);
    EXPECT_EQ(homeloom::desktop::rpc::holdings().proxies, 0);
    EXPECT_EQ(homeloom::desktop::rpc::holdings().parcels, 0);
    EXPECT_EQ(armedTimers(), 0);
    EXPECT_THAT(agent.escapedExceptions(), testing::IsEmpty());
    // A request that comes while the plug-in ends is refused so; nothing else may get out of it.
    EXPECT_THAT(homeloom::desktop::pluginExceptions(), testing::Each("request callback: InvokeTask Fail!!(error:2)"));
}

Screen Desk::screen() const {
    Screen screen;
    for (const auto& report : framework::reports()) {
        screen.take(*report);
    }
    return screen;
}

Screen Desk::waitFor(const std::string& what, const std::function<bool(const Screen&)>& test) const {
    Screen screen;
    const auto found = framework::waitFor(
        [&](const Report& report) {
            screen.take(report);
            return test(screen);
        },
        kLimit);
    if (!found) {
        throw std::runtime_error("did not come: " + what + story());
    }
    return screen;
}

Screen Desk::waitForStatus(int status) const {
    return waitFor("status " + std::to_string(status), [&](const Screen& shown) { return shown.status == status; });
}

Screen Desk::waitForState(const std::string& deviceId, const std::string& stateText) const {
    return waitFor(deviceId + " \"" + stateText + "\"",
                   [&](const Screen& shown) { return shown.has(deviceId) && shown.stateText(deviceId) == stateText; });
}

Screen Desk::waitForLists(int count) const {
    return waitFor(std::to_string(count) + " lists", [&](const Screen& shown) { return shown.lists >= count; });
}

Desk::ReportPtr Desk::waitForReport(const std::string& what, const std::function<bool(const Report&)>& test) const {
    auto report = framework::waitFor(test, kLimit, _mark);
    if (!report) {
        throw std::runtime_error("did not come: " + what + story());
    }
    return report;
}

Desk::ReportPtr Desk::waitForNotify(const std::string& name, const std::string& deviceId) const {
    return waitForReport(name + " " + deviceId, [&](const Report& report) {
        return report.kind == Report::Kind::Notify && report.name == name &&
               (deviceId.empty() || report.properties.text("device_id") == deviceId);
    });
}

void Desk::mark() {
    _mark = framework::reportCount();
}

std::vector<std::string> Desk::lines() const {
    std::vector<std::string> texts;
    for (const auto& report : framework::reports(_mark)) {
        texts.push_back(toText(*report));
    }
    return texts;
}

std::string Desk::story() const {
    std::string text = "\nWhat came last:";
    const auto reports = framework::reports();
    for (std::size_t i = reports.size() - std::min<std::size_t>(reports.size(), 40); i < reports.size(); ++i) {
        text += "\n  " + toText(*reports[i]).substr(0, 400);
    }
    text += "\nThe end of the log:";
    const auto lines = log.lines();
    for (std::size_t i = lines.size() - std::min<std::size_t>(lines.size(), 40); i < lines.size(); ++i) {
        text += "\n  " + lines[i].message.substr(0, 400);
    }
    return text;
}

Desk::ReportPtr Desk::ask(const std::string& name, const Fields& arguments) const {
    const auto id = framework::request(name, arguments);
    auto answer = framework::waitFor([id](const Report& report) { return report.transaction == id; }, kLimit);
    if (id == 0 || !answer) {
        throw std::runtime_error("no answer to " + name + story());
    }
    return answer;
}

bool Desk::isAnswered(framework::TransactionId request) const {
    const auto reports = framework::reports();
    return std::any_of(reports.begin(), reports.end(),
                       [request](const auto& report) { return report->transaction == request; });
}

void Desk::settle() const {
    if (!homeloom::clock::waitForRest()) {
        throw std::runtime_error("no rest comes" + story());
    }
}

void Desk::waitUntil(const std::string& what, const std::function<bool()>& test) const {
    const auto limit = std::chrono::steady_clock::now() + kLimit;
    while (!test()) {
        if (std::chrono::steady_clock::now() > limit) {
            throw std::runtime_error("did not come: " + what + story());
        }
        std::this_thread::yield();
    }
}

void Desk::waitForLateCall() const {
    waitUntil("a call of the agent that is answered late", [this] {
        agent.waitIdle();
        return agent.holdings().pendingCalls > 0;
    });
}

void Desk::elapse(std::chrono::milliseconds time) {
    homeloom::clock::advance(time + kTimerPrecision);
}

void Desk::atLogLine(const std::string& text, const std::function<void()>& function) const {
    const auto isSeen = std::make_shared<std::atomic<bool>>();
    homeloom::desktop::log::setTraceSink([text, function, isSeen](const char* line) {
        if (std::string(line).find(text) != std::string::npos && !isSeen->exchange(true)) {
            function();
        }
    });
}

void Desk::onMainLoop(const std::function<void()>& function) {
    g_main_context_is_owner(nullptr) ? function() : loop.call(function);
}

int Desk::armedTimers() {
    int count = 0;
    onMainLoop([&] { count = timers(); });
    return count;
}

#ifndef HOMELOOM_TESTS_SUPPORT_DESK_H
#define HOMELOOM_TESTS_SUPPORT_DESK_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "desktop/Framework.h"
#include "desktop/Log.h"
#include "desktop/MainLoop.h"
#include "desktop/Settings.h"
#include "simulator/Agent.h"
#include "simulator/Cloud.h"
#include "simulator/HomeLoader.h"
#include "support/Homes.h"
#include "support/Screen.h"

/// A TV with the plug-in in it: the desk's framework, settings, log and main loop, and the simulated agent with a home.
/// One for each process.
///
///     Desk desk;
///     desk.start();
///     desk.waitForState("washer", "Ready");
///     EXPECT_EQ(toText(desk.ask("hl_do_main_action", {{"device_id", "washer"}})), "...");
///
/// The end of the desk stops the plug-in and fails the test if it left anything behind, or let an exception through.
/// Waiting for what does not come throws, and tells what came in its place. Times go by on the clock (clock/Clock.h),
/// at once.
class Desk {
public:
    using Fields = homeloom::desktop::Fields;
    using Report = homeloom::desktop::framework::Report;
    using ReportPtr = homeloom::desktop::framework::ReportPtr;

    explicit Desk(simulator::Home home = homeloom::test::apartment());
    ~Desk();
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    void start();
    /// Starts, and waits until the list has come in which metadata and canvas are worked in.
    void startAndShow();
    void stop(bool onMainLoop = false);

    void setDisclaimer(int value);
    /// All the hosts that the plug-in knows are the simulated cloud's from here on. To be called before start().
    simulator::Cloud& startCloud();

    // ---- What the plug-in reported ----

    Screen screen() const;
    /// Waits until the screen passes the test; `what` stands in the message when it does not.
    Screen waitFor(const std::string& what, const std::function<bool(const Screen&)>& test) const;
    Screen waitForStatus(int status) const;
    Screen waitForState(const std::string& deviceId, const std::string& stateText) const;
    /// Waits for that many lists in all.
    Screen waitForLists(int count) const;
    /// The first report since mark() that passes the test.
    ReportPtr waitForReport(const std::string& what, const std::function<bool(const Report&)>& test) const;
    ReportPtr waitForNotify(const std::string& name, const std::string& deviceId = "") const;
    /// From here on waitForReport and lines look; earlier reports are old.
    void mark();
    /// The reports since mark(), a line each.
    std::vector<std::string> lines() const;

    /// Sends a request and waits for what answers it.
    ReportPtr ask(const std::string& name, const Fields& arguments) const;
    bool isAnswered(homeloom::desktop::framework::TransactionId request) const;
    /// Asks again and again until the test passes.
    void waitUntil(const std::string& what, const std::function<bool()>& test) const;
    /// Waits until every other thread of the process sleeps and none will wake another: what was caused has happened.
    void settle() const;
    /// Waits until a call stands out whose answer the agent keeps back.
    void waitForLateCall() const;
    /// Waits for what was caused, and lets all happen that happens in this time.
    static void elapse(std::chrono::milliseconds time);

    /// Runs a function once in the middle of the plug-in: on the thread that writes the next line of its log that
    /// contains the text, at that line.
    void atLogLine(const std::string& text, const std::function<void()>& function) const;

    /// Timers that are armed on the main loop. From any thread and from the main loop.
    int armedTimers();

    homeloom::desktop::MainLoop loop;
    homeloom::desktop::log::Capture log{DLOG_INFO};
    simulator::Agent& agent = simulator::Agent::instance();

private:
    void runWithLimit(const std::string& what, const std::function<void()>& function) const;
    void expectNothingLeft();
    void onMainLoop(const std::function<void()>& function);
    std::string story() const;

    bool _isRunning = false;
    std::size_t _mark = 0;
};

#endif

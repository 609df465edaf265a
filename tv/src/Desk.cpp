#include "Desk.h"

#include <algorithm>

#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>
#include <simulator/HubApp.h>

#include "CommandError.h"
#include "Inbox.h"
#include "Output.h"

namespace homeloom::tv {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds kLookInterval{5};
constexpr milliseconds kForever{24LL * 60 * 60 * 1000};
// Rest after which all that was under way has come in.
constexpr milliseconds kSettledRest{60};
// Rest after which nobody will answer any more. Long enough for what waits for a timer or a socket.
constexpr milliseconds kHopelessRest{1500};

bool seesNothing(const Report&) {
    return false;
}

// What agent, cloud or hub control application still owe: the program rests, and yet it will come.
bool answersArePending() {
    return simulator::Agent::instance().isOwing() || simulator::Cloud::instance().pendingRequests() > 0 ||
           simulator::HubApp::instance().isOwing();
}

}  // namespace

Desk::Desk(Inbox& inbox, Output& out, milliseconds limit)
    : _inbox(inbox), _out(out), _limit(limit), _idleness([&inbox] { return inbox.activity(); }) {}

bool Desk::hasQuit() const {
    return _hasQuit || _inbox.isStopped();
}

std::size_t Desk::show(const std::vector<ReportPtr>& reports, const std::function<bool(const Report&)>& sees,
                       bool& seen) {
    for (const ReportPtr& report : reports) {
        if (report->kind == Report::Kind::LoadResult) {
            _loadStatus = report->status;
        }
        const bool isNamed = report->kind == Report::Kind::Notify || report->kind == Report::Kind::Result;
        ++_reportCounts[isNamed ? report->name : nameOf(report->kind)];
        _home.apply(*report);
        _out.report(*report, _home);
        seen = sees(*report) || seen;
    }
    return reports.size();
}

std::size_t Desk::pump() {
    bool seen = false;
    return show(_inbox.take(), seesNothing, seen);
}

Desk::Ending Desk::wait(const std::function<bool(const Report&)>& sees, milliseconds limit, milliseconds rest,
                        bool pendingIsRest, std::size_t& count) {
    const Clock::time_point start = Clock::now();
    _idleness.restart();
    while (true) {
        bool seen = false;
        count += show(_inbox.take(kLookInterval), sees, seen);
        if (seen) {
            return Ending::Seen;
        }
        if (_inbox.isStopped() || _inbox.takeInterruption()) {
            throw CommandError("interrupted");
        }
        if (Clock::now() - start >= limit) {
            return Ending::Limit;
        }
        if (_idleness.restingFor() >= rest && (pendingIsRest || !answersArePending())) {
            return Ending::Rest;
        }
    }
}

bool Desk::await(const std::function<bool(const Report&)>& sees) {
    std::size_t count = 0;
    const Ending ending = wait(sees, _limit, kHopelessRest, false, count);
    // Not by what ended the wait: on a busy machine the limit may come before the rest.
    _silence = answersArePending() ? fmt::format("within {}", durationText(_limit))
                                   : "and nothing is under way that could bring it";
    return ending == Ending::Seen;
}

bool Desk::await(const std::function<bool(const Report&)>& sees, milliseconds limit) {
    std::size_t count = 0;
    return wait(sees, limit, kForever, true, count) == Ending::Seen;
}

std::size_t Desk::settle() {
    return settle(_limit);
}

std::size_t Desk::settle(milliseconds limit) {
    std::size_t count = 0;
    wait(seesNothing, limit, kSettledRest, true, count);
    return count;
}

void Desk::settleOrSay() {
    if (settle() == 0) {
        _out.say("The plug-in reported nothing.");
    }
}

void Desk::watch(milliseconds duration) {
    std::size_t count = 0;
    wait(seesNothing, duration, kForever, true, count);
}

}  // namespace homeloom::tv

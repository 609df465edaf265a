#include "Desk.h"

#include <algorithm>

#include <clock/Clock.h>
#include <clock/Rest.h>
#include <clock/Turner.h>
#include <desktop/Web.h>
#include <fmt/format.h>
#include <simulator/Agent.h>
#include <simulator/Cloud.h>
#include <simulator/HubApp.h>

#include "CommandError.h"
#include "Inbox.h"
#include "Output.h"
#include "agent/AgentTape.h"

namespace homeloom::tv {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr microseconds kShortestLook{50};
constexpr microseconds kLongestLook{5000};

bool seesNothing(const Report&) {
    return false;
}

// Whether something may come although the program rests: agent, cloud or hub control application owe it.
bool answersArePending() {
    return simulator::Agent::instance().isOwing() || isAgentTapeOwing() || desktop::web::requestsUnderWay() > 0 ||
           simulator::HubApp::instance().isOwing();
}

/// Whether a web request is on its way through the network, where it can be while everybody sleeps. The network may
/// also have lost it; so this is told for a moment only.
class Network {
public:
    bool delivers() {
        const clock::Exempt exempt;
        const auto now = std::chrono::steady_clock::now();
        if (desktop::web::requestsUnderWay() <= simulator::Cloud::instance().pendingRequests()) {
            _isUnderWay = false;
        } else if (!_isUnderWay) {
            _isUnderWay = true;
            _since = now;
        }
        return _isUnderWay && now - _since < kLongestDelivery;
    }
    void restart() { _isUnderWay = false; }

private:
    static constexpr std::chrono::seconds kLongestDelivery{2};
    bool _isUnderWay = false;
    std::chrono::steady_clock::time_point _since;
};

// In the machine's time: what comes may come while the clock stands.
std::vector<ReportPtr> listen(Inbox& inbox, microseconds time) {
    const clock::Exempt exempt;
    return inbox.take(time);
}

}  // namespace

Desk::Desk(Inbox& inbox, Output& out, milliseconds limit) : _inbox(inbox), _out(out), _limit(limit) {}

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

// While the clock stands, the waiting thread turns it: whenever all others rest, to the next deadline.
Desk::Ending Desk::wait(const std::function<bool(const Report&)>& sees, milliseconds limit, Patience patience,
                        std::size_t& count) {
    const clock::Turner::Pause pause;
    const clock::Duration end = clock::now() + limit;
    clock::WorkLimit workLimit;
    Network network;
    microseconds look = kShortestLook;
    bool wasHopeless = false;
    while (true) {
        const std::uint64_t activity = _inbox.activity();
        bool seen = false;
        count += show(listen(_inbox, look), sees, seen);
        if (seen) {
            return Ending::Seen;
        }
        if (_inbox.isStopped() || _inbox.takeInterruption()) {
            throw CommandError("interrupted");
        }
        const bool isStanding = clock::isStanding();
        const bool rests =
            (clock::isAtRest() && _inbox.activity() == activity && !network.delivers()) || workLimit.isReached();
        if (clock::now() >= end && (rests || !isStanding)) {
            return Ending::Limit;
        }
        if (rests && patience == Patience::Rest && !simulator::Agent::instance().holdsUpCallers()) {
            return Ending::Rest;
        }
        // What is owed is known only at rest, when each request has arrived; and whoever owes need not count as work (a
        // program behind a device), so what is paid between the rest and the question is seen as work the second time.
        const bool isHopeless = rests && patience == Patience::Hope && !answersArePending();
        if (isHopeless && wasHopeless) {
            return Ending::Rest;
        }
        wasHopeless = isHopeless;
        if (isHopeless) {
            look = kShortestLook;
            continue;
        }
        if (!rests || !isStanding) {
            look = std::min(2 * look, kLongestLook);
            continue;
        }
        if (!clock::leapToNextDeadline(end)) {
            clock::advance(end - clock::now());
        }
        workLimit.restart();
        network.restart();
        look = kShortestLook;
    }
}

bool Desk::await(const std::function<bool(const Report&)>& sees) {
    std::size_t count = 0;
    const Ending ending = wait(sees, _limit, Patience::Hope, count);
    // On a busy machine the limit may come before the rest.
    _silence = ending == Ending::Limit && answersArePending() ? fmt::format("within {}", durationText(_limit))
                                                              : "and nothing is under way that could bring it";
    return ending == Ending::Seen;
}

bool Desk::await(const std::function<bool(const Report&)>& sees, milliseconds limit) {
    std::size_t count = 0;
    return wait(sees, limit, Patience::Limit, count) == Ending::Seen;
}

std::size_t Desk::settle() {
    return settle(_limit);
}

std::size_t Desk::settle(milliseconds limit) {
    std::size_t count = 0;
    wait(seesNothing, limit, Patience::Rest, count);
    return count;
}

void Desk::settleOrSay() {
    if (settle() == 0) {
        _out.say("The plug-in reported nothing.");
    }
}

void Desk::watch(milliseconds duration) {
    std::size_t count = 0;
    wait(seesNothing, duration, Patience::Limit, count);
}

}  // namespace homeloom::tv

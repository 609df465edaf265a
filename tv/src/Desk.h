#ifndef HOMELOOM_TV_DESK_H
#define HOMELOOM_TV_DESK_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "HomeView.h"
#include "Report.h"

namespace homeloom::tv {

class Inbox;
class Output;

/// What commands work on: the home as the plug-in reports it, the place for what they have to say, and ways to wait for
/// what they caused. Belongs to the thread that runs the commands.
class Desk {
public:
    /// `limit` is how long a command waits at most.
    Desk(Inbox& inbox, Output& out, std::chrono::milliseconds limit);

    const HomeView& home() const { return _home; }
    Output& out() { return _out; }
    std::chrono::milliseconds limit() const { return _limit; }
    void setLimit(std::chrono::milliseconds limit) { _limit = limit; }

    /// The load status that the plug-in reported last; -1 as long as there is none.
    int loadStatus() const { return _loadStatus; }
    /// Reports so far, by name.
    const std::map<std::string, int>& reportCounts() const { return _reportCounts; }

    /// Shows what came in. Returns how many reports that were.
    std::size_t pump();

    /// Waits for a report: `sees` is asked about each one, in their order. True as soon as it says true; false when the
    /// limit is reached, or when nothing is left from which a report could come. Throws CommandError when somebody
    /// interrupts.
    bool await(const std::function<bool(const Report&)>& sees);
    /// The same with a limit of its own, to its end.
    bool await(const std::function<bool(const Report&)>& sees, std::chrono::milliseconds limit);
    /// What await() has to say when it has waited in vain: "no answer within 5 s".
    std::string silence() const { return _silence; }

    /// Waits until all that is under way has come in, late calls of the agent that somebody waits in included, and
    /// shows it. Returns how many reports that were.
    std::size_t settle();
    std::size_t settle(std::chrono::milliseconds limit);
    /// settle(), and a word if there was nothing.
    void settleOrSay();
    /// Shows what comes in for that long, by the clock.
    void watch(std::chrono::milliseconds duration);

    void quit() { _hasQuit = true; }
    bool hasQuit() const;

private:
    enum class Ending { Seen, Rest, Limit };
    // How long to wait when nothing comes: until the program rests, until nothing is left that could come, or to the
    // end.
    enum class Patience { Rest, Hope, Limit };

    std::size_t show(const std::vector<ReportPtr>& reports, const std::function<bool(const Report&)>& sees, bool& seen);
    Ending wait(const std::function<bool(const Report&)>& sees, std::chrono::milliseconds limit, Patience patience,
                std::size_t& count);

    Inbox& _inbox;
    Output& _out;
    std::chrono::milliseconds _limit;
    HomeView _home;
    int _loadStatus = -1;
    std::map<std::string, int> _reportCounts;
    std::string _silence;
    bool _hasQuit = false;
};

}  // namespace homeloom::tv

#endif

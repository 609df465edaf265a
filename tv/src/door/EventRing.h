#ifndef HOMELOOM_TV_DOOR_EVENTRING_H
#define HOMELOOM_TV_DOOR_EVENTRING_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

#include "Report.h"

namespace homeloom::tv {

using EventId = std::uint64_t;

/// The last events, numbered without a gap and bounded in number and size. A report is written as text when the first
/// client asks for it, and once for all of them. Not thread-safe.
class EventRing {
public:
    struct Limits {
        std::size_t count = std::size_t{16} << 10;
        std::size_t bytes = std::size_t{64} << 20;
    };

    /// The first event gets the number after `start`.
    EventRing(EventId start, Limits limits);

    void add(const ReportPtr& report);
    /// `document` is JSON in one line.
    void add(const char* type, const std::string& document);

    /// The last event's number, or the start if there was none.
    EventId head() const { return _oldest + _events.size() - 1; }
    /// Whether all events after that number are still there.
    bool reachesBackTo(EventId id) const { return id + 1 >= _oldest && id <= head(); }
    /// The messages after `from`, until the text has that many bytes or there are no more. `from` becomes the number of
    /// the last one.
    std::string textAfter(EventId& from, std::size_t bytes);

private:
    struct Event {
        ReportPtr report;  // not yet written; null if it is, or never was a report
        std::string text;
        std::size_t weight = 0;
    };

    void add(Event event);

    const Limits _limits;
    EventId _oldest;
    std::deque<Event> _events;
    std::size_t _weight = 0;
};

/// One message of the stream as a client gets it.
std::string eventMessage(EventId id, const char* type, const std::string& document);

}  // namespace homeloom::tv

#endif

#ifndef HOMELOOM_TV_DOOR_EVENTSTREAM_H
#define HOMELOOM_TV_DOOR_EVENTSTREAM_H

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "HomeView.h"
#include "door/EventRing.h"

namespace homeloom::tv {

/// All that happens, for any number of clients that listen, and the home as it stands after the last of it.
///
/// Whoever reports something only leaves it here: a thread of the stream's own puts it in its place and wakes the
/// clients, a hundred times a second at most. A client that is up to date is written to twenty times a second at most,
/// so that a hundred of them don't take the processors from the plug-in in a storm. All operations are thread-safe.
class EventStream {
public:
    explicit EventStream(EventRing::Limits limits = {});
    ~EventStream();
    EventStream(const EventStream&) = delete;
    EventStream& operator=(const EventStream&) = delete;

    /// `document` is JSON in one line; `type` lives for ever.
    void publish(const char* type, std::string document);
    /// Lets the clients know that the other side changed: a few times a second at most, whatever changes.
    void publishSimChange();

    /// Where a client stands.
    class Position {
    public:
        /// At the beginning of what it hears stands the whole home;
        Position() = default;
        /// or it goes on after the last event that it has, as told by the client.
        explicit Position(EventId last) : _last(last) {}

    private:
        friend class EventStream;
        std::optional<EventId> _last;
        std::chrono::steady_clock::time_point _next;  // nothing is written before, unless it is behind
    };
    /// The next messages for a client: as soon as there are some, or else a comment when `wait` is over. None when the
    /// stream is closed.
    std::optional<std::string> next(Position& position, std::chrono::milliseconds wait);

    /// The home document after all that was reported before the call.
    std::string home();
    /// A device's object; none if there is no such device.
    std::optional<std::string> device(const std::string& id);

    /// Ends the waiting of all clients, for good.
    void close();

private:
    using Clock = std::chrono::steady_clock;
    struct Document {
        const char* type;
        std::string text;
    };
    using Incoming = std::variant<ReportPtr, Document>;

    void push(Incoming incoming);
    void run();
    bool isDue() const;
    void sort();
    void take(const ReportPtr& report);
    std::string begin(Position& position);
    std::string hello();

    const EventId _start;
    std::mutex _incomingMutex;  // guards the next four; held for a few lines
    std::vector<Incoming> _incoming;
    bool _simChanged = false;
    Clock::time_point _nextSim;  // no event of such a change before
    bool _ends = false;
    std::condition_variable _came;

    std::mutex _mutex;  // guards all below; taken before _incomingMutex
    EventRing _ring;
    HomeView _home;
    int _loadStatus = -1;
    bool _isSignedIn = false;
    EventId _helloId = 0;  // the number up to which the next one holds
    std::string _hello;    // empty: nobody asked yet
    bool _closed = false;
    std::condition_variable _published;
    std::condition_variable _ended;

    int _listener = 0;
    std::thread _thread;
};

}  // namespace homeloom::tv

#endif

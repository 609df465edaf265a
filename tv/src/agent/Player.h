#ifndef HOMELOOM_TV_AGENT_PLAYER_H
#define HOMELOOM_TV_AGENT_PLAYER_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <recorder/Blanking.h>
#include <boost/json/array.hpp>

#include "AgentTape.h"

namespace homeloom::tv {

/// Takes the agent's place, from its tape: answers calls and calls back. Any thread may call; callbacks run on a thread
/// of the player, one at a time.
///
/// - A call has the answer that the same function with the same arguments had, the n-th of them that of the n-th; when
///   there are no more, the last one's. It takes as long as it did.
/// - What a call brings by itself, its reply, comes as long after it as it did.
/// - What a registration brings, an event, comes in the order of the tape, and as long after the last call before it
/// that
///   changed something as it did. So what a person caused waits for the person.
class Player : public recorder::Speller {
public:
    /// How a callback of the plug-in is called with what the tape has.
    using Deliver = std::function<void(const boost::json::array&)>;

    static Player& instance();

    void load(const AgentTape& tape);
    bool isPlaying() const { return _isPlaying; }

    /// Looks the call up, and takes as long as it took. Null if the tape has none.
    const AgentTape::Call* call(const char* function, const std::string& in, Deliver deliver);
    /// No callback is running or will come when it returns, unless it's called from one.
    void disconnect();

    void* makeHandle(const std::string& name);
    void destroyHandle(const void* handle);

    bool isOwing() const;
    AgentTapeState state() const;

    std::string handle(const void* handle, bool isNew) override;
    std::string text(const recorder::Place& place, const std::string& text) override;

private:
    using Clock = std::chrono::steady_clock;
    struct Calls {
        std::vector<std::size_t> indices;  // into the tape's calls
        std::size_t next = 0;
    };
    struct Reply {
        const AgentTape::Callback* callback;
        Deliver deliver;
    };
    using Replies = std::multimap<std::pair<Clock::time_point, std::size_t>, Reply>;

    // These need the mutex.
    void note(std::size_t index, bool isFirst, const Deliver& deliver);
    void unregister(const std::string& function, const std::string& key);
    std::optional<Clock::time_point> eventTime() const;
    Reply takeEvent();

    void run();
    void deliver(const Reply& reply, std::unique_lock<std::mutex>& lock);

    std::atomic<bool> _isPlaying{false};
    AgentTape _tape;
    std::map<std::string, Calls> _byKey;

    mutable std::mutex _mutex;
    std::condition_variable _wake;  // for the thread: what is due has changed
    std::condition_variable _idle;  // for those who wait for its callback's end
    std::thread _thread;
    bool _isRunning = false;
    Replies _replies;
    std::size_t _nextEvent = 0;                      // into the tape's events
    std::map<std::string, Deliver> _events;          // who is registered, by key
    std::set<std::string> _everRegistered;           // keys
    std::set<std::string> _missing;                  // keys of calls that the tape has not
    std::map<std::size_t, Clock::time_point> _made;  // when a call of the tape was made
    std::size_t _lastActing = 0;  // the latest of the tape's acting calls that was made, counted from 1
    std::vector<std::string> _exceptions;
    std::atomic<int> _handles{0};

    std::mutex _blankingMutex;
    recorder::Blanking _blanking;
};

}  // namespace homeloom::tv

#endif

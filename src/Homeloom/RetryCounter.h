#ifndef HOMELOOM_HOMELOOM_RETRYCOUNTER_H
#define HOMELOOM_HOMELOOM_RETRYCOUNTER_H

#include <cstdint>
#include <mutex>

namespace VMFramework::HomeLoom {

/// How often the connection to the agent was tried again since the last success, and how long to wait between two
/// tries. The interval is constant: there is no back-off.
class RetryCounter {
public:
    static constexpr std::int32_t kIntervalMs = 5000;

    virtual ~RetryCounter() = default;

    std::int32_t GetInterval() const {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        return _interval;
    }
    std::int32_t GetCount() const {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        return _count;
    }
    /// The new count.
    std::int32_t Increase() {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        return ++_count;
    }
    void Reset() {
        const std::lock_guard<std::recursive_mutex> lock(_mutex);
        _interval = kIntervalMs;
        _count = 0;
    }

private:
    mutable std::recursive_mutex _mutex;
    std::int32_t _interval = kIntervalMs;
    std::int32_t _count = 0;
};

}  // namespace VMFramework::HomeLoom

#endif

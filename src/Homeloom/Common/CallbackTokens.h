#ifndef HOMELOOM_HOMELOOM_COMMON_CALLBACKTOKENS_H
#define HOMELOOM_HOMELOOM_COMMON_CALLBACKTOKENS_H

#include <memory>

namespace VMFramework::HomeLoom {

/// What the agent and GLib get as user data in place of an address: a number that is never used again, so that a
/// callback that comes late or twice finds its object or nothing, and never freed memory.
///
/// All functions may be called from any thread; their lock is a leaf and is held across no call.
class CallbackTokens {
public:
    /// For callbacks that may come any number of times. Does not keep the object alive.
    static void* Watch(std::weak_ptr<void> object);
    static void Unwatch(void* token);
    /// The watched object, or null if it has gone. T is the type that was given to Watch.
    template <typename T>
    static std::shared_ptr<T> Find(void* token) {
        return std::static_pointer_cast<T>(findObject(token));
    }

    /// For the one callback of an asynchronous call. Keeps the object until it is taken or dropped.
    static void* Keep(std::shared_ptr<void> object);
    /// The kept object, the first time; null from then on. T is the type that was given to Keep.
    template <typename T>
    static std::shared_ptr<T> Take(void* token) {
        return std::static_pointer_cast<T>(takeObject(token));
    }
    /// Drops all that is kept: for when the agent can call back no more.
    static void DropKept();

private:
    static std::shared_ptr<void> findObject(void* token);
    static std::shared_ptr<void> takeObject(void* token);
};

}  // namespace VMFramework::HomeLoom

#endif

#ifndef HOMELOOM_HOMELOOM_COMMON_HANDLERSLOT_H
#define HOMELOOM_HOMELOOM_COMMON_HANDLERSLOT_H

#include <memory>
#include <utility>

#include "Common/Mutex.h"

namespace VMFramework::HomeLoom {

/// Holds a handler that can be replaced while other threads are in it. A caller copies the pointer, which keeps the
/// handler alive for the call. A caller that gets null logs it and returns.
template <typename T>
class HandlerSlot {
public:
    using Handler = T;

    HandlerSlot() = default;
    explicit HandlerSlot(std::shared_ptr<T> handler) : _handler(std::move(handler)) {}

    std::shared_ptr<T> Get() const {
        const MutexLock lock(_mutex);
        return _handler;
    }

    /// The handler that was there is destroyed outside the lock, unless somebody still works in it.
    void Set(std::shared_ptr<T> handler) {
        {
            const MutexLock lock(_mutex);
            _handler.swap(handler);
        }
        handler.reset();
    }

    void Reset() { Set(nullptr); }

private:
    mutable Mutex _mutex;  // a leaf
    std::shared_ptr<T> _handler GUARDED_BY(_mutex);
};

}  // namespace VMFramework::HomeLoom

#endif

#ifndef HOMELOOM_HOMELOOM_COMMON_HANDLERSLOT_H
#define HOMELOOM_HOMELOOM_COMMON_HANDLERSLOT_H

#include <memory>
#include <mutex>
#include <utility>

namespace VMFramework::HomeLoom {

/// Holds a handler that can be taken away while others work in it. Whoever uses it copies the pointer and so keeps the
/// handler for as long as it works in it. A caller that gets null logs it and returns.
template <typename T>
class HandlerSlot {
public:
    using Handler = T;

    HandlerSlot() = default;
    explicit HandlerSlot(std::shared_ptr<T> handler) : _handler(std::move(handler)) {}

    std::shared_ptr<T> Get() const {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _handler;
    }

    /// The handler that was there is destroyed outside the lock, unless somebody still works in it.
    void Set(std::shared_ptr<T> handler) {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _handler.swap(handler);
        }
        handler.reset();
    }

    void Reset() { Set(nullptr); }

private:
    mutable std::mutex _mutex;  // a leaf
    std::shared_ptr<T> _handler;
};

}  // namespace VMFramework::HomeLoom

#endif

#ifndef HOMELOOM_DESKTOP_VMF_OBSERVERSLOT_H
#define HOMELOOM_DESKTOP_VMF_OBSERVERSLOT_H

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace homeloom::desktop {

/// A place for one observer, which costs no lock as long as it is empty. An observer that was taken away may still run
/// when set() returns.
template <typename... Arguments>
class ObserverSlot {
public:
    using Observer = std::function<void(Arguments...)>;

    void set(Observer observer) {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isTaken = observer != nullptr;
        _observer = observer != nullptr ? std::make_shared<const Observer>(std::move(observer)) : nullptr;
    }

    void tell(Arguments... arguments) {
        if (!_isTaken.load(std::memory_order_relaxed)) {
            return;
        }
        std::shared_ptr<const Observer> observer;
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            observer = _observer;
        }
        if (observer != nullptr) {
            (*observer)(arguments...);
        }
    }

private:
    std::atomic<bool> _isTaken{false};
    std::mutex _mutex;
    std::shared_ptr<const Observer> _observer;
};

}  // namespace homeloom::desktop

#endif

#ifndef HOMELOOM_DESKTOP_VMF_HANDLETABLE_H
#define HOMELOOM_DESKTOP_VMF_HANDLETABLE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>

namespace homeloom::desktop {

/// What a handle stands for; part of every handle, so that none passes for one of another kind.
enum class HandleKind : std::uintptr_t {
    Property = 1,
    PropertyList,
    Endpoint,
    EndpointList,
    ServiceHandler,
    Transaction
};

/// Turns objects into the opaque pointers of the C interface and back. A handle is a number, not an address: its
/// place in the table, how often that place was used, and the kind, with the lowest bit set. So null, ended
/// handles, those of another kind and real pointers are all told from live ones.
///
/// The table is thread-safe; the objects are as safe as their interface says. Looking a handle up takes no lock: that
/// is what every call of the interface does, most of them more than once.
template <typename Object, typename Handle, HandleKind KIND>
class HandleTable {
public:
    /// The object must have a member `handle`, which is set. Null if the table is full.
    Handle add(std::unique_ptr<Object> object) {
        const std::lock_guard<std::mutex> lock(_mutex);
        std::size_t index = _used;
        if (_free.size() > kRested || (index > kMaxIndex && !_free.empty())) {
            index = _free.front();
            _free.pop_front();
        } else if (index > kMaxIndex) {
            return nullptr;
        } else {
            grow();
        }
        Slot& slot = *slotAt(index);
        const Handle handle = encode(index, slot.use);
        object->handle = handle;
        slot.object.store(object.release(), std::memory_order_relaxed);  // the handle's store publishes it
        slot.handle.store(handle, std::memory_order_release);
        _live.fetch_add(1, std::memory_order_relaxed);
        return handle;
    }

    /// Null for anything but a live handle of this kind.
    Object* get(const void* handle) const {
        const Slot* const slot = find(handle);
        return slot != nullptr ? slot->object.load(std::memory_order_relaxed) : nullptr;
    }

    /// Takes the object out; its handle is dead from here on.
    std::unique_ptr<Object> remove(const void* handle) {
        const std::lock_guard<std::mutex> lock(_mutex);
        Slot* const slot = find(handle);
        if (slot == nullptr) {
            return nullptr;
        }
        std::unique_ptr<Object> object(slot->object.load());
        vacate(*slot, handle);
        return object;
    }

    /// Ends live objects, which the iterators point at.
    template <typename Iterator>
    void endAll(Iterator first, Iterator last) {
        removeAll(first, last);
        for (; first != last; ++first) {
            std::unique_ptr<Object>(*first).reset();
        }
    }

    /// Ends the handles of live objects, which the iterators point at; the objects are the caller's from here on.
    template <typename Iterator>
    void removeAll(Iterator first, Iterator last) {
        const std::lock_guard<std::mutex> lock(_mutex);
        for (; first != last; ++first) {
            const void* const handle = (*first)->handle;
            if (Slot* const slot = find(handle)) {
                vacate(*slot, handle);
            }
        }
    }

    /// Ends the handle and takes its object out like remove(), but keeps the object's place for it. Whoever has it
    /// wakes it or leaves the place. Takes no lock.
    std::unique_ptr<Object> rest(const void* handle) {
        Slot* const slot = handle != nullptr ? slotAt(indexOf(handle)) : nullptr;
        if (slot == nullptr || !slot->handle.compare_exchange_strong(handle, nullptr)) {
            return nullptr;
        }
        slot->use = (slot->use + 1) & kMaxUse;
        _live.fetch_sub(1, std::memory_order_relaxed);
        return std::unique_ptr<Object>(slot->object.load(std::memory_order_relaxed));
    }

    /// Gives a resting object a new handle.
    Handle wake(std::unique_ptr<Object> object) {
        const std::size_t index = indexOf(object->handle);
        Slot& slot = *slotAt(index);
        const Handle handle = encode(index, slot.use);
        object.release()->handle = handle;
        slot.handle.store(handle, std::memory_order_release);
        _live.fetch_add(1, std::memory_order_relaxed);
        return handle;
    }

    /// Gives the place of a resting object back.
    void leave(const Object& object) {
        const std::lock_guard<std::mutex> lock(_mutex);
        const std::size_t index = indexOf(object.handle);
        slotAt(index)->object.store(nullptr, std::memory_order_relaxed);
        _free.push_back(index);
    }

    std::size_t live() const { return _live.load(); }

private:
    struct Slot {
        std::atomic<const void*> handle{nullptr};  // null while nothing lives here
        std::atomic<Object*> object{nullptr};
        std::uintptr_t use = 0;
    };

    static constexpr unsigned kKindBits = 3;
    static constexpr unsigned kIndexBits = sizeof(std::uintptr_t) > 4 ? 28 : 20;
    static constexpr unsigned kUseBits = sizeof(std::uintptr_t) * 8 - 1 - kKindBits - kIndexBits;
    static constexpr std::uintptr_t kMaxIndex = (std::uintptr_t{1} << kIndexBits) - 1;
    static constexpr std::uintptr_t kMaxUse = (std::uintptr_t{1} << kUseBits) - 1;
    // Slots come in blocks that never move, so that they can be looked at while the table grows.
    static constexpr std::size_t kBlockSize = 4096;
    static constexpr std::size_t kBlocks = (kMaxIndex + 1) / kBlockSize;
    // A place rests for a while before it is used again, so that the counter of its uses lasts.
    static constexpr std::size_t kRested = 1024;

    static Handle encode(std::uintptr_t index, std::uintptr_t use) {
        const std::uintptr_t number =
            (((use << kIndexBits | index) << kKindBits | static_cast<std::uintptr_t>(KIND)) << 1) | 1;
        return reinterpret_cast<Handle>(number);
    }

    static std::size_t indexOf(const void* handle) {
        return (reinterpret_cast<std::uintptr_t>(handle) >> (1 + kKindBits)) & kMaxIndex;
    }

    Slot* slotAt(std::size_t index) const {
        Slot* const block = _blocks[index / kBlockSize].load(std::memory_order_acquire);
        return block != nullptr ? block + index % kBlockSize : nullptr;
    }

    // Null for anything but a live handle.
    Slot* find(const void* handle) const {
        Slot* const slot = handle != nullptr ? slotAt(indexOf(handle)) : nullptr;
        return slot != nullptr && slot->handle.load(std::memory_order_acquire) == handle ? slot : nullptr;
    }

    // Called with the mutex held.
    void vacate(Slot& slot, const void* handle) {
        slot.handle.store(nullptr, std::memory_order_relaxed);
        slot.object.store(nullptr, std::memory_order_relaxed);
        slot.use = (slot.use + 1) & kMaxUse;
        _free.push_back(indexOf(handle));
        _live.fetch_sub(1, std::memory_order_relaxed);
    }

    // Called with the mutex held.
    void grow() {
        if (_used % kBlockSize == 0) {
            _blocks[_used / kBlockSize].store(new Slot[kBlockSize], std::memory_order_release);
        }
        ++_used;
    }

    mutable std::mutex _mutex;  // for changes
    // The tables live as long as the process; so do their blocks.
    const std::unique_ptr<std::atomic<Slot*>[]> _blocks { new std::atomic<Slot*>[ kBlocks ]() };
    std::size_t _used = 0;
    std::deque<std::size_t> _free;
    std::atomic<std::size_t> _live{0};
};

}  // namespace homeloom::desktop

#endif

#ifndef HOMELOOM_DESKTOP_VMF_HANDLETABLE_H
#define HOMELOOM_DESKTOP_VMF_HANDLETABLE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

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
/// The table is thread-safe; the objects are as safe as their interface says.
template <typename Object, typename Handle, HandleKind KIND>
class HandleTable {
public:
    /// The object must have a member `handle`, which is set. Null if the table is full.
    Handle add(std::unique_ptr<Object> object) {
        const std::lock_guard<std::mutex> lock(_mutex);
        std::size_t index = _slots.size();
        if (_free.size() > kRested || (index > kMaxIndex && !_free.empty())) {
            index = _free.front();
            _free.pop_front();
        } else if (index > kMaxIndex) {
            return nullptr;
        } else {
            _slots.emplace_back();
        }
        Slot& slot = _slots[index];
        slot.object = std::move(object);
        slot.object->handle = encode(index, slot.use);
        ++_live;
        return slot.object->handle;
    }

    /// Null for anything but a live handle of this kind.
    Object* get(const void* handle) const {
        const std::lock_guard<std::mutex> lock(_mutex);
        const std::size_t index = find(handle);
        return index != kNone ? _slots[index].object.get() : nullptr;
    }

    /// Takes the object out; its handle is dead from here on.
    std::unique_ptr<Object> remove(const void* handle) {
        const std::lock_guard<std::mutex> lock(_mutex);
        const std::size_t index = find(handle);
        if (index == kNone) {
            return nullptr;
        }
        Slot& slot = _slots[index];
        slot.use = (slot.use + 1) & kMaxUse;
        _free.push_back(index);
        --_live;
        return std::move(slot.object);
    }

    std::size_t live() const {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _live;
    }

private:
    struct Slot {
        std::unique_ptr<Object> object;
        std::uintptr_t use = 0;
    };

    static constexpr unsigned kKindBits = 3;
    static constexpr unsigned kIndexBits = sizeof(std::uintptr_t) > 4 ? 28 : 20;
    static constexpr unsigned kUseBits = sizeof(std::uintptr_t) * 8 - 1 - kKindBits - kIndexBits;
    static constexpr std::uintptr_t kMaxIndex = (std::uintptr_t{1} << kIndexBits) - 1;
    static constexpr std::uintptr_t kMaxUse = (std::uintptr_t{1} << kUseBits) - 1;
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    // A place rests for a while before it is used again, so that the counter of its uses lasts.
    static constexpr std::size_t kRested = 1024;

    static Handle encode(std::uintptr_t index, std::uintptr_t use) {
        const std::uintptr_t number =
            (((use << kIndexBits | index) << kKindBits | static_cast<std::uintptr_t>(KIND)) << 1) | 1;
        return reinterpret_cast<Handle>(number);
    }

    std::size_t find(const void* handle) const {
        const auto number = reinterpret_cast<std::uintptr_t>(handle);
        const std::uintptr_t index = (number >> (1 + kKindBits)) & kMaxIndex;
        if (index >= _slots.size() || !_slots[index].object || encode(index, _slots[index].use) != handle) {
            return kNone;
        }
        return index;
    }

    mutable std::mutex _mutex;
    std::vector<Slot> _slots;
    std::deque<std::size_t> _free;
    std::size_t _live = 0;
};

}  // namespace homeloom::desktop

#endif

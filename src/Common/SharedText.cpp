// Keeps each text once for as long as somebody holds it.
#include "Common/SharedText.h"

#include <unordered_map>

#include "Common/Mutex.h"

namespace VMFramework::HomeLoom {

struct SharedText::Texts {
    Mutex mutex;  // a leaf
    std::unordered_map<std::string, std::atomic<unsigned>> texts GUARDED_BY(mutex);
};

// Made as the library is loaded, and so outlives the singletons that hold texts.
SharedText::Texts SharedText::texts;
const std::string SharedText::kEmpty;

SharedText::SharedText(const std::string& text) {
    if (!text.empty()) {
        const MutexLock lock(texts.mutex);
        _kept = &*texts.texts.try_emplace(text).first;
        _kept->second.fetch_add(1, std::memory_order_relaxed);
    }
}

void SharedText::release() noexcept {
    unsigned holders = _kept->second.load(std::memory_order_relaxed);
    while (holders > 1) {
        if (_kept->second.compare_exchange_weak(holders, holders - 1, std::memory_order_release)) {
            return;
        }
    }
    // The last holder, unless the text is found anew before the lock is taken.
    const MutexLock lock(texts.mutex);
    if (_kept->second.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        texts.texts.erase(texts.texts.find(_kept->first));
    }
}

}  // namespace VMFramework::HomeLoom

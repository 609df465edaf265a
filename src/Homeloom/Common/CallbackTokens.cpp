// Gives out the numbers that stand for objects in callbacks, and finds the object again while it lives.
#include "Homeloom/Common/CallbackTokens.h"

#include <cstdint>
#include <unordered_map>
#include <utility>

#include "Common/Mutex.h"

namespace VMFramework::HomeLoom {

namespace {

struct Table {
    Mutex mutex;
    std::uintptr_t last GUARDED_BY(mutex) = 0;
    std::unordered_map<void*, std::weak_ptr<void>> watched GUARDED_BY(mutex);
    std::unordered_map<void*, std::shared_ptr<void>> kept GUARDED_BY(mutex);

    void* Next() REQUIRES(mutex) { return reinterpret_cast<void*>(++last); }
};

// Made when the library is loaded, and so destroyed after the singletons: their handlers still give tokens back then.
Table table;

}  // namespace

void* CallbackTokens::Watch(std::weak_ptr<void> object) {
    const MutexLock lock(table.mutex);
    void* const token = table.Next();
    table.watched.emplace(token, std::move(object));
    return token;
}

void CallbackTokens::Unwatch(void* token) {
    const MutexLock lock(table.mutex);
    table.watched.erase(token);
}

std::shared_ptr<void> CallbackTokens::findObject(void* token) {
    const MutexLock lock(table.mutex);
    const auto found = table.watched.find(token);
    return found == table.watched.end() ? nullptr : found->second.lock();
}

void* CallbackTokens::Keep(std::shared_ptr<void> object) {
    const MutexLock lock(table.mutex);
    void* const token = table.Next();
    table.kept.emplace(token, std::move(object));
    return token;
}

std::shared_ptr<void> CallbackTokens::takeObject(void* token) {
    const MutexLock lock(table.mutex);
    const auto found = table.kept.find(token);
    if (found == table.kept.end()) {
        return nullptr;
    }
    std::shared_ptr<void> object = std::move(found->second);
    table.kept.erase(found);
    return object;
}

void CallbackTokens::DropKept() {
    // What was kept is destroyed outside the lock: it may hold anything.
    std::unordered_map<void*, std::shared_ptr<void>> dropped;
    const MutexLock lock(table.mutex);
    dropped.swap(table.kept);
}

}  // namespace VMFramework::HomeLoom

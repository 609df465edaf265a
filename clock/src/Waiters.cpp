#include "Waiters.h"

#include <fcntl.h>
#include <linux/futex.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>

#include "Machine.h"
#include "Page.h"

namespace homeloom::clock {

namespace {

// Past the sanitizers: whoever is woken so has not been told anything by the one who turns the clock.
Below<int(pthread_cond_t*)> broadcastOfLibrary{"pthread_cond_broadcast", functionOfLibrary};

std::uint32_t listLock = 0;
Waiter* list = nullptr;
std::uint64_t added = 0;

// Files to wake by, kept for the next waiter. They are there from the start: whoever counts a program's open files to
// see whether it leaves any open sees always the same number of these, unless more threads poll than that.
constexpr int kMostSpareFiles = 8;
int spareFiles[kMostSpareFiles];
int spareCount = 0;

int openWakeFile() {
    return static_cast<int>(systemCall(SYS_eventfd2, 0, EFD_CLOEXEC | EFD_NONBLOCK));
}

__attribute__((constructor)) void openSpareFiles() {
    while (spareCount < kMostSpareFiles) {
        spareFiles[spareCount++] = openWakeFile();
    }
}

}  // namespace

Waiter::Waiter(std::int64_t deadline, Bed bed, void* address) : _deadline(deadline), _bed(bed), _address(address) {
    Waiters::add(*this);
}

Waiter::~Waiter() {
    Waiters::remove(*this);
}

bool Waiter::isOver() const {
    return shown() >= _deadline;
}

std::int64_t Waiter::left() const {
    const std::int64_t left = _deadline - shown();
    return left > 0 ? left : 0;
}

void Waiter::takeWake() const {
    std::uint64_t count = 0;
    systemCall(SYS_read, _file, toLong(&count), sizeof count);
}

// Called with the list locked: the waiter can't leave, so what it sleeps on is still there.
void Waiter::wake() const {
    switch (_bed) {
        case Bed::Condition:
            (*broadcastOfLibrary)(static_cast<pthread_cond_t*>(_address));
            break;
        case Bed::Futex:
            // Those who share the memory with another process wait in another queue.
            systemCall(SYS_futex, toLong(_address), FUTEX_WAKE | FUTEX_PRIVATE_FLAG, INT32_MAX);
            systemCall(SYS_futex, toLong(_address), FUTEX_WAKE, INT32_MAX);
            break;
        case Bed::File: {
            const std::uint64_t one = 1;
            systemCall(SYS_write, _file, toLong(&one), sizeof one);
            break;
        }
    }
}

void Waiters::add(Waiter& waiter) {
    const SpinLock lock(listLock);
    if (waiter._bed == Waiter::Bed::File) {
        waiter._file = spareCount > 0 ? spareFiles[--spareCount] : openWakeFile();
    }
    waiter._order = ++added;
    waiter._next = list;
    if (list != nullptr) {
        list->_previous = &waiter;
    }
    list = &waiter;
    tellFirst();
}

void Waiters::remove(Waiter& waiter) {
    const SpinLock lock(listLock);
    (waiter._previous != nullptr ? waiter._previous->_next : list) = waiter._next;
    if (waiter._next != nullptr) {
        waiter._next->_previous = waiter._previous;
    }
    if (waiter._file >= 0) {
        waiter.takeWake();
        if (spareCount < kMostSpareFiles) {
            spareFiles[spareCount++] = waiter._file;
        } else {
            systemCall(SYS_close, waiter._file);
        }
    }
    tellFirst();
}

// Called with the list locked. Whoever has been woken and is still here waits for something else.
Waiter* Waiters::first() {
    Waiter* found = nullptr;
    for (Waiter* waiter = list; waiter != nullptr; waiter = waiter->_next) {
        // Newer ones stand in front.
        if (!waiter->_isWoken && (found == nullptr || waiter->_deadline <= found->_deadline)) {
            found = waiter;
        }
    }
    return found;
}

// Called with the list locked.
void Waiters::tellFirst() {
    if (hasJoined()) {
        const Waiter* const waiter = first();
        tellDeadline(waiter != nullptr ? waiter->_deadline : kNever);
    }
}

std::int64_t Waiters::nextDeadline() {
    const SpinLock lock(listLock);
    const Waiter* const waiter = first();
    return waiter != nullptr ? waiter->_deadline : kNever;
}

void Waiters::wakeFirst() {
    const SpinLock lock(listLock);
    if (Waiter* const waiter = first()) {
        waiter->_isWoken = true;
        waiter->wake();
    }
}

void Waiters::wakeOverdue() {
    const SpinLock lock(listLock);
    const std::int64_t now = shown();
    for (Waiter* waiter = first(); waiter != nullptr && waiter->_deadline <= now; waiter = first()) {
        waiter->_isWoken = true;
        waiter->wake();
    }
    tellFirst();
}

void Waiters::wakeAll() {
    const SpinLock lock(listLock);
    for (Waiter* waiter = list; waiter != nullptr; waiter = waiter->_next) {
        waiter->wake();
    }
}

bool Waiters::wakeAgain() {
    const SpinLock lock(listLock);
    bool isAny = false;
    for (Waiter* waiter = list; waiter != nullptr; waiter = waiter->_next) {
        if (waiter->_isWoken && !waiter->_isWokenAgain) {
            waiter->_isWokenAgain = true;
            isAny = true;
            waiter->wake();
        }
    }
    return isAny;
}

}  // namespace homeloom::clock

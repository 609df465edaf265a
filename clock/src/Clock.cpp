#include "clock/Clock.h"

#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>

#include "Machine.h"
#include "Page.h"
#include "Programs.h"
#include "Waiters.h"
#include "clock/Rest.h"

namespace homeloom::clock {

namespace {

constexpr std::int64_t kLongLeap = 600 * kSecond;

// Whoever turns keeps this one, which the others wait for in naps: a turn may take seconds.
std::uint32_t turning = 0;

class Turn {
public:
    Turn() {
        exempt(true);
        while (__atomic_exchange_n(&turning, 1, __ATOMIC_ACQUIRE) != 0) {
            nap(100'000);
        }
    }
    ~Turn() {
        __atomic_store_n(&turning, 0, __ATOMIC_RELEASE);
        exempt(false);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
};

void wakeAll() {
    Waiters::wakeAll();
    callFollowers(true);
}

// Whoever waits without end for the clock to be turned is to wait for the machine's time from here on. A second time at
// rest, for those who were not yet asleep.
void runAgain() {
    makeRun();
    wakeAll();
    waitForRest();
    wakeAll();
}

bool leap(std::int64_t end) {
    const std::int64_t own = Waiters::nextDeadline();
    const std::int64_t others = nextDeadlineOfFollowers();
    const std::int64_t next = own < others ? own : others;
    if (next == kNever || next > end) {
        return false;
    }
    show(next);
    if (own <= others) {
        Waiters::wakeFirst();
    } else {
        callFollowers(false);
    }
    return true;
}

// In a program that has joined: hands the calls on to its own.
void* follow(void*) {
    std::uint32_t calls = callsToFollowers();
    std::uint32_t callsToAll = callsToAllWaiting();
    while (true) {
        waitForCall(calls);
        calls = callsToFollowers();
        Waiters::wakeOverdue();
        if (callsToAllWaiting() != callsToAll) {
            callsToAll = callsToAllWaiting();
            Waiters::wakeAll();
        }
    }
}

void startFollowing() {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread;
    if (pthread_create(&thread, nullptr, follow, nullptr) == 0) {
        pthread_detach(thread);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace

void run() {
    const Turn turn;
    if (stands()) {
        runAgain();
    }
}

void stand() {
    const Turn turn;
    makeStand();
}

bool isStanding() {
    return stands();
}

Duration now() {
    return Duration(shown());
}

Duration date() {
    return Duration(shown(CLOCK_REALTIME));
}

void advance(Duration duration) {
    const Turn turn;
    const bool stood = stands();
    makeStand();
    const std::int64_t start = shown();
    const std::int64_t end = duration.count() < kNever - start ? start + duration.count() : kNever - 1;
    waitForRest();
    if (duration.count() <= kLongLeap) {
        while (leap(end)) {
            waitForRest();
        }
    }
    show(end);
    Waiters::wakeOverdue();
    callFollowers(false);
    waitForRest();
    if (!stood) {
        runAgain();
    }
}

Duration nextDeadline() {
    const std::int64_t own = Waiters::nextDeadline();
    const std::int64_t others = nextDeadlineOfFollowers();
    return Duration(own < others ? own : others);
}

bool leapToNextDeadline(Duration end) {
    const Turn turn;
    return stands() && leap(end.count());
}

Exempt::Exempt() {
    exempt(true);
}

Exempt::~Exempt() {
    exempt(false);
}

bool join() {
    if (!joinPage()) {
        return false;
    }
    startFollowing();
    return true;
}

}  // namespace homeloom::clock

#include "Page.h"

#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "Machine.h"
#include "Programs.h"

namespace homeloom::clock {

namespace {

constexpr char kVariable[] = "HOMELOOM_CLOCK";
constexpr std::uint32_t kMagic = 0x484c434b;
// The system's clocks by number, up to CLOCK_TAI.
constexpr int kClocks = 12;
constexpr int kFollowers = 4;

struct Follower {
    std::int32_t process;  // 0: nobody
    std::int64_t deadline;
};

struct Page {
    std::uint32_t magic;
    std::int32_t owner;     // the process that turns it
    std::uint32_t edition;  // odd while somebody writes the next four
    std::int32_t stands;
    std::int64_t monotonic;       // while it stands
    std::int64_t leads[kClocks];  // of each clock before the monotonic one, while it stands
    std::int64_t offset;          // to the machine's time, while it runs
    std::uint32_t calls;
    std::uint32_t callsToAll;
    std::uint32_t lock;  // for the followers' places
    Follower followers[kFollowers];
};

Page ownPage{kMagic, 0, 0, 0, 0, {}, 0, 0, 0, 0, {}};
Page* page = &ownPage;
Follower* place = nullptr;  // this program's, if it has joined
int inheritedFile = -1;

template <typename Type>
Type get(const Type& value) {
    return __atomic_load_n(&value, __ATOMIC_RELAXED);
}

template <typename Type>
void set(Type& value, Type newValue) {
    __atomic_store_n(&value, newValue, __ATOMIC_RELAXED);
}

bool isCovered(clockid_t clock) {
    return clock >= 0 && clock < kClocks && clock != CLOCK_PROCESS_CPUTIME_ID && clock != CLOCK_THREAD_CPUTIME_ID;
}

// The writer lets readers start anew, so that none sees half a change.
class Writing {
public:
    Writing() {
        __atomic_fetch_add(&page->edition, 1, __ATOMIC_ACQ_REL);
        __atomic_thread_fence(__ATOMIC_SEQ_CST);
    }
    ~Writing() { __atomic_fetch_add(&page->edition, 1, __ATOMIC_RELEASE); }
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;
};

Page* mapPage(int file) {
    struct stat status {};
    if (fstat(file, &status) != 0 || status.st_size != sizeof(Page)) {
        return nullptr;
    }
    void* const memory = mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    return memory != MAP_FAILED ? static_cast<Page*>(memory) : nullptr;
}

// Before main(): no other thread reads the environment yet. The file stays open in programs that this one starts, and
// the variable tells them where. Without the file the clock is this program's alone.
__attribute__((constructor)) void preparePage() {
    if (const char* const inherited = getenv(kVariable)) {
        inheritedFile = std::atoi(inherited);
    }
    const int file = static_cast<int>(systemCall(SYS_memfd_create, toLong("homeloom-clock"), 0));
    if (file < 0 || ftruncate(file, sizeof(Page)) != 0) {
        return;
    }
    if (Page* const shared = mapPage(file)) {
        *shared = ownPage;
        shared->owner = static_cast<std::int32_t>(getpid());
        page = shared;
        char number[16];
        std::snprintf(number, sizeof number, "%d", file);
        setenv(kVariable, number, 1);
    }
}

}  // namespace

std::int64_t shown(clockid_t clock) {
    if (!isCovered(clock)) {
        return machineTime(clock);
    }
    while (true) {
        const std::uint32_t edition = __atomic_load_n(&page->edition, __ATOMIC_ACQUIRE);
        const std::int64_t time = get(page->stands) != 0 ? get(page->monotonic) + get(page->leads[clock])
                                                         : machineTime(clock) + get(page->offset);
        __atomic_thread_fence(__ATOMIC_ACQUIRE);
        if (edition % 2 == 0 && get(page->edition) == edition) {
            return time;
        }
    }
}

std::int64_t shown() {
    return shown(CLOCK_MONOTONIC);
}

bool stands() {
    return get(page->stands) != 0;
}

void makeStand() {
    if (stands()) {
        return;
    }
    std::int64_t leads[kClocks] = {};
    const std::int64_t monotonic = machineTime(CLOCK_MONOTONIC);
    for (clockid_t clock = 0; clock < kClocks; ++clock) {
        leads[clock] = isCovered(clock) ? machineTime(clock) - monotonic : 0;
    }
    leads[CLOCK_MONOTONIC] = 0;
    const Writing writing;
    for (clockid_t clock = 0; clock < kClocks; ++clock) {
        set(page->leads[clock], leads[clock]);
    }
    set(page->monotonic, machineTime(CLOCK_MONOTONIC) + get(page->offset));
    set(page->stands, 1);
}

void makeRun() {
    if (!stands()) {
        return;
    }
    const Writing writing;
    set(page->offset, get(page->monotonic) - machineTime(CLOCK_MONOTONIC));
    set(page->stands, 0);
}

void show(std::int64_t monotonic) {
    const Writing writing;
    if (monotonic > get(page->monotonic)) {
        set(page->monotonic, monotonic);
    }
}

// ---- The other programs ----

std::uint32_t callsToFollowers() {
    return __atomic_load_n(&page->calls, __ATOMIC_ACQUIRE);
}

std::uint32_t callsToAllWaiting() {
    return __atomic_load_n(&page->callsToAll, __ATOMIC_ACQUIRE);
}

void callFollowers(bool everybody) {
    if (everybody) {
        __atomic_fetch_add(&page->callsToAll, 1, __ATOMIC_ACQ_REL);
    }
    __atomic_fetch_add(&page->calls, 1, __ATOMIC_ACQ_REL);
    systemCall(SYS_futex, toLong(&page->calls), FUTEX_WAKE, INT32_MAX);
}

void waitForCall(std::uint32_t last) {
    while (callsToFollowers() == last) {
        systemCall(SYS_futex, toLong(&page->calls), FUTEX_WAIT, static_cast<long>(last));
    }
}

std::int64_t nextDeadlineOfFollowers() {
    std::int64_t next = kNever;
    for (Follower& follower : page->followers) {
        const int process = get(follower.process);
        if (process == 0) {
            continue;
        }
        switch (stateOf(process)) {
            case ProgramState::Ended:
                set(follower.deadline, kNever);
                set(follower.process, 0);
                break;
            case ProgramState::Stopped:
                break;
            case ProgramState::Lives:
                next = get(follower.deadline) < next ? get(follower.deadline) : next;
                break;
        }
    }
    return next;
}

bool hasJoined() {
    return place != nullptr;
}

void tellDeadline(std::int64_t deadline) {
    set(place->deadline, deadline);
}

bool joinPage() {
    Page* const shared = inheritedFile >= 0 ? mapPage(inheritedFile) : nullptr;
    if (shared == nullptr || get(shared->magic) != kMagic ||
        get(shared->owner) != static_cast<std::int32_t>(getppid())) {
        return false;  // not by a program with this clock, or not by itself
    }
    const SpinLock lock(shared->lock);
    for (Follower& follower : shared->followers) {
        if (get(follower.process) == 0 || stateOf(get(follower.process)) == ProgramState::Ended) {
            set(follower.deadline, kNever);
            set(follower.process, static_cast<std::int32_t>(getpid()));
            place = &follower;
            page = shared;
            return true;
        }
    }
    return false;
}

}  // namespace homeloom::clock

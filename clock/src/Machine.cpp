#include "Machine.h"

#include <dlfcn.h>
#include <gnu/lib-names.h>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace homeloom::clock {

namespace {

using SystemCall = long(long, ...);
using ClockGetTime = int(clockid_t, timespec*);

Below<SystemCall> systemCallBelow{"syscall", functionOfLibrary};
Below<ClockGetTime> clockGetTimeBelow{"clock_gettime", functionOfLibrary};

[[noreturn]] void failFor(const char* name) {
    std::fprintf(stderr, "the clock finds no %s below it\n", name);
    std::abort();
}

}  // namespace

void* functionBelow(const char* name) {
    // A sanitizer's own name for it tells it from the one in the program, which is the clock's.
    for (const char* format : {"__interceptor_%s", "___interceptor_%s"}) {
        char covered[96];
        std::snprintf(covered, sizeof covered, format, name);
        if (void* const function = dlsym(RTLD_DEFAULT, covered)) {
            return function;
        }
    }
    void* const function = dlsym(RTLD_NEXT, name);
    return function != nullptr ? function : functionOfLibrary(name);
}

void* functionOfLibrary(const char* name) {
    void* const library = dlopen(LIBC_SO, RTLD_LAZY | RTLD_NOLOAD);
    void* const function = library != nullptr ? dlsym(library, name) : nullptr;
    if (function == nullptr) {
        failFor(name);
    }
    dlclose(library);
    return function;
}

long systemCall(long number, long a, long b, long c, long d, long e, long f) {
    return (*systemCallBelow)(number, a, b, c, d, e, f);
}

std::int64_t machineTime(clockid_t clock) {
    timespec time{};
    (*clockGetTimeBelow)(clock, &time);
    return toNanoseconds(time.tv_sec, time.tv_nsec);
}

void nap(std::int64_t nanoseconds) {
    static Below<int(const timespec*, timespec*)> nanosleepBelow{"nanosleep", functionOfLibrary};
    const timespec time = toTimespec(nanoseconds);
    (*nanosleepBelow)(&time, nullptr);
}

int threadId() {
    return static_cast<int>(systemCall(SYS_gettid));
}

SpinLock::SpinLock(std::uint32_t& word) : _word(word) {
    while (__atomic_exchange_n(&_word, 1, __ATOMIC_ACQUIRE) != 0) {
        systemCall(SYS_sched_yield);
    }
}

}  // namespace homeloom::clock

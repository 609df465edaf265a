#include "Programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "Machine.h"

namespace homeloom::clock {

namespace {

constexpr int kMostExempt = 256;

std::uint32_t programsLock = 0;
std::int32_t programs[kMostPrograms];
std::int32_t exemptThreads[kMostExempt];
__thread int exemptions = 0;

// A program that is only starting has not yet said a word, and is no less at work for that.
void remember(int process) {
    const SpinLock lock(programsLock);
    for (std::int32_t& program : programs) {
        if (program == 0 || stateOf(program) == ProgramState::Ended) {
            program = process;
            return;
        }
    }
}

}  // namespace

ProgramState stateOf(int process) {
    char path[32];
    std::snprintf(path, sizeof path, "/proc/%d/stat", process);
    const int file = static_cast<int>(systemCall(SYS_openat, AT_FDCWD, toLong(path), O_RDONLY | O_CLOEXEC));
    if (file < 0) {
        return ProgramState::Ended;
    }
    char text[512];
    const long size = systemCall(SYS_read, file, toLong(text), sizeof text - 1);
    systemCall(SYS_close, file);
    text[size > 0 ? size : 0] = '\0';
    const char* const nameEnd = std::strrchr(text, ')');
    const char state = nameEnd != nullptr && nameEnd[1] != '\0' ? nameEnd[2] : 'X';
    return state == 'Z' || state == 'X'   ? ProgramState::Ended
           : state == 'T' || state == 't' ? ProgramState::Stopped
                                          : ProgramState::Lives;
}

int livingPrograms(int (&processes)[kMostPrograms]) {
    const SpinLock lock(programsLock);
    int count = 0;
    for (std::int32_t& program : programs) {
        if (program != 0 && stateOf(program) == ProgramState::Ended) {
            program = 0;
        }
        if (program != 0) {
            processes[count++] = program;
        }
    }
    return count;
}

bool isExempt() {
    return exemptions > 0;
}

bool isExempt(int thread) {
    for (const std::int32_t& exempted : exemptThreads) {
        if (__atomic_load_n(&exempted, __ATOMIC_RELAXED) == thread) {
            return true;
        }
    }
    return false;
}

void exempt(bool isExempt) {
    exemptions += isExempt ? 1 : -1;
    if (exemptions != (isExempt ? 1 : 0)) {
        return;
    }
    const std::int32_t self = threadId();
    for (std::int32_t& exempted : exemptThreads) {
        std::int32_t expected = isExempt ? 0 : self;
        if (__atomic_compare_exchange_n(&exempted, &expected, isExempt ? self : 0, false, __ATOMIC_ACQ_REL,
                                        __ATOMIC_RELAXED)) {
            return;
        }
    }
}

}  // namespace homeloom::clock

namespace {

using Spawn = int(pid_t*, const char*, const posix_spawn_file_actions_t*, const posix_spawnattr_t*, char* const[],
                  char* const[]);

homeloom::clock::Below<Spawn> spawnBelow{"posix_spawn"};
homeloom::clock::Below<Spawn> spawnpBelow{"posix_spawnp"};

// The caller is in the kernel until the new program runs, so there is no moment in which neither is at work.
int spawn(Spawn* below, pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
          const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
    pid_t started = 0;
    const int result = below(&started, path, actions, attributes, arguments, environment);
    if (result == 0) {
        homeloom::clock::remember(started);
        if (process != nullptr) {
            *process = started;
        }
    }
    return result;
}

}  // namespace

extern "C" int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                           const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
    return spawn(*spawnBelow, process, path, actions, attributes, arguments, environment);
}

extern "C" int posix_spawnp(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                            const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
    return spawn(*spawnpBelow, process, path, actions, attributes, arguments, environment);
}

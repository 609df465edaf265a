#include "clock/Rest.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "Machine.h"
#include "Programs.h"
#include "Waiters.h"

namespace homeloom::clock {

namespace {

// A thread as it was seen last, with the files of /proc that tell of it.
struct Task {
    int process;
    int thread;
    int stat;
    int turns;
    int call;
    std::uint64_t turnCount;
    std::uint32_t seen;
};

struct Entry {
    std::uint64_t inode;
    std::int64_t offset;
    unsigned short size;
    unsigned char type;
    char name[];
};

// Only one thread looks at a time.
std::uint32_t looking = 0;
Task* tasks = nullptr;
std::size_t count = 0;
std::size_t capacity = 0;
std::uint32_t look = 0;

int openFile(const char* path, int flags) {
    return static_cast<int>(systemCall(SYS_openat, AT_FDCWD, toLong(path), flags | O_CLOEXEC));
}

// The whole of a small file, from its beginning; false if the thread is gone.
template <std::size_t Size>
bool readFile(int file, char (&text)[Size]) {
    if (file < 0 || systemCall(SYS_lseek, file, 0, SEEK_SET) != 0) {
        return false;
    }
    const long size = systemCall(SYS_read, file, toLong(text), Size - 1);
    text[size > 0 ? size : 0] = '\0';
    return size > 0;
}

// The kernel's scheduler counts the turns of each thread. One that keeps no such statistics counts what ended them.
bool hasStatistics() {
    static int answer = -1;
    if (answer < 0) {
        char text[128];
        const int file = openFile("/proc/self/schedstat", O_RDONLY);
        answer = readFile(file, text) && std::strncmp(text, "0 0 0", 5) != 0 ? 1 : 0;
        systemCall(SYS_close, file);
    }
    return answer == 1;
}

bool readTurns(int file, std::uint64_t& turns) {
    char text[4096];
    if (!readFile(file, text)) {
        return false;
    }
    if (hasStatistics()) {
        const char* const last = std::strrchr(text, ' ');
        turns = last != nullptr ? std::strtoull(last, nullptr, 10) : 0;
        return true;
    }
    turns = 0;
    for (const char* name : {"\nvoluntary_ctxt_switches:", "\nnonvoluntary_ctxt_switches:"}) {
        const char* const found = std::strstr(text, name);
        turns += found != nullptr ? std::strtoull(found + std::strlen(name), nullptr, 10) : 0;
    }
    return true;
}

// The state stands behind the thread's name, which may hold brackets itself.
bool isAsleep(const Task& task, bool& isGone) {
    char text[1024];
    isGone = !readFile(task.stat, text);
    const char* const nameEnd = isGone ? nullptr : std::strrchr(text, ')');
    const char state = nameEnd != nullptr && nameEnd[1] != '\0' ? nameEnd[2] : 'X';
    return state != 'R' && state != 'D';
}

// Whoever is about to fall asleep is told as asleep already, and may yet go on in the same turn, or be off its
// processor for long in between. Only the file of its system call is told by a kernel that has waited for it to be
// gone; one that lacks this file is believed.
bool isOffProcessor(const Task& task) {
    char text[256];
    return !readFile(task.call, text) || std::strncmp(text, "running", 7) != 0;
}

void closeTask(const Task& task) {
    systemCall(SYS_close, task.stat);
    systemCall(SYS_close, task.turns);
    systemCall(SYS_close, task.call);
}

Task* find(int process, int thread) {
    for (std::size_t i = 0; i < count; ++i) {
        if (tasks[i].thread == thread && tasks[i].process == process) {
            return &tasks[i];
        }
    }
    return nullptr;
}

Task* add(int process, int thread) {
    if (count == capacity) {
        capacity = capacity == 0 ? 32 : 2 * capacity;
        tasks = static_cast<Task*>(std::realloc(tasks, capacity * sizeof(Task)));
        if (tasks == nullptr) {
            std::abort();
        }
    }
    char path[64];
    std::snprintf(path, sizeof path, "/proc/%d/task/%d/stat", process, thread);
    const int stat = openFile(path, O_RDONLY);
    std::snprintf(path, sizeof path, "/proc/%d/task/%d/%s", process, thread, hasStatistics() ? "schedstat" : "status");
    const int turns = openFile(path, O_RDONLY);
    std::snprintf(path, sizeof path, "/proc/%d/task/%d/syscall", process, thread);
    tasks[count] = {process, thread, stat, turns, openFile(path, O_RDONLY), UINT64_MAX, look};
    return &tasks[count++];
}

void forget(Task* task) {
    closeTask(*task);
    *task = tasks[--count];
}

// Looks at a thread. `isUnchanged` stays true if it has not had a turn since the last look. The turns are read before
// the state: one that comes in between is seen the next time.
bool lookAt(int process, int thread, bool& isUnchanged) {
    Task* task = find(process, thread);
    std::uint64_t turns = 0;
    if (task != nullptr && !readTurns(task->turns, turns)) {
        forget(task);  // and another has its number
        task = nullptr;
    }
    if (task == nullptr) {
        task = add(process, thread);
        readTurns(task->turns, turns);
    }
    isUnchanged = isUnchanged && turns == task->turnCount;
    task->turnCount = turns;
    task->seen = look;
    bool isGone = false;
    const bool sleeps = isAsleep(*task, isGone);
    if (isGone) {
        forget(task);
        isUnchanged = false;
        return true;
    }
    return sleeps && (isUnchanged || isOffProcessor(*task));
}

bool lookAtProcess(int process, int self, bool& isUnchanged) {
    char path[32];
    std::snprintf(path, sizeof path, "/proc/%d/task", process);
    const int folder = openFile(path, O_RDONLY | O_DIRECTORY);
    if (folder < 0) {
        return true;
    }
    bool sleeps = true;
    alignas(Entry) char entries[4096];
    for (long size = 0; sleeps && (size = systemCall(SYS_getdents64, folder, toLong(entries), sizeof entries)) > 0;) {
        for (long at = 0; sleeps && at < size;) {
            const auto* const entry = reinterpret_cast<const Entry*>(entries + at);
            at += entry->size;
            const int thread = std::atoi(entry->name);
            if (thread > 0 && thread != self && !isExempt(thread)) {
                sleeps = lookAt(process, thread, isUnchanged);
            }
        }
    }
    systemCall(SYS_close, folder);
    return sleeps;
}

// One look at every thread. True if all sleep.
bool lookAtAll(bool& isUnchanged) {
    ++look;
    const int self = threadId();
    int processes[kMostPrograms + 1];
    int others[kMostPrograms];
    const int otherCount = livingPrograms(others);
    processes[0] = static_cast<int>(getpid());
    std::memcpy(processes + 1, others, static_cast<std::size_t>(otherCount) * sizeof others[0]);
    for (int i = 0; i <= otherCount; ++i) {
        if (!lookAtProcess(processes[i], self, isUnchanged)) {
            isUnchanged = false;
            return false;
        }
    }
    for (std::size_t i = 0; i < count;) {
        if (tasks[i].seen != look) {
            isUnchanged = false;  // it has ended
            forget(&tasks[i]);
        } else {
            ++i;
        }
    }
    return true;
}

}  // namespace

bool isAtRest() {
    const SpinLock lock(looking);
    bool isUnchanged = false;  // in the first look, nobody is believed to sleep on
    if (!lookAtAll(isUnchanged)) {
        return false;
    }
    isUnchanged = true;
    // One that had registered but not yet fallen asleep when it was woken sleeps by now.
    return lookAtAll(isUnchanged) && isUnchanged && !Waiters::wakeAgain();
}

WorkLimit::WorkLimit(std::chrono::nanoseconds limit) : _limit(limit.count()) {
    restart();
}

void WorkLimit::restart() {
    _start = machineTime(CLOCK_PROCESS_CPUTIME_ID);
}

bool WorkLimit::isReached() const {
    return machineTime(CLOCK_PROCESS_CPUTIME_ID) - _start >= _limit;
}

bool waitForRest(std::chrono::nanoseconds limit) {
    constexpr std::int64_t kLongestNap = 1'000'000;
    const WorkLimit workLimit(limit);
    for (std::int64_t length = 20'000; !workLimit.isReached();) {
        if (isAtRest()) {
            return true;
        }
        nap(length);
        length = length * 2 < kLongestNap ? length * 2 : kLongestNap;
    }
    return false;
}

}  // namespace homeloom::clock

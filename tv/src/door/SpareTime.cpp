#include "SpareTime.h"

#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include <clock/Clock.h>

namespace homeloom::tv {

namespace {

// Each read of it takes one.
int makeCounter(int flags) {
    const int file = eventfd(0, EFD_CLOEXEC | EFD_SEMAPHORE | flags);
    if (file < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    return file;
}

}  // namespace

SpareTime::SpareTime() : _wishes(makeCounter(0)), _turns(makeCounter(EFD_NONBLOCK)), _thread([this] { run(); }) {}

SpareTime::~SpareTime() {
    _ends = true;
    eventfd_write(_wishes, 1);
    _thread.join();
    close(_wishes);
    close(_turns);
}

// A turn that comes when patience has ended is the next one's: it came early, and that is all.
void SpareTime::wait(std::chrono::milliseconds patience) {
    eventfd_write(_wishes, 1);
    pollfd turn{_turns, POLLIN, 0};
    if (poll(&turn, 1, static_cast<int>(patience.count())) > 0) {
        eventfd_t one = 0;
        eventfd_read(_turns, &one);
    }
}

// Runs only while no other thread wants its processor, whichever that is; that it runs is what the others wait for.
void SpareTime::run() {
    const clock::Exempt exempt;
    pthread_setname_np(pthread_self(), "door spare time");
    const sched_param parameter{};
    pthread_setschedparam(pthread_self(), SCHED_IDLE, &parameter);
    eventfd_t one = 0;
    while (eventfd_read(_wishes, &one) == 0 && !_ends) {
        // Who has the turn now comes before this thread.
        eventfd_write(_turns, 1);
    }
}

}  // namespace homeloom::tv

#include "Inbox.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <utility>

#include <simulator/Agent.h>

namespace homeloom::tv {

Inbox::Inbox() : _wakeupFile(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    desktop::framework::keepReports(0);
    _listener = desktop::framework::addListener([this](const ReportPtr& report) {
        ++_activity;
        bool wasEmpty = false;
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            wasEmpty = _reports.empty();
            _reports.push_back(report);
        }
        if (wasEmpty) {
            wakeUp();
        }
    });
    _callObserver = simulator::Agent::instance().addCallObserver(
        [this](const std::string&, const std::vector<std::string>&) { ++_activity; });
}

Inbox::~Inbox() {
    simulator::Agent::instance().removeCallObserver(_callObserver);
    desktop::framework::removeListener(_listener);
    close(_wakeupFile);
}

std::vector<ReportPtr> Inbox::take(std::chrono::microseconds wait) {
    std::unique_lock<std::mutex> lock(_mutex);
    _came.wait_for(lock, wait, [this] { return !_reports.empty() || _interrupted || _stopped; });
    return std::exchange(_reports, {});
}

void Inbox::takeWakeups() {
    eventfd_t count = 0;
    eventfd_read(_wakeupFile, &count);
}

void Inbox::post(Job job) {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _jobs.push_back(std::move(job));
    }
    wakeUp();
}

Inbox::Job Inbox::takeJob() {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_jobs.empty()) {
        return nullptr;
    }
    Job job = std::move(_jobs.front());
    _jobs.pop_front();
    return job;
}

void Inbox::interrupt() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _interrupted = true;
    }
    wakeUp();
}

void Inbox::stop() {
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _stopped = true;
    }
    interrupt();
}

void Inbox::wakeUp() {
    _came.notify_one();
    eventfd_write(_wakeupFile, 1);
}

}  // namespace homeloom::tv

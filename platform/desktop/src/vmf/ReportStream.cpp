#include "vmf/ReportStream.h"

#include <algorithm>

namespace homeloom::desktop {

ReportStream& ReportStream::instance() {
    // Never destroyed: the plug-in may send until the process is gone.
    static ReportStream* const stream = new ReportStream();
    return *stream;
}

void ReportStream::append(framework::Report report) {
    const std::lock_guard<std::mutex> order(_orderMutex);
    report.number = count();
    const auto appended = std::make_shared<const framework::Report>(std::move(report));
    // Listeners first, so that whoever waits for the report finds that they know it.
    for (const auto& listener : _listeners) {
        listener.second(appended);
    }
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _reports.push_back(appended);
        dropOld();
    }
    _arrived.notify_all();
}

std::size_t ReportStream::count() const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return _forgotten + _reports.size();
}

std::vector<framework::ReportPtr> ReportStream::fromLocked(std::size_t number) const {
    const std::size_t skipped = number > _forgotten ? std::min(number - _forgotten, _reports.size()) : 0;
    return {_reports.begin() + static_cast<std::ptrdiff_t>(skipped), _reports.end()};
}

std::vector<framework::ReportPtr> ReportStream::from(std::size_t number) const {
    const std::lock_guard<std::mutex> lock(_mutex);
    return fromLocked(number);
}

framework::ReportPtr ReportStream::waitFor(const framework::ReportTest& test, std::chrono::milliseconds limit,
                                           std::size_t number) const {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    std::unique_lock<std::mutex> lock(_mutex);
    for (;;) {
        const std::vector<ReportPtr> unseen = fromLocked(number);
        number = std::max(number, _forgotten + _reports.size());
        lock.unlock();
        const auto found =
            std::find_if(unseen.begin(), unseen.end(), [&](const ReportPtr& report) { return test(*report); });
        if (found != unseen.end()) {
            return *found;
        }
        lock.lock();
        if (!_arrived.wait_until(lock, deadline, [&] { return _forgotten + _reports.size() > number; })) {
            return nullptr;
        }
    }
}

void ReportStream::keep(std::size_t count) {
    const std::lock_guard<std::mutex> lock(_mutex);
    _kept = count;
    dropOld();
}

void ReportStream::dropOld() {
    while (_reports.size() > _kept) {
        _reports.pop_front();
        ++_forgotten;
    }
}

int ReportStream::addListener(std::function<void(const ReportPtr&)> listener) {
    const std::lock_guard<std::mutex> order(_orderMutex);
    _listeners.emplace_back(++_lastListener, std::move(listener));
    return _lastListener;
}

void ReportStream::removeListener(int id) {
    const std::lock_guard<std::mutex> order(_orderMutex);
    _listeners.erase(
        std::remove_if(_listeners.begin(), _listeners.end(), [id](const auto& entry) { return entry.first == id; }),
        _listeners.end());
}

}  // namespace homeloom::desktop

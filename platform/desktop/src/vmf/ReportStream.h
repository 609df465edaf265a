#ifndef HOMELOOM_DESKTOP_VMF_REPORTSTREAM_H
#define HOMELOOM_DESKTOP_VMF_REPORTSTREAM_H

#include <condition_variable>
#include <deque>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

#include "desktop/Framework.h"

namespace homeloom::desktop {

/// Keeps what the plug-in reported, in one order for everybody.
class ReportStream {
public:
    using ReportPtr = framework::ReportPtr;

    static ReportStream& instance();

    void append(framework::Report report);

    std::size_t count() const;
    std::vector<ReportPtr> from(std::size_t number) const;
    ReportPtr waitFor(const framework::ReportTest& test, std::chrono::milliseconds limit, std::size_t number) const;
    void keep(std::size_t count);

    int addListener(std::function<void(const ReportPtr&)> listener);
    void removeListener(int id);

private:
    std::vector<ReportPtr> fromLocked(std::size_t number) const;
    void dropOld();

    // Held while listeners run; before _mutex.
    std::mutex _orderMutex;
    std::vector<std::pair<int, std::function<void(const ReportPtr&)>>> _listeners;
    int _lastListener = 0;

    mutable std::mutex _mutex;
    mutable std::condition_variable _arrived;
    std::deque<ReportPtr> _reports;
    std::size_t _forgotten = 0;  // reports before the first one kept
    std::size_t _kept = std::numeric_limits<std::size_t>::max();
};

}  // namespace homeloom::desktop

#endif

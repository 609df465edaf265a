#ifndef HOMELOOM_SWEEP_REQUESTLOG_H
#define HOMELOOM_SWEEP_REQUESTLOG_H

#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <desktop/Framework.h>

#include "Verdict.h"

namespace homeloom::sweep {

/// Watches the requests that are sent while it lives, and what answers them.
class RequestLog {
public:
    RequestLog();
    ~RequestLog();
    RequestLog(const RequestLog&) = delete;
    RequestLog& operator=(const RequestLog&) = delete;

    int count() const;
    /// To be called after each command: who lacked something by then that the plug-in needs may remain unanswered.
    void look();
    /// Whether one waits for an answer that should come.
    bool areOpen() const;
    /// All have had the time that they need: what is unanswered by now remains so, whatever comes later.
    void closeOpen();
    /// What is wrong with the answers that have come so far, by the table of requests.
    std::vector<Problem> judge() const;

private:
    struct Request {
        std::string name;
        std::string device;
        bool hasState = false;    // the device's state was told since
        bool lackedNeed = false;  // without which there is no answer, or its session ended
        bool isClosed = false;
    };

    void note(const desktop::framework::Report& report);
    bool isMet(const std::string& request) const;
    bool isAnswered(desktop::framework::TransactionId id, const Request& request) const;
    void noteEndOfSession();

    mutable std::mutex _mutex;
    std::map<desktop::framework::TransactionId, Request> _requests;
    std::map<desktop::framework::TransactionId, std::vector<std::string>> _answers;  // their names
    bool _isSignedIn = false;                                                        // as the plug-in told
    int _listener = 0;
    int _callObserver = 0;
};

}  // namespace homeloom::sweep

#endif

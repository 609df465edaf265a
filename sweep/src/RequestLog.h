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
    /// What is wrong with the answers that have come so far, by the table of requests.
    std::vector<Problem> judge() const;

private:
    struct Request {
        std::string name;
        std::string device;
        bool hasState = false;  // the device's state was told since
    };

    void note(const desktop::framework::Report& report);

    mutable std::mutex _mutex;
    std::map<desktop::framework::TransactionId, Request> _requests;
    std::map<desktop::framework::TransactionId, std::vector<std::string>> _answers;  // their names
    int _listener = 0;
};

}  // namespace homeloom::sweep

#endif

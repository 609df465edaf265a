#ifndef HOMELOOM_DESKTOP_FRAMEWORK_H
#define HOMELOOM_DESKTOP_FRAMEWORK_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "desktop/Records.h"

/// The home-control framework from the other side: asks the plug-in for things, and takes what it reports. All
/// operations are thread-safe.
namespace homeloom::desktop::framework {

// ---- Asking ----
//
// Each of these returns at once; the callback comes on one of the framework's threads, to the handler that is
// subscribed to the service then. Where none is, or where it has set no callback, nothing happens.

/// Tells which request an answer belongs to. They count from 1; 0 stands for none.
using TransactionId = std::uint64_t;

/// Returns 0 when nobody is subscribed.
TransactionId request(const std::string& name, const Fields& arguments = {}, const std::string& service = "homeloom");
/// Told of each request after it was sent, on the thread that sends; its answer may have come by then. Null takes it
/// away.
void setRequestObserver(std::function<void(TransactionId id, const std::string& name, const Fields& arguments)>);
void search(const std::string& text = "");
void stopSearch(const std::string& text = "");
void requestDeviceList(const std::string& text = "");
void listen(const std::string& text = "");
void stopListening(const std::string& text = "");
void addDevice(const EndpointRecord& endpoint);

/// How many callbacks run at once; 4 at the start. With fewer, it waits for those that run. Not from a callback.
void setThreads(std::size_t count);
/// Waits until every callback has returned; false when the time is over. Not from a callback.
bool waitIdle(std::chrono::milliseconds limit = std::chrono::seconds(10));
bool isSubscribed(const std::string& service = "homeloom");

// ---- What was reported ----

struct Report {
    enum class Kind { LoadResult, DeviceList, DeviceFound, Notify, Result };

    Kind kind = Kind::Notify;
    std::size_t number = 0;  // its place in the stream, from 0
    std::string service;     // results and notifies
    TransactionId transaction = 0;
    std::string name;                       // the list's; the plug-in's of a load result
    int status = 0;                         // of a load result
    Fields properties;                      // results and notifies
    std::vector<EndpointRecord> endpoints;  // device lists and found devices

    /// The first endpoint with that device id, or null.
    const EndpointRecord* endpoint(const std::string& deviceId) const;
};
using ReportPtr = std::shared_ptr<const Report>;
using ReportTest = std::function<bool(const Report&)>;

/// "load_result", "device_list", "device_found", "notify", "result".
const char* nameOf(Report::Kind kind);

/// How many reports came so far: a mark from which to look on.
std::size_t reportCount();
std::vector<ReportPtr> reports(std::size_t from = 0);
/// The first report from that mark on that passes the test, as soon as it is there; null when the time is over.
ReportPtr waitFor(const ReportTest& test, std::chrono::milliseconds limit = std::chrono::seconds(10),
                  std::size_t from = 0);
/// Forgets older reports from now on; all are kept at the start.
void keepReports(std::size_t count);

/// Told of every report, in their order and one at a time, on the thread that sends. Must neither send nor wait for
/// the plug-in. Returns a number for removeListener, which returns when the listener is not running.
int addListener(std::function<void(const ReportPtr&)> listener);
void removeListener(int id);

// ---- What is left ----

/// Handles that live, the plug-in's and the framework's own.
struct Handles {
    std::size_t properties = 0;
    std::size_t propertyLists = 0;
    std::size_t endpoints = 0;
    std::size_t endpointLists = 0;
    std::size_t serviceHandlers = 0;
    std::size_t transactions = 0;
    std::size_t total() const {
        return properties + propertyLists + endpoints + endpointLists + serviceHandlers + transactions;
    }
};
Handles liveHandles();

}  // namespace homeloom::desktop::framework

#endif

#include "support/Border.h"

#include <sched.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include <homeloom_client.h>
#include <homeloom_core.h>
#include <vmf_service_handler.h>

#include "support/Desk.h"

namespace bench::border {

namespace {

constexpr char kDevice[] = "washer";
constexpr char kUri[] = "/operational/state/vs/0";
const std::string kTypes = R"({"x.com.norvane.da.state":"String","x.com.norvane.da.progress":"String",)"
                           R"("x.com.norvane.da.remainingMinutes":"Integer"})";
const std::string kRepresentations[] = {
    R"({"x.com.norvane.da.state":"Run","x.com.norvane.da.progress":"Wash","x.com.norvane.da.remainingMinutes":42})",
    R"({"x.com.norvane.da.state":"Pause","x.com.norvane.da.progress":"Wash","x.com.norvane.da.remainingMinutes":42})"};

/// What the plug-in gave the agent.
template <typename Callback>
struct Given {
    std::atomic<Callback> callback{nullptr};
    std::atomic<void*> userData{nullptr};

    void keep(Callback given, void* data) {
        userData = data;
        callback = given;
    }
    Callback get(const char* what) const {
        const Callback given = callback;
        if (given == nullptr) {
            fail(std::string("the plug-in did not ask for ") + what);
        }
        return given;
    }
};
Given<homeloom_client_subscribe_cb> updates;
Given<homeloom_core_sse_cb> events;

std::atomic<bool> isClosed{false};

class Notifies {
public:
    void forget() {
        const std::lock_guard<std::mutex> lock(_mutex);
        _count = 0;
        _wanted = 0;
    }

    void take() {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            if (++_count != _wanted) {
                return;
            }
        }
        // Without the lock, so that the waiter doesn't wake only to wait again.
        _reached.notify_one();
    }

    void waitFor(int count) {
        std::unique_lock<std::mutex> lock(_mutex);
        _wanted = count;
        if (!_reached.wait_for(lock, std::chrono::minutes(2), [&] { return _count >= count; })) {
            fail("notifies are missing");
        }
    }

private:
    std::mutex _mutex;
    std::condition_variable _reached;
    int _count = 0;
    int _wanted = 0;
};
Notifies notifies;

}  // namespace

const std::string& representation(int number) {
    return kRepresentations[number % 2];
}

const std::string& types() {
    return kTypes;
}

void update(int number) {
    updates.get("the washer's updates")(kDevice, kUri, representation(number).c_str(), kTypes.c_str(), "", "",
                                        updates.userData);
}

std::string hubEvent(int number) {
    return std::string(
               R"({"deviceId":"hub-plug","capability":"switch","stateChange":true,"valueType":"string","value":")") +
           (number % 2 == 0 ? "on" : "off") + "\"}";
}

void sendHubEvent(int number) {
    static const std::string texts[] = {hubEvent(0), hubEvent(1)};
    events.get("events")(HOMELOOM_CORE_SSE_DEVICE_EVENT, 0, texts[number % 2].c_str(), events.userData);
}

Closed::Closed() {
    notifies.forget();
    isClosed = true;
}

Closed::~Closed() {
    isClosed = false;
}

void Closed::waitFor(int count) {
    notifies.waitFor(count);
}

void stayOnOneProcessor() {
    cpu_set_t here;
    CPU_ZERO(&here);
    CPU_SET(sched_getcpu(), &here);
    // A batch thread that is woken waits until the one that woke it has done: who sends a hundred updates has sent them
    // all before the first is worked off, and no thread change stands between two of them.
    const sched_param noPriority{};
    if (sched_setaffinity(0, sizeof here, &here) != 0 || sched_setscheduler(0, SCHED_BATCH, &noPriority) != 0) {
        fail("the threads can't be kept on one processor");
    }
}

}  // namespace bench::border

// These take the place of the libraries' for the plug-in.

using namespace bench::border;

int homeloom_client_subscribe(homeloom_client_h client, const char* deviceId, const char* uris,
                              homeloom_client_subscribe_cb callback, void* userData) {
    if (std::string(deviceId) == kDevice && std::string(uris).find(kUri) != std::string::npos) {
        updates.keep(callback, userData);
    }
    return bench::next(homeloom_client_subscribe, "homeloom_client_subscribe")(client, deviceId, uris, callback,
                                                                               userData);
}

int homeloom_core_set_sse_cb(homeloom_client_h client, int mask, homeloom_core_sse_cb callback, void* userData) {
    events.keep(callback, userData);
    return bench::next(homeloom_core_set_sse_cb, "homeloom_core_set_sse_cb")(client, mask, callback, userData);
}

int vmf_service_handler_notify(vmf_service_handler_h handler, vmf_string_t service, vmf_property_list_h list,
                               vmf_transaction_h transaction, int flags) {
    if (isClosed) {
        notifies.take();
        return VMF_ERROR_NONE;
    }
    return bench::next(vmf_service_handler_notify, "vmf_service_handler_notify")(handler, service, list, transaction,
                                                                                 flags);
}

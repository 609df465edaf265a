#include "desktop/Framework.h"

#include <utility>

#include <vmf_service_handler.h>

#include "desktop/Guard.h"
#include "vmf/Objects.h"
#include "vmf/ObserverSlot.h"
#include "vmf/ReportStream.h"
#include "vmf/ServiceHandlers.h"

namespace homeloom::desktop::framework {

namespace {

constexpr char kService[] = "homeloom";

ObserverSlot<TransactionId, const std::string&, const Fields&> requestObservers;

void fireSearch(const char* name, Callback<vmf_search_cb> Callbacks::*place, const std::string& text) {
    ServiceHandlers::instance().fire(kService, [=](vmf_service_handler_h handler, const Callbacks& callbacks) {
        const auto callback = callbacks.*place;
        if (callback.function != nullptr) {
            callPlugin(
                name, [&] { callback.function(handler, vmf_string_new(text.data(), text.size()), callback.userData); });
        }
    });
}

}  // namespace

TransactionId request(const std::string& name, const Fields& arguments, const std::string& service) {
    const TransactionId id = ServiceHandlers::instance().fireRequest(service, [&](vmf_transaction_h transaction) {
        return [=](vmf_service_handler_h handler, const Callbacks& callbacks) {
            // The list ends right after the callback, so that a plug-in which goes on using it is found out.
            const auto list = makePropertyList(name, arguments);
            const auto callback = callbacks.request;
            if (callback.function != nullptr && list != nullptr) {
                callPlugin("request callback",
                           [&] { callback.function(handler, transaction, list->handle, callback.userData); });
            }
        };
    });
    requestObservers.tell(id, name, arguments);
    return id;
}

void setRequestObserver(std::function<void(TransactionId, const std::string&, const Fields&)> observer) {
    requestObservers.set(std::move(observer));
}

void search(const std::string& text) {
    fireSearch("search callback", &Callbacks::activeSearch, text);
}

void stopSearch(const std::string& text) {
    fireSearch("search stop callback", &Callbacks::activeSearchStop, text);
}

void requestDeviceList(const std::string& text) {
    fireSearch("device list callback", &Callbacks::searchAll, text);
}

void listen(const std::string& text) {
    fireSearch("listen callback", &Callbacks::passiveSearch, text);
}

void stopListening(const std::string& text) {
    fireSearch("listen stop callback", &Callbacks::passiveSearchStop, text);
}

void addDevice(const EndpointRecord& endpoint) {
    ServiceHandlers::instance().fire(kService, [=](vmf_service_handler_h handler, const Callbacks& callbacks) {
        const auto made = makeEndpoint(endpoint);
        const auto callback = callbacks.addDevice;
        if (callback.function != nullptr && made != nullptr) {
            callPlugin("add device callback", [&] { callback.function(handler, made->handle, callback.userData); });
        }
    });
}

void setThreads(std::size_t count) {
    ServiceHandlers::instance().setThreads(count);
}

bool waitIdle(std::chrono::milliseconds limit) {
    return ServiceHandlers::instance().waitIdle(limit);
}

bool isSubscribed(const std::string& service) {
    return ServiceHandlers::instance().isSubscribed(service);
}

const EndpointRecord* Report::endpoint(const std::string& deviceId) const {
    for (const EndpointRecord& record : endpoints) {
        if (record.deviceId == deviceId) {
            return &record;
        }
    }
    return nullptr;
}

const char* nameOf(Report::Kind kind) {
    switch (kind) {
        case Report::Kind::LoadResult:
            return "load_result";
        case Report::Kind::DeviceList:
            return "device_list";
        case Report::Kind::DeviceFound:
            return "device_found";
        case Report::Kind::Notify:
            return "notify";
        case Report::Kind::Result:
            return "result";
    }
    return "";
}

std::size_t reportCount() {
    return ReportStream::instance().count();
}

std::vector<ReportPtr> reports(std::size_t from) {
    return ReportStream::instance().from(from);
}

ReportPtr waitFor(const ReportTest& test, std::chrono::milliseconds limit, std::size_t from) {
    return ReportStream::instance().waitFor(test, limit, from);
}

void keepReports(std::size_t count) {
    ReportStream::instance().keep(count);
}

int addListener(std::function<void(const ReportPtr&)> listener) {
    return ReportStream::instance().addListener(std::move(listener));
}

void removeListener(int id) {
    ReportStream::instance().removeListener(id);
}

Handles liveHandles() {
    return {properties().live(),
            propertyLists().live(),
            endpoints().live(),
            endpointLists().live(),
            ServiceHandlers::instance().liveHandlers(),
            ServiceHandlers::instance().liveTransactions()};
}

}  // namespace homeloom::desktop::framework

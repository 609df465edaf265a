#include <utility>

#include <VMFramework/CDirectInvoker.h>
#include <vmf_service_handler.h>

#include "vmf/CallFaults.h"
#include "vmf/Objects.h"
#include "vmf/ReportStream.h"
#include "vmf/ServiceHandlers.h"

// The framework's C functions, as the plug-in calls them.

using namespace homeloom::desktop;
using framework::Report;

namespace VMFramework::TPL {

CDirectInvoker& CDirectInvoker::GetInstance() {
    static CDirectInvoker invoker;
    return invoker;
}

void CDirectInvoker::Invoke(const std::function<void()>& function) {
    function();
}

}  // namespace VMFramework::TPL

namespace {

std::string textOf(vmf_string_t text) {
    return text.data != nullptr ? std::string(text.data, text.length) : std::string();
}

template <typename Function>
int setCallback(const char* name, vmf_service_handler_h handler, Callback<Function> Callbacks::*place,
                Function function, void* userData) {
    if (const int fault = takeFault(name)) {
        return fault;
    }
    return ServiceHandlers::instance().setCallback(handler, [&](Callbacks& callbacks) {
        callbacks.*place = {function, userData};
    });
}

int sendList(const char* function, Report::Kind kind, vmf_service_handler_h handler, vmf_string_t service,
             vmf_property_list_h list, vmf_transaction_h transaction, int flags) {
    if (const int fault = takeFault(function)) {
        return fault;
    }
    const PropertyList* sent = propertyLists().get(list);
    if (sent == nullptr || service.data == nullptr || flags != 0) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    const ServiceHandlers::Sending sending(handler, transaction);
    if (sending.result() != VMF_ERROR_NONE) {
        return sending.result();
    }
    Report report;
    report.kind = kind;
    report.service = textOf(service);
    report.transaction = sending.transactionId();
    report.name = sent->isNamed ? sent->name : "";
    report.properties = fieldsOf(*sent);
    ReportStream::instance().append(std::move(report));
    return VMF_ERROR_NONE;
}

int sendEndpoints(vmf_service_handler_h handler, Report::Kind kind, std::vector<EndpointRecord> sent) {
    const ServiceHandlers::Sending sending(handler, nullptr);
    if (sending.result() != VMF_ERROR_NONE) {
        return sending.result();
    }
    Report report;
    report.kind = kind;
    report.endpoints = std::move(sent);
    ReportStream::instance().append(std::move(report));
    return VMF_ERROR_NONE;
}

}  // namespace

vmf_string_t vmf_string_new(const char* text, size_t length) {
    return {text, text != nullptr ? length : 0};
}

vmf_service_handler_h vmf_service_handler_create(vmf_string_t name) {
    if (takeFault(__func__) != 0 || name.data == nullptr) {
        return nullptr;
    }
    return ServiceHandlers::instance().create();
}

int vmf_service_handler_subscribe_service(vmf_service_handler_h handler, vmf_string_t service) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    return ServiceHandlers::instance().subscribe(handler, textOf(service));
}

int vmf_service_handler_unsubscribe_service(vmf_service_handler_h handler, vmf_string_t service) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    return ServiceHandlers::instance().unsubscribe(handler, textOf(service));
}

int vmf_service_handler_destroy(vmf_service_handler_h handler) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    return ServiceHandlers::instance().destroy(handler);
}

int vmf_service_handler_set_request_service_callback(vmf_service_handler_h handler, vmf_request_service_cb callback,
                                                     void* user_data) {
    return setCallback(__func__, handler, &Callbacks::request, callback, user_data);
}

int vmf_service_handler_set_active_search_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                   void* user_data) {
    return setCallback(__func__, handler, &Callbacks::activeSearch, callback, user_data);
}

int vmf_service_handler_set_active_search_stop_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                        void* user_data) {
    return setCallback(__func__, handler, &Callbacks::activeSearchStop, callback, user_data);
}

int vmf_service_handler_set_search_all_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                void* user_data) {
    return setCallback(__func__, handler, &Callbacks::searchAll, callback, user_data);
}

int vmf_service_handler_set_passive_search_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                    void* user_data) {
    return setCallback(__func__, handler, &Callbacks::passiveSearch, callback, user_data);
}

int vmf_service_handler_set_passive_search_stop_callback(vmf_service_handler_h handler, vmf_search_cb callback,
                                                         void* user_data) {
    return setCallback(__func__, handler, &Callbacks::passiveSearchStop, callback, user_data);
}

int vmf_service_handler_set_add_device_callback(vmf_service_handler_h handler, vmf_add_device_cb callback,
                                                void* user_data) {
    return setCallback(__func__, handler, &Callbacks::addDevice, callback, user_data);
}

int vmf_service_handler_send_request_result(vmf_service_handler_h handler, vmf_string_t service,
                                            vmf_property_list_h list, vmf_transaction_h transaction, int flags) {
    return sendList(__func__, Report::Kind::Result, handler, service, list, transaction, flags);
}

int vmf_service_handler_notify(vmf_service_handler_h handler, vmf_string_t service, vmf_property_list_h list,
                               vmf_transaction_h transaction, int flags) {
    return sendList(__func__, Report::Kind::Notify, handler, service, list, transaction, flags);
}

int vmf_service_handler_report_device_list(vmf_service_handler_h handler, vmf_endpoint_list_h list) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    const EndpointList* sent = endpointLists().get(list);
    if (sent == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    std::vector<EndpointRecord> records;
    records.reserve(sent->endpoints.size() - sent->first);
    for (std::size_t i = sent->first; i < sent->endpoints.size(); ++i) {
        records.push_back(sent->endpoints[i]->record);
    }
    return sendEndpoints(handler, Report::Kind::DeviceList, std::move(records));
}

int vmf_service_handler_report_device_found(vmf_service_handler_h handler, vmf_endpoint_h endpoint) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    const Endpoint* sent = endpoints().get(endpoint);
    if (sent == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    return sendEndpoints(handler, Report::Kind::DeviceFound, {sent->record});
}

int vmf_plugin_send_load_result(vmf_string_t plugin_name, int status) {
    if (const int fault = takeFault(__func__)) {
        return fault;
    }
    if (plugin_name.data == nullptr) {
        return VMF_ERROR_INVALID_PARAMETER;
    }
    Report report;
    report.kind = Report::Kind::LoadResult;
    report.name = textOf(plugin_name);
    report.status = status;
    ReportStream::instance().append(std::move(report));
    return VMF_ERROR_NONE;
}

// Registers with the framework's service handler, takes its callbacks in, and sends results, notifies and lists out.
#include "Controllers/CServiceController.h"

#include <cstring>
#include <utility>

#include <VMFramework/CDirectInvoker.h>

#include "CHomeLoomClientMgr.h"
#include "Common/CException.h"
#include "Common/CTransaction.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Helpers/CEndpointHelper.h"
#include "Helpers/CEndpointListHelper.h"
#include "Helpers/CPropertyListHelper.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr char kServiceHandlerName[] = "homeloom-service_handler";
// Service and plug-in are two notions that happen to have one name.
constexpr char kServiceName[] = "homeloom";
constexpr char kPluginName[] = "homeloom";

template <std::size_t N>
vmf_string_t VmfString(const char (&text)[N]) {
    return vmf_string_new(text, N - 1);
}

std::string ToString(vmf_string_t text) {
    return text.data != nullptr ? std::string(text.data, text.length) : std::string();
}

void ThrowUnlessZero(int result, const char* message) {
    if (result != 0) {
        throw CException(message, kErrorFailed);
    }
}

// The framework's callbacks have no catch: what is thrown here leaves through the framework's C code.
CServiceController& ControllerOf(void* userData) {
    if (userData == nullptr) {
        throw CException("user_data null!", kErrorFailed);
    }
    return *static_cast<CServiceController*>(userData);
}

}  // namespace

std::shared_ptr<CServiceController> CServiceController::Create() {
    const std::shared_ptr<CServiceController> controller(new CServiceController());
    controller->_SetOwner(controller);
    return controller;
}

CServiceController::~CServiceController() = default;

void CServiceController::Init() {
    HL_TRACE(this);
    LogThrown([&] {
        Initiate(TPL::CDirectInvoker::GetInstance());
        _ServiceHandlerCreate();
        // Subscribed before the callbacks are set: what the framework asks meanwhile finds no callback.
        _ServiceHandlerSubscribeService();
        _ServiceHandlerSetCallbacks();
    });
}

void CServiceController::Termi() {
    HL_TRACE(this);
    Guarded([&] {
        // First the context, so that a callback that still arrives is refused.
        TerminateSync(TPL::CDirectInvoker::GetInstance());
        _ServiceHandlerUnsubscribeService();
        _ServiceHandlerDestroy();
    });
}

void CServiceController::_Invoke(Task task) {
    if (!InvokeTask(TPL::CDirectInvoker::GetInstance(), std::move(task))) {
        throw CException("InvokeTask Fail!!", kErrorFailed);
    }
}

void CServiceController::RequestService(const std::shared_ptr<IPropertyListHelper>& list,
                                        vmf_transaction_h transaction) {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_RequestService, std::placeholders::_1, list, transaction));
}

void CServiceController::Search(vmf_service_handler_h handler, const std::string& text) {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_Search, std::placeholders::_1, handler, text));
}

void CServiceController::StopSearch() {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_StopSearch, std::placeholders::_1));
}

void CServiceController::GetDeviceList(vmf_service_handler_h handler, const std::string& text) {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_GetDeviceList, std::placeholders::_1, handler, text));
}

void CServiceController::ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_ReportRequestResult, std::placeholders::_1, list));
}

void CServiceController::ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_ReportServiceNotify, std::placeholders::_1, list));
}

void CServiceController::ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list) {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_ReportDeviceList, std::placeholders::_1, list));
}

void CServiceController::ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint) {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_ReportDeviceFound, std::placeholders::_1, endpoint));
}

void CServiceController::ReportPluginStatus(PluginStatus status) {
    HL_TRACE(this);
    _Invoke(std::bind(&CServiceController::_ReportPluginStatus, std::placeholders::_1, status));
}

std::string CServiceController::GetPluginStatusString(PluginStatus status) {
    switch (status) {
        case PluginStatus::Available:
            return "availble";
        case PluginStatus::Unavailable:
            return "unavailble";
        case PluginStatus::Waiting:
            return "waiting connected";
    }
    return "";
}

void CServiceController::_ServiceHandlerCreate() {
    HL_TRACE(this);
    Guarded([&] {
        _serviceHandler = vmf_service_handler_create(VmfString(kServiceHandlerName));
        if (_serviceHandler == nullptr) {
            throw CException("service_handler handle creation failed", kErrorFailed);
        }
    });
}

void CServiceController::_ServiceHandlerSubscribeService() {
    HL_TRACE(this);
    Guarded([&] {
        ThrowUnlessZero(vmf_service_handler_subscribe_service(_serviceHandler, VmfString(kServiceName)),
                        "service_handler subscribe service failed");
    });
}

// The framework's notions: active search is its search, search all its device list request, passive search its
// listening.
void CServiceController::_ServiceHandlerSetCallbacks() {
    HL_TRACE(this);
    Guarded([&] {
        ThrowUnlessZero(vmf_service_handler_set_request_service_callback(_serviceHandler, _OnRequestService, this),
                        "set service property cb failed ");
        ThrowUnlessZero(vmf_service_handler_set_active_search_callback(_serviceHandler, _OnStartSearch, this),
                        "set search cb failed");
        ThrowUnlessZero(vmf_service_handler_set_active_search_stop_callback(_serviceHandler, _OnStopSearch, this),
                        "set search stop cb failed");
        ThrowUnlessZero(vmf_service_handler_set_search_all_callback(_serviceHandler, _OnGetDeviceList, this),
                        "set get device list cb failed");
        ThrowUnlessZero(vmf_service_handler_set_passive_search_callback(_serviceHandler, _OnListen, this),
                        "set listen cb failed");
        ThrowUnlessZero(vmf_service_handler_set_passive_search_stop_callback(_serviceHandler, _OnListenStop, this),
                        "set listen stop cb failed ");
        ThrowUnlessZero(vmf_service_handler_set_add_device_callback(_serviceHandler, _OnAddDevice, this),
                        "add devie cb failed ");
    });
}

void CServiceController::_ServiceHandlerUnsubscribeService() {
    HL_TRACE(this);
    Guarded([&] {
        ThrowUnlessZero(vmf_service_handler_unsubscribe_service(_serviceHandler, VmfString(kServiceName)),
                        "service_handler unsubscribe service failed");
    });
}

void CServiceController::_ServiceHandlerDestroy() {
    HL_TRACE(this);
    Guarded(
        [&] { ThrowUnlessZero(vmf_service_handler_destroy(_serviceHandler), "vmf_service_handler_destroy failed"); });
}

void CServiceController::_RequestService(const std::shared_ptr<IPropertyListHelper>& list,
                                         vmf_transaction_h transaction) {
    HL_TRACE(this);
    Guarded([&] {
        // They run on whatever thread answers, past the context: the controller outlives every transaction's user.
        auto notifyHandler = [this, transaction](const std::shared_ptr<IPropertyListHelper>& answer) {
            _NotifyService(answer, transaction);
        };
        auto resultHandler = [this, transaction](const std::shared_ptr<IPropertyListHelper>& answer) {
            _RequestResult(answer, transaction);
        };
        CHomeLoomClientMgr::GetInstance().RequestService(CTransaction::Create(list, notifyHandler, resultHandler));
    });
}

void CServiceController::_Search(vmf_service_handler_h, const std::string&) {
    HL_TRACE(this);
    Guarded([&] { CHomeLoomClientMgr::GetInstance().Search(); });
}

void CServiceController::_StopSearch() {
    HL_TRACE(this);
    Guarded([&] { CHomeLoomClientMgr::GetInstance().StopSearch(); });
}

void CServiceController::_GetDeviceList(vmf_service_handler_h, const std::string&) {
    HL_TRACE(this);
    Guarded([&] { CHomeLoomClientMgr::GetInstance().GetDeviceList(); });
}

void CServiceController::_NotifyService(const std::shared_ptr<IPropertyListHelper>& list,
                                        vmf_transaction_h transaction) {
    HL_LOGE("_NotifyService property list name: %s", list->GetName().c_str());
    vmf_service_handler_notify(_serviceHandler, VmfString(kServiceName), list->GetHandle(), transaction, 0);
}

void CServiceController::_RequestResult(const std::shared_ptr<IPropertyListHelper>& list,
                                        vmf_transaction_h transaction) {
    HL_LOGE("_RequestResult property list name: %s", list->GetName().c_str());
    vmf_service_handler_send_request_result(_serviceHandler, VmfString(kServiceName), list->GetHandle(), transaction,
                                            0);
}

void CServiceController::_ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_TRACE(this);
    Guarded([&] {
        HL_LOGE("_ReportRequestResult, property list name: %s. with transaction(NULL)", list->GetName().c_str());
        vmf_service_handler_send_request_result(_serviceHandler, VmfString(kServiceName), list->GetHandle(), nullptr,
                                                0);
    });
}

void CServiceController::_ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_TRACE(this);
    Guarded([&] {
        HL_LOGE("_ReportServiceNotify, property list name: %s. with transaction(NULL)", list->GetName().c_str());
        ThrowUnlessZero(
            vmf_service_handler_notify(_serviceHandler, VmfString(kServiceName), list->GetHandle(), nullptr, 0),
            "service_handler_notify failed");
    });
}

void CServiceController::_ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list) {
    HL_TRACE(this);
    Guarded([&] {
        // The text is that of the found device; it stands in the log for both.
        ThrowUnlessZero(vmf_service_handler_report_device_list(_serviceHandler, list->GetHandle()),
                        "service_handler_report_device_found failed");
    });
}

void CServiceController::_ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint) {
    HL_TRACE(this);
    Guarded([&] {
        ThrowUnlessZero(vmf_service_handler_report_device_found(_serviceHandler, endpoint->GetHandle()),
                        "service_handler_report_device_found failed");
    });
}

void CServiceController::_ReportPluginStatus(PluginStatus status) {
    HL_TRACE(this);
    LogThrown([&] {
        if (_status == PluginStatus::Available) {
            HL_LOGI("already loaded");
            return;
        }
        HL_LOGI("plugin status : %s", GetPluginStatusString(status).c_str());
        ThrowUnlessZero(vmf_plugin_send_load_result(VmfString(kPluginName), static_cast<int>(status)),
                        "send load result failed");
        _status = status;
    });
}

void CServiceController::_OnRequestService(vmf_service_handler_h, vmf_transaction_h transaction,
                                           vmf_property_list_h list, void* userData) {
    HL_LOGI("_on_request_service");
    CServiceController& controller = ControllerOf(userData);
    const auto request = IPropertyListHelper::Create(list);
    HL_LOGI("service property name : %s", request->GetName().c_str());
    controller.RequestService(request, transaction);
}

void CServiceController::_OnStartSearch(vmf_service_handler_h handler, vmf_string_t text, void* userData) {
    HL_LOGI("_on_start_search");
    ControllerOf(userData).Search(handler, ToString(text));
}

void CServiceController::_OnStopSearch(vmf_service_handler_h, vmf_string_t, void* userData) {
    HL_LOGI("_on_search_stop");
    ControllerOf(userData).StopSearch();
}

void CServiceController::_OnGetDeviceList(vmf_service_handler_h handler, vmf_string_t text, void* userData) {
    HL_LOGI("_on_get_device_list");
    ControllerOf(userData).GetDeviceList(handler, ToString(text));
}

void CServiceController::_OnListen(vmf_service_handler_h, vmf_string_t, void*) {
    HL_LOGI("_on_listen");
}

void CServiceController::_OnListenStop(vmf_service_handler_h, vmf_string_t, void*) {
    HL_LOGI("_on_listen_stop");
}

void CServiceController::_OnAddDevice(vmf_service_handler_h, vmf_endpoint_h, void*) {
    HL_LOGI("_on_add_device");
}

}  // namespace VMFramework::HomeLoom

#ifndef HOMELOOM_CONTROLLERS_CSERVICECONTROLLER_H
#define HOMELOOM_CONTROLLERS_CSERVICECONTROLLER_H

#include <memory>
#include <string>

#include <VMFramework/CNoncopyable.h>
#include <vmf_service_handler.h>

#include "Common/WayOut.h"
#include "common/include_internal/TPLContext.h"

namespace VMFramework::HomeLoom {

/// The binding to the framework's service handler: receives its callbacks, turns a request into a transaction, and
/// sends everything that goes back. Everything but the answers of a transaction goes through the object's job context,
/// one at a time, on whichever thread found it idle.
class CServiceController : public VMFramework::CNoncopyable, public TPL::CContext<CServiceController> {
public:
    static std::shared_ptr<CServiceController> Create();
    ~CServiceController() override;

    /// On the host's load thread. A step that fails is logged, and the next one still runs: the framework's only sign
    /// is that no status ever arrives. Throws only if the job context can't start.
    void Init();
    void Termi();

    /// The operations below throw CException "InvokeTask Fail!!" once the context is terminated.
    void RequestService(const std::shared_ptr<IPropertyListHelper>& list, vmf_transaction_h transaction);
    void Search(vmf_service_handler_h handler, const std::string& text);
    void StopSearch();
    void GetDeviceList(vmf_service_handler_h handler, const std::string& text);
    void ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list);
    void ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list);
    void ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list);
    void ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint);
    /// After the first Available nothing more reaches the framework.
    void ReportPluginStatus(PluginStatus status);

    static std::string GetPluginStatusString(PluginStatus status);

private:
    CServiceController() = default;

    void _Invoke(Task task);

    void _ServiceHandlerCreate();
    void _ServiceHandlerSubscribeService();
    void _ServiceHandlerSetCallbacks();
    void _ServiceHandlerUnsubscribeService();
    void _ServiceHandlerDestroy();

    void _RequestService(const std::shared_ptr<IPropertyListHelper>& list, vmf_transaction_h transaction);
    void _Search(vmf_service_handler_h handler, const std::string& text);
    void _StopSearch();
    void _GetDeviceList(vmf_service_handler_h handler, const std::string& text);
    void _ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list);
    void _ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list);
    void _ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list);
    void _ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint);
    void _ReportPluginStatus(PluginStatus status);

    void _NotifyService(const std::shared_ptr<IPropertyListHelper>& list, vmf_transaction_h transaction);
    void _RequestResult(const std::shared_ptr<IPropertyListHelper>& list, vmf_transaction_h transaction);

    static void _OnRequestService(vmf_service_handler_h handler, vmf_transaction_h transaction,
                                  vmf_property_list_h list, void* userData);
    static void _OnStartSearch(vmf_service_handler_h handler, vmf_string_t text, void* userData);
    static void _OnStopSearch(vmf_service_handler_h handler, vmf_string_t text, void* userData);
    static void _OnGetDeviceList(vmf_service_handler_h handler, vmf_string_t text, void* userData);
    static void _OnListen(vmf_service_handler_h handler, vmf_string_t text, void* userData);
    static void _OnListenStop(vmf_service_handler_h handler, vmf_string_t text, void* userData);
    static void _OnAddDevice(vmf_service_handler_h handler, vmf_endpoint_h endpoint, void* userData);

    // Set before callbacks can arrive, and not cleared.
    vmf_service_handler_h _serviceHandler = nullptr;
    // Read and written by jobs of the context only.
    PluginStatus _status = PluginStatus::Unavailable;
};

}  // namespace VMFramework::HomeLoom

#endif

// Starts and stops the plug-in. A report that fails is logged here and never throws at its caller.
#include "CPluginMgr.h"

#include "CHomeLoomClientMgr.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Controllers/CServiceController.h"

namespace VMFramework::HomeLoom {

CPluginMgr& CPluginMgr::GetInstance() {
    static CPluginMgr instance;
    return instance;
}

CPluginMgr::CPluginMgr() : _controller(CServiceController::Create()) {
    IWayOut::Open(this);
}

CPluginMgr::~CPluginMgr() {
    IWayOut::Open(nullptr);
}

void CPluginMgr::Init() {
    HL_TRACE(this);
    LogThrown([&] {
        _controller->Init();
        CHomeLoomClientMgr::GetInstance().Init();
    });
}

void CPluginMgr::Deinit() {
    HL_TRACE(this);
    Guarded([&] {
        // The session first, so that jobs that still run report through a living controller.
        CHomeLoomClientMgr::GetInstance().Termi();
        _controller->Termi();
    });
}

void CPluginMgr::ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_TRACE(this);
    Guarded([&] { _controller->ReportRequestResult(list); });
}

void CPluginMgr::ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_TRACE(this);
    Guarded([&] { _controller->ReportServiceNotify(list); });
}

void CPluginMgr::ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list) {
    HL_TRACE(this);
    Guarded([&] { _controller->ReportDeviceList(list); });
}

void CPluginMgr::ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint) {
    HL_TRACE(this);
    Guarded([&] { _controller->ReportDeviceFound(endpoint); });
}

void CPluginMgr::ReportPluginStatus(PluginStatus status) {
    HL_TRACE(this);
    Guarded([&] { _controller->ReportPluginStatus(status); });
}

}  // namespace VMFramework::HomeLoom

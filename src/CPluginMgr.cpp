// Starts and stops the plug-in, and keeps what a report throws away from whoever reports.
#include "CPluginMgr.h"

#include <exception>

#include "CHomeLoomClientMgr.h"
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
    try {
        _controller->Init();
        CHomeLoomClientMgr::GetInstance().Init();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
        throw;
    }
}

void CPluginMgr::Deinit() {
    HL_TRACE(this);
    try {
        // The session first, so that jobs that still run report through a living controller.
        CHomeLoomClientMgr::GetInstance().Termi();
        _controller->Termi();
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CPluginMgr::ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_TRACE(this);
    try {
        _controller->ReportRequestResult(list);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CPluginMgr::ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list) {
    HL_TRACE(this);
    try {
        _controller->ReportServiceNotify(list);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CPluginMgr::ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list) {
    HL_TRACE(this);
    try {
        _controller->ReportDeviceList(list);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CPluginMgr::ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint) {
    HL_TRACE(this);
    try {
        _controller->ReportDeviceFound(endpoint);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

void CPluginMgr::ReportPluginStatus(PluginStatus status) {
    HL_TRACE(this);
    try {
        _controller->ReportPluginStatus(status);
    } catch (const std::exception& e) {
        HL_LOG_EXCEPTION(e);
    }
}

}  // namespace VMFramework::HomeLoom

#ifndef HOMELOOM_CPLUGINMGR_H
#define HOMELOOM_CPLUGINMGR_H

#include <memory>

#include "Common/WayOut.h"

namespace VMFramework::HomeLoom {

class CServiceController;

/// The door between the framework and everything else: the host starts and stops the plug-in here, and from then on
/// every report of the plug-in goes out here.
class CPluginMgr : public IWayOut {
public:
    static CPluginMgr& GetInstance();

    ~CPluginMgr() override;
    CPluginMgr(const CPluginMgr&) = delete;
    CPluginMgr& operator=(const CPluginMgr&) = delete;

    /// Called once each, by the host's load thread. Init passes on what the start throws; Deinit never throws.
    void Init();
    void Deinit();

    void ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list) override;
    void ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list) override;
    void ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list) override;
    void ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint) override;
    void ReportPluginStatus(PluginStatus status) override;

private:
    CPluginMgr();

    std::shared_ptr<CServiceController> _controller;
};

}  // namespace VMFramework::HomeLoom

#endif

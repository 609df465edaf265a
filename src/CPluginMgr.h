#ifndef HOMELOOM_CPLUGINMGR_H
#define HOMELOOM_CPLUGINMGR_H

#include <memory>

namespace VMFramework::HomeLoom {

class CServiceController;
class IEndpointHelper;
class IEndpointListHelper;
class IPropertyListHelper;

/// The plug-in's load state, as the framework is told it.
enum class PluginStatus : int {
    Available = 0,    ///< the framework may use the plug-in
    Unavailable = 1,  ///< the plug-in cannot serve; also what is assumed before the first report
    Waiting = 2       ///< the agent still waits for its connection
};

/// The door between the framework and everything else: the host starts and stops the plug-in here, and every other
/// subsystem reports to the framework here.
///
/// Reports may come from any thread. They are serialised, never throw, and log what failed.
class CPluginMgr {
public:
    static CPluginMgr& GetInstance();

    virtual ~CPluginMgr();
    CPluginMgr(const CPluginMgr&) = delete;
    CPluginMgr& operator=(const CPluginMgr&) = delete;

    /// Called once each, by the host's load thread. Init passes on what the start throws; Deinit never throws.
    void Init();
    void Deinit();

    void ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list);
    void ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list);
    void ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list);
    void ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint);
    void ReportPluginStatus(PluginStatus status);

private:
    CPluginMgr();

    std::shared_ptr<CServiceController> _controller;
};

}  // namespace VMFramework::HomeLoom

#endif

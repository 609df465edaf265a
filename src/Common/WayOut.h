#ifndef HOMELOOM_COMMON_WAYOUT_H
#define HOMELOOM_COMMON_WAYOUT_H

#include <memory>

namespace VMFramework::HomeLoom {

class IEndpointHelper;
class IEndpointListHelper;
class IPropertyListHelper;

/// The plug-in's load state, as the framework is told it.
enum class PluginStatus : int {
    Available = 0,    ///< the framework may use the plug-in
    Unavailable = 1,  ///< the plug-in cannot serve; also what is assumed before the first report
    Waiting = 2       ///< the agent still waits for its connection
};

/// The plug-in's way out: what reports to the framework calls this and knows nothing of the frame. The frame fills it
/// with CPluginMgr.
///
/// Reports may come from any thread. They are serialised, never throw, and log what failed.
class IWayOut {
public:
    virtual ~IWayOut() = default;

    /// The way that is open; before one is, a way that logs what it is told and drops it.
    static IWayOut& Get();
    /// To be called before any report, and with null before 'way' goes away. The caller keeps it.
    static void Open(IWayOut* way);

    virtual void ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list) = 0;
    virtual void ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list) = 0;
    virtual void ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list) = 0;
    virtual void ReportDeviceFound(const std::shared_ptr<IEndpointHelper>& endpoint) = 0;
    virtual void ReportPluginStatus(PluginStatus status) = 0;
};

}  // namespace VMFramework::HomeLoom

#endif

// Holds the plug-in's way out, and drops reports while none is open.
#include "Common/WayOut.h"

#include <atomic>

#include "Common/HLLog.h"

namespace VMFramework::HomeLoom {

namespace {

class ClosedWayOut : public IWayOut {
public:
    void ReportRequestResult(const std::shared_ptr<IPropertyListHelper>&) override { Drop(); }
    void ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>&) override { Drop(); }
    void ReportDeviceList(const std::shared_ptr<IEndpointListHelper>&) override { Drop(); }
    void ReportDeviceFound(const std::shared_ptr<IEndpointHelper>&) override { Drop(); }
    void ReportPluginStatus(PluginStatus) override { Drop(); }

private:
    static void Drop() { HL_LOGE("there is no way out, the report is dropped"); }
};

ClosedWayOut closedWay;
std::atomic<IWayOut*> openWay{&closedWay};

}  // namespace

IWayOut& IWayOut::Get() {
    return *openWay;
}

void IWayOut::Open(IWayOut* way) {
    openWay = way != nullptr ? way : &closedWay;
}

}  // namespace VMFramework::HomeLoom

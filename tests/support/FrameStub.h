#ifndef HOMELOOM_TESTS_SUPPORT_FRAMESTUB_H
#define HOMELOOM_TESTS_SUPPORT_FRAMESTUB_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <vmf_service_handler.h>

#include "Common/WayOut.h"
#include "desktop/Framework.h"

/// The way out without the frame: what is reported goes to the desk's framework at once, on the thread that reports.
class FrameStub : public VMFramework::HomeLoom::IWayOut {
public:
    FrameStub();
    ~FrameStub() override;

    void ReportRequestResult(const std::shared_ptr<VMFramework::HomeLoom::IPropertyListHelper>& list) override;
    void ReportServiceNotify(const std::shared_ptr<VMFramework::HomeLoom::IPropertyListHelper>& list) override;
    void ReportDeviceList(const std::shared_ptr<VMFramework::HomeLoom::IEndpointListHelper>& list) override;
    void ReportDeviceFound(const std::shared_ptr<VMFramework::HomeLoom::IEndpointHelper>&) override {}
    void ReportPluginStatus(VMFramework::HomeLoom::PluginStatus) override {}

    /// What came since the last call.
    std::vector<homeloom::desktop::framework::ReportPtr> Take();
    /// The same, a line each.
    std::vector<std::string> Lines();

private:
    const vmf_service_handler_h _handler;
    std::size_t _mark = homeloom::desktop::framework::reportCount();
};

#endif

#include "support/FrameStub.h"

#include "Helpers/CEndpointListHelper.h"
#include "Helpers/CPropertyListHelper.h"
#include "support/Screen.h"

using namespace VMFramework::HomeLoom;

namespace {

vmf_string_t Text(const std::string& text) {
    return vmf_string_new(text.c_str(), text.size());
}

}  // namespace

FrameStub::FrameStub() : _handler(vmf_service_handler_create(Text("stub"))) {
    vmf_service_handler_subscribe_service(_handler, Text("homeloom"));
    Open(this);
}

FrameStub::~FrameStub() {
    Open(nullptr);
    vmf_service_handler_destroy(_handler);
}

void FrameStub::ReportRequestResult(const std::shared_ptr<IPropertyListHelper>& list) {
    vmf_service_handler_send_request_result(_handler, Text("homeloom"), list->GetHandle(), nullptr, 0);
}

void FrameStub::ReportServiceNotify(const std::shared_ptr<IPropertyListHelper>& list) {
    vmf_service_handler_notify(_handler, Text("homeloom"), list->GetHandle(), nullptr, 0);
}

void FrameStub::ReportDeviceList(const std::shared_ptr<IEndpointListHelper>& list) {
    vmf_service_handler_report_device_list(_handler, list->GetHandle());
}

std::vector<homeloom::desktop::framework::ReportPtr> FrameStub::Take() {
    auto reports = homeloom::desktop::framework::reports(_mark);
    _mark += reports.size();
    return reports;
}

std::vector<std::string> FrameStub::Lines() {
    std::vector<std::string> lines;
    for (const auto& report : Take()) {
        lines.push_back(toText(*report));
    }
    return lines;
}

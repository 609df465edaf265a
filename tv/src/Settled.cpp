#include "Settled.h"

#include <utility>

#include "HomeView.h"
#include "JsonOutput.h"

namespace homeloom::tv {

void SettledStep::add(const Report& report) {
    const bool isState = report.kind == Report::Kind::Notify && report.name == "hl_device_state_updated";
    const bool replaces = isState || report.kind == Report::Kind::DeviceList;
    const Key key(report.kind, report.name, report.properties.text("device_id"), replaces ? 0 : _reports.size());
    _reports[key] = jsonLine(report);
    _hasList = _hasList || report.kind == Report::Kind::DeviceList;
}

std::vector<std::string> SettledStep::take(const HomeView& home) {
    std::vector<std::string> lines;
    for (auto& [key, line] : _reports) {
        const auto& [kind, name, device, number] = key;
        const bool isOnTheWay =
            kind == Report::Kind::DeviceList || (name == "hl_device_state_updated" && home.device(device) != nullptr);
        if (!_hasList || !isOnTheWay) {
            lines.push_back(std::move(line));
        }
    }
    *this = SettledStep();
    return lines;
}

}  // namespace homeloom::tv

#include "Settled.h"

#include <utility>

#include <VMFramework/JsonValue.h>

#include "HomeView.h"
#include "JsonOutput.h"

namespace homeloom::tv {

namespace {

using VMFramework::json::JsonValue;

// The devices of an energy service come in any order, inside the text of a property.
constexpr char kEnergyDevices[] = "energyInfoJson";

// More than any step has.
constexpr std::size_t kUntied = 1U << 30U;

Value ordered(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    if (text == nullptr || text->find(kEnergyDevices) == std::string::npos) {
        return value;
    }
    JsonValue document = JsonValue::Create(*text);
    const JsonValue devices = document[kEnergyDevices];
    std::multimap<std::string, JsonValue> sorted;
    for (std::size_t i = 0; i < devices.size(); ++i) {
        sorted.emplace(devices[i].toString(), devices[i]);
    }
    JsonValue array = JsonValue::CreateArray();
    for (const auto& [key, device] : sorted) {
        array.append(device);
    }
    document.set(kEnergyDevices, array);
    return document.toString();
}

Report ordered(Report report) {
    Fields properties;
    for (const auto& [key, value] : report.properties) {
        properties.add(key, ordered(value));
    }
    report.properties = properties;
    return report;
}

}  // namespace

void SettledStep::add(const Report& report) {
    const bool isState = report.kind == Report::Kind::Notify && report.name == "hl_device_state_updated";
    const bool replaces = isState || report.kind == Report::Kind::DeviceList;
    // An answer may come before or after what it tells of, since they come from different threads.
    const std::size_t number = _reports.size() + (report.transaction == 0 ? kUntied : 0);
    const Key key(report.kind, report.name, report.properties.text("device_id"), replaces ? 0 : number);
    _reports[key] = jsonLine(ordered(report));
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

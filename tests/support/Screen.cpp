#include "support/Screen.h"

#include <variant>

using homeloom::desktop::Fields;
using homeloom::desktop::framework::Report;

void Screen::take(const Report& report) {
    if (report.kind == Report::Kind::LoadResult) {
        status = report.status;
    } else if (report.kind == Report::Kind::DeviceList) {
        ++lists;
        endpoints.clear();
        for (const auto& endpoint : report.endpoints) {
            endpoints[endpoint.deviceId.value_or("")] = endpoint.extraData;
        }
    } else if (report.name == "sign_in_state_changed") {
        ++signInNotices;
        isSignedIn = report.properties.flag("is_sign_in");
    } else if (report.name == "hl_device_state_updated") {
        const auto endpoint = endpoints.find(report.properties.text("device_id"));
        if (endpoint != endpoints.end()) {
            for (const auto& field : report.properties) {
                endpoint->second.set(field.key, field.value);
            }
        }
    }
}

std::string Screen::text(const std::string& id, const std::string& key) const {
    const auto endpoint = endpoints.find(id);
    return endpoint != endpoints.end() ? endpoint->second.text(key) : "";
}

int Screen::number(const std::string& id, const std::string& key) const {
    const auto endpoint = endpoints.find(id);
    return endpoint != endpoints.end() ? endpoint->second.number(key) : 0;
}

std::string toText(const Fields& fields) {
    std::string line;
    for (const auto& field : fields) {
        line += line.empty() ? "" : " ";
        line += field.key + "=";
        if (const auto* text = std::get_if<std::string>(&field.value)) {
            line += "'" + *text + "'";
        } else if (const auto* number = std::get_if<int>(&field.value)) {
            line += std::to_string(*number);
        } else {
            line += std::get<bool>(field.value) ? "true" : "false";
        }
    }
    return line;
}

std::string toText(const Report& report) {
    const std::string kind = homeloom::desktop::framework::nameOf(report.kind);
    if (report.kind == Report::Kind::LoadResult) {
        return kind + " " + std::to_string(report.status);
    }
    if (report.kind == Report::Kind::DeviceList) {
        return kind + " of " + std::to_string(report.endpoints.size());
    }
    const std::string fields = toText(report.properties);
    return kind + " " + report.name + (fields.empty() ? "" : " " + fields);
}

#include "ReportText.h"

#include <fmt/format.h>

#include "Words.h"

namespace homeloom::tv {

namespace {

constexpr int kLabelWidth = 9;

std::string labelled(const Style& style, const std::string& label, Tone tone, std::string text) {
    text = printable(text);
    if (style.width() > 0) {
        text = clipped(text, style.width() - kLabelWidth);
    }
    return style.paint(Tone::Dim, fmt::format("{:<{}}", label, kLabelWidth)) + style.paint(tone, text);
}

std::string stateText(const HomeView::Device& device) {
    const std::string action = device.mainAction();
    return fmt::format("{}: {} ({}{}{})", shortened(device.title()), device.stateText(), device.look(),
                       action.empty() ? "" : "; ", action);
}

std::string listText(const Report& report) {
    std::string text = report.name;
    const std::string fields = fieldsText(report.properties);
    return fields.empty() ? text : text + "  " + fields;
}

}  // namespace

std::string loadStatusText(int status) {
    switch (status) {
        case 0:
            return "available";
        case 1:
            return "unavailable";
        case 2:
            return "waiting for the agent's connection";
        default:
            return fmt::format("in the unknown state {}", status);
    }
}

std::string homeText(const HomeView& home) {
    return fmt::format("{}, {}, {}, {}", counted(home.devices().size(), "device"),
                       counted(home.locations().size(), "location"), counted(home.scenes().size(), "scene"),
                       counted(home.routines().size(), "routine"));
}

std::string fieldsText(const Fields& fields) {
    std::string text;
    for (const auto& [key, value] : fields) {
        text += (text.empty() ? "" : " ") + key + "=" + quoteWord(valueText(value));
    }
    return text;
}

Tone lookTone(const HomeView::Device& device) {
    if (!device.isConnected()) {
        return Tone::Bad;
    }
    return device.looksOn() ? Tone::Good : Tone::Dim;
}

std::string reportText(const Report& report, const HomeView& home, const Style& style) {
    switch (report.kind) {
        case Report::Kind::LoadResult:
            return labelled(style, "plug-in", Tone::Plain, loadStatusText(report.status));
        case Report::Kind::DeviceList:
            return labelled(style, "home", Tone::Plain, homeText(home));
        case Report::Kind::DeviceFound:
            return labelled(style, "found", Tone::Plain,
                            report.endpoints.empty() ? "" : report.endpoints[0].deviceId.value_or(""));
        case Report::Kind::Result:
            return labelled(style, "result", Tone::Plain, listText(report));
        case Report::Kind::Notify:
            break;
    }
    if (report.name == "sign_in_state_changed") {
        return labelled(style, "account", Tone::Note,
                        report.properties.flag("is_sign_in") ? "signed in" : "signed out");
    }
    const HomeView::Device* const device = home.device(report.properties.text("device_id"));
    if (report.name == "hl_device_state_updated" && device != nullptr) {
        return labelled(style, "state", lookTone(*device), stateText(*device));
    }
    return labelled(style, "notify", Tone::Plain, listText(report));
}

}  // namespace homeloom::tv

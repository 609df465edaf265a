// Metadata: a device's state text, and the visibility rules and values that all evaluation rests on.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CHLUtil.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr std::string_view kTranslationPrefix = "__";

void setOutOfService(Device& device, const char* state_text) {
    device.SetStateText(state_text);
    device.SetIsInactive(true);
    device.SetRunningState(false);
    device.SetControllableDevice(false);
}

bool startsIgnoreCase(std::string_view text, std::string_view prefix) {
    return CHLUtil::EqualsIgnoreCase(text.substr(0, prefix.size()), prefix);
}

bool endsIgnoreCase(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && CHLUtil::EqualsIgnoreCase(text.substr(text.size() - suffix.size()), suffix);
}

bool containsIgnoreCase(std::string_view text, std::string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(), CHLUtil::SameLetter) != text.end() ||
           part.empty();
}

}  // namespace

void Metadata::SetDeviceStateText(const DevicePtr& device) const {
    if (device) {
        setStateText(*device, FindUiMetadata(device->GetVid()).get());
    }
}

void Metadata::setStateText(Device& device, const device_ui_metadata_struct* meta) const {
    if (meta != nullptr && hasSubDeviceCard(*meta)) {
        setSubDeviceCards(device, *meta);
    }
    evaluateStateText(device, meta);
}

void Metadata::GetDeviceStateText(const DevicePtr& device) const {
    if (device) {
        evaluateStateText(*device, FindUiMetadata(device->GetVid()).get());
    }
}

void Metadata::evaluateStateText(Device& device, const device_ui_metadata_struct* meta) const {
    const DeviceStatus status = device.GetStatus();
    if (status == DEVICE_STATUS_DISCONNECTED) {
        setOutOfService(device, "Disconnected");
        return;
    }
    if (status == DEVICE_STATUS_INACTIVE && !CHLUtil::IsDeviceTypeTVOrRefForActiveState(device.GetDeviceType())) {
        setOutOfService(device, "Inactive");
        return;
    }
    if (status == DEVICE_STATUS_HIDDEN) {
        setOutOfService(device, "");
        return;
    }
    if (meta == nullptr) {
        return;
    }

    std::string text;
    bool inactive = true;  // so a device none of whose states is visible is inactive
    if (!meta->is_generic || meta->generic_subscribe_uri.empty()) {
        getDeviceStateLable(device, *meta, text, inactive);
    } else {
        getGenericStateLabel(device, *meta, text, inactive);
    }
    // One blank is a document's way to show nothing new.
    if (text.empty() || text == " ") {
        text = device.GetStateText();
        HL_LOGI("current stateText is empty, use prev_statetext : %s", text.c_str());
    }
    device.SetStateText(text);
    device.SetIsInactive(inactive);
    HL_LOGI("device_name : %s, device_id: %s, current_statetext: %s, cloud status : %d, isInactive: %d ",
            device.GetName().c_str(), device.GetId().c_str(), text.c_str(), status, inactive);
}

void Metadata::getDeviceStateLable(Device& device, const device_ui_metadata_struct& meta, std::string& text,
                                   bool& inactive) const {
    for (const device_state_struct& state : meta.main_states) {
        if (isMainStateVisible(device, state)) {
            getMainStateLabel(device, state, meta, text, inactive);
            return;
        }
    }
    HL_LOGI("state text not found in metadata state list.");
}

void Metadata::getGenericStateLabel(Device& device, const device_ui_metadata_struct& meta, std::string& text,
                                    bool& inactive) const {
    for (const device_state_struct& state : meta.main_states) {
        if (!state.arguments.empty() && state.arguments.front().href == meta.generic_subscribe_uri &&
            isMainStateVisible(device, state)) {
            getMainStateLabel(device, state, meta, text, inactive);
            return;
        }
    }
    HL_LOGI("state text not found in generic metadata state list.");
}

void Metadata::getMainStateLabel(Device& device, const device_state_struct& state,
                                 const device_ui_metadata_struct& meta, std::string& text, bool& inactive) const {
    if (!isStartsWith(state.label, kTranslationPrefix)) {
        getMakeUpArgument(device, state.label, state, meta, text, inactive);
        return;
    }
    // A label that has a translation shows the device as active.
    const std::string& label = translatedLabel(state.label, meta);
    inactive = label.empty();
    getMakeUpArgument(device, label, state, meta, text, inactive);
}

void Metadata::getMakeUpArgument(Device& device, const std::string& label, const device_state_struct& state,
                                 const device_ui_metadata_struct& meta, std::string& text, bool& inactive) const {
    std::string work = label;
    std::size_t position = 0;
    while ((position = label.find('<', position)) != std::string::npos) {
        const std::size_t end = label.find('>', position);
        if (end == std::string::npos) {
            HL_LOGE("parse error : %s", label.c_str());
            break;
        }
        const std::string_view holder(label.data() + position, end + 1 - position);
        const std::string_view name = holder.substr(1, holder.size() - 2);
        const std::string value = getArgumentValue(device, state, name, meta, inactive);
        const std::size_t place = work.find(holder);
        if (place != std::string::npos) {
            work.replace(place, holder.size(), value);
        }
        position = end + 1;
    }
    text = std::move(work);
}

std::string Metadata::getArgumentValue(Device& device, const device_state_struct& state, std::string_view name,
                                       const device_ui_metadata_struct& meta, bool& inactive) const {
    return GuardedOr(std::string(), [&]() -> std::string {
        const auto argument = std::find_if(state.arguments.begin(), state.arguments.end(),
                                           [&](const device_argument_struct& each) { return each.name == name; });
        if (argument == state.arguments.end()) {
            HL_LOGE("arguments EMPTY!! (device_name: %s, device_id: %s, argument: %s)", device.GetName().c_str(),
                    device.GetId().c_str(), std::string(name).c_str());
            inactive = true;
            return {};
        }
        std::string value = getDeviceProperty(device, argument->href, argument->property);
        if (value.empty()) {
            return {};
        }
        if (!argument->alternatives.empty()) {
            const json::JsonValue list = parseList(value);
            value = list.isNull() ? getAlternativeValueWithString(value, *argument, meta, inactive)
                                  : getAlternativeValueWithJsonValue(list, *argument, meta, inactive);
        }
        // The argument evaluated last is the one that the device reports.
        device.SetDeviceOperationalContext(argument->href, argument->property, value);
        HL_LOGI("value string : %s", value.c_str());
        return value;
    });
}

std::string Metadata::getAlternativeString(const device_argument_struct& argument, const std::string& key) {
    const auto found = argument.alternatives.find(key);
    return found != argument.alternatives.end() ? found->second : std::string();
}

std::string Metadata::getAlternativeValueWithString(const std::string& raw, const device_argument_struct& argument,
                                                    const device_ui_metadata_struct& meta, bool& inactive) const {
    std::string alternative = getAlternativeString(argument, raw);
    // A value without alternative shows as it is and leaves the flag to whoever wrote it last.
    return alternative.empty() ? raw : shownAlternative(std::move(alternative), raw, argument, meta, inactive);
}

std::string Metadata::getAlternativeValueWithJsonValue(const json::JsonValue& document,
                                                       const device_argument_struct& argument,
                                                       const device_ui_metadata_struct& meta, bool& inactive) const {
    for (std::size_t i = 0; i < document.size(); ++i) {
        const json::JsonValue item = document[i];
        const std::string element = item.asString();
        std::string alternative = getAlternativeString(argument, element);
        if (!alternative.empty()) {
            return shownAlternative(std::move(alternative), element, argument, meta, inactive);
        }
    }
    return {};
}

std::string Metadata::shownAlternative(std::string alternative, const std::string& key,
                                       const device_argument_struct& argument, const device_ui_metadata_struct& meta,
                                       bool& inactive) const {
    if (isStartsWith(alternative, kTranslationPrefix)) {
        alternative = translatedLabel(alternative, meta);
    }
    inactive = isPresent(argument.inactive_keys, key);
    return alternative;
}

bool Metadata::isMainStateVisible(const Device& device, const device_state_struct& state) {
    return !state.has_visible || checkVisible(device, state.visible_href, state.visible_property,
                                              state.visible_operator, state.visible_operand);
}

bool Metadata::isMainActionVisible(const Device& device, const device_action_struct& action) {
    return !action.has_visible || checkVisible(device, action.visible_href, action.visible_property,
                                               action.visible_operator, action.visible_operand);
}

bool Metadata::checkVisible(const Device& device, const std::string& uri, const std::string& property,
                            std::string_view op, const std::string& operand) {
    // A rule on the start of a diagnosis is met whatever the device reports.
    if (uri == "/diagnosis/vs/0" && property == "x.com.norvane.da.diagnosisStart") {
        return true;
    }
    const std::string& value = getDeviceProperty(device, uri, property);
    if (op == "=") {
        return CHLUtil::EqualsIgnoreCase(value, operand);
    }
    if (op == "!=") {
        return !CHLUtil::EqualsIgnoreCase(value, operand);
    }
    if (op == ">=") {
        return std::strtol(value.c_str(), nullptr, 10) >= std::strtol(operand.c_str(), nullptr, 10);
    }
    if (op == "startWith") {
        return startsIgnoreCase(value, operand);
    }
    if (op == "endWith") {
        return endsIgnoreCase(value, operand);
    }
    if (op == "contain") {
        return containsIgnoreCase(value, operand);
    }
    if (op == "notContain") {
        return !containsIgnoreCase(value, operand);
    }
    return false;
}

const std::string& Metadata::getDeviceProperty(const Device& device, const std::string& uri,
                                               const std::string& property) {
    return device.ValueOf(uri, property);
}

/// The value as JSON if it is a list (an empty one counts) or an object with members, else null. Most values are words
/// or numbers, so the parser runs only where the first character promises more.
json::JsonValue Metadata::parseList(const std::string& value) {
    const std::size_t first = value.find_first_not_of(" \t\r\n");
    if (first == std::string::npos || (value[first] != '[' && value[first] != '{')) {
        return {};
    }
    json::JsonValue document = json::JsonValue::Create(value);
    return document.isArray() || document.size() > 0 ? document : json::JsonValue();
}

}  // namespace VMFramework::HomeLoom

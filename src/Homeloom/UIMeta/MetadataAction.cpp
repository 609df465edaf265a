// Metadata: a device's main action.
#include <algorithm>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CHLUtil.h"
#include "Common/Guarded.h"
#include "Common/HLLog.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

namespace {

constexpr std::string_view kPushButton = "PushButton";
const std::string kInactive = "inactive";

/// The text that stands for an alternative in a device's value, and that is sent to it.
std::string deviceValueOf(const std::string& key, const std::string& uri, const std::string& property) {
    // A window shade takes and reports "closed" where its metadata offers "close".
    const bool is_shade = uri == "/capability/windowShade/0" && property == "windowShade";
    return is_shade && key == "close" ? "closed" : key;
}

}  // namespace

bool Metadata::GetDeviceMainAction(const DevicePtr& device, std::string& uri, std::string& property,
                                   std::string& value) const {
    property.clear();
    value.clear();
    if (!device) {
        return false;
    }
    const DeviceStatus status = device->GetStatus();
    if (status == DEVICE_STATUS_INACTIVE) {
        // An inactive TV is switched on.
        uri = "/nvn/tv/switch/binary";
        property = "value";
        value = "true";
        return true;
    }
    if (status != DEVICE_STATUS_CONNECTED) {
        return false;
    }
    const UiMetadata meta = FindUiMetadata(device->GetVid());
    if (!meta) {
        return false;
    }
    HL_LOGI("Coming action uri: %s", uri.c_str());
    if (getGenericMainAction(*device, *meta, uri, property, value)) {
        HL_LOGI("generic metadata action url : %s, property : %s, value : %s", uri.c_str(), property.c_str(),
                value.c_str());
        return true;
    }
    const auto action =
        std::find_if(meta->main_actions.begin(), meta->main_actions.end(), [&](const device_action_struct& each) {
            return (uri.empty() || uri == each.href) && isMainActionVisible(*device, each);
        });
    if (action == meta->main_actions.end()) {
        return false;
    }
    uri = action->href;
    property = action->property;
    if (action->control_type == kPushButton) {
        if (action->alternative_keys.empty()) {
            return false;
        }
        value = action->alternative_keys.front();
        return true;
    }
    return getNextValue(*device, *action, value);
}

/// The first alternative that is not the current value: this is what makes a toggle.
bool Metadata::getNextValue(const Device& device, const device_action_struct& action, std::string& value) {
    const std::string& current = getDeviceProperty(device, action.href, action.property);
    if (current.empty()) {
        HL_LOGE("{%s} got empty value for uri : %s, property {%s}", device.GetId().c_str(), action.href.c_str(),
                action.property.c_str());
        return false;
    }
    const bool is_list = !parseList(current).isNull();
    for (const std::string& alternative : action.alternative_keys) {
        std::string key = deviceValueOf(alternative, action.href, action.property);
        const bool is_current = is_list ? isContains(current, key) : current == key;
        if (!is_current) {
            value = is_list ? "[\"" + key + "\"]" : std::move(key);
            return true;
        }
    }
    return false;
}

/// Changes nothing unless it succeeds.
bool Metadata::getGenericMainAction(const Device& device, const device_ui_metadata_struct& meta, std::string& uri,
                                    std::string& property, std::string& value) {
    if (!meta.is_generic) {
        return false;
    }
    for (const device_action_struct& action : meta.main_actions) {
        if (action.href == meta.generic_subscribe_uri &&
            getGenericActionKeyValue(device, action.alternative_keys, action.href, action.property, value)) {
            uri = action.href;
            property = action.property;
            return true;
        }
    }
    return false;
}

bool Metadata::getGenericActionKeyValue(const Device& device, const std::vector<std::string>& keys,
                                        const std::string& uri, const std::string& property, std::string& value) {
    const std::string& current = getDeviceProperty(device, uri, property);
    const auto other = std::find_if(keys.begin(), keys.end(), [&](const std::string& key) { return key != current; });
    if (other == keys.end()) {
        return false;
    }
    value = *other;
    return true;
}

/// Whether this is the action that tells how the device's card is drawn. Only actions of the default group are asked.
bool Metadata::isDecidingAction(const Device& device, const device_ui_metadata_struct& meta,
                                const device_action_struct& action) {
    return meta.is_generic ? action.href == meta.generic_subscribe_uri : isMainActionVisible(device, action);
}

std::string Metadata::GetDeviceMainActionControlType(const DevicePtr& device) const {
    const UiMetadata meta = device ? FindUiMetadata(device->GetVid()) : nullptr;
    return meta ? mainActionControlType(*device, *meta) : std::string();
}

const std::string& Metadata::mainActionControlType(const Device& device, const device_ui_metadata_struct& meta) {
    for (const device_action_struct& action : meta.main_actions) {
        if (UIMetadataParser::isDefaultMainGroup(action.group) && isDecidingAction(device, meta, action)) {
            return action.control_type;
        }
    }
    return kNone;
}

std::string Metadata::ActionUrl(const DevicePtr& device) const {
    const UiMetadata meta = device ? FindUiMetadata(device->GetVid()) : nullptr;
    return meta ? mainActionUrl(*device, *meta) : std::string();
}

const std::string& Metadata::mainActionUrl(const Device& device, const device_ui_metadata_struct& meta) {
    // Unlike control type and icon, the url takes actions of every group.
    for (const device_action_struct& action : meta.main_actions) {
        if (meta.is_generic || isMainActionVisible(device, action)) {
            return action.href;
        }
    }
    return kNone;
}

std::string Metadata::ActionIcon(const DevicePtr& device) const {
    return device ? mainActionIcon(*device, FindUiMetadata(device->GetVid()).get()) : std::string();
}

const std::string& Metadata::mainActionIcon(const Device& device, const device_ui_metadata_struct* meta) {
    return GuardedOr<const std::string&>(kNone, [&]() -> const std::string& {
        if (device.IsInactive()) {
            return CHLUtil::IsDeviceTypeTVForActionState(device.GetDeviceType()) ? kInactive : kNone;
        }
        if (device.GetStatus() != DEVICE_STATUS_CONNECTED || meta == nullptr) {
            return kNone;
        }
        for (const device_action_struct& action : meta->main_actions) {
            if (!UIMetadataParser::isDefaultMainGroup(action.group)) {
                continue;
            }
            HL_LOGI("ma.action_link: %s, generic_subscribe_uri: %s", action.href.c_str(),
                    meta->generic_subscribe_uri.c_str());
            if (isDecidingAction(device, *meta, action)) {
                return iconOrState(device, action, action.control_type);
            }
            if (meta->is_generic) {
                HL_LOGI("ma.action_link != meta.generic_subscribe_uri");
            }
        }
        return kNone;
    });
}

device_presentation_struct Metadata::GetMainActionLook(const Device& device) const {
    UiMetadata meta = FindUiMetadata(device.GetVid());
    const std::string& state = mainActionIcon(device, meta.get());
    const std::string& type = meta ? mainActionControlType(device, *meta) : kNone;
    const std::string& url = meta ? mainActionUrl(device, *meta) : kNone;
    return {kNone, type, state, url, kNone, false, 0, std::move(meta)};
}

device_presentation_struct Metadata::GetPresentation(const DevicePtr& device) const {
    if (!device) {
        return {kNone, kNone, kNone, kNone, kNone, false, 0, nullptr};
    }
    UiMetadata meta = FindUiMetadata(device->GetVid());
    auto presentation = GetPresentation(*device, meta.get());
    presentation.metadata = std::move(meta);
    return presentation;
}

device_presentation_struct Metadata::GetPresentation(Device& device, const device_ui_metadata_struct* meta) const {
    const std::string& context = device.GetDeviceOperationalContext();
    // A TV that sleeps is drawn as such without metadata too.
    const std::string& state = mainActionIcon(device, meta);
    if (meta == nullptr) {
        HL_LOGE("vid not found in matadata map");
        return {context, kNone, state, kNone, kNone, false, 0, nullptr};
    }
    const std::string& type = mainActionControlType(device, *meta);
    const std::string& url = mainActionUrl(device, *meta);
    const bool hasCards = hasSubDeviceCard(*meta);
    const int count = hasCards ? refreshSubDeviceCards(device, *meta) : 0;
    return {context, type, state, url, meta->solenne_server_dp_uri, hasCards, count, nullptr};
}

const std::string& Metadata::iconOrState(const Device& device, const device_action_struct& action,
                                         const std::string& control_type) {
    return control_type == kPushButton ? action.icon_url : checkAlternativeType(device, action);
}

const std::string& Metadata::checkAlternativeType(const Device& device, const device_action_struct& action) {
    return GuardedOr<const std::string&>(kNone, [&]() -> const std::string& {
        const std::string& value = getDeviceProperty(device, action.href, action.property);
        if (value.empty()) {
            HL_LOGE("{%s} got empty value for uri : %s, property {%s}", device.GetId().c_str(), action.href.c_str(),
                    action.property.c_str());
            return kNone;
        }
        const bool has_untyped =
            std::any_of(action.alternatives.begin(), action.alternatives.end(),
                        [](const device_alternative_struct& alternative) { return alternative.type.empty(); });
        if (has_untyped) {
            return value;
        }
        const json::JsonValue list = parseList(value);
        for (const device_alternative_struct& alternative : action.alternatives) {
            const std::string& type = getAlternativeType(list, alternative, value);
            if (!type.empty()) {
                return type;
            }
        }
        return kNone;
    });
}

const std::string& Metadata::getAlternativeType(const json::JsonValue& list,
                                                const device_alternative_struct& alternative,
                                                const std::string& value) {
    if (list.isNull()) {
        return findAlternativeType(alternative, value);
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        const json::JsonValue element = list[i];
        const std::string& type = findAlternativeType(alternative, element.asString());
        if (!type.empty()) {
            return type;
        }
    }
    return kNone;
}

const std::string& Metadata::findAlternativeType(const device_alternative_struct& alternative, const std::string& key) {
    return alternative.key == key ? alternative.type : kNone;
}

}  // namespace VMFramework::HomeLoom

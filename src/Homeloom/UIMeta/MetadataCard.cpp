// Metadata: the cards of sub devices, such as the second drum of a washer. Each group of main states makes one.
#include <algorithm>
#include <iterator>
#include <utility>

#include <VMFramework/JsonValue.h>

#include "Common/CHLUtil.h"
#include "Common/HLLog.h"
#include "Common/HLNames.h"
#include "Homeloom/Devices/Device.h"
#include "Homeloom/UIMeta/Metadata.h"

namespace VMFramework::HomeLoom {

using json::JsonValue;

namespace {

/// The first action of that group; null if there is none.
const device_action_struct* findGroupAction(const Device& device, const device_ui_metadata_struct& meta,
                                            const std::string& group) {
    for (const device_action_struct& action : meta.main_actions) {
        HL_LOGI("device id : %s, input group_name : %s, action group_name : %s", device.GetId().c_str(), group.c_str(),
                action.group.c_str());
        if (action.group == group) {
            return &action;
        }
    }
    return nullptr;
}

}  // namespace

bool Metadata::hasSubDeviceCard(const DevicePtr& device) const {
    const UiMetadata meta = device ? FindUiMetadata(device->GetVid()) : nullptr;
    return meta && hasSubDeviceCard(*meta);
}

int Metadata::SetSubDeviceCardList(const DevicePtr& device) const {
    if (!device) {
        return 0;
    }
    const UiMetadata meta = FindUiMetadata(device->GetVid());
    return meta ? refreshSubDeviceCards(*device, *meta) : 0;
}

// The cards have arguments too, but what a device tells as its context is its state's: the same in every list and
// notify for as long as the state is the same.
int Metadata::refreshSubDeviceCards(Device& device, const device_ui_metadata_struct& meta) const {
    if (meta.state_groups.empty()) {
        return setSubDeviceCards(device, meta);
    }
    const Device::ContextKeeper keeper(device);
    return setSubDeviceCards(device, meta);
}

int Metadata::setSubDeviceCards(Device& device, const device_ui_metadata_struct& meta) const {
    int count = 0;
    // Written by the labels as they are evaluated and not reset between groups: a group whose labels leave the flag
    // shows the one of the group before. The screens are built on this.
    bool inactive = false;
    JsonValue cards;
    for (const std::string& group : meta.state_groups) {
        JsonValue card;
        if (makeSubDeviceCard(device, meta, group, inactive, card)) {
            cards.append(std::move(card));
            ++count;
        }
    }
    const std::string text = cards.isNull() ? std::string() : cards.toString();
    device.SetSubDeviceCardJsonInfo(text);
    HL_LOGI("SubDeviceCardArrayInfo : %s", text.c_str());
    return count;
}

/// The first state of the group gives the card its title, the second one its text.
bool Metadata::makeSubDeviceCard(Device& device, const device_ui_metadata_struct& meta, const std::string& group,
                                 bool& inactive, JsonValue& card) const {
    const auto of_group = [&](const device_state_struct& state) { return state.group == group; };
    const auto end = meta.main_states.end();
    const auto title = std::find_if(meta.main_states.begin(), end, of_group);
    if (title == end || !isMainStateVisible(device, *title)) {
        return false;
    }
    std::string text;
    getMainStateLabel(device, *title, meta, text, inactive);
    card.set(Names::DEVICE_NAME, text);

    const auto state = std::find_if(std::next(title), end, of_group);
    if (state == end) {
        return true;
    }
    text = "Checking Status";
    if (isMainStateVisible(device, *state)) {
        getMainStateLabel(device, *state, meta, text, inactive);
    }
    const DeviceStatus status = device.GetStatus();
    if (status == DEVICE_STATUS_DISCONNECTED) {
        text = "Disconnected";
    } else if (status == DEVICE_STATUS_HIDDEN) {
        text = "Checking Status";
    }
    if (status == DEVICE_STATUS_CONNECTED && CHLUtil::IsDeviceTypeTVOrRefForActiveState(device.GetDeviceType())) {
        inactive = false;
    }
    card.set(Names::STATE_TEXT, text);
    card.set(Names::ICON_URL, state->icon_url);
    // True when inactive: the opposite of the endpoint's "active_state", and the screens know.
    card.set(Names::ACTIVE_STATE, inactive);
    card.set(Names::CONTROL_TYPE, getActionControlType(device, meta, group));
    card.set(Names::ACTION_STATE, getActionState(device, meta, group));
    card.set(Names::ACTION_URL, getActionUrl(device, meta, group));
    return true;
}

std::string Metadata::getActionUrl(const Device& device, const device_ui_metadata_struct& meta,
                                   const std::string& group) {
    const device_action_struct* action = findGroupAction(device, meta, group);
    return action != nullptr && isMainActionVisible(device, *action) ? action->href : std::string();
}

std::string Metadata::getActionControlType(const Device& device, const device_ui_metadata_struct& meta,
                                           const std::string& group) {
    const device_action_struct* action = findGroupAction(device, meta, group);
    return action != nullptr && isMainActionVisible(device, *action) ? action->control_type : std::string();
}

std::string Metadata::getActionState(const Device& device, const device_ui_metadata_struct& meta,
                                     const std::string& group) {
    const device_action_struct* action = findGroupAction(device, meta, group);
    if (action == nullptr) {
        return {};
    }
    // An action that is not visible has no control type and so shows its state, a push button's too.
    return iconOrState(device, *action, isMainActionVisible(device, *action) ? action->control_type : std::string());
}

}  // namespace VMFramework::HomeLoom

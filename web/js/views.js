// @ts-check
/** How a thing of the home looks on its card. */
import { t } from "./i18n.js";
import { iconName } from "./icons.js";
import { deviceStatus, isEnabled, isStateUnknown, partsOf, titleOf } from "./store.js";

/**
 * @typedef {object} View
 * @property {string} title
 * @property {string} state
 * @property {string} caption a second line above the title
 * @property {string} icon
 * @property {boolean} isActive
 * @property {boolean} isRunning
 * @property {boolean} isDisconnected
 * @property {Control|null} control how the main action looks; null without one
 * @property {string} action what OK does, in words
 */
/** @typedef {{kind: "switch"|"button"|"mode", isOn: boolean, icon: string, text: string}} Control */

const switches = new Set(["ToggleSwitch", "PowerSwitch", "StandbyPowerSwitch", "OffPowerSwitch"]);

/**
 * @param {string} controlType @param {string} state the action_state: of a push button its icon
 * @returns {Control|null}
 */
export function controlOf(controlType, state) {
    const button = (/** @type {string} */ icon) => ({ kind: /** @type {"button"} */ ("button"), isOn: false, icon, text: "" });
    if (switches.has(controlType)) {
        return { kind: "switch", isOn: state === "active", icon: "", text: "" };
    }
    switch (controlType) {
        case "":
        case undefined:
            return null;
        case "PlayPauseButton":
            return button(state === "play" ? "pause" : "play_arrow");
        case "StartButton":
            return button("play_arrow");
        case "StopButton":
            return button("stop");
        case "CleanButton":
            return button(state === "" || state === "stop" ? "play_arrow" : "stop");
        case "LockButton":
            return button(state === "unlock" || state === "unlocked" ? "lock_open" : "lock");
        case "OpenCloseButton":
            return button(state === "open" ? "blinds_closed" : "blinds");
        case "ModeButton":
            return { kind: "mode", isOn: false, icon: "tune", text: state };
        case "PushButton":
            return button(state === "" ? "touch_app" : iconName(state));
        default:
            return button("power_settings_new");
    }
}

/** @param {Control|null} control @param {string} controlType */
function actionText(control, controlType) {
    if (control === null) {
        return t("open_details");
    }
    if (control.kind === "switch") {
        return t(control.isOn ? "switch_off" : "switch_on");
    }
    const words = {
        PlayPauseButton: control.icon === "pause" ? "pause" : "start",
        StartButton: "start", StopButton: "stop", LockButton: "lock_unlock", OpenCloseButton: "open_close",
        CleanButton: control.icon === "stop" ? "stop" : "start", ModeButton: "next_mode",
    };
    return t(words[/** @type {keyof words} */ (controlType)] ?? "run");
}

/** @param {import("./store.js").Store} store @param {import("./layout.js").Entry} entry @returns {View} */
export function viewOf(store, entry) {
    switch (entry.kind) {
        case "scene": {
            const scene = store.scenes.get(entry.id);
            return plain(scene?.name ?? entry.id, t("scene"), iconName(scene?.icon ?? "", "") === "devices_other"
                ? "auto_awesome" : iconName(scene?.icon ?? ""), t("run"));
        }
        case "routine": {
            const routine = store.routines.get(entry.id);
            const isOn = routine !== undefined && isEnabled(routine);
            return {
                ...plain(routine?.name ?? entry.id, t(isOn ? "enabled" : "disabled"), "event_repeat",
                         t(isOn ? "switch_off" : "switch_on")),
                isActive: isOn,
                control: { kind: "switch", isOn, icon: "", text: "" },
            };
        }
        case "service": {
            const all = [...store.services.values()].flat();
            const service = all.find(({ installedAppId }) => installedAppId === entry.id);
            return plain(service?.appInternalName ?? entry.id, t("energy"), "bolt", t("open"));
        }
        default:
            return deviceView(store, entry);
    }
}

/** @param {string} title @param {string} state @param {string} icon @param {string} action @returns {View} */
function plain(title, state, icon, action) {
    return { title, state, caption: "", icon, isActive: false, isRunning: false, isDisconnected: false, control: null, action };
}

/** @param {import("./store.js").Store} store @param {import("./layout.js").Entry} entry @returns {View} */
function deviceView(store, entry) {
    const device = store.devices.get(entry.id);
    if (device === undefined) {
        return plain(entry.id, "", "devices_other", "");
    }
    const part = entry.kind === "part" ? partsOf(device)[entry.part] ?? {} : null;
    const from = part ?? device;
    const isDisconnected = device.cloud_device_status === deviceStatus.disconnected;
    const isUnknown = isStateUnknown(device, from);
    const control = controlOf(from.control_type || (isUnknown ? "PushButton" : ""), from.action_state ?? "");
    const icon = part === null ? iconName(device.icon_url, device.type) : iconName(part.icon_url ?? "", "");
    return {
        title: part === null ? titleOf(device) : part.device_name ?? "",
        caption: part === null ? "" : titleOf(device),
        state: from.state_text || (isUnknown ? t("no_state_yet") : ""),
        icon: icon === "devices_other" ? iconName(device.icon_url, device.type) : icon,
        // Of a part true means inactive.
        isActive: part === null ? device.active_state === 1 : part.active_state === false,
        isRunning: part === null && device.running_state === true,
        isDisconnected,
        control,
        action: actionText(control, from.control_type),
    };
}

/** @param {View} view what a screen reader says of the card */
export function labelOf(view) {
    return [view.title, view.caption, view.state, view.isRunning ? t("running") : "", view.isDisconnected ? t("disconnected") : ""]
        .filter((text, place, all) => text !== "" && all.indexOf(text) === place)
        .join(", ");
}

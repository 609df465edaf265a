// @ts-check
/**
 * Icons are ligatures of the font "Material Icons" that the door serves from where its package installs it: an icon's
 * name is its text. Without the font the page shows none.
 */
import { el } from "./dom.js";

// By the names that models give to their icons, without folder and ending.
/** @type {Record<string, string>} */
const byModelName = {
    air_conditioner: "ac_unit",
    air_purifier: "air",
    blind: "blinds",
    button: "touch_app",
    camera: "videocam",
    dishwasher: "flatware",
    doorbell: "doorbell",
    dryer: "dry_cleaning",
    fan: "wind_power",
    generic: "devices_other",
    hub: "hub",
    light: "lightbulb",
    lock: "lock",
    oven: "microwave",
    plug: "power",
    power: "power_settings_new",
    refrigerator: "kitchen",
    robot_cleaner: "cleaning_services",
    sensor: "sensors",
    speaker: "speaker",
    start: "play_arrow",
    stop: "stop",
    tag: "sell",
    thermostat: "device_thermostat",
    tv: "tv",
    washer: "local_laundry_service",
    moon: "bedtime",
    popcorn: "theaters",
    door: "door_front",
};

// For devices whose icon has no name here, or that have none.
/** @type {Record<string, string>} */
const byType = {
    "oic.d.airconditioner": "ac_unit",
    "oic.d.airpurifier": "air",
    "oic.d.blind": "blinds",
    "oic.d.camera": "videocam",
    "oic.d.dishwasher": "flatware",
    "oic.d.dryer": "dry_cleaning",
    "oic.d.fan": "wind_power",
    "oic.d.light": "lightbulb",
    "oic.d.networkaudio": "speaker",
    "oic.d.oven": "microwave",
    "oic.d.refrigerator": "kitchen",
    "oic.d.robotcleaner": "cleaning_services",
    "oic.d.smartlock": "lock",
    "oic.d.smartplug": "power",
    "oic.d.thermostat": "device_thermostat",
    "oic.d.tv": "tv",
    "oic.d.washer": "local_laundry_service",
    "oic.d.wirelessrouter": "router",
    "x.com.hl.d.doorbell": "doorbell",
    "x.com.hl.d.hub": "hub",
};

/** @param {string} url as a model or scene gives it @returns {string|undefined} */
function namedBy(url) {
    const parts = url.split("/");
    const stem = (parts.pop() ?? "").replace(/\.\w+$/, "");
    // An address of its own, such as .../air-purifier/card.svg: the folder tells what it is of.
    return byModelName[stem] ?? byModelName[(parts.pop() ?? "").replaceAll("-", "_")];
}

/** @param {string} url @param {string} [type] @returns {string} the icon's name */
export function iconName(url, type = "") {
    return namedBy(url ?? "") ?? byType[type] ?? "devices_other";
}

/** @param {string} name */
export function icon(name) {
    return el("span", { class: "icon", "aria-hidden": "true", text: name });
}

/** Shows icons as soon as their font is there; where its package isn't installed cards show letters. */
export async function loadIcons() {
    try {
        const fonts = await document.fonts.load('1em "Material Icons"');
        document.documentElement.classList.toggle("has-icons", fonts.length > 0);
    } catch {
        document.documentElement.classList.remove("has-icons");
    }
}

// @ts-check
/**
 * The home as the plug-in reports it, made of the door's events and of nothing else. Knows no page: whoever shows it is
 * told what has changed.
 */
import { parsed } from "./dom.js";

/** @typedef {{id: string, name: string}} Room */
/**
 * @typedef {{favorite_id: string, member_id: string, member_type: string}} Favorite
 * @typedef {{installedAppId: string, appInternalName: string, serviceCode: string}} Service
 * @typedef {object} Location
 * @property {string} id
 * @property {string} name
 * @property {string} owner_name
 * @property {boolean} is_owner
 * @property {string} permission
 * @property {Room[]} rooms
 */
/** @typedef {Record<string, any> & {id: string, name: string, nick: string, type: string}} Device */
/** @typedef {{id: string, name: string, icon: string, location: string, document: any}} Item a scene or a routine */
/** @typedef {Record<string, any>} Part a card of a part of a device */

export const deviceStatus = { connected: 0, disconnected: 1, inactive: 2, hidden: 3 };

// An absent text is an empty one. Devices of the TV's own hub are told of by another way, which never has the last two
// nor the number of cards: there they are kept.
const stateTexts = ["state_text", "icon_url", "control_type", "action_state", "action_url"];
const allTexts = [...stateTexts, "context_value", "sub_device_card_list_info"];

/** @param {string} id @param {string} json @returns {Item} */
function itemOf(id, json) {
    const document = parsed(json, {}) ?? {};
    const text = (/** @type {any} */ value) => (typeof value === "string" ? value : "");
    return { id, name: text(document.name) || id, icon: text(document.icon), location: text(document.locationId), document };
}

/** @param {{id: string}} a @param {{id: string}} b */
const byId = (a, b) => (a.id < b.id ? -1 : a.id > b.id ? 1 : 0);

export class Store {
    /** @param {(what: string, id: string, detail?: any) => void} changed */
    constructor(changed) {
        this._changed = changed;
        this.version = "";
        this.language = "en_US.utf8";
        this.loadStatus = /** @type {number|null} */ (null);
        this.isSignedIn = false;
        this.isKnown = false;
        this.hub = { info: /** @type {any} */ (null), progress: /** @type {number|null} */ (null), state: "" };
        /** @type {Map<string, any>} by the installed app's id */
        this.energy = new Map();
        /** @type {Location[]} */
        this.locations = [];
        /** @type {Map<string, Device>} */
        this.devices = new Map();
        /** @type {Map<string, Item>} */
        this.scenes = new Map();
        /** @type {Map<string, Item>} */
        this.routines = new Map();
        /** @type {Map<string, Favorite[]>} by location */
        this.favorites = new Map();
        /** @type {Map<string, Service[]>} by location */
        this.services = new Map();
    }

    _clearHome() {
        this.locations = [];
        [this.devices, this.scenes, this.routines, this.favorites, this.services].forEach((things) => things.clear());
    }

    /** @param {any} hello */
    greet(hello) {
        this.version = hello.version;
        this.language = hello.language;
        this.loadStatus = hello.load_status ?? null;
        this.isSignedIn = hello.signed_in;
        this._clearHome();
        const home = hello.home;
        this.isKnown = home !== undefined && home !== null;
        for (const location of home?.locations ?? []) {
            this.locations.push(location);
        }
        for (const device of home?.devices ?? []) {
            this.devices.set(device.id, device);
        }
        for (const scene of home?.scenes ?? []) {
            this.scenes.set(scene.id, itemOf(scene.id, scene.document));
        }
        for (const routine of home?.routines ?? []) {
            this.routines.set(routine.id, itemOf(routine.id, routine.document));
        }
        this._changed("hello", "");
    }

    /** @param {any} report one call of the plug-in */
    apply(report) {
        switch (report.call) {
            case "load_result":
                this.loadStatus = report.status;
                this._changed("session", "");
                break;
            case "device_list":
                this._replaceHome(report.endpoints);
                break;
            case "notify":
            case "result":
                this._notified(report.name, report.properties, report.request !== undefined);
        }
    }

    /** @param {any[]} endpoints */
    _replaceHome(endpoints) {
        const services = [...this.services];
        this._clearHome();
        this.services = new Map(services);  // the list doesn't tell of them
        this.isKnown = true;
        for (const endpoint of endpoints) {
            const id = endpoint.device_id ?? "";
            const data = endpoint.extra_data;
            if (endpoint.interface_type === "homeloom-scene") {
                this.scenes.set(id, itemOf(id, data.scene_json_data));
            } else if (endpoint.interface_type === "homeloom-routine") {
                this.routines.set(id, itemOf(id, data.routine_json));
            } else if (endpoint.device_type === "homeloom-device") {
                const { nick = "", ...rest } = data;
                const name = endpoint.device_name ?? "";
                this.devices.set(id, { ...rest, id, name, nick, type: endpoint.sub_device_type ?? "" });
            } else if (data.location_id !== undefined) {
                this._addLocation(data);
            }
        }
        this.locations.sort(byId);
        this._changed("home", "");
    }

    /** @param {any} data a location's extra data */
    _addLocation(data) {
        const rooms = parsed(data.room_info, []).map((/** @type {any} */ room) => ({ id: room.room_id, name: room.room_name }));
        this.locations.push({
            id: data.location_id,
            name: data.location_name ?? "",
            owner_name: data.location_owner_name ?? "",
            is_owner: data.location_is_owner ?? false,
            permission: data.location_permission ?? "",
            rooms,
        });
        this.favorites.set(data.location_id, parsed(data.favorite_info_array, []));
    }

    /** @param {string} name @param {Record<string, any>} properties @param {boolean} isAnswer */
    _notified(name, properties, isAnswer) {
        switch (name) {
            case "hl_device_state_updated":
                this._deviceChanged(properties);
                return;
            case "sign_in_state_changed":
                this._signedIn(properties.is_sign_in === true);
                return;
            case "hl_get_favorite":
            case "hl_favorite_updated":
                if (properties.get_favorite_result === true) {
                    this.favorites.set(properties.location_id, parsed(properties.favorite_info_array, []));
                    this._changed("home", "");
                }
                break;
            case "hl_get_installed_service_app_info":
            case "hl_installed_service_app_info_updated":
                if (properties.result === true) {
                    this.services.set(properties.location_id, parsed(properties.installed_service_app_info_json, []));
                    this._changed("home", "");
                }
                break;
            case "hl_get_energy_info":
            case "hl_energy_info_updated": {
                const energy = parsed(properties.installed_service_app_info_json);
                if (energy !== null && properties.result === true) {
                    this.energy.set(energy.installedAppId, energy);
                    this._changed("energy", energy.installedAppId);
                }
                break;
            }
            case "hl_create_scene":
            case "hl_update_scene":
            case "hl_delete_scene":
                this._itemChanged(this.scenes, name, properties, properties.scene_id, properties.scene_json);
                break;
            case "hl_create_routine":
            case "hl_update_routine":
            case "hl_delete_routine":
                this._itemChanged(this.routines, name, properties, properties.routine_id, properties.routine_json);
                break;
            default:
                this._hubNotified(name, properties);
        }
        if (!isAnswer) {
            this._changed("unasked", name, properties);
        }
    }

    /** @param {string} name @param {Record<string, any>} properties */
    _hubNotified(name, properties) {
        if (name === "hl_get_hub_info") {
            this.hub.info = parsed(properties.hl_hub_info, {});
        } else if (name === "hl_hub_onboarding_progress") {
            this._hubProgress(properties);
        } else if (name === "hl_reset_hub_result") {
            this.hub.state = properties.hl_reset_hub_result_data === "success" ? "reset_done" : "reset_failed";
            this.hub.progress = null;
        } else {
            return;
        }
        this._changed("hub", "");
    }

    /** @param {Record<string, any>} properties one of three keys */
    _hubProgress(properties) {
        if (properties.hl_hub_progress !== undefined) {
            const failed = properties.hl_hub_progress < 0;
            this.hub.progress = failed ? null : properties.hl_hub_progress;
            this.hub.state = failed ? "failed" : "running";
        } else if (properties.hl_hub_onboarding_success_data !== undefined) {
            this.hub.progress = null;
            this.hub.state = "succeeded";
        } else {
            this.hub.progress = 0;
            this.hub.state = "running";
        }
    }

    /** @param {Record<string, any>} properties */
    _deviceChanged(properties) {
        const device = this.devices.get(properties.device_id);
        if (device === undefined) {
            return;
        }
        const wasHidden = isHidden(device);
        const hadParts = partsOf(device).length;
        for (const key of properties.num_of_sub_device_cards === undefined ? stateTexts : allTexts) {
            if (properties[key] === undefined && device[key] !== undefined) {
                device[key] = "";
            }
        }
        for (const [key, value] of Object.entries(properties)) {
            if (key !== "device_id") {
                device[key] = value;
            }
        }
        const isOtherLayout = wasHidden !== isHidden(device) || hadParts !== partsOf(device).length;
        this._changed(isOtherLayout ? "home" : "device", device.id);
    }

    /** @param {boolean} isSignedIn */
    _signedIn(isSignedIn) {
        const isNews = this.isSignedIn !== isSignedIn;
        this.isSignedIn = isSignedIn;
        if (!isSignedIn) {
            // No list follows: the home is gone with its user.
            this._clearHome();
            this.isKnown = false;
            this._changed("home", "");
        }
        this._changed("session", "");
        if (isNews) {
            this._changed("unasked", "sign_in_state_changed", { is_sign_in: isSignedIn });
        }
    }

    /**
     * @param {Map<string, Item>} items @param {string} name @param {Record<string, any>} properties
     * @param {string} id @param {string} json
     */
    _itemChanged(items, name, properties, id, json) {
        if (properties.result !== true || !id) {
            return;
        }
        properties.name = items.get(id)?.name ?? id;
        if (name.startsWith("hl_delete")) {
            items.delete(id);
        } else if (json) {
            const item = itemOf(id, json);
            item.location = item.location || items.get(id)?.location || (items === this.scenes ? properties.location_id : "");
            properties.name = item.name;
            items.set(id, item);
        }
        this._changed("home", "");
    }
}

/**
 * What people call it.
 * @param {Device} device
 */
export function titleOf(device) {
    return device.nick || device.name || device.id;
}

/** @param {Device} device */
export function isHidden(device) {
    return device.cloud_device_status === deviceStatus.hidden;
}

/**
 * Whether its state is that none is known yet. What has an action has a state as well; many sensors and hubs have neither.
 * @param {Device} device @param {Device|Part} from itself, or a part of it
 */
export function isStateUnknown(device, from) {
    return device.cloud_device_status === deviceStatus.connected && !from.state_text && !!(from.control_type || from.action_url);
}

/** @param {Item} routine */
export function isEnabled(routine) {
    return routine.document.status !== "Disabled";
}

const noParts = /** @type {Part[]} */ ([]);
/** @type {WeakMap<Device, {json: string, parts: Part[]}>} */
const partsRead = new WeakMap();

/** @param {Device} device @returns {Part[]} the cards of its parts */
export function partsOf(device) {
    const json = device.sub_device_card_list_info;
    if (!json || !device.num_of_sub_device_cards) {
        return noParts;
    }
    const read = partsRead.get(device);
    if (read !== undefined && read.json === json) {
        return read.parts;
    }
    const found = parsed(json);
    const parts = Array.isArray(found) ? found : noParts;
    partsRead.set(device, { json, parts });
    return parts;
}

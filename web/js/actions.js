// @ts-check
/** What the screen asks of the TV. Nothing is drawn ahead of the answer: a card changes when the plug-in reports it. */
import { answered } from "./door.js";
import { t } from "./i18n.js";
import { isEnabled, isStateUnknown, partsOf, titleOf } from "./store.js";

/** @typedef {import("./layout.js").Entry} Entry */

export class Actions {
    /**
     * @param {import("./door.js").Door} door @param {import("./store.js").Store} store
     * @param {{busy: (key: string, isBusy: boolean) => void, say: (text: string, kind?: "info"|"error") => void,
     *          open: (what: string, id?: string) => void}} page
     */
    constructor(door, store, page) {
        this._door = door;
        this._store = store;
        this._page = page;
    }

    /**
     * What OK does on a card.
     * @param {Entry} entry
     */
    perform(entry) {
        switch (entry.kind) {
            case "scene":
                return this._onCard(entry, "hl_execute_scene", this._ofScene(entry.id), (is) => t(is ? "scene_done" : "scene_failed",
                    { name: this._store.scenes.get(entry.id)?.name ?? "" }));
            case "routine": {
                const routine = this._store.routines.get(entry.id);
                const enable = routine !== undefined && !isEnabled(routine);
                return this._onCard(entry, "hl_update_routine_enable_status",
                                    { location_id: this.locationOf(routine), routine_id: entry.id, enable });
            }
            case "service":
                return this._page.open("energy", entry.id);
            default:
                return this._mainAction(entry);
        }
    }

    /** @param {Entry} entry */
    _mainAction(entry) {
        const device = this._store.devices.get(entry.id);
        const part = device && entry.kind === "part" ? partsOf(device)[entry.part] : undefined;
        const from = part ?? device;
        if (!from?.control_type && !(device && from && isStateUnknown(device, from))) {
            return this._page.open("device", entry.id);
        }
        const properties = { device_id: entry.id, ...(from.action_url ? { action_url: from.action_url } : {}) };
        return this._onCard(entry, "hl_do_main_action", properties,
                            (is) => (is ? "" : t("action_failed", { name: titleOf(/** @type {any} */ (device)) })));
    }

    /**
     * @param {Entry} entry @param {string} name @param {Record<string, any>} properties
     * @param {(isDone: boolean) => string} [text]
     */
    async _onCard(entry, name, properties, text) {
        this._page.busy(entry.key, true);
        await this.request(name, properties, text);
        this._page.busy(entry.key, false);
    }

    /**
     * Sends a request and says how it went, where that isn't seen anyway.
     * @param {string} name @param {Record<string, any>} properties
     * @param {(isDone: boolean) => string} [text] says it; empty: nothing to say
     * @returns {Promise<Record<string, any>|null>} the answer; null if none came
     */
    async request(name, properties, text = (isDone) => (isDone ? "" : t("request_failed"))) {
        const answer = await this._door.request(name, properties);
        const found = answered(answer, name) ?? answered(answer, `${name}_result`);
        if (found === null && !answer.succeeded) {
            this._page.say(t("no_answer"), "error");
            return null;
        }
        const isDone = answer.succeeded;
        const said = text(isDone);
        if (said !== "") {
            this._page.say(said, isDone ? "info" : "error");
        }
        return found;
    }

    /** @param {string} id */
    _ofScene(id) {
        return { location_id: this._store.scenes.get(id)?.location ?? "", scene_id: id };
    }

    /** @param {import("./store.js").Item|undefined} item @returns {string} its location, else the first one of the user's own */
    locationOf(item) {
        const own = this._store.locations.find(({ is_owner }) => is_owner);
        return item?.location || own?.id || "";
    }
}

// @ts-check
/** What stands where on the home screen: the store's home as rows of cards. Knows heights, not elements. */
import { compareNames, t } from "./i18n.js";
import { isHidden, partsOf, titleOf } from "./store.js";

/** @typedef {import("./store.js").Store} Store */
/** @typedef {import("./store.js").Device} Device */
/**
 * What a card stands for. The key tells it from all others on the screen and stays the same as long as the thing is there.
 * @typedef {object} Entry
 * @property {string} key
 * @property {"device"|"part"|"scene"|"routine"|"service"} kind
 * @property {string} id of the device, scene, routine or installed app
 * @property {number} part the part's place among the cards of its device
 */
/**
 * @typedef {object} Row
 * @property {string} key
 * @property {"location"|"section"|"cards"|"pills"} kind
 * @property {number} height
 * @property {number} top
 * @property {string} title
 * @property {string} note
 * @property {string} icon
 * @property {Entry[]} entries
 */

/** Heights in rem, with the gap below. */
export const heights = { location: 6.5, section: 3.75, cards: 12.75, pills: 7 };

/**
 * @param {Store} store @param {number} columns @param {number} rem pixels of one
 * @returns {Row[]} from top to bottom
 */
export function layOut(store, columns, rem) {
    const rows = new Rows(columns, rem);
    const rooms = devicesByRoom(store);
    const isKnownLocation = new Set(store.locations.map((location) => location.id));
    for (const location of [...store.locations].sort(ownFirst)) {
        rows.head("location", location.id, location.name, ownerNote(location));
        rows.section(`favorites:${location.id}`, t("favorites"), "star", "cards", favorites(store, location.id));
        rows.section(`scenes:${location.id}`, t("scenes"), "auto_awesome", "pills",
                     items(store.scenes, "scene", (item) => item.location === location.id));
        for (const room of location.rooms) {
            rows.section(`room:${location.id}/${room.id}`, room.name, "", "cards",
                         deviceEntries(rooms.get(`${location.id}/${room.id}`) ?? []));
            rooms.delete(`${location.id}/${room.id}`);
        }
        const left = [...rooms.keys()].filter((key) => key.startsWith(`${location.id}/`));
        rows.section(`room:${location.id}/`, t("no_room"), "", "cards",
                     deviceEntries(left.flatMap((key) => rooms.get(key) ?? [])));
        left.forEach((key) => rooms.delete(key));
        rows.section(`services:${location.id}`, t("services"), "bolt", "pills", services(store, location.id));
    }
    rows.section("elsewhere", t("elsewhere"), "", "cards", deviceEntries([...rooms.values()].flat()));
    rows.section("scenes:", t("scenes"), "auto_awesome", "pills",
                 items(store.scenes, "scene", (item) => !isKnownLocation.has(item.location)));
    // The list doesn't tell of a routine where it belongs.
    rows.section("routines:", t("routines"), "event_repeat", "pills",
                 items(store.routines, "routine", (item) => item.document.meta?.hidden !== true));
    return rows.all;
}

class Rows {
    /** @param {number} columns @param {number} rem */
    constructor(columns, rem) {
        this._columns = columns;
        this._rem = rem;
        this._top = 0;
        /** @type {Row[]} */
        this.all = [];
    }

    /** @param {Row["kind"]} kind @param {string} key @param {string} title @param {string} [note] @param {string} [icon] */
    head(kind, key, title, note = "", icon = "") {
        this._add({ key: `${kind}:${key}`, kind, title, note, icon, entries: [] });
    }

    /**
     * A section without entries isn't shown.
     * @param {string} key @param {string} title @param {string} icon @param {"cards"|"pills"} kind @param {Entry[]} entries
     */
    section(key, title, icon, kind, entries) {
        if (entries.length === 0) {
            return;
        }
        this.head("section", key, title, "", icon);
        for (let first = 0; first < entries.length; first += this._columns) {
            const some = entries.slice(first, first + this._columns);
            this._add({ key: `${key}#${first / this._columns}`, kind, title, note: "", icon: "", entries: some });
        }
    }

    /** @param {Omit<Row, "height"|"top">} row */
    _add(row) {
        const height = Math.round(heights[row.kind] * this._rem);
        this.all.push({ ...row, height, top: this._top });
        this._top += height;
    }
}

/** @param {import("./store.js").Location} a @param {import("./store.js").Location} b */
function ownFirst(a, b) {
    return Number(b.is_owner) - Number(a.is_owner) || compareNames(a.name, b.name);
}

/** @param {import("./store.js").Location} location */
function ownerNote(location) {
    const owner = location.is_owner ? t("yours") : t("owner_is", { name: location.owner_name });
    return location.is_owner ? owner : `${owner} · ${location.permission}`;
}

/** @param {Store} store @returns {Map<string, Device[]>} by location and room */
function devicesByRoom(store) {
    /** @type {Map<string, Device[]>} */
    const rooms = new Map();
    for (const device of store.devices.values()) {
        if (!isHidden(device)) {
            const key = `${device.location_id ?? ""}/${device.room_id ?? ""}`;
            const room = rooms.get(key);
            room === undefined ? rooms.set(key, [device]) : room.push(device);
        }
    }
    return rooms;
}

/** @param {Device[]} devices @returns {Entry[]} with the cards of its parts after each */
function deviceEntries(devices) {
    devices.sort((a, b) => compareNames(titleOf(a), titleOf(b)) || (a.id < b.id ? -1 : 1));
    return devices.flatMap((device) => [
        { key: `device:${device.id}`, kind: /** @type {"device"} */ ("device"), id: device.id, part: -1 },
        ...partsOf(device).map((_, part) => ({
            key: `part:${device.id}#${part}`, kind: /** @type {"part"} */ ("part"), id: device.id, part,
        })),
    ]);
}

/**
 * @param {Map<string, import("./store.js").Item>} all @param {"scene"|"routine"} kind
 * @param {(item: import("./store.js").Item) => boolean} belongs
 * @returns {Entry[]}
 */
function items(all, kind, belongs) {
    const some = [...all.values()].filter(belongs);
    some.sort((a, b) => compareNames(a.name, b.name));
    return some.map(({ id }) => ({ key: `${kind}:${id}`, kind, id, part: -1 }));
}

/** @param {Store} store @param {string} location @returns {Entry[]} in the order that the user gave them */
function favorites(store, location) {
    return (store.favorites.get(location) ?? []).flatMap((favorite) => {
        const kind = favorite.member_type === "SCENE" ? "scene" : favorite.member_type === "DEVICE" ? "device" : "routine";
        const id = favorite.member_id;
        const device = store.devices.get(id);
        const isThere = kind === "device" ? device !== undefined && !isHidden(device)
            : (kind === "scene" ? store.scenes : store.routines).has(id);
        return isThere ? [{ key: `favorite:${location}/${id}`, kind: /** @type {Entry["kind"]} */ (kind), id, part: -1 }] : [];
    });
}

/** @param {Store} store @param {string} location @returns {Entry[]} */
function services(store, location) {
    return (store.services.get(location) ?? []).map(({ installedAppId: id }) => (
        { key: `service:${id}`, kind: /** @type {"service"} */ ("service"), id, part: -1 }));
}

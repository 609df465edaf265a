// @ts-check
/** Everything about one device, and what can be done with it. */
import { el, setText } from "../dom.js";
import { t } from "../i18n.js";
import { icon } from "../icons.js";
import { button, fact } from "../panel.js";
import { titleOf } from "../store.js";
import { labelOf, viewOf } from "../views.js";
import { cameraKind } from "./camera.js";

const notifications = [[1, "motion"], [2, "sound"], [4, "person"], [8, "ring"]];

/** @param {import("../page.js").Page} page @param {string} id */
export function openDevice(page, id) {
    const { store } = page;
    const device = store.devices.get(id);
    if (device === undefined) {
        return;
    }
    const fields = el("dl", { class: "facts" });
    const state = el("p", { class: "panel-state" });
    const draw = () => {
        const now = store.devices.get(id);
        if (now === undefined) {
            page.panel.close();
            return;
        }
        const view = viewOf(store, { key: "", kind: "device", id, part: -1 });
        setText(state, labelOf({ ...view, title: "" }));
        fields.replaceChildren(...Object.entries(now).filter(([, value]) => value !== "")
            .map(([name, value]) => fact(name, String(value))));
    };
    page.panel.open(titleOf(device), (body) => {
        const view = viewOf(store, { key: "", kind: "device", id, part: -1 });
        body.append(el("div", { class: "panel-lead" }, icon(view.icon), state), buttons(page, device, view),
                    el("details", {}, el("summary", { text: t("all_fields") }), fields));
        draw();
    }, (what, changed) => {
        if ((what === "device" && changed === id) || what === "home") {
            draw();
        }
    });
}

/** @param {import("../page.js").Page} page @param {import("../store.js").Device} device @param {import("../views.js").View} view */
function buttons(page, device, view) {
    const { actions, store, panel } = page;
    const id = device.id;
    const favorite = [...store.favorites].flatMap(([location, all]) => all.map((one) => ({ location, ...one })))
        .find((one) => one.member_id === id);
    const ask = (/** @type {string} */ name, /** @type {Record<string, any>} */ properties) => actions.request(name, properties);
    return el("div", { class: "buttons" },
        view.control && button(view.action, "power_settings_new", () => actions.perform({ key: "", kind: "device", id, part: -1 })),
        cameraKind(device) && button(t("watch"), "videocam", () => page.open("camera", id)),
        device.refrigerator_inside_view === 1 && button(t("inside"), "kitchen", () => page.open("fridge", id)),
        button(t("refresh"), "refresh", () => ask("hl_get_device_info", { device_id: id })),
        favorite === undefined
            ? button(t("add_favorite"), "star_border", () => { panel.close(); ask("hl_create_favorite", {
                location_id: device.location_id, favorite_info: JSON.stringify({ memberId: id, memberType: "DEVICE" }) })
                .then(() => ask("hl_get_favorite", { location_id: device.location_id })); })
            : button(t("remove_favorite"), "star", () => { panel.close(); ask("hl_delete_favorite", {
                location_id: favorite.location, favorite_id: favorite.favorite_id })
                .then(() => ask("hl_get_favorite", { location_id: favorite.location })); }),
        button(t("rename"), "edit", () => openRename(page, device)),
        button(t("move"), "drive_file_move", () => openMove(page, device)),
        ...notificationButtons(page, device),
        button(t("delete_device"), "delete", () => openDelete(page, device)));
}

/** @param {import("../page.js").Page} page @param {import("../store.js").Device} device */
function notificationButtons(page, device) {
    return notifications.filter(([bit]) => (Number(device.camera_notification_type ?? 0) & Number(bit)) !== 0).map(([bit, name]) => {
        const isOn = (Number(device.camera_notification_value ?? 0) & Number(bit)) !== 0;
        return button(t(isOn ? "dont_notify_of" : "notify_of", { what: t(`of_${name}`) }), isOn ? "notifications" : "notifications_off",
                      () => { page.actions.request(isOn ? "hl_unset_camera_notification" : "hl_set_camera_notification",
                                                   { device_id: device.id, camera_notification_type: Number(bit) });
                              page.panel.close(); });
    });
}

/** @param {import("../page.js").Page} page @param {import("../store.js").Device} device */
function openRename(page, device) {
    page.panel.open(t("rename"), (body) => {
        const name = el("input", { type: "text", class: "field", "aria-label": t("name"), value: titleOf(device), maxlength: 60 });
        const rename = () => {
            page.panel.close();
            page.actions.request("hl_change_device_name", { device_id: device.id, device_name: name.value });
        };
        body.append(el("form", { class: "buttons", on: { submit: (/** @type {Event} */ event) => { event.preventDefault(); rename(); } } },
                       name, el("button", { class: "button", type: "submit" }, icon("check"), el("span", { text: t("rename") }))));
    });
}

/** @param {import("../page.js").Page} page @param {import("../store.js").Device} device */
function openMove(page, device) {
    const rooms = page.store.locations.find(({ id }) => id === device.location_id)?.rooms ?? [];
    page.panel.open(t("move"), (body) => body.append(el("div", { class: "buttons" },
        ...rooms.map((room) => button(room.name, "home", () => {
            page.panel.close();
            page.actions.request("hl_move_devices", { devices_size: 1, dev_ids: device.id, location_id: device.location_id,
                                                      room_id: room.id });
        })))));
}

/** @param {import("../page.js").Page} page @param {import("../store.js").Device} device */
function openDelete(page, device) {
    page.panel.open(t("delete_question", { name: titleOf(device) }), (body) => body.append(el("div", { class: "buttons" },
        button(t("keep"), "close", () => page.panel.close()),
        button(t("delete_device"), "delete", async () => {
            page.panel.close();
            await page.actions.request("hl_delete_device", { device_id: device.id });
            // No list is sent for a device that has gone: the framework is asked for one.
            page.door.command("scan");
        }))));
}

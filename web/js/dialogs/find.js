// @ts-check
/** Finds a device or scene by its name. */
import { el } from "../dom.js";
import { t } from "../i18n.js";
import { titleOf } from "../store.js";
import { button } from "../panel.js";
import { iconName } from "../icons.js";

const most = 12;

/** @param {import("../page.js").Page} page */
export function openFind(page) {
    page.panel.open(t("find"), (body) => {
        const results = el("div", { class: "buttons", role: "group", "aria-live": "polite" });
        const show = (/** @type {string} */ text) => results.replaceChildren(...found(page, text));
        const field = el("input", { type: "search", class: "field", "aria-label": t("find"), placeholder: t("find_hint"),
                                    on: { input: (/** @type {any} */ event) => show(event.target.value),
                                          keydown: (/** @type {KeyboardEvent} */ event) => {
                                              if (event.key === "Enter") {
                                                  results.querySelector("button")?.click();
                                              }
                                          } } });
        body.append(field, results);
    });
}

/** @param {import("../page.js").Page} page @param {string} text */
function found(page, text) {
    const wanted = text.trim().toLocaleLowerCase();
    const buttons = [];
    for (const device of wanted === "" ? [] : page.store.devices.values()) {
        const title = titleOf(device);
        if (title.toLocaleLowerCase().includes(wanted) || device.id.toLocaleLowerCase().includes(wanted)) {
            buttons.push(button(`${title} · ${device.room || device.location || ""}`, iconName(device.icon_url, device.type), () => {
                page.panel.close();
                page.list.focusEntry(`device:${device.id}`, false);
            }));
            if (buttons.length === most) {
                break;
            }
        }
    }
    return buttons;
}

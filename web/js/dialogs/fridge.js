// @ts-check
/** The inside of a refrigerator: the pictures of its cameras, as the cloud gives them. */
import { el, parsed, setText } from "../dom.js";
import { language, t } from "../i18n.js";
import { titleOf } from "../store.js";

/** @param {import("../page.js").Page} page @param {string} id */
export function openFridge(page, id) {
    const device = page.store.devices.get(id);
    if (device === undefined) {
        return;
    }
    page.panel.open(titleOf(device), (body) => {
        const note = el("p", { class: "panel-note", role: "status", text: t("taking_pictures") });
        const pictures = el("div", { class: "pictures" });
        body.append(note, pictures);
        page.actions.request("hl_get_refrigerator_innerview_url", { device_id: id }).then((answer) => {
            const urls = /** @type {string[]} */ (parsed(answer?.inner_view_url, []));
            setText(note, urls.length === 0 ? t("no_pictures") : t("taken_at", { time: timeText(answer?.datetime ?? "") }));
            pictures.replaceChildren(...urls.map((url, place) => el("img", {
                class: "picture", tabindex: "0", src: throughTheDoor(url), alt: t("picture_number", { number: place + 1 }) })));
        });
    });
}

// The cloud's host is only known to the TV: the door hands out the same file under the same path.
/** @param {string} url */
function throughTheDoor(url) {
    const { pathname, search } = new URL(url, location.href);
    return `/v1/cloud${pathname}${search}`;
}

/** @param {string} text 20240501090000 */
function timeText(text) {
    const parts = /^(\d{4})(\d\d)(\d\d)(\d\d)(\d\d)(\d\d)$/.exec(text)?.slice(1).map(Number);
    if (parts === undefined) {
        return text;
    }
    const [year, month, day, hour, minute, second] = parts;
    const format = new Intl.DateTimeFormat(language(), { dateStyle: "medium", timeStyle: "short" });
    return format.format(new Date(year, month - 1, day, hour, minute, second));
}

// @ts-check
/** The line at the top: the locations to jump to, what state the home is in, and the ways to everything else. */
import { el, setAttribute } from "./dom.js";
import { compareNames, t } from "./i18n.js";
import { icon } from "./icons.js";

export class TopBar extends HTMLElement {
    constructor() {
        super();
        /** @type {{jumpTo: (location: string) => void, open: (what: string) => void}|null} */
        this._acts = null;
    }

    /** @param {{jumpTo: (location: string) => void, open: (what: string) => void}} acts */
    connect(acts) {
        this._acts = acts;
        this.setAttribute("role", "navigation");
    }

    /** @param {import("./store.js").Store} store */
    show(store) {
        const focused = document.activeElement instanceof HTMLElement && this.contains(document.activeElement)
            ? document.activeElement.dataset.name : undefined;
        this.setAttribute("aria-label", t("title"));
        const locations = [...store.locations].sort((a, b) => Number(b.is_owner) - Number(a.is_owner) || compareNames(a.name, b.name));
        const tabs = el("div", { class: "tabs" }, ...locations.map(({ id, name }) =>
            this._button(`location:${id}`, name, "home", () => this._acts?.jumpTo(id), true)));
        this.replaceChildren(tabs, this._state(store), el("div", { class: "tools" },
            this._button("find", t("find"), "search", () => this._acts?.open("find")),
            this._button("hub", t("hub"), "hub", () => this._acts?.open("hub")),
            this._button("settings", t("settings"), "settings", () => this._acts?.open("settings")),
            this._button("keys", t("keys"), "keyboard", () => this._acts?.open("keys")),
            this._button("drawer", t("other_side"), "construction", () => this._acts?.open("drawer"))));
        if (focused !== undefined) {
            const again = [...this.querySelectorAll("button")].find((one) => one.dataset.name === focused);
            (again ?? this.querySelector("button"))?.focus();
        }
    }

    /** @param {boolean} isOpen */
    showDrawer(isOpen) {
        const button = this.querySelector("[data-name=drawer]");
        if (button !== null) {
            setAttribute(button, "aria-expanded", String(isOpen));
        }
    }

    /** @param {import("./store.js").Store} store */
    _state(store) {
        const text = !store.isSignedIn ? t("signed_out")
            : store.loadStatus === 1 ? t("unavailable") : store.loadStatus === 2 ? t("waiting_for_cloud") : t("signed_in");
        const isWell = store.isSignedIn && store.loadStatus !== 1 && store.loadStatus !== 2;
        return el("div", { class: "state", data: { well: isWell } }, icon(isWell ? "person" : "cloud_off"), el("span", { text }));
    }

    /** @param {string} name @param {string} text @param {string} iconName @param {() => void} act @param {boolean} [showsText] */
    _button(name, text, iconName, act, showsText = false) {
        return el("button", { class: "tool", type: "button", "aria-label": text, title: text, data: { name }, on: { click: act } },
                  icon(iconName), showsText && el("span", { text }));
    }
}

customElements.define("hl-topbar", TopBar);

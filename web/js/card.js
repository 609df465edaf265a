// @ts-check
/** One card. The same element is used again for other things while the list scrolls, so it writes only what differs. */
import { el, setAttribute, setText } from "./dom.js";
import { icon } from "./icons.js";
import { labelOf } from "./views.js";

/** @typedef {import("./views.js").View} View */
/** @typedef {import("./layout.js").Entry} Entry */

export class Card extends HTMLElement {
    constructor() {
        super();
        /** @type {Entry|null} */
        this.entry = null;
        /** @type {any} */
        this._parts = null;
        this.label = "";
    }

    /** The element that has the focus. @returns {HTMLButtonElement} */
    get button() {
        return this._made().button;
    }

    _made() {
        if (this._parts === null) {
            const parts = {
                icon: el("span", { class: "icon", "aria-hidden": "true" }),
                letter: el("span", { class: "card-letter", "aria-hidden": "true" }),
                control: el("span", { class: "card-control" }),
                controlIcon: icon(""),
                controlText: el("span", { class: "card-mode" }),
                caption: el("span", { class: "card-caption" }),
                title: el("span", { class: "card-title" }),
                state: el("span", { class: "card-state" }),
            };
            parts.control.append(parts.controlText, parts.controlIcon);
            const texts = el("span", { class: "card-texts" }, parts.caption, parts.title, parts.state);
            const sign = el("span", { class: "card-sign" }, parts.icon, parts.letter);
            const button = el("button", { class: "card", type: "button", tabindex: "-1" }, sign, parts.control, texts);
            setAttribute(this, "role", "gridcell");
            this.append(button);
            this._parts = { ...parts, button };
        }
        return this._parts;
    }

    /** @param {Entry} entry @param {View} view */
    show(entry, view) {
        const parts = this._made();
        this.entry = entry;
        this.label = labelOf(view);
        setAttribute(parts.button, "data-key", entry.key);
        setAttribute(parts.button, "aria-label", this.label);
        setAttribute(parts.button, "aria-description", view.action || null);
        setAttribute(parts.button, "aria-pressed", view.control?.kind === "switch" ? String(view.control.isOn) : null);
        setAttribute(parts.button, "data-look", this._look(view));
        setText(parts.icon, view.icon);
        setText(parts.letter, view.title.slice(0, 1));
        setText(parts.caption, view.caption);
        setText(parts.title, view.title);
        setText(parts.state, view.state);
        setAttribute(parts.control, "data-kind", view.control?.kind ?? "none");
        setAttribute(parts.control, "data-on", String(view.control?.isOn ?? false));
        setText(parts.controlIcon, view.control?.icon ?? "");
        setText(parts.controlText, view.control?.text ?? "");
    }

    /** @param {View} view */
    _look(view) {
        const looks = [view.isActive ? "active" : "inactive"];
        if (view.isRunning) {
            looks.push("running");
        }
        if (view.isDisconnected) {
            looks.push("disconnected");
        }
        return looks.join(" ");
    }

    /** @param {boolean} isBusy its action is under way */
    setBusy(isBusy) {
        setAttribute(this._made().button, "aria-busy", isBusy ? "true" : null);
    }
}

customElements.define("hl-card", Card);

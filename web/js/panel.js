// @ts-check
/** A dialog over the home. Only one is open at a time; the rest of the page doesn't take part meanwhile. */
import { el } from "./dom.js";
import { focusablesIn } from "./focus.js";
import { t } from "./i18n.js";
import { icon } from "./icons.js";

export class Panel extends HTMLElement {
    constructor() {
        super();
        /** @type {Element|null} */
        this._before = null;
        /** @type {(what: string, id: string) => void} */
        this._onChange = () => {};
    }

    get isOpen() {
        return !this.hidden;
    }

    /**
     * @param {string} title
     * @param {(body: HTMLElement) => void} fill makes the contents
     * @param {(what: string, id: string) => void} [onChange] told of each change of the home
     */
    open(title, fill, onChange = () => {}) {
        this._before = this.isOpen ? this._before : document.activeElement;
        this._onChange = onChange;
        const body = el("div", { class: "panel-body" });
        const close = el("button", { class: "panel-close", type: "button", "aria-label": t("close"),
                                     on: { click: () => this.close() } }, icon("close"));
        const head = el("div", { class: "panel-head" }, el("h2", { class: "panel-title", id: "panel-title", text: title }), close);
        this.replaceChildren(el("div", { class: "panel", role: "dialog", "aria-modal": "true", "aria-labelledby": "panel-title" },
                                head, body));
        this.hidden = false;
        this._setOthersInert(true);
        fill(body);
        (focusablesIn(body)[0] ?? close).focus();
    }

    /** @param {string} what @param {string} id */
    changed(what, id) {
        if (this.isOpen) {
            this._onChange(what, id);
        }
    }

    close() {
        if (!this.isOpen) {
            return;
        }
        this.hidden = true;
        this.replaceChildren();
        this._setOthersInert(false);
        if (this._before instanceof HTMLElement && this._before.isConnected) {
            this._before.focus({ preventScroll: true });
        }
        this.dispatchEvent(new CustomEvent("closed"));
    }

    /** @param {boolean} isInert */
    _setOthersInert(isInert) {
        for (const other of document.querySelectorAll("#home, hl-drawer")) {
            /** @type {HTMLElement} */ (other).inert = isInert;
        }
    }
}

/**
 * @param {string} text @param {string} iconName @param {() => void} act @param {Record<string, any>} [props]
 * @returns {HTMLButtonElement}
 */
export function button(text, iconName, act, props = {}) {
    return el("button", { class: "button", type: "button", on: { click: act }, ...props },
              iconName === "" ? null : icon(iconName), el("span", { text }));
}

/** @param {string} name @param {string} value */
export function fact(name, value) {
    return el("div", { class: "fact" }, el("dt", { text: name }), el("dd", { text: value }));
}

customElements.define("hl-panel", Panel);

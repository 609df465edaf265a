// @ts-check
/** "The other side": who builds or tests a screen plays the agent, the cloud and the people of the home here. */
import { el, setAttribute } from "./dom.js";
import { focusablesIn } from "./focus.js";
import { t } from "./i18n.js";
import { icon } from "./icons.js";
import { ConsoleTab } from "./drawer/console.js";
import { DevicesTab } from "./drawer/devices.js";
import { EventsTab } from "./drawer/events.js";
import { FaultsTab } from "./drawer/faults.js";
import { SessionTab } from "./drawer/session.js";

/** @typedef {import("./page.js").Page} Page */
/**
 * @typedef {object} Tab
 * @property {(body: HTMLElement) => void} open fills the body
 * @property {(sim: any) => void} [show] draws the other side's state
 * @property {(type: string, document: any, id: string) => void} [heard] told of each event, also while not shown
 */

// The other side's state is fetched anew when it has changed, but no more often than this.
const leastPauseMs = 400;

export class Drawer extends HTMLElement {
    constructor() {
        super();
        /** @type {Page|null} */
        this._page = null;
        /** @type {Record<string, Tab>} */
        this._tabs = {};
        this._current = "devices";
        this._isStale = false;
        this._isWaiting = false;
        this._body = el("div");
    }

    /** @param {Page} page */
    connect(page) {
        this._page = page;
        this._tabs = {
            devices: new DevicesTab(page), faults: new FaultsTab(page), session: new SessionTab(page),
            events: new EventsTab(page), console: new ConsoleTab(page),
        };
        this.setAttribute("role", "complementary");
    }

    get isOpen() {
        return !this.hidden;
    }

    /** @returns {true} */
    toggle() {
        this.isOpen ? this.close() : this.show(this._current);
        return true;
    }

    /** @param {string} tab @returns {true} */
    show(tab) {
        this._current = tab;
        this.hidden = false;
        document.body.classList.add("has-drawer");
        this._page?.topbar.showDrawer(true);
        this.redraw();
        this.takeFocus();
        return true;
    }

    close() {
        const hadFocus = this.contains(document.activeElement);
        this.hidden = true;
        this.replaceChildren();
        document.body.classList.remove("has-drawer");
        this._page?.topbar.showDrawer(false);
        if (hadFocus) {
            this._page?.takeFocus();
        }
    }

    redraw() {
        if (!this.isOpen) {
            return;
        }
        this.setAttribute("aria-label", t("other_side"));
        const icons = { devices: "devices_other", faults: "bug_report", session: "schedule", events: "visibility", console: "terminal" };
        const tabs = el("div", { class: "drawer-tabs", role: "tablist" }, ...Object.entries(icons).map(([name, sign]) =>
            el("button", { class: "drawer-tab", type: "button", role: "tab", "aria-selected": String(name === this._current),
                           "aria-label": t(`tab_${name}`), title: t(`tab_${name}`), data: { tab: name },
                           on: { click: () => this.show(name) } }, icon(sign), el("span", { text: t(`tab_${name}`) }))));
        this._body = el("div", { class: "drawer-body", role: "tabpanel", "aria-label": t(`tab_${this._current}`) });
        this.replaceChildren(tabs, this._body);
        this._tabs[this._current].open(this._body);
        this.refresh();
    }

    takeFocus() {
        const wanted = focusablesIn(this._body)[0] ?? this.querySelector(".drawer-tab");
        /** @type {HTMLElement|null} */ (wanted)?.focus();
        return wanted !== null;
    }

    /** @param {string} type @param {any} document @param {string} id */
    heard(type, document, id) {
        for (const tab of Object.values(this._tabs)) {
            tab.heard?.(type, document, id);
        }
        if (type === "sim" || type === "hello") {
            this.refresh();
        }
    }

    /** Fetches the other side's state, if a tab shows it. */
    async refresh() {
        const tab = this._tabs[this._current];
        if (!this.isOpen || !tab.show || this._isWaiting) {
            this._isStale = true;
            return;
        }
        this._isWaiting = true;
        this._isStale = false;
        setAttribute(this, "aria-busy", "true");
        try {
            tab.show(await this._page?.door.sim());
        } catch {
            // The connection is gone: its banner tells, and hello brings us back.
        }
        setAttribute(this, "aria-busy", null);
        setTimeout(() => {
            this._isWaiting = false;
            if (this._isStale) {
                this.refresh();
            }
        }, leastPauseMs);
    }
}

customElements.define("hl-drawer", Drawer);

// @ts-check
/** Everything that is reported, as it comes: to be searched, read as JSON, and taken into a test. */
import { el, setText } from "../dom.js";
import { t } from "../i18n.js";
import { button } from "../panel.js";
import { labelled, textField } from "./form.js";
import { brief, kindOf, testLine } from "./testlines.js";

const mostKept = 1000;
const mostShown = 100;

/** @typedef {{id: string, type: string, document: any, text: string}} Heard */

export class EventsTab {
    /** @param {import("../page.js").Page} page */
    constructor(page) {
        this._page = page;
        /** @type {any} */
        this._filter = null;
        /** @type {any} */
        this._count = null;
        /** @type {any} */
        this._pause = null;
        /** @type {any} */
        this._list = null;
        /** @type {Heard[]} */
        this._all = [];
        this._isPaused = false;
        this._isScheduled = false;
        this._filterText = "";
    }

    /** @param {HTMLElement} body */
    open(body) {
        this._filter = textField(t("filter"), this._filterText, t("filter_hint"));
        this._filter.addEventListener("input", () => {
            this._filterText = this._filter.value;
            this._draw();
        });
        this._count = el("span", { class: "count" });
        this._pause = button(t("pause"), "pause_circle", () => {
            this._isPaused = !this._isPaused;
            this._pause?.setAttribute("aria-pressed", String(this._isPaused));
            this._draw();
        }, { "aria-pressed": String(this._isPaused) });
        this._list = el("div", { class: "events", role: "log", "aria-live": "off", "aria-label": t("tab_events") });
        body.append(el("div", { class: "line" }, labelled(t("filter"), this._filter), this._pause,
                       button(t("empty"), "delete_sweep", () => { this._all = []; this._draw(); }), this._count), this._list);
        this._draw();
    }

    /** @param {string} type @param {any} document @param {string} id */
    heard(type, document, id) {
        if (type === "sim") {
            return;
        }
        this._all.push({ id, type, document, text: "" });
        if (this._all.length > 2 * mostKept) {
            this._all = this._all.slice(-mostKept);
        }
        if (!this._isScheduled && !this._isPaused && this._list?.isConnected) {
            this._isScheduled = true;
            requestAnimationFrame(() => this._draw());
        }
    }

    _draw() {
        this._isScheduled = false;
        if (!this._list?.isConnected) {
            return;
        }
        const words = this._filterText.toLocaleLowerCase().split(/\s+/).filter((word) => word !== "");
        const shown = [];
        for (let i = this._all.length - 1; i >= 0 && shown.length < mostShown; --i) {
            if (this._matches(this._all[i], words)) {
                shown.push(this._all[i]);
            }
        }
        setText(/** @type {HTMLElement} */ (this._count), t("count_events", { count: this._all.length }));
        const old = new Map([...this._list.children].map((child) => [child.dataset.key, child]));
        this._list.replaceChildren(...shown.map((heard) => old.get(`${heard.id} ${heard.type}`) ?? this._make(heard)));
    }

    /** @param {Heard} heard @param {string[]} words all of them must be in it */
    _matches(heard, words) {
        if (words.length > 0 && heard.text === "") {
            heard.text = `${heard.type} ${JSON.stringify(heard.document)}`.toLocaleLowerCase();
        }
        return words.every((word) => heard.text.includes(word));
    }

    /** @param {Heard} heard */
    _make(heard) {
        const entry = el("details", { class: `event event-${kindOf(heard)}`, data: { key: `${heard.id} ${heard.type}` } },
                         el("summary", {}, el("span", { class: "event-id", title: heard.id, text: heard.id.slice(-5) }),
                            el("span", { class: "event-kind", text: kindOf(heard) }), el("span", { class: "event-text", text: brief(heard) })));
        // The JSON of a whole home is long: it's made when somebody wants to see it.
        entry.addEventListener("toggle", () => {
            if (entry.open && entry.childElementCount === 1) {
                const line = testLine(heard);
                entry.append(el("div", { class: "line" },
                                button(t("copy_test_line"), "content_copy", () => this._copy(line)),
                                button(t("copy_json"), "content_copy", () => this._copy(JSON.stringify(heard.document)))),
                             el("code", { class: "test-line", text: line }),
                             el("pre", { class: "json", tabindex: "0", text: JSON.stringify(heard.document, null, 2) }));
            }
        });
        return entry;
    }

    /** @param {string} text */
    async _copy(text) {
        try {
            await navigator.clipboard.writeText(text);
            this._page.toasts.say(t("copied"));
        } catch {
            this._page.toasts.say(text);  // not allowed to: at least it can be read
        }
    }
}

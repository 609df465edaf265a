// @ts-check
/**
 * The home's rows, of which only those on the screen and around it are elements. Holds the focus by the key of an entry:
 * whatever changes, it stays on that, or goes to the nearest neighbour when that is gone.
 */
import { Card } from "./card.js";
import { el, setAttribute, setText } from "./dom.js";
import { icon } from "./icons.js";

/** @typedef {import("./layout.js").Row} Row */
/** @typedef {import("./layout.js").Entry} Entry */
/** @typedef {{element: HTMLElement, row: Row|null, cards: Card[]}} Shown */
/** @typedef {{row: number, column: number}} Place */

export class HomeList extends HTMLElement {
    constructor() {
        super();
        /** @type {Row[]} */
        this._rows = [];
        /** @type {Map<string, Place>} */
        this._places = new Map();
        /** @type {string[]} all keys from top to bottom */
        this._order = [];
        /** @type {Map<string, Shown>} by row key */
        this._shown = new Map();
        /** @type {Map<string, Shown[]>} by kind: elements to be used again */
        this._spare = new Map();
        /** @type {Map<string, Set<Card>>} by the id of what they show */
        this._cardsOf = new Map();
        /** @type {Set<string>} ids of what has changed since the last picture */
        this._dirty = new Set();
        /** @type {Set<string>} keys of entries whose action is under way */
        this._busy = new Set();
        this._isScheduled = false;
        this._ownsFocus = false;
        this.focusKey = "";
        this._wasMoved = false;  // until then the focus is on the first card, whatever comes before it
        this._column = 0;
        this._wish = "";  // what had the focus until it went away; empty: nothing, or it was moved since
        this._spacer = el("div", { class: "rows", role: "presentation" });
        /** @type {(entry: Entry) => import("./views.js").View} */
        this.viewOf = () => { throw new Error("not set"); };
        /** @type {(text: string) => void} */
        this.announce = () => {};
    }

    connectedCallback() {
        this.setAttribute("role", "grid");
        this.append(this._spacer);
        this.addEventListener("scroll", () => this.schedule(), { passive: true });
        this.addEventListener("pointerdown", () => {
            this._column = -1;
            this._wasMoved = true;
        }, { passive: true });
        this.addEventListener("click", () => { this._wish = ""; });
        this.addEventListener("focusin", (event) => this._focused(event));
        this.addEventListener("focusout", (event) => {
            // To nowhere: the card was taken away, or the window lost the focus. It's still the list's.
            const to = /** @type {Node|null} */ (event.relatedTarget);
            this._ownsFocus = to === null || this.contains(to);
        });
    }

    /** @param {number} columns */
    setColumns(columns) {
        this.style.setProperty("--columns", String(columns));
        setAttribute(this, "aria-colcount", String(columns));
    }

    /** @param {Row[]} rows */
    setRows(rows) {
        const wasAt = this._places.get(this.focusKey);
        /** @type {number} */
        const anchor = wasAt === undefined ? 0 : this._rows[wasAt.row].top - this.scrollTop;
        const before = this._order;
        this._rows = rows;
        this._order = [];
        this._places = new Map();
        rows.forEach((row, rowNumber) => row.entries.forEach((entry, column) => {
            this._places.set(entry.key, { row: rowNumber, column });
            this._order.push(entry.key);
        }));
        this._keepFocusKey(before);
        const last = rows.at(-1);
        this._spacer.style.height = `${last === undefined ? 0 : last.top + last.height}px`;
        setAttribute(this, "aria-rowcount", String(rows.length));
        const isAt = this._places.get(this.focusKey);
        if (isAt !== undefined && wasAt !== undefined && this.scrollTop > 0) {
            // What is focused stays where the eye is.
            this.scrollTop = this._rows[isAt.row].top - anchor;
        }
        this._unbindAll();
        this.render();
    }

    /** @param {string[]} before all keys before the change */
    _keepFocusKey(before) {
        if (!this._wasMoved) {
            this.focusKey = this._order[0] ?? "";
            return;
        }
        // A home that has just come back may begin without what comes last in it.
        if (this._places.has(this._wish)) {
            this.focusKey = this._wish;
            this._wish = "";
        }
        if (this._places.has(this.focusKey)) {
            return;
        }
        this._wish ||= this.focusKey;
        const at = before.indexOf(this.focusKey);
        let key = this._order[0] ?? "";
        for (let step = 1; at >= 0 && step < before.length; ++step) {
            const near = [before[at + step], before[at - step]].find((other) => other !== undefined && this._places.has(other));
            if (near !== undefined) {
                key = near;
                break;
            }
        }
        this.focusKey = key;
    }

    /** @param {string} id of a thing that looks different now; it's drawn with the next picture */
    refresh(id) {
        if (this._cardsOf.has(id)) {
            this._dirty.add(id);
            this.schedule();
        }
    }

    refreshAll() {
        for (const id of this._cardsOf.keys()) {
            this._dirty.add(id);
        }
        this.schedule();
    }

    /** @param {string} key @param {boolean} isBusy */
    setBusy(key, isBusy) {
        isBusy ? this._busy.add(key) : this._busy.delete(key);
        this._card(key)?.setBusy(isBusy);
    }

    schedule() {
        if (!this._isScheduled) {
            this._isScheduled = true;
            requestAnimationFrame(() => this.render());
        }
    }

    render() {
        this._isScheduled = false;
        const wanted = this._wantedRows();
        for (const [key, shown] of this._shown) {
            if (shown.row === null || !wanted.has(key)) {
                this._unbind(key, shown);
            }
        }
        for (const [key, number] of wanted) {
            if (!this._shown.has(key)) {
                this._bind(number);
            }
        }
        for (const id of this._dirty) {
            this._cardsOf.get(id)?.forEach((card) => this._draw(card, /** @type {Entry} */ (card.entry)));
        }
        this._dirty.clear();
        if (this._ownsFocus) {
            this._restoreFocus();
        }
    }

    // One screen more above and below, so that scrolling meets rows that are there, and the row with the focus.
    _wantedRows() {
        /** @type {Map<string, number>} */
        const wanted = new Map();
        const height = this.clientHeight;
        for (let i = this._rowAt(this.scrollTop - height); i < this._rows.length; ++i) {
            if (this._rows[i].top > this.scrollTop + 2 * height) {
                break;
            }
            wanted.set(this._rows[i].key, i);
        }
        const focused = this._places.get(this.focusKey);
        if (focused !== undefined) {
            wanted.set(this._rows[focused.row].key, focused.row);
        }
        return wanted;
    }

    /** @param {number} y @returns {number} the first row that ends below it */
    _rowAt(y) {
        let low = 0;
        let high = this._rows.length;
        while (low < high) {
            const middle = (low + high) >> 1;
            this._rows[middle].top + this._rows[middle].height <= y ? (low = middle + 1) : (high = middle);
        }
        return low;
    }

    /** @param {number} number */
    _bind(number) {
        const row = this._rows[number];
        const shown = this._spare.get(row.kind)?.pop() ?? this._makeRow(row.kind);
        shown.row = row;
        this._shown.set(row.key, shown);
        shown.element.style.transform = `translateY(${row.top}px)`;
        setAttribute(shown.element, "aria-rowindex", String(number + 1));
        if (shown.element.parentNode === null) {
            this._spacer.append(shown.element);
        }
        shown.element.hidden = false;
        row.entries.length === 0 ? this._bindHeading(shown, row) : this._bindCards(shown, row);
        return shown;
    }

    /** @param {Shown} shown @param {Row} row */
    _bindHeading(shown, row) {
        const [sign, title, note] = /** @type {HTMLElement[]} */ ([...shown.element.children[0].children]);
        setText(sign, row.icon);
        setText(title, row.title);
        setText(note, row.note);
    }

    /** @param {Shown} shown @param {Row} row */
    _bindCards(shown, row) {
        while (shown.cards.length < row.entries.length) {
            const card = /** @type {Card} */ (document.createElement("hl-card"));
            shown.cards.push(card);
            shown.element.append(card);
        }
        setAttribute(shown.element, "aria-label", row.title);
        shown.cards.forEach((card, column) => {
            const entry = row.entries[column];
            card.hidden = entry === undefined;
            if (entry !== undefined) {
                setAttribute(card, "aria-colindex", String(column + 1));
                this._draw(card, entry);
                const cards = this._cardsOf.get(entry.id);
                cards === undefined ? this._cardsOf.set(entry.id, new Set([card])) : cards.add(card);
            }
        });
    }

    /** @param {Card} card @param {Entry} entry */
    _draw(card, entry) {
        const before = card.entry?.key === entry.key ? card.label : "";
        card.show(entry, this.viewOf(entry));
        card.setBusy(this._busy.has(entry.key));
        card.button.tabIndex = entry.key === this.focusKey ? 0 : -1;
        if (before !== "" && before !== card.label && this._ownsFocus && entry.key === this.focusKey) {
            this.announce(card.label);
        }
    }

    /** @param {Row["kind"]} kind @returns {Shown} */
    _makeRow(kind) {
        const element = el("div", { class: `row row-${kind}`, role: "row" });
        if (kind === "location" || kind === "section") {
            const level = kind === "location" ? "2" : "3";
            element.append(el("div", { class: "heading", role: "rowheader" }, icon(""),
                              el("span", { class: "heading-title", role: "heading", "aria-level": level }),
                              el("span", { class: "heading-note" })));
        }
        return { element, row: null, cards: [] };
    }

    /** @param {string} key @param {Shown} shown */
    _unbind(key, shown) {
        this._shown.delete(key);
        this._forgetCards(shown);
        const kind = shown.row?.kind ?? "cards";
        shown.row = null;
        shown.element.hidden = true;
        const spare = this._spare.get(kind);
        spare === undefined ? this._spare.set(kind, [shown]) : spare.push(shown);
    }

    /** @param {Shown} shown */
    _forgetCards(shown) {
        for (const card of shown.cards) {
            const id = card.entry?.id ?? "";
            const cards = this._cardsOf.get(id);
            if (cards?.delete(card) && cards.size === 0) {
                this._cardsOf.delete(id);
            }
        }
    }

    // Rows that stay by their key are bound again in place, so that a change of the list doesn't move what it leaves.
    _unbindAll() {
        const numbers = new Map(this._rows.map((row, number) => [row.key, number]));
        for (const [key, shown] of this._shown) {
            const number = numbers.get(key);
            const row = number === undefined ? undefined : this._rows[number];
            if (row === undefined || row.kind !== shown.row?.kind) {
                this._unbind(key, shown);
            } else {
                this._forgetCards(shown);
                shown.row = row;
                shown.element.style.transform = `translateY(${row.top}px)`;
                setAttribute(shown.element, "aria-rowindex", String(/** @type {number} */ (number) + 1));
                row.entries.length === 0 ? this._bindHeading(shown, row) : this._bindCards(shown, row);
            }
        }
    }

    /** @param {string} key @returns {Card|undefined} if it's among the elements */
    _card(key) {
        const place = this._places.get(key);
        return place && this._shown.get(this._rows[place.row].key)?.cards[place.column];
    }

    /** @returns {Entry|undefined} what has the focus, or gets it when the list does */
    get focusedEntry() {
        const place = this._places.get(this.focusKey);
        return place && this._rows[place.row].entries[place.column];
    }

    /** @param {FocusEvent} event */
    _focused(event) {
        const card = /** @type {HTMLElement} */ (event.target).closest("hl-card");
        this._ownsFocus = true;
        if (card instanceof Card && card.entry !== null) {
            this._setFocusKey(card.entry.key);
        }
    }

    /** @param {string} key */
    _setFocusKey(key) {
        if (key !== this.focusKey) {
            this._wish = "";
            const before = this._card(this.focusKey);
            if (before !== undefined) {
                before.button.tabIndex = -1;
            }
            this.focusKey = key;
        }
        const card = this._card(key);
        if (card !== undefined) {
            card.button.tabIndex = 0;
        }
        this.dispatchEvent(new CustomEvent("focuschange"));
    }

    _restoreFocus() {
        const card = this._card(this.focusKey);
        if (card !== undefined && document.activeElement !== card.button && !this.closest("[inert]")) {
            card.button.focus({ preventScroll: true });
        }
    }

    /**
     * Takes the focus.
     * @returns {boolean} whether there is anything to focus
     */
    takeFocus() {
        return this.focusEntry(this.focusKey, false);
    }

    /** @param {string} key @param {boolean} [isSmooth] @returns {boolean} */
    focusEntry(key, isSmooth = true) {
        const place = this._places.get(key);
        if (place === undefined) {
            return false;
        }
        const row = this._rows[place.row];
        const shown = this._shown.get(row.key) ?? this._bind(place.row);
        this._wasMoved ||= key !== this.focusKey;
        shown.cards[place.column].button.focus({ preventScroll: true });
        this._reveal(place.row, isSmooth);
        return true;
    }

    /** @param {string} rowKey of a heading: the first card below it gets the focus, and the heading comes to the top */
    jumpTo(rowKey) {
        const at = this._rows.findIndex((row) => row.key === rowKey);
        const row = at < 0 ? undefined : this._rows.slice(at).find(({ entries }) => entries.length > 0);
        if (row !== undefined) {
            this.focusEntry(row.entries[0].key, false);
            this.scrollTo({ top: this._rows[at].top });
        }
    }

    /**
     * @param {"up"|"down"|"start"|"end"|"first"|"last"|"page-up"|"page-down"} direction start and end: along the line
     * @param {boolean} isRepeated a key held down: no time for smooth scrolling
     * @returns {boolean} false if there is nothing that way
     */
    move(direction, isRepeated) {
        const place = this._places.get(this.focusKey);
        if (place === undefined) {
            return false;
        }
        const key = this._keyTowards(direction, place);
        return key !== undefined && this.focusEntry(key, !isRepeated);
    }

    /** @param {Parameters<HomeList["move"]>[0]} direction @param {Place} place @returns {string|undefined} */
    _keyTowards(direction, place) {
        const column = (/** @type {number} */ step) => this._rows[place.row].entries[place.column + step]?.key;
        switch (direction) {
            case "start":
            case "end":
                this._column = -1;
                return column(direction === "start" ? -1 : 1);
            case "first":
                return this._order[0];
            case "last":
                return this._order.at(-1);
            case "page-up":
            case "page-down":
                return this._keyAPageAway(direction === "page-up" ? -1 : 1, place);
            default:
                return this._keyInNextRow(direction === "up" ? -1 : 1, place);
        }
    }

    /** @param {number} step @param {Place} place */
    _keyInNextRow(step, place) {
        if (this._column < place.column) {
            this._column = place.column;  // short rows on the way don't change the column for good
        }
        for (let i = place.row + step; i >= 0 && i < this._rows.length; i += step) {
            const { entries } = this._rows[i];
            if (entries.length > 0) {
                return entries[Math.min(this._column, entries.length - 1)].key;
            }
        }
        return undefined;
    }

    /** @param {number} step @param {Place} place */
    _keyAPageAway(step, place) {
        const wanted = this._rows[place.row].top + step * this.clientHeight * 0.8;
        const withCards = this._rows.filter(({ entries }) => entries.length > 0);
        const near = withCards.reduce((best, row) => (Math.abs(row.top - wanted) < Math.abs(best.top - wanted) ? row : best));
        return near.entries[Math.min(place.column, near.entries.length - 1)].key;
    }

    /** @param {number} number @param {boolean} isSmooth */
    _reveal(number, isSmooth) {
        const row = this._rows[number];
        // With its headings, and with something of what comes before and after, to see that it goes on.
        let first = number;
        while (first > 0 && this._rows[first - 1].entries.length === 0) {
            --first;
        }
        const margin = row.height / 3;
        const top = first === 0 ? 0 : this._rows[first].top - (first === number ? margin : 0);
        const bottom = row.top + row.height + margin;
        const goal = this.scrollTop > top ? top : Math.max(this.scrollTop, bottom - this.clientHeight);
        if (goal !== this.scrollTop) {
            const isCalm = matchMedia("(prefers-reduced-motion: reduce)").matches;
            this.scrollTo({ top: goal, behavior: isSmooth && !isCalm ? "smooth" : "auto" });
        }
        this.schedule();
    }
}

customElements.define("hl-list", HomeList);

// @ts-check
/** The home screen: what the events change, what the keys reach, and where everything is. */
import { Actions } from "./actions.js";
import { Door } from "./door.js";
import { el, setText } from "./dom.js";
import { languageKey, t, useLanguage } from "./i18n.js";
import { icon } from "./icons.js";
import { layOut } from "./layout.js";
import { button } from "./panel.js";
import { Store } from "./store.js";
import { unaskedText } from "./news.js";
import { openCamera } from "./dialogs/camera.js";
import { openDevice } from "./dialogs/device.js";
import { openEnergy } from "./dialogs/energy.js";
import { openFind } from "./dialogs/find.js";
import { openFridge } from "./dialogs/fridge.js";
import { openHub } from "./dialogs/hub.js";
import { openKeys, openSettings } from "./dialogs/settings.js";
import { viewOf } from "./views.js";

// So wide that names can be read from three metres, in rem with the gap.
const leastCardRem = 21;
const shownMark = "home-shown";
const mostAskedAnew = 200;
const contrastKey = "homeloom.high-contrast";

/** @template {HTMLElement} T @param {string} selector @returns {T} */
function find(selector) {
    return /** @type {T} */ (document.querySelector(selector));
}

export class Page {
    constructor() {
        this.list = /** @type {import("./list.js").HomeList} */ (find("hl-list"));
        this.topbar = /** @type {import("./topbar.js").TopBar} */ (find("hl-topbar"));
        this.panel = /** @type {import("./panel.js").Panel} */ (find("hl-panel"));
        this.drawer = /** @type {import("./drawer.js").Drawer} */ (find("hl-drawer"));
        this.toasts = /** @type {import("./toasts.js").Toasts} */ (find("hl-toasts"));
        this.speaker = /** @type {import("./toasts.js").Speaker} */ (find("hl-speaker"));
        this.notice = find("#notice");
        this.banner = find("#banner");
        this.hints = find("#hints");
        this.isConnected = false;
        this._wasConnected = false;
        this._needsLayout = false;
        this._columns = 0;
        this._isFocusLent = false;  // to the line at the top, while there is nothing else
        this.store = new Store((what, id, detail) => this._changed(what, id, detail));
        this.list.viewOf = (entry) => viewOf(this.store, entry);
        this.list.announce = (text) => this.speaker.say(text);
        this.door = new Door((type, document, id) => this._heard(type, document, id), (isThere) => this._connection(isThere));
        this.actions = new Actions(this.door, this.store, {
            busy: (key, isBusy) => this.list.setBusy(key, isBusy),
            say: (text, kind) => this.toasts.say(text, kind),
            open: (what, id) => this.open(what, id),
        });
        this.topbar.connect({ jumpTo: (location) => this.list.jumpTo(`location:${location}`), open: (what) => this.open(what) });
        this.drawer.connect(this);
        this._listen();
        this._useContrast(localStorage.getItem(contrastKey) === "true");
        useLanguage(this.store.language);
        this._showNotice();
    }

    _listen() {
        this.list.addEventListener("click", (event) => {
            const card = /** @type {Element} */ (event.target).closest("hl-card");
            const entry = /** @type {import("./card.js").Card|null} */ (card)?.entry;
            if (entry && this.isConnected) {
                this.actions.perform(entry);
            }
        });
        this.list.addEventListener("contextmenu", (event) => {
            event.preventDefault();
            this.openDetails();
        });
        this.list.addEventListener("focuschange", () => this._showHints());
        document.addEventListener("focusin", () => this._showHints());
        new ResizeObserver(() => this._measure()).observe(this.list);
        this.panel.addEventListener("closed", () => this._keepFocus());
    }

    /** @param {string} type @param {any} document @param {string} id */
    _heard(type, document, id) {
        switch (type) {
            case "hello":
                useLanguage(document.hello.language);
                this.store.greet(document.hello);
                this._askForTheRest();
                break;
            case "report":
                this.store.apply(document);
                break;
            case "command":
                this._commandEnded(document);
                break;
            case "lost":
                this.toasts.say(t("events_lost", { count: document.lost }), "error");
        }
        this.drawer.heard(type, document, id);
    }

    // What the home's document doesn't hold, but a list or a notify would have told.
    _askForTheRest() {
        if (!this.store.isSignedIn) {
            return;
        }
        for (const { id } of this.store.locations) {
            this.door.request("hl_get_favorite", { location_id: id });
            this.door.request("hl_get_installed_service_app_info", { location_id: id });
        }
        this.door.request("hl_get_hub_info");
    }

    /** @param {any} ended */
    _commandEnded(ended) {
        const setting = new RegExp(`^setting ${languageKey} (\\S+)$`).exec(ended.command);
        if (setting !== null && ended.succeeded) {
            this.store.language = setting[1].replace(/^"|"$/g, "");
            useLanguage(this.store.language);
            this._changed("hello", "");
            this.drawer.redraw();
            this._askForStatesAnew();
        }
    }

    // The plug-in words a state when it reports it: in a new language, what stands on the screen has to be asked for again.
    async _askForStatesAnew() {
        const { language } = this.store;
        for (const id of [...this.store.devices.keys()].slice(0, mostAskedAnew)) {
            if (this.store.language === language && this.store.isSignedIn) {
                await this.door.request("hl_get_device_info", { device_id: id });
            }
        }
    }

    /** @param {boolean} isThere */
    _connection(isThere) {
        this.isConnected = isThere;
        this.banner.hidden = isThere || !this._wasConnected;
        if (!isThere && this._wasConnected) {
            setText(this.banner, t("no_connection"));
        }
        if (isThere && document.body.classList.contains("is-away")) {
            this.toasts.say(t("connected_again"));
        }
        document.body.classList.toggle("is-away", !isThere && this._wasConnected);
        this._wasConnected ||= isThere;
        this._showNotice();
    }

    /** @param {string} what @param {string} id @param {any} [detail] */
    _changed(what, id, detail) {
        if (what === "device") {
            this.list.refresh(id);
        } else if (what === "home" || what === "hello") {
            this._scheduleLayout();
        } else if (what === "session") {
            this.topbar.show(this.store);
            this._showNotice();
        } else if (what === "unasked") {
            const text = unaskedText(this.store, id, detail);
            if (text !== "") {
                this.toasts.say(text);
            }
        }
        this.panel.changed(what, id);
        this._showHintsOf(what, id);
    }

    /** @param {string} what @param {string} id */
    _showHintsOf(what, id) {
        if (what === "device" && this.list.focusedEntry?.id === id) {
            this._showHints();
        }
    }

    _scheduleLayout() {
        if (!this._needsLayout) {
            this._needsLayout = true;
            queueMicrotask(() => this._layOut());
        }
    }

    _layOut() {
        this._needsLayout = false;
        this.topbar.show(this.store);
        const rem = parseFloat(getComputedStyle(document.documentElement).fontSize);
        this.list.setRows(layOut(this.store, this._columns, rem));
        this.list.refreshAll();
        this._showNotice();
        this._keepFocus();
        this._showHints();
        if (this.store.isKnown && performance.getEntriesByName(shownMark).length === 0) {
            requestAnimationFrame(() => performance.mark(shownMark));
        }
    }

    _measure() {
        const rem = parseFloat(getComputedStyle(document.documentElement).fontSize);
        const { paddingInlineStart: edge } = getComputedStyle(this.list);
        const columns = Math.max(2, Math.floor((this.list.clientWidth - 2 * parseFloat(edge)) / rem / leastCardRem));
        this.list.schedule();
        if (columns !== this._columns) {
            this._columns = columns;
            this.list.setColumns(columns);
            this._layOut();
        }
    }

    // In place of the cards when there are none.
    _showNotice() {
        const { store } = this;
        const isEmpty = this.list.focusKey === "" || !store.isKnown;
        const [text, sign] = !this._wasConnected ? [t("connecting"), "autorenew"]
            : !store.isSignedIn ? [t("signed_out_text"), "person"]
            : !store.isKnown ? [t("no_home_yet"), "autorenew"] : [t("empty_home"), "home"];
        this.notice.hidden = !isEmpty;
        this.list.classList.toggle("is-empty", isEmpty);
        if (!isEmpty) {
            this.notice.replaceChildren();
            if (this._isFocusLent && this.topbar.contains(document.activeElement)) {
                this.takeFocus();
            }
            return;
        }
        if (this.notice.dataset.text !== text || this.notice.childElementCount === 0) {
            this.notice.dataset.text = text;
            const isSignedOut = this._wasConnected && !store.isSignedIn;
            this.notice.replaceChildren(icon(sign), el("p", { text }),
                isSignedOut ? button(t("sign_in"), "login", () => this.door.command("sim sign-in")) : "");
            this._keepFocus();
        }
    }

    // The focus never is nowhere: a remote control couldn't get it back. What was hidden keeps it until the next picture.
    _keepFocus() {
        const active = document.activeElement;
        const isLost = active === null || active === document.body || active.getClientRects().length === 0;
        if (isLost && !this.panel.isOpen) {
            this.takeFocus();
        }
    }

    /** Puts the focus into the home. @returns {boolean} */
    takeFocus() {
        if (!this.notice.hidden) {
            const wanted = this.notice.querySelector("button") ?? this.topbar.querySelector("button");
            wanted?.focus();
            this._isFocusLent = true;
            return wanted !== null;
        }
        this._isFocusLent = false;
        return this.list.takeFocus();
    }

    _showHints() {
        const entry = this.list.contains(document.activeElement) ? this.list.focusedEntry : undefined;
        const hints = [];
        if (entry !== undefined) {
            hints.push(["OK", viewOf(this.store, entry).action], ...(entry.kind === "device" ? [["i", t("open_details")]] : []));
        }
        hints.push(["D", t("other_side")], ["?", t("keys")]);
        const text = JSON.stringify(hints);
        if (this.hints.dataset.shown !== text) {
            this.hints.dataset.shown = text;
            this.hints.replaceChildren(...hints.map(([key, words]) =>
                el("span", { class: "hint" }, el("kbd", { text: key }), el("span", { text: words }))));
        }
    }

    /** @param {string} what @param {string} [id] @returns {true} */
    open(what, id = "") {
        /** @type {Record<string, () => void>} */
        const ways = {
            find: () => openFind(this), hub: () => openHub(this), settings: () => openSettings(this), keys: () => openKeys(this),
            device: () => openDevice(this, id), camera: () => openCamera(this, id), fridge: () => openFridge(this, id),
            energy: () => openEnergy(this, id), drawer: () => this.drawer.toggle(),
        };
        ways[what]?.();
        return true;
    }

    /**
     * Of the focused card.
     * @returns {boolean}
     */
    openDetails() {
        const entry = this.list.focusedEntry;
        if (entry?.kind === "device" || entry?.kind === "part") {
            this.open("device", entry.id);
        }
        return entry !== undefined;
    }

    /** Takes the agent's connection away, or gives it back. */
    async switchAgent() {
        const { agent_state: state } = await this.door.sim();
        this.door.command("sim agent", state === "connected" ? "io-error" : "connected");
    }

    /** @returns {true} */
    toggleContrast() {
        this._useContrast(!document.documentElement.classList.contains("high-contrast"));
        return true;
    }

    /** @param {boolean} isHigh */
    _useContrast(isHigh) {
        document.documentElement.classList.toggle("high-contrast", isHigh);
        localStorage.setItem(contrastKey, String(isHigh));
    }
}

// @ts-check
/** One device as it really is: its values, which can be changed as a person at it would, and its presence. */
import { el, setText } from "../dom.js";
import { t } from "../i18n.js";
import { button } from "../panel.js";
import { choice, keyed, labelled, run, textField } from "./form.js";

const statuses = ["connected", "disconnected", "inactive", "hidden"];
const mostFound = 8;

export class DevicesTab {
    /** @param {import("../page.js").Page} page */
    constructor(page) {
        this._page = page;
        /** @type {any} */
        this._filter = null;
        /** @type {any} */
        this._found = null;
        /** @type {any} */
        this._title = null;
        /** @type {any} */
        this._status = null;
        /** @type {any} */
        this._driver = null;
        /** @type {any} */
        this._remove = null;
        /** @type {any} */
        this._values = null;
        /** @type {any} */
        this._commands = null;
        this._id = "";
        /** @type {any} */
        this._sim = null;
    }

    /** @param {HTMLElement} body */
    open(body) {
        const entry = this._page.list.focusedEntry;
        if (entry?.kind === "device" || entry?.kind === "part") {
            this._id = entry.id;
        }
        this._filter = textField(t("find"), "", t("find_hint"));
        this._filter.addEventListener("input", () => this._drawFound());
        this._found = el("div", { class: "found" });
        this._title = el("h3", { class: "drawer-title" });
        this._status = choice(t("presence"), statuses, (status) => run(this._page, "sim status", this._id, status));
        this._driver = button(t("driver"), "memory", () => this._switchDriver(), { "aria-pressed": "false" });
        this._remove = button(t("remove"), "delete", () => run(this._page, "sim remove", "device", this._id));
        this._values = el("div", { class: "values" });
        this._commands = el("div", { class: "commands" });
        body.append(labelled(t("find"), this._filter), this._found, this._title,
                    el("div", { class: "line" }, labelled(t("presence"), this._status), this._driver, this._remove),
                    this._commands, this._values, this._makeAdd());
    }

    _makeAdd() {
        const id = textField(t("id"));
        const vid = textField(t("model"));
        const room = textField(t("room"));
        return el("details", {}, el("summary", { text: t("add_device") }), el("div", { class: "line" },
            labelled(t("id"), id), labelled(t("model"), vid), labelled(t("room"), room),
            button(t("add"), "check", () => run(this._page, "sim add", "device", id.value, vid.value, ...(room.value ? [room.value] : [])))));
    }

    /** @param {any} sim */
    show(sim) {
        this._sim = sim;
        if (!sim.devices.some((/** @type {any} */ { id }) => id === this._id)) {
            this._id = sim.devices[0]?.id ?? "";
        }
        this._drawFound();
        this._draw();
        this._drawCommands(sim.device_commands);
    }

    _drawFound() {
        const wanted = this._filter.value.trim().toLocaleLowerCase();
        const found = wanted === "" ? [] : this._sim?.devices.filter((/** @type {any} */ { id, name }) =>
            id.toLocaleLowerCase().includes(wanted) || (name ?? "").toLocaleLowerCase().includes(wanted)).slice(0, mostFound) ?? [];
        keyed(this._found, found, (/** @type {any} */ { id }) => id, (device) => button(`${device.name || device.id} · ${device.id}`, "", () => {
            this._id = device.id;
            this._filter.value = "";
            this._drawFound();
            this._draw();
            this._status.focus();
        }));
    }

    _draw() {
        const device = this._sim?.devices.find((/** @type {any} */ { id }) => id === this._id);
        if (device === undefined) {
            return;
        }
        setText(this._title, `${device.name || device.id} · ${device.id} · ${device.vid}`);
        this._status.value = device.status ?? "connected";
        this._driver.setAttribute("aria-pressed", String(device.driven === true));
        keyed(this._values, valuesOf(device), ({ key }) => key, (value) => this._makeValue(value), (element, { value }) => {
            const field = element.querySelector("input");
            if (document.activeElement !== field || field.value === field.dataset.told) {
                field.value = shown(value);
            }
            field.dataset.told = shown(value);
        });
    }

    /** @param {{key: string, uri: string, name: string, value: any}} value */
    _makeValue({ uri, name }) {
        const field = textField(`${uri} ${name}`);
        const set = () => {
            if (field.value !== field.dataset.told) {
                run(this._page, "sim set", this._id, uri, name, field.value);
            }
        };
        field.addEventListener("keydown", (/** @type {KeyboardEvent} */ event) => {
            if (event.key === "Enter") {
                set();
            }
        });
        field.addEventListener("change", set);
        return el("label", { class: "value" }, el("span", { class: "value-uri", text: uri }),
                  el("span", { class: "value-name", text: name }), field);
    }

    _switchDriver() {
        const isOn = this._driver.getAttribute("aria-pressed") === "true";
        run(this._page, "sim driver", this._id, isOn ? "off" : "on");
    }

    /** @param {{number: number, device_id: string, uri: string, values: any}[]} open commands that a driver has to answer */
    _drawCommands(open) {
        keyed(this._commands, open, ({ number }) => String(number), ({ number, device_id, uri, values }) => {
            const verdict = (/** @type {string} */ word) => button(t(word), word === "refuse" ? "close" : "check",
                                                                  () => run(this._page, `sim driver ${word}`, String(number)));
            return el("div", { class: "line command" },
                el("span", { class: "value-name", text: `${device_id} ${uri} ${JSON.stringify(values)}` }),
                verdict("confirm"), verdict("refuse"));
        });
    }
}

/** @param {any} device */
function valuesOf(device) {
    return (device.resources ?? []).flatMap((/** @type {any} */ { uri, values }) => Object.entries(values ?? {})
        .map(([name, value]) => ({ key: `${device.id} ${uri} ${name}`, uri, name, value })));
}

/** @param {any} value */
function shown(value) {
    return typeof value === "string" ? value : JSON.stringify(value);
}

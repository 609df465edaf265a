// @ts-check
/** What goes wrong: functions of the agent and endpoints of the cloud that fail, are late or never answer. */
import { el } from "../dom.js";
import { t } from "../i18n.js";
import { button } from "../panel.js";
import { choice, keyed, labelled, run, textField } from "./form.js";

// What the value means; no entry: the kind takes none.
/** @type {Record<string, string>} */
const agentKinds = { fail: "code", answer: "code", say: "text", delay: "time", drop: "", twice: "", null: "", miscount: "" };
/** @type {Record<string, string>} */
const deskKinds = { fail: "code" };
/** @type {Record<string, string>} */
const cloudKinds = { fail: "code", answer: "text", delay: "time", drop: "", cut: "", huge: "", endless: "", loop: "", chunks: "" };
/** @type {Record<string, string>} */
const usual = { code: "-5", text: "{}", time: "2s" };

export class FaultsTab {
    /** @param {import("../page.js").Page} page */
    constructor(page) {
        this._page = page;
        /** @type {any} */
        this._agent = null;
        /** @type {any} */
        this._desk = null;
        /** @type {any} */
        this._cloud = null;
        /** @type {any} */
        this._faults = null;
    }

    /** @param {HTMLElement} body */
    open(body) {
        this._agent = this._makeForm(t("agent_function"), agentKinds, "sim", (kind, subject, value, count) => [`sim ${kind}`, subject, value, count]);
        this._cloud = this._makeForm(t("cloud_endpoint"), cloudKinds, "sim cloud",
                                     (kind, subject, value, count) => ["sim cloud", kind, subject, value, count]);
        this._desk = this._makeForm(t("desk_function"), deskKinds, "sim", (kind, subject, value, count) => [`sim ${kind}`, subject, value, count]);
        this._faults = el("div", { class: "faults", role: "list", "aria-label": t("faults") });
        body.append(el("h3", { class: "drawer-title", text: t("agent") }), this._agent.element,
                    el("h3", { class: "drawer-title", text: t("desk") }), this._desk.element,
                    el("h3", { class: "drawer-title", text: t("cloud") }), this._cloud.element,
                    el("div", { class: "line" },
                        button(t("cloud_down"), "cloud_off", () => run(this._page, "sim cloud", "down")),
                        button(t("cloud_up"), "check", () => run(this._page, "sim cloud", "up"))),
                    el("h3", { class: "drawer-title", text: t("faults") }), this._faults,
                    button(t("clear_all"), "delete_sweep", () => {
                        run(this._page, "sim clear");
                        run(this._page, "sim cloud", "clear");
                    }));
    }

    /**
     * @param {string} label @param {Record<string, string>} kinds @param {string} name
     * @param {(kind: string, subject: string, value: string, count: string) => string[]} words
     */
    _makeForm(label, kinds, name, words) {
        const value = textField(t("value"));
        const count = textField(t("calls"), "", t("all_calls"));
        // "#3" is the third call from now on, and that one alone; the cloud's endpoints have no such places.
        const place = name === "sim cloud" ? null : textField(t("call_number"), "", "3");
        const offer = () => {
            const meaning = kinds[kind.value];
            value.disabled = meaning === "";
            value.value = meaning === "" ? "" : name === "sim cloud" && meaning === "code" ? "500" : usual[meaning];
        };
        const subject = choice(label, []);
        const kind = choice(t("kind"), Object.keys(kinds), offer);
        offer();
        const set = () => {
            const number = place?.value.trim() ?? "";
            const [command, ...rest] = words(kind.value, number === "" ? subject.value : `${subject.value}#${number}`,
                                             value.disabled ? "" : value.value, number === "" ? count.value.trim() : "");
            run(this._page, command, ...rest.filter((word) => word !== ""));
        };
        return { subject, element: el("div", { class: "line" }, labelled(label, subject), labelled(t("kind"), kind),
                                      labelled(t("value"), value), labelled(t("calls"), count),
                                      ...(place === null ? [] : [labelled(t("call_number"), place)]), button(t("set"), "check", set)) };
    }

    /** @param {any} sim */
    show(sim) {
        fillChoice(this._agent?.subject, sim.agent_functions ?? []);
        fillChoice(this._desk?.subject, sim.desk_functions ?? []);
        fillChoice(this._cloud?.subject, sim.cloud_endpoints ?? []);
        const faults = [...(sim.faults ?? []).map((/** @type {any} */ fault) => ({ fault, isCloud: false })),
                        ...(sim.cloud_faults ?? []).map((/** @type {any} */ fault) => ({ fault, isCloud: true }))];
        keyed(/** @type {HTMLElement} */ (this._faults), faults, ({ fault }) => JSON.stringify(fault), ({ fault, isCloud }) => {
            const subject = fault.function ?? fault.endpoint ?? "";
            return el("div", { class: "line", role: "listitem" },
                el("code", { class: "value-name", text: Object.values(fault).map((value) => (
                    typeof value === "object" ? JSON.stringify(value) : String(value))).join(" ") }),
                button(t("clear"), "close", () => (isCloud ? run(this._page, "sim cloud", "clear", subject) : run(this._page, "sim clear", subject))));
        });
    }
}

/** @param {any} select @param {string[]} values */
function fillChoice(select, values) {
    if (select && select.options.length !== values.length) {
        const chosen = select.value;
        select.replaceChildren(...values.map((value) => el("option", { value, text: value })));
        if (values.includes(chosen)) {
            select.value = chosen;
        }
    }
}

// @ts-check
/** The user, the agent's connection, the TV's language and its clock. */
import { el, setAttribute } from "../dom.js";
import { languageKey, languages, t } from "../i18n.js";
import { button, fact } from "../panel.js";
import { labelled, run, textField } from "./form.js";

const agentStates = ["connected", "disconnected", "rejected", "io-error", "updating"];

export class SessionTab {
    /** @param {import("../page.js").Page} page */
    constructor(page) {
        this._page = page;
        /** @type {any} */
        this._facts = null;
        /** @type {any} */
        this._agents = null;
        /** @type {any} */
        this._times = null;
    }

    /** @param {HTMLElement} body */
    open(body) {
        const page = this._page;
        const act = (/** @type {string} */ text, /** @type {string} */ sign, /** @type {string} */ command, /** @type {string[]} */ ...words) =>
            button(text, sign, () => run(page, command, ...words));
        const part = (/** @type {string} */ title, /** @type {any[]} */ ...children) =>
            [el("h3", { class: "drawer-title", text: title }), el("div", { class: "line" }, ...children)];
        this._facts = el("dl", { class: "facts" });
        this._agents = agentStates.map((state) => {
            const one = act(state, "", "sim agent", state);
            one.dataset.state = state;
            return one;
        });
        this._times = ["auto", "real"].map((mode) => act(t(`time_${mode}`), "schedule", "sim time", mode));
        const step = textField(t("time_step"), "1h");
        body.append(this._facts,
            ...part(t("account"), act(t("sign_out"), "logout", "sim sign-out"), act(t("sign_in"), "login", "sim sign-in"),
                    act(t("disclaimer_off"), "close", "sim disclaimer", "off"), act(t("disclaimer_on"), "check", "sim disclaimer", "on")),
            ...part(t("agent"), ...this._agents, act(t("update_start"), "autorenew", "sim update", "start"),
                    act(t("update_end"), "check", "sim update", "end")),
            ...part(t("language"), ...Object.values(languages).map(({ name, setting }) => act(name, "language", "setting", languageKey, setting))),
            ...part(t("clock"), ...this._times, labelled(t("time_step"), step),
                    button(t("time_go"), "schedule", () => run(page, "sim time", `+${step.value}`))),
            ...part(t("framework"), act(t("key_scan"), "refresh", "scan")));
    }

    /** @param {any} sim */
    show(sim) {
        this._facts?.replaceChildren(fact(t("account"), t(sim.signed_in ? "signed_in" : "signed_out")), fact(t("agent"), String(sim.agent_state)),
                                     fact(t("language"), String(sim.language)),
                                     fact(t("clock"), `${sim.time?.now ?? ""} (${sim.time?.mode ?? ""})`));
        for (const one of this._agents ?? []) {
            setAttribute(one, "aria-pressed", String(one.dataset.state === sim.agent_state));
        }
    }
}

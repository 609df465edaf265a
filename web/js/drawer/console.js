// @ts-check
/** The desk TV's console: all its commands, with what they say. */
import { el } from "../dom.js";
import { t } from "../i18n.js";
import { button } from "../panel.js";
import { textField } from "./form.js";

const mostLines = 400;

export class ConsoleTab {
    /** @param {import("../page.js").Page} page */
    constructor(page) {
        this._page = page;
        /** @type {any} */
        this._field = null;
        /** @type {string[]} */
        this._typed = [];
        this._at = 0;
        this._lines = el("pre", { class: "console", role: "log", tabindex: "0" });
    }

    /** @param {HTMLElement} body */
    open(body) {
        this._field = textField(t("command"), "", "sim set washer state=Run");
        this._field.addEventListener("keydown", (/** @type {KeyboardEvent} */ event) => this._key(event));
        body.append(this._lines, el("div", { class: "line" }, this._field, button(t("run"), "keyboard_return", () => this._run()),
                                    button(t("help"), "help", () => this._send("help"))));
        queueMicrotask(() => this._field.focus());
    }

    /** @param {KeyboardEvent} event */
    _key(event) {
        const step = event.key === "ArrowUp" ? -1 : event.key === "ArrowDown" ? 1 : 0;
        const typed = this._typed[this._at + step];
        if (event.key === "Enter") {
            this._run();
        } else if (step !== 0 && typed !== undefined) {
            event.stopPropagation();
            event.preventDefault();
            this._at += step;
            this._field.value = typed;
        }
    }

    _run() {
        const line = this._field.value.trim();
        if (line !== "") {
            this._field.value = "";
            this._typed.push(line);
            this._at = this._typed.length;
            this._send(line);
        }
    }

    /** @param {string} line */
    async _send(line) {
        this._write(`> ${line}`);
        const answer = await this._page.door.command(line);
        answer.output.forEach((said) => this._write(said));
        if (answer.error) {
            this._write(`✗ ${answer.error}`);
        }
    }

    /** @param {string} text */
    _write(text) {
        const kept = [...(this._lines.textContent ?? "").split("\n").filter(Boolean).slice(1 - mostLines), text];
        this._lines.textContent = `${kept.join("\n")}\n`;
        this._lines.scrollTop = this._lines.scrollHeight;
    }
}

// @ts-check
/** What the drawer's tabs are made of. */
import { el } from "../dom.js";
import { t } from "../i18n.js";

/** @param {string} label @param {any} field */
export function labelled(label, field) {
    return el("label", { class: "labelled" }, el("span", { text: label }), field);
}

/** @param {string} label @param {string[]} values @param {(value: string) => void} [change] */
export function choice(label, values, change = () => {}) {
    return el("select", { class: "field", "aria-label": label, on: { change: (/** @type {any} */ event) => change(event.target.value) } },
              ...values.map((value) => el("option", { value, text: value })));
}

/** @param {string} label @param {string} [value] @param {string} [hint] */
export function textField(label, value = "", hint = "") {
    return el("input", { class: "field", type: "text", "aria-label": label, value, placeholder: hint, spellcheck: "false",
                         autocomplete: "off" });
}

/**
 * Runs a command of the console, and says so if it fails.
 * @param {import("../page.js").Page} page @param {string} command @param {...string} words
 */
export async function run(page, command, ...words) {
    const answer = await page.door.command(command, ...words);
    if (!answer.succeeded) {
        page.toasts.say(answer.error || answer.output.at(-1) || t("request_failed"), "error");
    }
    return answer;
}

/**
 * Gives the list's elements to the things by their keys; makes, keeps and takes away as needed, so that nothing loses the
 * focus or what is typed in it.
 * @template T
 * @param {HTMLElement} parent @param {T[]} things @param {(thing: T) => string} keyOf
 * @param {(thing: T) => HTMLElement} make @param {(element: any, thing: T) => void} [update]
 */
export function keyed(parent, things, keyOf, make, update = () => {}) {
    const old = new Map([...parent.children].map((child) => [/** @type {HTMLElement} */ (child).dataset.key, child]));
    things.forEach((thing, place) => {
        const key = keyOf(thing);
        const element = /** @type {HTMLElement} */ (old.get(key) ?? make(thing));
        element.dataset.key = key;
        old.delete(key);
        update(element, thing);
        if (parent.children[place] !== element) {
            parent.insertBefore(element, parent.children[place] ?? null);
        }
    });
    old.forEach((element) => element.remove());
}

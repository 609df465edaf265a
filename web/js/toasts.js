// @ts-check
/** Short messages at the edge of the screen, spoken by a screen reader, and gone after a while. */
import { el, setText } from "./dom.js";
import { icon } from "./icons.js";

const shownMs = 5000;
const most = 4;

export class Toasts extends HTMLElement {
    connectedCallback() {
        this.setAttribute("role", "status");
        this.setAttribute("aria-live", "polite");
    }

    /** @param {string} text @param {"info"|"error"} [kind] */
    say(text, kind = "info") {
        const toast = el("div", { class: `toast toast-${kind}` }, icon(kind === "error" ? "error" : "info"),
                         el("span", { text }));
        this.append(toast);
        while (this.children.length > most) {
            this.firstElementChild?.remove();
        }
        setTimeout(() => toast.remove(), shownMs);
    }
}

/** Speaks without showing. */
export class Speaker extends HTMLElement {
    connectedCallback() {
        this.setAttribute("aria-live", "polite");
        this.className = "unseen";
    }

    /** @param {string} text */
    say(text) {
        setText(this, text);
    }
}

customElements.define("hl-toasts", Toasts);
customElements.define("hl-speaker", Speaker);

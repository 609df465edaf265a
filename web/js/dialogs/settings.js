// @ts-check
/** The TV's language, how the screen looks, and the keys. */
import { el } from "../dom.js";
import { language, languageKey, languages, t } from "../i18n.js";
import { button } from "../panel.js";
import { shortcuts } from "../keys.js";

/** @param {import("../page.js").Page} page */
export function openSettings(page) {
    page.panel.open(t("settings"), (body) => body.append(
        el("h3", { text: t("language") }),
        el("div", { class: "buttons", role: "group", "aria-label": t("language") },
            ...Object.entries(languages).map(([code, { name, setting }]) =>
                button(name, code === language() ? "check" : "language", () => {
                    page.panel.close();
                    setLanguage(page, setting);
                }, { lang: code, "aria-pressed": String(code === language()) }))),
        el("h3", { text: t("look") }),
        el("div", { class: "buttons" },
            button(t("high_contrast"), "contrast", () => page.toggleContrast())),
        el("h3", { text: t("account") }),
        el("div", { class: "buttons" },
            page.store.isSignedIn
                ? button(t("sign_out"), "logout", () => { page.panel.close(); page.door.command("sim sign-out"); })
                : button(t("sign_in"), "login", () => { page.panel.close(); page.door.command("sim sign-in"); })),
        el("p", { class: "panel-note", text: `HomeLoom ${page.store.version} · ${t("icons_by")}` })));
}

/** @param {import("../page.js").Page} page @param {string} setting */
export function setLanguage(page, setting) {
    return page.door.command("setting", languageKey, setting);
}

/** @param {import("../page.js").Page} page */
export function openKeys(page) {
    page.panel.open(t("keys"), (body) => body.append(el("dl", { class: "keys" },
        ...[["← ↑ → ↓", "key_arrows"], ["Enter", "key_ok"], ["Esc ⌫", "key_back"], ...shortcuts.map(([key, words]) => [key, words])]
            .map(([key, words]) => el("div", { class: "key" }, el("dt", {}, el("kbd", { text: key })), el("dd", { text: t(words) }))))));
}

// @ts-check
/** What keys do: the remote control's, and shortcuts for what a tester does all day. */
import { alongTheLine, arrows, isTyping, keepsArrow, nearest } from "./focus.js";
import { language, languages } from "./i18n.js";
import { setLanguage } from "./dialogs/settings.js";

/** @typedef {import("./page.js").Page} Page */

/** Keys by what a keyboard writes on them, and the words that tell what they do. */
export const shortcuts = /** @type {const} */ ([
    ["i", "key_details"],
    ["/", "key_find"],
    ["d", "key_drawer"],
    ["e", "key_events"],
    ["c", "key_console"],
    ["h", "key_hub"],
    ["s", "key_settings"],
    ["l", "key_language"],
    ["o", "key_sign"],
    ["a", "key_agent"],
    ["g", "key_scan"],
    ["k", "key_contrast"],
    ["1-9", "key_location"],
    ["?", "key_keys"],
]);

const backKeys = new Set(["Escape", "Backspace", "BrowserBack", "GoBack"]);
/** @type {Record<string, "first"|"last"|"page-up"|"page-down">} */
const jumps = { Home: "first", End: "last", PageUp: "page-up", PageDown: "page-down" };

/** @param {Page} page */
export function listenToKeys(page) {
    document.addEventListener("keydown", (event) => {
        if (event.ctrlKey || event.altKey || event.metaKey) {
            return;
        }
        if (handled(page, event)) {
            event.preventDefault();
        }
    });
}

/** @param {Page} page @param {KeyboardEvent} event */
function handled(page, event) {
    const direction = arrows[event.key];
    if (direction !== undefined) {
        return !keepsArrow(event.target, direction) && moveFocus(page, direction, event.repeat);
    }
    if (backKeys.has(event.key)) {
        return !(event.key === "Backspace" && isTyping(event.target)) && goBack(page);
    }
    if (isTyping(event.target)) {
        return false;
    }
    if (event.key in jumps && page.list.contains(document.activeElement)) {
        return page.list.move(jumps[event.key], true);
    }
    return shortcut(page, event);
}

/** @param {Page} page @param {import("./focus.js").Direction} direction @param {boolean} isRepeated */
function moveFocus(page, direction, isRepeated) {
    const from = document.activeElement ?? document.body;
    if (page.panel.isOpen) {
        return focusOn(nearest(page.panel, from, direction));
    }
    if (page.list.contains(from)) {
        if (page.list.move(alongTheLine(direction), isRepeated)) {
            return true;
        }
        return direction === "up" ? focusOn(page.topbar.querySelector("button"))
            : alongTheLine(direction) === "end" && page.drawer.isOpen && page.drawer.takeFocus();
    }
    if (page.topbar.contains(from)) {
        return focusOn(nearest(page.topbar, from, direction)) || (direction === "down" && page.takeFocus());
    }
    if (page.drawer.contains(from)) {
        return focusOn(nearest(page.drawer, from, direction)) || (alongTheLine(direction) === "start" && page.takeFocus());
    }
    const inPlace = page.notice.contains(from);
    return inPlace && direction === "up" ? focusOn(page.topbar.querySelector("button")) : page.takeFocus();
}

/** @param {Element|null} element */
function focusOn(element) {
    if (element instanceof HTMLElement) {
        element.focus();
        return true;
    }
    return false;
}

/** @param {Page} page */
function goBack(page) {
    if (page.panel.isOpen) {
        page.panel.close();
    } else if (page.drawer.contains(document.activeElement)) {
        page.takeFocus();
    } else if (page.drawer.isOpen) {
        page.drawer.close();
    } else {
        page.list.move("first", true) || page.takeFocus();
    }
    return true;
}

/** @param {Page} page @param {KeyboardEvent} event */
function shortcut(page, event) {
    if (page.panel.isOpen) {
        return false;
    }
    const { door, store } = page;
    const places = [...page.topbar.querySelectorAll(".tabs button")];
    switch (event.key) {
        case "i":
        case "ContextMenu":
            return page.openDetails();
        case "/":
            return page.open("find");
        case "d":
            return page.drawer.toggle();
        case "e":
            return page.drawer.show("events");
        case "c":
            return page.drawer.show("console");
        case "h":
            return page.open("hub");
        case "s":
            return page.open("settings");
        case "?":
            return page.open("keys");
        case "l":
            setLanguage(page, nextLanguage());
            return true;
        case "o":
            door.command(store.isSignedIn ? "sim sign-out" : "sim sign-in");
            return true;
        case "a":
            page.switchAgent();
            return true;
        case "g":
            door.command("scan");
            return true;
        case "k":
            return page.toggleContrast();
        default:
            if (/^[1-9]$/.test(event.key)) {
                /** @type {HTMLElement|undefined} */ (places[Number(event.key) - 1])?.click();
                return true;
            }
            return false;
    }
}

function nextLanguage() {
    const codes = Object.keys(languages);
    return languages[codes[(codes.indexOf(language()) + 1) % codes.length]].setting;
}


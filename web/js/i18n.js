// @ts-check
/** The page's own words, in the language that the TV is set to. */
import en from "./words/en.js";
import ko from "./words/ko.js";
import ar from "./words/ar.js";

/** @type {Record<string, {words: Record<string, string>, name: string, setting: string}>} */
export const languages = {
    en: { words: en, name: "English", setting: "en_US.utf8" },
    ko: { words: ko, name: "한국어", setting: "ko_KR.utf8" },
    ar: { words: ar, name: "العربية", setting: "ar_AE.utf8" },
};
export const languageKey = "db/menu_widget/language";

const rightToLeft = new Set(["ar", "he", "fa", "ur"]);
let current = "en";
let collator = new Intl.Collator("en", { numeric: true });

/**
 * Switches to the language of a TV's setting. One that the page has no words in gets English ones, in its own direction.
 * @param {string} setting such as "ko_KR.utf8"
 */
export function useLanguage(setting) {
    const code = /^[a-z]{2,3}/.exec(setting)?.[0] ?? "en";
    current = code in languages ? code : "en";
    collator = new Intl.Collator(current, { numeric: true });
    document.documentElement.lang = current;
    document.documentElement.dir = rightToLeft.has(code) ? "rtl" : "ltr";
    document.title = t("title");
}

/** @returns {string} */
export function language() {
    return current;
}

export function isRightToLeft() {
    return document.documentElement.dir === "rtl";
}

/**
 * @param {string} key @param {Record<string, string|number>} [values] for the {places} in it
 * @returns {string}
 */
export function t(key, values = {}) {
    const text = languages[current].words[key] ?? en[key] ?? key;
    return text.replace(/\{(\w+)\}/g, (place, name) => String(values[name] ?? place));
}

/** @param {string} a @param {string} b */
export function compareNames(a, b) {
    return collator.compare(a, b);
}

/** @param {number} value @param {Intl.NumberFormatOptions} [options] */
export function formatNumber(value, options = {}) {
    return new Intl.NumberFormat(current, options).format(value);
}

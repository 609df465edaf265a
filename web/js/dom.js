// @ts-check
/** Making elements. Whatever a home brings goes in as text; nothing here takes markup. */

/**
 * @param {string} tag
 * @param {Record<string, any>} [props] `class`, `text`, `on` (listeners), `data`; others: attributes, false leaves one out
 * @param {...(Node|string|null|undefined|false)} children
 * @returns {any} an HTMLElement; any, since its properties differ with the tag
 */
export function el(tag, props = {}, ...children) {
    const element = document.createElement(tag);
    for (const [name, value] of Object.entries(props)) {
        if (name === "class") {
            element.className = value;
        } else if (name === "text") {
            element.textContent = value;
        } else if (name === "on") {
            for (const [type, listener] of Object.entries(value)) {
                element.addEventListener(type, /** @type {EventListener} */ (listener));
            }
        } else if (name === "data") {
            Object.assign(element.dataset, value);
        } else if (value !== false && value !== null && value !== undefined) {
            element.setAttribute(name, value === true ? "" : String(value));
        }
    }
    for (const child of children) {
        if (child !== null && child !== undefined && child !== false) {
            element.append(child);
        }
    }
    return element;
}

/** @param {HTMLElement} element @param {string} text */
export function setText(element, text) {
    if (element.textContent !== text) {
        element.textContent = text;
    }
}

/** @param {Element} element @param {string} name @param {string|null} value null takes it away */
export function setAttribute(element, name, value) {
    if (value === null) {
        if (element.hasAttribute(name)) {
            element.removeAttribute(name);
        }
    } else if (element.getAttribute(name) !== value) {
        element.setAttribute(name, value);
    }
}

/** @param {any} text what should hold JSON @param {any} [otherwise] @returns {any} */
export function parsed(text, otherwise = null) {
    try {
        return typeof text === "string" && text !== "" ? JSON.parse(text) : otherwise;
    } catch {
        return otherwise;
    }
}

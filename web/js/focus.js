// @ts-check
/** Moves the focus with the arrow keys, as a TV's remote control does, from one part of the page to the next. */
import { isRightToLeft } from "./i18n.js";

/** @typedef {"up"|"down"|"left"|"right"} Direction */
/** @typedef {{x: number, y: number, width: number, height: number}} Box */

const focusable = "button:not([disabled]),input:not([disabled]),select:not([disabled]),textarea:not([disabled]),[tabindex='0'],summary";
const typing = new Set(["text", "search", "number"]);

/** @type {Record<string, Direction>} */
export const arrows = { ArrowUp: "up", ArrowDown: "down", ArrowLeft: "left", ArrowRight: "right" };

/** @param {EventTarget|null} target @returns {boolean} whether it takes letters */
export function isTyping(target) {
    return target instanceof HTMLTextAreaElement || (target instanceof HTMLInputElement && typing.has(target.type));
}

/** @param {EventTarget|null} target @param {Direction} direction @returns {boolean} whether it needs that arrow for itself */
export function keepsArrow(target, direction) {
    const isSideways = direction === "left" || direction === "right";
    if (target instanceof HTMLSelectElement) {
        return !isSideways;
    }
    if (target instanceof HTMLTextAreaElement) {
        return true;
    }
    return isTyping(target) && isSideways && /** @type {HTMLInputElement} */ (target).value !== "";
}

/** @param {Element} root @returns {HTMLElement[]} */
export function focusablesIn(root) {
    return /** @type {HTMLElement[]} */ ([...root.querySelectorAll(focusable)])
        .filter((element) => element.getClientRects().length > 0 && element.tabIndex !== -2);
}

/**
 * The nearest element that way: near along the direction counts once, far off its line counts threefold.
 * @param {Element} root @param {Element} from @param {Direction} direction @returns {HTMLElement|null}
 */
export function nearest(root, from, direction) {
    const start = from.getBoundingClientRect();
    let best = null;
    let bestDistance = Infinity;
    for (const element of focusablesIn(root)) {
        const distance = element === from ? Infinity : distanceTo(start, element.getBoundingClientRect(), direction);
        if (distance < bestDistance) {
            best = element;
            bestDistance = distance;
        }
    }
    return best;
}

/** @param {Box} from @param {Box} to @param {Direction} direction */
function distanceTo(from, to, direction) {
    const isVertical = direction === "up" || direction === "down";
    const [start, length, other, otherLength] = isVertical
        ? [from.y, from.height, to.y, to.height] : [from.x, from.width, to.x, to.width];
    const [side, sideLength, otherSide, otherSideLength] = isVertical
        ? [from.x, from.width, to.x, to.width] : [from.y, from.height, to.y, to.height];
    const isForward = direction === "down" || direction === "right";
    // By middles too: neighbours may overlap by a pixel.
    const ahead = (other + otherLength / 2 - start - length / 2) * (isForward ? 1 : -1);
    if (ahead <= 1 || (isForward ? other < start + length / 2 : other + otherLength > start + length / 2)) {
        return Infinity;
    }
    const gap = Math.max(0, isForward ? other - start - length : start - other - otherLength);
    const aside = Math.max(0, otherSide - side - sideLength, side - otherSide - otherSideLength);
    return gap + 3 * aside + Math.abs(otherSide - side) / 1000;
}

/** @param {Direction} direction @returns {"up"|"down"|"start"|"end"} */
export function alongTheLine(direction) {
    if (direction === "up" || direction === "down") {
        return direction;
    }
    return (direction === "left") !== isRightToLeft() ? "start" : "end";
}

// @ts-check
/** A camera's stream: its address, as the TV's player would get it, and a test picture in the stream's place. */
import { answered } from "../door.js";
import { el, parsed, setText } from "../dom.js";
import { t } from "../i18n.js";
import { fact } from "../panel.js";
import { titleOf } from "../store.js";

const requests = {
    avp: "hl_get_avp_camera_url",
    doorbell: "hl_get_ring_doorbell_url",
    camera: "hl_get_none_avp_camera_url",
};

/** @param {import("../store.js").Device} device @returns {keyof typeof requests|null} null for what is no camera */
export function cameraKind(device) {
    if (String(device.vid ?? "").includes("AVPlatform")) {
        return "avp";
    }
    return device.type.includes("doorbell") ? "doorbell" : device.type.includes("camera") ? "camera" : null;
}

/** @param {import("../page.js").Page} page @param {string} id */
export function openCamera(page, id) {
    const device = page.store.devices.get(id);
    const kind = device ? cameraKind(device) : null;
    if (device === undefined || kind === null) {
        return;
    }
    page.panel.open(titleOf(device), (body) => {
        const picture = /** @type {HTMLCanvasElement} */ (el("canvas", { class: "picture", width: 1280, height: 720, role: "img",
                                                                        "aria-label": t("test_picture") }));
        const facts = el("dl", { class: "facts" });
        const note = el("p", { class: "panel-note", role: "status", text: t("asking_camera") });
        body.append(picture, note, facts);
        page.door.request(requests[kind], { device_id: id }).then((answer) => {
            const properties = answered(answer, requests[kind]);
            const addresses = addressesOf(properties?.camera_stream_url ?? "");
            setText(note, addresses.length === 0 ? t("no_stream") : t("stream_note"));
            facts.replaceChildren(...addresses.map(([name, url]) => fact(name, url)),
                                  ...(properties?.access_token ? [fact(t("access_token"), properties.access_token)] : []));
            if (addresses.length > 0) {
                drawTestPicture(picture, titleOf(device));
            }
        });
    });
}

/** @param {string} text an address, or a document of two @returns {[string, string][]} */
function addressesOf(text) {
    const document = parsed(text);
    if (document !== null && typeof document === "object") {
        return Object.entries(document).map(([name, url]) => [t(name === "InHomeURL" ? "at_home" : "away"), String(url)]);
    }
    return text === "" ? [] : [[t("address"), text]];
}

/**
 * Colour bars, as a studio sends them.
 * @param {HTMLCanvasElement} canvas @param {string} name
 */
function drawTestPicture(canvas, name) {
    const drawing = canvas.getContext("2d");
    if (drawing === null) {
        return;
    }
    const { width, height } = canvas;
    const bars = ["#c0c0c0", "#c0c000", "#00c0c0", "#00c000", "#c000c0", "#c00000", "#0000c0"];
    bars.forEach((color, place) => {
        drawing.fillStyle = color;
        drawing.fillRect(Math.floor(width * place / bars.length), 0, Math.ceil(width / bars.length), height * 0.72);
    });
    for (let shade = 0; shade < 16; ++shade) {
        drawing.fillStyle = `hsl(0 0% ${shade * 100 / 15}%)`;
        drawing.fillRect(width * shade / 16, height * 0.72, Math.ceil(width / 16), height * 0.28);
    }
    drawing.fillStyle = "#000c";
    drawing.fillRect(width * 0.18, height * 0.38, width * 0.64, height * 0.2);
    drawing.fillStyle = "#fff";
    drawing.font = "64px sans-serif";
    drawing.textAlign = "center";
    drawing.textBaseline = "middle";
    drawing.fillText(name, width / 2, height * 0.48, width * 0.6);
}

// @ts-check
/** What the devices of an energy service have consumed this month. */
import { el } from "../dom.js";
import { formatNumber, t } from "../i18n.js";
import { icon } from "../icons.js";
import { titleOf } from "../store.js";

/** @param {import("../page.js").Page} page @param {string} app the installed app */
export function openEnergy(page, app) {
    const { store } = page;
    const service = [...store.services.values()].flat().find(({ installedAppId }) => installedAppId === app);
    const list = el("div", { class: "bars", role: "list" });
    const draw = () => {
        const info = store.energy.get(app)?.energyInfoJson;
        if (info === undefined) {
            list.replaceChildren(el("p", { class: "panel-note", text: t("asking_energy") }));
            return;
        }
        const sorted = [...info].sort((a, b) => b.consumed_energy - a.consumed_energy);
        const most = Math.max(1, ...sorted.map(({ consumed_energy }) => consumed_energy));
        list.replaceChildren(...sorted.map((one) => bar(store, one, most)));
    };
    page.panel.open(service?.appInternalName ?? t("energy"), (body) => {
        body.append(el("p", { class: "panel-note", text: t("this_month") }), list);
        draw();
    }, (what, id) => {
        if (what === "energy" && id === app) {
            draw();
        }
    });
    page.actions.request("hl_get_energy_info", { installed_app_id: app });
}

/** @param {import("../store.js").Store} store @param {any} one @param {number} most */
function bar(store, one, most) {
    const device = store.devices.get(one.device_id);
    const filled = el("span", { class: "bar-filled" });
    filled.style.inlineSize = `${100 * one.consumed_energy / most}%`;
    const amount = `${formatNumber(one.consumed_energy / 1000, { maximumFractionDigits: 1 })} kWh`;
    return el("div", { class: "bar", role: "listitem", tabindex: "0" },
              el("span", { class: "bar-name", text: device ? titleOf(device) : one.device_id }),
              el("span", { class: "bar-line" }, filled), el("span", { class: "bar-amount", text: amount }),
              one.energy_saving_mode && el("span", { class: "bar-saving" }, icon("eco"), el("span", { text: t("saving") })));
}

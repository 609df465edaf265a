// @ts-check
/** The TV as a hub: becoming one, with the progress that is reported, ceasing to be one, and looking for devices. */
import { el, setAttribute, setText } from "../dom.js";
import { t } from "../i18n.js";
import { button, fact } from "../panel.js";

const discoverySeconds = 30;

/** @param {import("../page.js").Page} page */
export function openHub(page) {
    const { store, actions } = page;
    const bar = el("progress", { class: "progress", max: 100, "aria-label": t("hub_progress") });
    const state = el("p", { class: "panel-state", role: "status" });
    const facts = el("dl", { class: "facts" });
    const draw = () => {
        const { info, progress, state: now } = store.hub;
        const isHub = Boolean(info?.hub_di);
        setText(state, now === "" ? t(isHub ? "hub_is" : "hub_is_not") : t(`hub_${now}`));
        bar.hidden = progress === null;
        setAttribute(bar, "value", String(progress ?? 0));
        facts.replaceChildren(...Object.entries(info ?? {}).map(([name, value]) => fact(name, String(value))));
    };
    page.panel.open(t("hub"), (body) => {
        const own = store.locations.filter(({ is_owner }) => is_owner);
        const hub = () => ({ location_id: own[0]?.id ?? "", hl_hub_di: store.hub.info?.hub_di ?? "" });
        body.append(state, bar, facts, el("div", { class: "buttons" },
            ...own.map((place) => button(t("hub_start_in", { name: place.name }), "play_arrow", () =>
                actions.request("hl_start_hub_onboarding", { hl_hub_location_id: place.id, hl_hub_room_id: place.rooms[0]?.id ?? "" }))),
            button(t("hub_stop"), "stop", () => actions.request("hl_stop_hub_onboarding", {})),
            button(t("hub_reset"), "delete", () => actions.request("hl_reset_hub", {})),
            button(t("hub_reset_dongle"), "refresh", () => actions.request("hl_reset_dongle", {})),
            button(t("hub_discover"), "search", () => actions.request("hl_start_hub_device_discovery",
                { ...hub(), hl_hub_discovery_timeout: discoverySeconds })),
            button(t("hub_stop_discovery"), "stop", () => actions.request("hl_stop_hub_device_discovery", hub()))));
        draw();
    }, (what) => {
        if (what === "hub" || what === "hello") {
            draw();
        }
    });
    page.door.request("hl_get_hub_info");
}

// @ts-check
/** Words for what comes unasked. */
import { t } from "./i18n.js";

/** @type {Record<string, string>} */
const named = {
    hl_create_scene: "scene_added", hl_update_scene: "scene_changed", hl_delete_scene: "scene_removed",
    hl_create_routine: "routine_added", hl_update_routine: "routine_changed", hl_delete_routine: "routine_removed",
};

/**
 * @param {import("./store.js").Store} store @param {string} name of the notify @param {Record<string, any>} properties
 * @returns {string} empty for what a screen shows without words
 */
export function unaskedText(store, name, properties) {
    if (name in named) {
        return properties.result === true ? t(named[name], { name: properties.name ?? "" }) : "";
    }
    const place = store.locations.find(({ id }) => id === properties.location_id)?.name ?? "";
    switch (name) {
        case "sign_in_state_changed":
            return t(properties.is_sign_in ? "now_signed_in" : "now_signed_out");
        case "hl_favorite_updated":
            return t("favorites_changed", { place });
        case "hl_installed_service_app_info_updated":
            return t("services_changed", { place });
        case "third_party_notification_status_updated":
            return t("blocked_changed");
        case "hl_reset_hub_result":
            return t(properties.hl_reset_hub_result_data === "success" ? "hub_reset_done" : "hub_reset_failed");
        case "hl_hub_onboarding_progress":
            return properties.hl_hub_onboarding_success_data !== undefined ? t("hub_succeeded")
                : properties.hl_hub_progress < 0 ? t("hub_failed") : "";
        default:
            return "";
    }
}

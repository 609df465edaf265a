// @ts-check
/** Events in few words, and as the line of a test that wants the same to happen again. */

/** @param {{type: string, document: any}} heard */
export function kindOf({ type, document }) {
    return type === "report" ? document.call : type;
}

/** @param {{type: string, document: any}} heard */
export function brief({ type, document }) {
    switch (type) {
        case "hello":
            return `${document.hello.version}, ${document.hello.home?.devices?.length ?? 0} devices`;
        case "command":
            return `${document.succeeded ? "✓" : "✗"} ${document.command}`;
        case "device_command":
            return `${document.device_command.device_id} ${document.device_command.uri} ${JSON.stringify(document.device_command.values)}`;
        case "lost":
            return String(document.lost);
        default:
            return ofReport(document);
    }
}

/** @param {any} report */
function ofReport(report) {
    const properties = report.properties ?? {};
    if (report.name === "hl_device_state_updated") {
        return `${properties.device_id}: ${properties.state_text ?? ""}`;
    }
    if (report.call === "device_list") {
        return `${report.endpoints.length} endpoints`;
    }
    const texts = Object.entries(properties).map(([key, value]) => `${key}=${value}`);
    return report.call === "load_result" ? `status ${report.status}` : `${report.name} ${texts.join(" ")}`;
}

/**
 * @param {{type: string, document: any}} heard
 * @returns {string} of Python: `tv` is the desk TV's client, `events` what its events() gave before
 */
export function testLine({ type, document }) {
    if (type === "command") {
        return `tv.command(${JSON.stringify(document.command)})`;
    }
    if (type === "report" && document.name === "hl_device_state_updated") {
        const { device_id: id, state_text: text = "" } = document.properties;
        return `tv.wait_for_state(${JSON.stringify(id)}, ${JSON.stringify(text)})`;
    }
    if (type === "report" && document.name !== undefined) {
        return `next(e for e in events if e.data.get("name") == ${JSON.stringify(document.name)}` +
            ` and e.data["properties"] == ${python(document.properties)})`;
    }
    const value = type === "report" ? `e.data.get("call") == ${JSON.stringify(document.call)}` : `e.type == ${JSON.stringify(type)}`;
    return `next(e for e in events if ${value})`;
}

/** @param {any} value @returns {string} */
function python(value) {
    if (typeof value === "boolean") {
        return value ? "True" : "False";
    }
    if (value === null) {
        return "None";
    }
    if (Array.isArray(value)) {
        return `[${value.map(python).join(", ")}]`;
    }
    return typeof value !== "object" ? JSON.stringify(value)
        : `{${Object.entries(value).map(([key, one]) => `${JSON.stringify(key)}: ${python(one)}`).join(", ")}}`;
}

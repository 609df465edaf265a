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

/** @param {{type: string, document: any}} heard @returns {string} of Python, with the desk TV's client as `tv` */
export function testLine({ type, document }) {
    if (type === "command") {
        return `tv.command(${python(document.command)})`;
    }
    if (type === "report" && document.name === "hl_device_state_updated") {
        return `tv.wait_for_state(${python(document.properties.device_id)}, ${python(document.properties.state_text ?? "")})`;
    }
    return `tv.wait_for(${python(document.name ?? kindOf({ type, document }))}${wanted(document.properties ?? {})})`;
}

/** @param {Record<string, any>} properties */
function wanted(properties) {
    return Object.entries(properties).map(([key, value]) => `, ${key}=${python(value)}`).join("");
}

/** @param {any} value */
function python(value) {
    return value === true ? "True" : value === false ? "False" : JSON.stringify(value);
}

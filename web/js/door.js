// @ts-check
/** The page's way to the TV: a stream of events that comes back after a break, and commands. */

/**
 * @typedef {object} Answer
 * @property {string} command
 * @property {boolean} succeeded
 * @property {string[]} output
 * @property {any[]} reports what was reported while the command ran
 * @property {string} [error]
 */

const firstRetryMs = 500;
const lastRetryMs = 5000;
const types = ["hello", "report", "command", "device_command", "sim", "lost"];

export class Door {
    /**
     * @param {(type: string, document: any, id: string) => void} onEvent
     * @param {(isConnected: boolean) => void} onConnection
     */
    constructor(onEvent, onConnection) {
        this._onEvent = onEvent;
        this._onConnection = onConnection;
        this._lastId = "";
        this._retryMs = firstRetryMs;
        /** @type {EventSource|null} */
        this._source = null;
        this._open();
    }

    // The browser's own way of coming back is not used: it keeps a pace of seconds, and gives up on some errors.
    _open() {
        const query = this._lastId === "" ? "" : `?last_event_id=${encodeURIComponent(this._lastId)}`;
        const source = new EventSource(`/v1/events${query}`);
        this._source = source;
        source.onopen = () => {
            this._retryMs = firstRetryMs;
            this._onConnection(true);
        };
        source.onerror = () => {
            source.close();
            this._onConnection(false);
            setTimeout(() => this._open(), this._retryMs);
            this._retryMs = Math.min(this._retryMs * 2, lastRetryMs);
        };
        for (const type of types) {
            source.addEventListener(type, (event) => {
                this._lastId = event.lastEventId;
                this._onEvent(type, JSON.parse(event.data), event.lastEventId);
            });
        }
    }

    /** Closes the stream and opens it anew from the beginning: a fresh `hello` comes. */
    restart() {
        this._source?.close();
        this._lastId = "";
        this._open();
    }

    /**
     * @param {string} command its words, such as "sim set"
     * @param {string[]} words its arguments, each taken as it is
     * @returns {Promise<Answer>} also for a command that fails
     */
    command(command, ...words) {
        return this._post({ command, arguments: words });
    }

    /** @param {string} line as typed at the console @returns {Promise<Answer>} */
    line(line) {
        return this._post({ command: line });
    }

    /** @param {string} name @param {Record<string, string|number|boolean>} [properties] @returns {Promise<Answer>} */
    request(name, properties = {}) {
        return this.command("request", name, ...Object.entries(properties).map(([key, value]) => `${key}=${value}`));
    }

    /** @param {string} path @returns {Promise<any>} */
    async fetch(path) {
        const response = await fetch(path);
        const document = await response.json();
        if (!response.ok) {
            throw new Error(document?.error?.reason ?? response.statusText);
        }
        return document;
    }

    /** @param {object} body @returns {Promise<Answer>} */
    async _post(body) {
        const failed = (/** @type {string} */ error) => ({ command: "", succeeded: false, output: [], reports: [], error });
        try {
            const response = await fetch("/v1/commands", {
                method: "POST",
                headers: { "Content-Type": "application/json" },
                body: JSON.stringify(body),
            });
            const document = await response.json();
            return response.ok ? document : failed(document?.error?.reason ?? response.statusText);
        } catch (error) {
            return failed(String(error));
        }
    }
}

/**
 * What a request was answered with: the notify or result of that name, tied to a request.
 * @param {Answer} answer @param {string} name @returns {Record<string, any>|null}
 */
export function answered(answer, name) {
    const found = answer.reports?.find((report) => report.name === name && report.request !== undefined);
    return found ? found.properties : null;
}

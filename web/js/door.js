// @ts-check
/** The page's way to the TV: a stream of events that comes back after a break, and commands that tell how they went. */
import { CommandFailed, connect } from "/client/homeloom.js";

/** @typedef {import("/client/homeloom.js").CommandResult} Answer */

const firstRetryMs = 500;
const lastRetryMs = 5000;

export class Door {
    /**
     * @param {(type: string, document: any, id: string) => void} onEvent
     * @param {(isConnected: boolean) => void} onConnection
     */
    constructor(onEvent, onConnection) {
        this._onEvent = onEvent;
        this._onConnection = onConnection;
        this._tv = connect(location.origin);
        this._listen();
    }

    // Without end: the page stands for as long as somebody looks at it, and the TV may go and come back.
    async _listen() {
        /** @type {number|undefined} */
        let last;
        let retryMs = firstRetryMs;
        const opened = () => {
            retryMs = firstRetryMs;
            this._onConnection(true);
        };
        for (;;) {
            try {
                for await (const { id, type, data } of this._tv.events({ last, opened })) {
                    last = id;
                    try {
                        this._onEvent(type, data, String(id));
                    } catch (error) {
                        reportError(error);  // a fault of the page's own, and none of the connection
                    }
                }
            } catch {
                this._onConnection(false);
            }
            await new Promise((resolve) => setTimeout(resolve, retryMs));
            retryMs = Math.min(retryMs * 2, lastRetryMs);
        }
    }

    /**
     * @param {string} command its words, such as "sim set", or a line as typed at the console
     * @param {string[]} words its arguments, each taken as it is
     * @returns {Promise<Answer>} also for a command that fails
     */
    async command(command, ...words) {
        try {
            return await this._tv.command(/** @type {any} */ (command), ...words);
        } catch (error) {
            return error instanceof CommandFailed ? error.result
                : { command, succeeded: false, output: [], reports: [], error: String(error) };
        }
    }

    /** @param {string} name @param {Record<string, string|number|boolean>} [properties] @returns {Promise<Answer>} */
    request(name, properties = {}) {
        return this.command("request", name, ...Object.entries(properties).map(([key, value]) => `${key}=${value}`));
    }

    /** The other side. @returns {Promise<any>} */
    sim() {
        return this._tv.sim();
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

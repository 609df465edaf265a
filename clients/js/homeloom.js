/**
 * Talks to a desk TV, `homeloom-tv --serve PORT`, from a page or from Node.
 *
 *     const tv = connect("http://127.0.0.1:8080");
 *     await tv.do("washer");
 *     await tv.waitForState("washer", "Washing*");
 *
 * @module
 */

/** @typedef {import("./catalogue.js").Requests} Requests */
/** @typedef {import("./catalogue.js").Answers} Answers */
/** @typedef {import("./catalogue.js").DeviceFields} DeviceFields */
/** @typedef {import("./catalogue.js").CommandName} CommandName */

/**
 * A message of the door; `type` is hello, report, command, lost, device_command or sim.
 * @typedef {{ id: number, type: string, data: any }} TVEvent
 */
/** @typedef {DeviceFields & { id: string, name: string, nick: string, type: string }} Device */
/**
 * The end of a command: what it said, and what the plug-in reported meanwhile.
 * @typedef {{ command: string, succeeded: boolean, output: string[], reports: any[], error?: string }} CommandResult
 */

/** The door refused a request; `status` is that of HTTP. */
export class DoorError extends Error {
    /** @param {number} status @param {string} reason */
    constructor(status, reason) {
        super(reason);
        this.name = "DoorError";
        this.status = status;
    }
}

/** A command ran and failed; `result` is all that it told. */
export class CommandFailed extends Error {
    /** @param {CommandResult} result */
    constructor(result) {
        super(`${result.command}: ${result.error}`);
        this.name = "CommandFailed";
        this.result = result;
    }
}

/** @param {Record<string, unknown>} values */
const assignments = (values) =>
    Object.entries(values).map(([key, value]) => `${key}=${typeof value === "string" ? value : JSON.stringify(value)}`);

/** @param {string} text @param {string} pattern with * and ? as in file names */
export function matches(text, pattern) {
    const expression = pattern.replace(/[.+^${}()|[\]\\]/g, "\\$&").replaceAll("*", ".*").replaceAll("?", ".");
    return new RegExp(`^${expression}$`, "s").test(text);
}

/**
 * The events in the text of a stream; `chunks` may end anywhere.
 * @param {AsyncIterable<string>} chunks
 * @returns {AsyncGenerator<TVEvent>}
 */
export async function* parseEvents(chunks) {
    /** @type {Record<string, string>} */
    let fields = {};
    for await (const line of linesOf(chunks)) {
        if (line === "") {
            const { data, id, event = "message" } = fields;
            fields = {};
            if (data !== undefined) {
                yield { id: Number(id), type: event, data: JSON.parse(data) };
            }
            continue;
        }
        const colon = line.indexOf(":");
        fields[line.slice(0, colon)] = line.slice(colon + 1).trimStart();
    }
}

/**
 * A long line comes in many chunks, so that what has come of it is only joined at its end.
 * @param {AsyncIterable<string>} chunks
 * @returns {AsyncGenerator<string>}
 */
async function* linesOf(chunks) {
    /** @type {string[]} */
    let begun = [];
    for await (const chunk of chunks) {
        let from = 0;
        for (let end = chunk.indexOf("\n"); end >= 0; end = chunk.indexOf("\n", from)) {
            const line = begun.join("") + chunk.slice(from, end);
            begun = [];
            from = end + 1;
            yield line.endsWith("\r") ? line.slice(0, -1) : line;
        }
        begun.push(chunk.slice(from));
    }
}

/**
 * @param {ReadableStream<Uint8Array>} stream
 * @returns {AsyncGenerator<string>}
 */
async function* textOf(stream) {
    const reader = stream.getReader();
    const decoder = new TextDecoder();
    try {
        for (let step = await reader.read(); !step.done; step = await reader.read()) {
            yield decoder.decode(step.value, { stream: true });
        }
    } finally {
        reader.cancel().catch(() => {});
    }
}

/** A desk TV. */
export class TV {
    #url;
    #headers;

    /** @param {string | URL} url @param {{ token?: string }} options */
    constructor(url, { token } = {}) {
        this.#url = new URL(url);
        this.#headers = /** @type {Record<string, string>} */ (token ? { Authorization: `Bearer ${token}` } : {});
    }

    /**
     * Runs a command of the console: command("sim set", "washer", "state=Ready").
     * @param {CommandName} command @param {...string} words
     * @returns {Promise<CommandResult>} rejected with CommandFailed if it fails
     */
    async command(command, ...words) {
        const body = JSON.stringify({ command, arguments: words });
        const result = await this.#json("v1/commands", {
            method: "POST",
            headers: { "Content-Type": "application/json" },
            body,
        });
        if (!result.succeeded) {
            throw new CommandFailed(result);
        }
        return result;
    }

    /**
     * Runs the main action of a device, as OK on its card does.
     * @param {string} device
     */
    do(device) {
        return this.command("do", device);
    }

    /**
     * Sends a request to the plug-in. The answer's absent keys mean empty values.
     * @template {keyof Requests} Name
     * @param {Name} name @param {Requests[Name]} [values]
     * @returns {Promise<Answers[Name]>} rejected with CommandFailed if it wasn't carried out
     */
    async request(name, values) {
        const { reports } = await this.command("request", name, ...assignments({ ...values }));
        return reports.filter((report) => report.request).pop()?.properties ?? {};
    }

    /**
     * Changes values as somebody at the device would.
     * @param {string} device
     * @param {Record<string, unknown>} values
     */
    set(device, values) {
        return this.command("sim set", device, ...assignments(values));
    }

    /**
     * Everything on the screen.
     * @returns {Promise<{ locations: any[], devices: Device[], scenes: any[], routines: any[] }>}
     */
    async home() {
        return (await this.#json("v1/home")).home;
    }

    /** @param {string} id @returns {Promise<Device>} rejected with a DoorError of status 404 if there is none */
    device(id) {
        return this.#json(`v1/devices/${encodeURIComponent(id)}`);
    }

    /**
     * All requests, notifies, endpoint fields and commands that there are.
     * @returns {Promise<any>}
     */
    catalogue() {
        return this.#json("v1/catalogue");
    }

    /**
     * The other side: the devices as they really are, faults, what a device's driver has to answer, ...
     * @returns {Promise<any>}
     */
    sim() {
        return this.#json("v1/sim");
    }

    /**
     * All that happens from the first step of the iteration on; the first event is `hello`, the state of everything. A
     * connection that is lost is made anew, without a gap; the iteration ends with an error when the TV is gone. With `last`,
     * the id of an event, it goes on after that. `opened` is told whenever a connection stands.
     * @param {{ signal?: AbortSignal, last?: number, opened?: () => void }} options
     * @returns {AsyncGenerator<TVEvent>}
     */
    async *events({ signal, last, opened } = {}) {
        for (;;) {
            /** @type {Record<string, string>} */
            const headers = last === undefined ? {} : { "Last-Event-ID": String(last) };
            const response = await this.#ask("v1/events", { headers, signal });
            opened?.();
            try {
                for await (const event of parseEvents(textOf(/** @type {ReadableStream} */ (response.body)))) {
                    last = event.id;
                    yield event;
                }
            } catch (error) {
                if (signal?.aborted || !(error instanceof TypeError)) {
                    throw error; // anything but a network that fails
                }
            }
        }
    }

    /**
     * Waits until the device's state text is of the pattern ("Washing*"); rejected when it isn't for so many
     * milliseconds.
     * @param {string} id @param {string} pattern @param {{ timeout?: number }} options
     * @returns {Promise<Device>}
     */
    async waitForState(id, pattern, { timeout = 10000 } = {}) {
        const abort = new AbortController();
        const timer = setTimeout(() => abort.abort(), timeout);
        let state = "isn't there";
        try {
            for await (const { type, data } of this.events({ signal: abort.signal })) {
                const isState = data.name === "hl_device_state_updated" && data.properties.device_id === id;
                if (type !== "hello" && data.call !== "device_list" && !isState) {
                    continue;
                }
                const device = await this.device(id).catch((error) => {
                    if (error.status !== 404) {
                        throw error;
                    }
                });
                if (device && matches(device.state_text ?? "", pattern)) {
                    return device;
                }
                state = device ? `says "${device.state_text ?? ""}"` : "isn't there";
            }
        } catch (error) {
            if (!abort.signal.aborted) {
                throw error;
            }
        } finally {
            clearTimeout(timer);
            abort.abort();
        }
        throw new Error(`${id} ${state}, and not "${pattern}"`);
    }

    /** @param {string} path @param {RequestInit} [init] @returns {Promise<any>} */
    async #json(path, init) {
        return (await this.#ask(path, init)).json();
    }

    /** @param {string} path @param {RequestInit} [init] */
    async #ask(path, init = {}) {
        const headers = { ...this.#headers, .../** @type {Record<string, string>} */ (init.headers) };
        const response = await fetch(new URL(path, this.#url), { ...init, headers });
        if (!response.ok) {
            const { error } = await response.json().catch(() => ({}));
            throw new DoorError(response.status, error?.reason ?? response.statusText);
        }
        return response;
    }
}

/**
 * A desk TV that runs already.
 * @param {string | URL} url
 * @param {{ token?: string }} [options]
 */
export function connect(url, options) {
    return new TV(url, options);
}

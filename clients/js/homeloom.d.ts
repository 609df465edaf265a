// The types of homeloom.js; scripts/check-clients compares the two. catalogue.d.ts is made by make-types.
import type { Answers, CommandName, DeviceFields, Requests } from "./catalogue.js";

export type { Answers, CommandName, DeviceFields, Notifies, Requests } from "./catalogue.js";

/** A message of the door; `type` is hello, report, command, lost, device_command or sim. */
export type TVEvent = { id: number; type: string; data: any };
export type Device = DeviceFields & { id: string; name: string; nick: string; type: string };
/** The end of a command: what it said, and what the plug-in reported meanwhile. */
export type CommandResult = { command: string; succeeded: boolean; output: string[]; reports: any[]; error?: string };

/** The door refused a request; `status` is that of HTTP. */
export class DoorError extends Error {
    constructor(status: number, reason: string);
    status: number;
}

/** A command ran and failed; `result` is all that it told. */
export class CommandFailed extends Error {
    constructor(result: CommandResult);
    result: CommandResult;
}

/** A desk TV. */
export interface TV {
    /** Runs a command of the console: command("sim set", "washer", "state=Ready"). */
    command(command: CommandName, ...words: string[]): Promise<CommandResult>;
    /** Runs the main action of a device, as OK on its card does. */
    do(device: string): Promise<CommandResult>;
    /** Sends a request to the plug-in. The answer's absent keys mean empty values. */
    request<Name extends keyof Requests>(name: Name, values?: Requests[Name]): Promise<Answers[Name]>;
    /** Changes values as somebody at the device would. */
    set(device: string, values: Record<string, unknown>): Promise<CommandResult>;
    /** Everything on the screen. */
    home(): Promise<{ locations: any[]; devices: Device[]; scenes: any[]; routines: any[] }>;
    /** Rejected with a DoorError of status 404 if there is none. */
    device(id: string): Promise<Device>;
    /** All requests, notifies, endpoint fields and commands that there are. */
    catalogue(): Promise<any>;
    /** The other side: the devices as they really are, faults, what a device's driver has to answer, ... */
    sim(): Promise<any>;
    /**
     * All that happens from the first step of the iteration on; the first event is `hello`, the state of everything. With
     * `last`, the id of an event, it goes on after that. `opened` is told whenever a connection stands.
     */
    events(options?: { signal?: AbortSignal; last?: number; opened?: () => void }): AsyncGenerator<TVEvent>;
    /** Waits until the device's state text is of the pattern ("Washing*"), for so many milliseconds. */
    waitForState(id: string, pattern: string, options?: { timeout?: number }): Promise<Device>;
}
export const TV: new (url: string | URL, options?: { token?: string }) => TV;

/** A desk TV that runs already. */
export function connect(url: string | URL, options?: { token?: string }): TV;
/** Whether the text is of the pattern, with * and ? as in file names. */
export function matches(text: string, pattern: string): boolean;
/** The events in the text of a stream; `chunks` may end anywhere. */
export function parseEvents(chunks: AsyncIterable<string>): AsyncGenerator<TVEvent>;

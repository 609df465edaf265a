// The client against a desk TV as it ships. HOMELOOM_TV names the program.

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import { after, before, test } from "node:test";

import { CommandFailed, DoorError, connect, matches, parseEvents } from "../homeloom.js";

/** @type {import("node:child_process").ChildProcess} */
let program;
/** @type {string} */
let url;

before(async () => {
    program = spawn(process.env.HOMELOOM_TV ?? "homeloom-tv", ["--serve", "0", "--hub", "off"], {
        stdio: ["ignore", "pipe", "inherit"],
    });
    let said = "";
    for await (const text of program.stdout?.setEncoding("utf8") ?? []) {
        said += text;
        const found = /^(http:\S+)$/m.exec(said);
        if (found) {
            url = found[1];
            break;
        }
    }
});

after(async () => {
    program.kill("SIGTERM");
    assert.equal(program.exitCode ?? (await new Promise((resolve) => program.once("exit", resolve))), 0);
});

test("commands, requests and states", async () => {
    const tv = connect(url);
    assert.ok((await tv.do("washer")).succeeded);
    assert.equal((await tv.waitForState("washer", "Washing*")).running_state, true);
    await tv.set("washer", { state: "Ready" });
    await tv.waitForState("washer", "Ready");
    const favorite = { location_id: "home", favorite_info: JSON.stringify({ memberId: "robot", memberType: "DEVICE" }) };
    assert.equal((await tv.request("hl_create_favorite", favorite)).create_favorite_result, true);
    assert.ok((await tv.home()).devices.some((device) => device.id === "fridge"));
    await assert.rejects(tv.do("no such thing"), CommandFailed);
    await assert.rejects(tv.device("a/b?c"), (error) => error instanceof DoorError && error.status === 404);
    await assert.rejects(tv.waitForState("washer", "Drying*", { timeout: 100 }), /washer .*, and not "Drying/);
});

test("events come without a gap, though the connection is cut", async () => {
    // Everything passes through a way that breaks after each command.
    const cuts = new Set();
    const way = createServer(async (request, response) => {
        const headers = { ...request.headers, host: new URL(url).host, connection: "close" };
        const { request: ask } = await import("node:http");
        const onward = ask(new URL(request.url ?? "", url), { method: request.method, headers }, (answer) => {
            response.writeHead(answer.statusCode ?? 500, answer.headers);
            answer.pipe(response);
            cuts.add(response);
        });
        request.pipe(onward);
        response.on("close", () => onward.destroy());
    });
    await new Promise((resolve) => way.listen(0, "127.0.0.1", () => resolve(undefined)));
    const address = /** @type {import("node:net").AddressInfo} */ (way.address());
    const tv = connect(url);
    const ids = [];
    for await (const event of connect(`http://127.0.0.1:${address.port}/`).events()) {
        ids.push(event.id);
        if (event.type === "hello") {
            await tv.do("dryer");
        } else if (event.type === "command" && cuts.size === 1) {
            cuts.forEach((response) => response.destroy());
            await tv.do("dryer");
        } else if (event.type === "command") {
            break;
        }
    }
    way.closeAllConnections();
    way.close();
    assert.deepEqual(ids, Array.from(ids, (_, index) => ids[0] + index));
});

test("streams and patterns are read as they are meant", async () => {
    const seen = [];
    for await (const { id, type, data } of parseEvents((async function* () {
        yield* ["id: 1\nevent: re", "port\ndata: {\"a\":\"b: c\"}\n", "\n:\n\nid: 2\r\nevent: sim\r\ndata: {}\r\n\r\nid: 3"];
    })())) {
        seen.push([id, type, data]);
    }
    assert.deepEqual(seen, [[1, "report", { a: "b: c" }], [2, "sim", {}]]);
    for (const [text, pattern, fits] of /** @type {[string, string, boolean][]} */ ([
        ["Washing · 4 min", "Washing*", true],
        ["24.5°C (on)", "24?5°C (on)", true],
        ["24x5", "24.5", false],
        ["", "*", true],
    ])) {
        assert.equal(matches(text, pattern), fits, pattern);
    }
});

test("the example of the README runs", async () => {
    const readme = readFileSync(new URL("../README.md", import.meta.url), "utf8");
    const example = /```js\n(.*?)```/s.exec(readme)?.[1] ?? assert.fail("no example");
    const code = example
        .replace('"homeloom"', JSON.stringify(new URL("../homeloom.js", import.meta.url).href))
        .replace("http://127.0.0.1:8080/", url);
    await import(`data:text/javascript,${encodeURIComponent(code)}`);
});

// A browser without a window, driven over two pipes; nothing but Node is needed.
//
// It is found by KVDB_BROWSER or by the names that distributions give it; null where there is none.
import { spawn, spawnSync } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import path from "node:path";
import { pathToFileURL } from "node:url";

const NAMES = ["chromium-headless-shell", "chromium", "chromium-browser", "google-chrome"];
const MOST_MILLISECONDS = 60000;

function findBrowser() {
    const names = process.env.KVDB_BROWSER ? [process.env.KVDB_BROWSER] : NAMES;
    return names.find((name) => spawnSync("sh", ["-c", 'command -v "$1"', "sh", name]).status === 0) ?? null;
}

export class Browser {
    static start() {
        const program = findBrowser();
        return program === null ? null : new Browser(program);
    }

    constructor(program) {
        this.folder = mkdtempSync(path.join(tmpdir(), "kvdb-browser-"));
        this.process = spawn(program, ["--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
            "--disable-background-networking", "--remote-debugging-pipe", "--user-data-dir=" + this.folder,
            "about:blank"], { stdio: ["ignore", "ignore", "ignore", "pipe", "pipe"], detached: true });
        this.waiting = new Map();
        this.listeners = [];
        this.lastId = 0;
        let text = "";
        this.process.stdio[4].setEncoding("utf8").on("data", (data) => {
            const parts = (text + data).split("\0");
            text = parts.pop();
            for (const part of parts) this.receive(JSON.parse(part));
        });
        this.process.on("error", (error) => this.fail(error));
        this.process.on("exit", () => this.fail(new Error("the browser has ended")));
        this.process.stdio[3].on("error", () => {});
    }

    fail(error) {
        for (const { reject } of this.waiting.values()) reject(error);
        this.waiting.clear();
    }

    receive(message) {
        const waiting = this.waiting.get(message.id);
        if (waiting === undefined) {
            for (const listener of this.listeners) listener(message);
            return;
        }
        this.waiting.delete(message.id);
        if (message.error) waiting.reject(new Error(message.error.message));
        else waiting.resolve(message.result);
    }

    send(method, params = {}, sessionId = undefined) {
        const id = ++this.lastId;
        return new Promise((resolve, reject) => {
            const timer = setTimeout(() => reject(new Error(method + " does not answer")), MOST_MILLISECONDS);
            const done = (action) => (value) => {
                clearTimeout(timer);
                action(value);
            };
            this.waiting.set(id, { resolve: done(resolve), reject: done(reject) });
            this.process.stdio[3].write(JSON.stringify({ id, method, params, sessionId }) + "\0");
        });
    }

    // A new page with the file. Its `complaints` are what a console would show, and what it wanted from a network.
    async open(file, { width = 1280, height = 900, scheme = "light", hash = "", script = true } = {}) {
        const { targetId } = await this.send("Target.createTarget", { url: "about:blank" });
        const { sessionId } = await this.send("Target.attachToTarget", { targetId, flatten: true });
        const page = new Page(this, targetId, sessionId);
        for (const domain of ["Page", "Runtime", "Log", "Network"]) await page.send(domain + ".enable");
        await page.send("Emulation.setDeviceMetricsOverride",
            { width, height, deviceScaleFactor: 1, mobile: width < 600 });
        await page.send("Emulation.setEmulatedMedia",
            { features: [{ name: "prefers-color-scheme", value: scheme }] });
        if (!script) await page.send("Emulation.setScriptExecutionDisabled", { value: true });
        const loaded = page.event("Page.loadEventFired");
        await page.send("Page.navigate", { url: pathToFileURL(file).href + hash });
        await loaded;
        return page;
    }

    close() {
        this.process.removeAllListeners("exit");
        return new Promise((resolve) => {
            this.process.once("exit", () => {
                rmSync(this.folder, { recursive: true, force: true, maxRetries: 5 });
                resolve();
            });
            // Distributions start it by a script: the whole group is to go.
            process.kill(-this.process.pid, "SIGKILL");
        });
    }
}

class Page {
    constructor(browser, targetId, sessionId) {
        this.browser = browser;
        this.targetId = targetId;
        this.sessionId = sessionId;
        this.complaints = [];
        browser.listeners.push((message) => {
            if (message.sessionId === sessionId) this.hear(message.method, message.params);
        });
    }

    hear(method, params) {
        if (method === "Runtime.exceptionThrown") {
            this.complaints.push(params.exceptionDetails.exception?.description ?? params.exceptionDetails.text);
        }
        if (method === "Runtime.consoleAPICalled") this.complaints.push("console." + params.type);
        if (method === "Log.entryAdded") this.complaints.push(params.entry.text);
        if (method === "Network.requestWillBeSent" && !params.request.url.startsWith("file:")) {
            this.complaints.push("asks for " + params.request.url);
        }
        if (method === "Page.javascriptDialogOpening") this.complaints.push("a dialog: " + params.message);
    }

    send(method, params) {
        return this.browser.send(method, params, this.sessionId);
    }

    event(method) {
        return new Promise((resolve) => {
            this.browser.listeners.push((message) => {
                if (message.sessionId === this.sessionId && message.method === method) resolve(message.params);
            });
        });
    }

    // The value of an expression in the page, a promise's after it is kept.
    async value(expression) {
        const { result, exceptionDetails } = await this.send("Runtime.evaluate",
            { expression, returnByValue: true, awaitPromise: true, userGesture: true });
        if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
        return result.value;
    }

    async key(key, code = key) {
        const keys = { Enter: 13, Escape: 27, End: 35, Home: 36, ArrowUp: 38, ArrowDown: 40 };
        const text = key === "Enter" ? "\r" : undefined;
        const common = { key, code, windowsVirtualKeyCode: keys[key] };
        await this.send("Input.dispatchKeyEvent", { type: text ? "keyDown" : "rawKeyDown", text, ...common });
        await this.send("Input.dispatchKeyEvent", { type: "keyUp", ...common });
    }

    async screenshot(whole = false) {
        const { data } = await this.send("Page.captureScreenshot", { captureBeyondViewport: whole });
        return Buffer.from(data, "base64");
    }

    close() {
        return this.browser.send("Target.closeTarget", { targetId: this.targetId });
    }
}

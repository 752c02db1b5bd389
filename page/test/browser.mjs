// Debian's Chromium without a window, and the page in it, from its file.
import assert from "node:assert/strict";
import { existsSync } from "node:fs";
import { chromium } from "playwright-core";

const places = [process.env.CHROMIUM, "/usr/bin/chromium", "/usr/bin/chromium-browser", "/usr/bin/google-chrome"];

export function launch() {
    const executablePath = places.find((place) => place && existsSync(place));
    if (!executablePath) throw new Error("no Chromium here (scripts/setup page installs it; CHROMIUM may name another)");
    // Its sandbox wants user namespaces, which containers lack.
    return chromium.launch({ executablePath, args: ["--no-sandbox", "--enable-unsafe-swiftshader"] });
}

const address = `file://${new URL("..", import.meta.url).pathname}dist/index.html`;

// Opens the page at a place; what goes wrong there is collected.
export async function openPage(browser, hash = "", options = {}, prepare = undefined, from = address) {
    const context = await browser.newContext({ viewport: { width: 1200, height: 900 }, ...options });
    context.setDefaultTimeout(90000); // of a busy machine
    const page = await context.newPage();
    page.wrong = [];
    page.on("pageerror", (error) => page.wrong.push(String(error)));
    page.on("console", (message) => message.type() === "error" && page.wrong.push(message.text()));
    page.on("request", (request) => /^(file|data|blob):/.test(request.url()) || page.wrong.push(`fetches ${request.url()}`));
    if (prepare) await page.addInitScript(prepare);
    const began = Date.now();
    await page.goto(from + hash);
    if (!prepare) await page.waitForSelector("html[data-ready]");
    page.ready = Date.now() - began;
    return page;
}

export async function closePage(page) {
    assert.deepEqual(page.wrong, []);
    await page.context().close();
}

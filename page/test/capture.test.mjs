// The inspector in Chromium: captures are dropped, stepped through, edited and exported; what it shows is held against
// ninefold-replay, what it exports against the native library.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { after, before, test } from "node:test";
import { decode } from "fast-png";
import { closePage as close, launch, openPage } from "./browser.mjs";

const here = new URL("..", import.meta.url).pathname;
const root = `${here}..`;
const views = `${here}dist/views`;
const captures = readdirSync(`${root}/tests/captures`).filter((name) => name.endsWith(".nfc"));
const axe = readFileSync(`${here}node_modules/axe-core/axe.min.js`, "utf8");
const scratch = mkdtempSync(`${tmpdir()}/captures-`);
const many = `${scratch}/many.nfc`;

const replay = (...words) => execFileSync(`${root}/build/ninefold-replay`, words, { encoding: "utf8" });
const compile = (source, program) => execFileSync("cc", ["-std=gnu11", source, "-o", program, `-I${root}/include`, `-I${root}/debug/include`,
    `-L${root}/build`, "-lninefold", "-ldl", `-Wl,-rpath,${root}/build`]);

let browser;
before(async () => {
    mkdirSync(views, { recursive: true });
    compile(`${here}test/many.c`, `${scratch}/many`);
    execFileSync(`${root}/build/ninefold-debug`, ["--capture", many, `${scratch}/many`], { stdio: "ignore" });
    browser = await launch();
});
after(async () => {
    await browser?.close();
    rmSync(scratch, { recursive: true });
});

const open = (options) => openPage(browser, "#capture", options);
const message = (page) => page.locator("#capture-message").textContent();
const ready = (page) => page.waitForFunction(() => document.getElementById("capture-progress").hidden && document.getElementById("capture-message").textContent);
async function give(page, name, bytes = readFileSync(name)) {
    await page.locator("#capture-file").setInputFiles({ name: name.split("/").at(-1), mimeType: "application/octet-stream", buffer: Buffer.from(bytes) });
    await ready(page);
}
// Words of the canvas, without alpha.
const words = (page) => page.evaluate(() => {
    const canvas = document.getElementById("shown");
    const { data } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
    const text = [];
    for (let i = 0; i < data.length; i += 4) text.push((data[i] << 16) | (data[i + 1] << 8) | data[i + 2]);
    return { width: canvas.width, height: canvas.height, words: text };
});
function ofPng(bytes) {
    const { width, height, data, channels } = decode(bytes);
    return { width, height, words: Array.from({ length: width * height }, (_, i) => (data[i * channels] << 16) | (data[i * channels + 1] << 8) | data[i * channels + 2]) };
}
const frameOf = (folder, number) => ofPng(readFileSync(`${folder}/frame-${String(number).padStart(4, "0")}.png`));
async function downloaded(page, button) {
    const waits = page.waitForEvent("download");
    await page.locator(button).click();
    const download = await waits;
    const path = `${scratch}/${download.suggestedFilename()}`;
    await download.saveAs(path);
    return path;
}
const at = (page) => page.evaluate(() => Number(document.getElementById("step-slider").value));

test("under Node, with 32-bit addresses, every draw and frame is as recorded", async () => {
    const folder = `${root}/build-wasm/page`;
    const m = await createRequire(import.meta.url)(`${folder}/ninefold.js`)({ wasmBinary: readFileSync(`${folder}/ninefold.wasm`) });
    m._pageStart();
    for (const name of captures) {
        const bytes = readFileSync(`${root}/tests/captures/${name}`);
        const memory = m._malloc(bytes.length);
        m.HEAPU8.set(bytes, memory);
        assert.equal(m.UTF8ToString(m._captureOpen(memory, bytes.length)), "");
        m._free(memory);
        while (!JSON.parse(m.UTF8ToString(m._captureScan(1000))).done);
        const list = JSON.parse(m.UTF8ToString(m._captureList()));
        const said = /: ([\d,]+) draws? in ([\d,]+) frames? as recorded/.exec(replay("verify", `${root}/tests/captures/${name}`));
        assert.deepEqual([list.draws, list.frames, list.problem], [Number(said[1]), Number(said[2]), ""], name);
        assert.ok(list.draws > 0);
        assert.deepEqual(list.steps.filter((step) => step[5]), [], name);
    }
});

test("captures dropped anywhere; each frame is that of ninefold-replay", async () => {
    const page = await open();
    for (const [k, name] of captures.entries()) {
        const view = ["play", "codes", "capture"][k % 3];
        await page.evaluate((view) => (location.hash = `#${view}`), view);
        await page.waitForSelector(`#${view === "play" ? "playground" : view}`);
        const file = readFileSync(`${root}/tests/captures/${name}`);
        await page.evaluate(([name, bytes]) => {
            const transfer = new DataTransfer();
            transfer.items.add(new File([new Uint8Array(bytes)], name));
            document.querySelector("main").dispatchEvent(new DragEvent("drop", { dataTransfer: transfer, bubbles: true, cancelable: true }));
        }, [name, [...file]]);
        await page.waitForFunction((name) => document.querySelector("#capture h1")?.textContent === name && !document.querySelector(".stepping").hidden, name);
        const folder = `${scratch}/${name}`;
        replay("frames", `${root}/tests/captures/${name}`, "--png", folder);
        const frames = readdirSync(folder).length;
        assert.match(await message(page), new RegExp(`in ${frames} frame`));
        let seen = 0;
        for (let step = 0; ; ++step) {
            const title = await page.locator("#step-title").textContent();
            const frame = /^End of frame (\d+)/.exec(title);
            assert.match(await page.locator("#step-result").textContent(), /as recorded/);
            assert.doesNotMatch(await page.locator("#step-result").textContent(), /not as recorded/i);
            if (frame) {
                assert.deepEqual(await words(page), frameOf(folder, frame[1]), `${name}, ${title}`);
                ++seen;
            }
            if (step === Number(await page.locator("#step-slider").getAttribute("max"))) break;
            await page.locator("#steps").press("ArrowRight");
        }
        assert.equal(seen, frames);
    }
    await close(page);
});

test("pictures of a draw are those of ninefold-replay", async () => {
    const page = await open();
    await give(page, `${root}/tests/captures/shahei.nfc`);
    replay("draw", `${root}/tests/captures/shahei.nfc`, "2", "--png", `${scratch}/draw`);
    await page.locator("#step-on").click();
    for (const view of ["before", "after", "difference", "overdraw", "plane"]) {
        await page.locator(`#view-${view}`).check();
        assert.deepEqual(await words(page), ofPng(readFileSync(`${scratch}/draw/draw-2-${view}.png`)), view);
    }
    await page.locator("#textures canvas").waitFor();
    assert.equal(await page.locator("#textures canvas").count(), 1);
    assert.match(await page.locator("#step-words").textContent(), /NINEFOLD_SHAHEI_PLANE/);
    assert.ok(await page.locator("#fields-of-rs tr.new").count() > 0);
    await close(page);
});

test("10,000 draws: fluent both ways, by buttons, keys, slider and list", async () => {
    const page = await open();
    const began = Date.now();
    await give(page, many);
    console.log(`10,000 draws are opened after ${Date.now() - began} ms`);
    assert.match(await message(page), /^10,000 draws in 100 frames/);
    assert.doesNotMatch(await message(page), /not as recorded|could not/);
    replay("frames", many, "--png", `${scratch}/many-frames`);
    const last = Number(await page.locator("#step-slider").getAttribute("max"));
    assert.equal(last, 10099);
    await page.locator("#step-back").click();
    assert.equal(await at(page), 0);
    await page.locator("#last-step").click();
    assert.deepEqual(await words(page), frameOf(`${scratch}/many-frames`, 100));
    // A step takes so long, back and forwards.
    const times = await page.evaluate(async () => {
        const times = [];
        for (let k = 0; k < 60; ++k) {
            const began = performance.now();
            document.getElementById(k % 3 === 2 ? "step-on" : "step-back").click();
            times.push(performance.now() - began);
        }
        return times.sort((a, b) => a - b);
    });
    console.log(`a step takes ${times[30].toFixed(0)} ms, at most ${times.at(-1).toFixed(0)} ms`);
    assert.ok(times[30] < 300, `a step takes ${times[30]} ms`);
    assert.equal(await at(page), last - 20);
    assert.ok(await page.locator("#steps [role=option]").count() < 100);
    await page.locator("#frame-back").click();
    await page.locator("#frame-back").click();
    assert.match(await page.locator("#step-title").textContent(), /End of frame 98/);
    assert.deepEqual(await words(page), frameOf(`${scratch}/many-frames`, 98));
    await page.locator("#frame-on").click();
    assert.match(await page.locator("#step-title").textContent(), /End of frame 99/);
    await page.locator("#step-slider").fill("5049");
    assert.match(await page.locator("#step-title").textContent(), /End of frame 50/);
    assert.deepEqual(await words(page), frameOf(`${scratch}/many-frames`, 50));
    await page.locator("#first-step").click();
    assert.equal(await at(page), 0);
    const list = page.locator("#steps");
    await list.focus();
    for (const [key, wanted] of [["End", last], ["ArrowUp", last - 1], ["Home", 0], ["ArrowDown", 1], ["ArrowRight", 2], ["ArrowLeft", 1]]) {
        await list.press(key);
        assert.equal(await at(page), wanted, key);
    }
    await list.press("PageDown");
    assert.ok(await at(page) > 5);
    await page.locator("#step-filter").fill("7654");
    await page.locator("#step-filter").press("Enter");
    assert.match(await page.locator("#step-title").textContent(), /^Draw 7,654 of frame 77:/);
    assert.ok((await page.locator(`#steps [aria-selected="true"]`).textContent()).startsWith("7654 "));
    await page.locator("#step-filter").fill("plane+z");
    assert.ok((await page.locator("#steps [role=option]").allTextContents()).every((text) => text.includes("plane+z")));
    await page.locator("#steps [role=option]").nth(3).click();
    assert.match(await page.locator("#step-title").textContent(), /plane\+z/);
    await page.locator("#view-priorities").check();
    assert.ok(new Set((await words(page)).words).size > 3);
    await close(page);
});

test("files that are none, of later versions, cut off, damaged", async () => {
    const page = await open();
    const whole = readFileSync(many);
    const changed = (place, byte) => Buffer.from(whole.map((one, k) => (k === place ? byte : one)));
    for (const [bytes, words, steps] of [[Buffer.from("no capture"), /broken.nfc: no capture file/, false], [Buffer.alloc(0), /no capture file/, false],
        [changed(8, 2), /version 2; this program reads versions up to 1/, false], [whole.subarray(0, whole.length - 20), /not whole: .* It goes up to draw [\d,]+\./, true],
        [whole.subarray(0, 300000), /not whole: the file ends inside the chunk/, undefined], [changed(whole.length - 100, whole.at(-100) ^ 1), /not whole: the chunk at byte \d+ is damaged/, true]]) {
        await give(page, "broken.nfc", bytes);
        assert.match(await message(page), words);
        assert.equal(await page.locator("#capture-message").getAttribute("class"), "wrong");
        if (steps !== undefined) assert.equal(await page.locator(".stepping").isVisible(), steps);
        if (!steps) continue;
        const draws = Number(/up to draw ([\d,]+)/.exec(await message(page))[1].replaceAll(",", ""));
        assert.ok(draws > 1000 && draws <= 10000, `${draws} draws`);
        await page.locator("#last-step").click();
        await page.locator("#step-back").click();
        assert.match(await page.locator("#step-result").textContent(), /as recorded/);
    }
    await give(page, `${root}/tests/captures/blends.nfc`);
    assert.match(await message(page), /^5 draws in 1 frame,/);
    await close(page);
});

test("edits are drawn, and what is exported is what the native library draws", async () => {
    const page = await open();
    await give(page, `${root}/tests/captures/blends.nfc`);
    const runs = async (draw) => {
        const source = await downloaded(page, "#save-program");
        assert.match(source, new RegExp(`blends-draw-${draw}.c$`));
        compile(source, `${source}.out`);
        assert.equal(execFileSync(`${source}.out`, { encoding: "utf8" }), "as it was\n");
        return readFileSync(source, "utf8");
    };
    for (let draw = 1; draw <= 5; ++draw) {
        await runs(draw);
        assert.match(replay("verify", await downloaded(page, "#save-capture")), /: 1 draw in 1 frame as recorded/);
        assert.deepEqual(ofPng(readFileSync(await downloaded(page, "#save-png"))), await words(page));
        await page.locator("#step-on").click();
    }
    await page.locator("#step-back").click();
    await page.locator("#step-back").click();
    assert.match(await page.locator("#step-title").textContent(), /^Draw 4 of frame 1: rect.unit.point.add$/);
    const recorded = await words(page), lines = await runs(4);
    const field = (name) => page.locator(`[id="rs-${name}"]`);
    await field("clipRight").fill("20");
    await field("clipRight").press("Enter");
    assert.match(await page.locator("#step-title").textContent(), /, edited$/);
    const clipped = await words(page);
    assert.ok(clipped.words.every((word, k) => (k % 64 < 20) || word === clipped.words[k]));
    assert.notDeepEqual(clipped, recorded);
    await page.locator("#view-before").check();
    const before = await words(page);
    await page.locator("#view-after").check();
    for (let k = 0; k < before.words.length; ++k) assert.equal(clipped.words[k], k % 64 < 20 ? recorded.words[k] : before.words[k]);
    assert.notEqual(await runs(4), lines);
    // Another blend, by its word; the clip stays edited.
    await page.locator("#edit-blend").selectOption({ label: "7 mul" });
    assert.match(await page.locator("#step-title").textContent(), /rect.unit.point.mul, edited$/);
    assert.notDeepEqual(await words(page), clipped);
    assert.match(await runs(4), /rs\.clipRight = 20;/);
    // With the next field the focus stays among the fields, which are made anew.
    await field("clipRight").fill("1000");
    await field("clipRight").press("Tab");
    await page.waitForFunction(() => /cannot be drawn so/.test(document.getElementById("step-result").textContent));
    assert.match(await page.evaluate(() => document.activeElement.id), /^rs-(?!clipRight)/);
    assert.match(await page.locator("#step-result").textContent(), /cannot be drawn so: clip-outside/);
    assert.match(await message(page), /^5 draws in 1 frame,/);
    await field("clipRight").fill("many");
    await field("clipRight").press("Enter");
    assert.match(await message(page), /rs.clipRight is 'many'; it is a whole number from -2147483648 to 2147483647/);
    await page.locator("#as-recorded").click();
    assert.deepEqual(await words(page), recorded);
    assert.equal(await runs(4), lines);
    // Edits are of a draw alone: what follows is as recorded.
    await field("clipBottom").fill("3");
    await field("clipBottom").press("Enter");
    await page.locator("#step-on").click();
    assert.match(await page.locator("#step-result").textContent(), /The result is as recorded/);
    await close(page);
});

test("looks: accessible in light and dark, on wide and narrow screens", async () => {
    for (const [screen, options] of [["wide", { viewport: { width: 1400, height: 950 } }], ["narrow", { viewport: { width: 360, height: 740 }, isMobile: true, hasTouch: true }]])
        for (const colorScheme of ["light", "dark"]) {
            const page = await open({ ...options, colorScheme });
            for (const loaded of [false, true]) {
                if (loaded) {
                    await give(page, `${root}/tests/captures/miplines.nfc`);
                    await page.locator("#step-slider").fill("7");
                    await page.locator("#textures canvas").first().waitFor();
                    await page.locator("#all-fields").check();
                    const cell = page.locator('[id="rs-clipTop"]');
                    await cell.fill("100");
                    await cell.press("Enter");
                }
                await page.screenshot({ path: `${views}/capture${loaded ? "" : "-empty"}-${screen}-${colorScheme}.png`, fullPage: loaded && screen === "narrow" });
                assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `wider than a ${screen} screen`);
                await page.evaluate(axe);
                const { violations } = await page.evaluate(() => axe.run(document, { runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"] }));
                assert.deepEqual(violations.map((one) => `${one.id}: ${one.nodes[0].html.slice(0, 200)} ${one.nodes[0].failureSummary}`), [], `${screen}, ${colorScheme}, ${loaded}`);
            }
            await close(page);
        }
});

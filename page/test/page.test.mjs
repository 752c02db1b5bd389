// The page in Chromium, from its file: every control, every link, its frames against the native library's.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { mkdirSync, readFileSync } from "node:fs";
import { after, before, test } from "node:test";
import { encode } from "fast-png";
import { closePage as close, launch, openPage } from "./browser.mjs";

const here = new URL("..", import.meta.url).pathname;
const native = `${here}../build/page/page_draw`;
const views = `${here}dist/views`;
const axe = readFileSync(`${here}node_modules/axe-core/axe.min.js`, "utf8");
mkdirSync(views, { recursive: true });

let browser;
before(async () => (browser = await launch()));
after(() => browser.close());

const open = (...at) => openPage(browser, ...at);
const settled = (page) => page.waitForFunction(() => document.getElementById("speed")?.textContent !== "");
const name = (page) => page.locator("h1").first().textContent();
const stateOf = (page) => page.evaluate(() => document.getElementById("playground").dataset.state);
const inAddress = (page) => page.waitForFunction((first) => {
    const { state } = document.getElementById("playground").dataset;
    return location.hash === `#play?${state}` || (location.hash === "#play" && state === first);
}, "name=rect.stretch.bilinear.alphafast");
const pixelsOf = (page) => page.evaluate(() => ninefold.pixels().reduce((hash, word) => Math.imul(hash ^ word, 16777619), 0));

test("the first picture", async () => {
    const page = await open();
    assert.equal(await name(page), "rect.stretch.bilinear.alphafast");
    console.log(`the first picture after ${page.ready} ms`);
    await close(page);
});

// A generator of its own, so that a state that fails fails again.
function random(seed) {
    return () => ((seed = (Math.imul(seed, 1664525) + 1013904223) >>> 0) >>> 8) / 0x1000000;
}
function randomStates(description, members, count) {
    const next = random(20);
    const whole = (least, most) => Math.floor(least + next() * (most - least + 1));
    const one = (list) => list[whole(0, list.length - 1)];
    return Array.from({ length: count }, () => {
        const name = one(members);
        const pers = /\.pers(\.|$)/.test(name);
        const state = { name };
        for (const [key, list] of Object.entries(description.choices)) state[key] = one(list.filter((choice) => choice.word !== "dropped")).word;
        for (const [key, list] of Object.entries(description.lists)) state[key] = key === "stipple" ? whole(60, 261) : one(list).word;
        for (const field of description.fields) {
            const value = (at) => field.kind === "corners" ? (at % 3 === 2 ? whole(1, 2000) : whole(-60, 320))
                : field.kind === "texels" ? Math.max(pers ? 0 : -Infinity, next() < 0.5 ? whole(-300, 600) * 65536 : whole(-20000000, 40000000))
                : field.kind === "number" && next() < 0.3 ? one([field.least, field.most]) : whole(field.least, field.most);
            if (next() < 0.4) state[field.name] = Array.from({ length: field.words }, (_, at) => value(at)).join();
        }
        state.clipLeft = whole(0, 90), state.clipTop = whole(0, 60), state.clipRight = whole(state.clipLeft, 256), state.clipBottom = whole(120, 192);
        return Object.entries(state).map((pair) => pair.join("=")).join("&");
    });
}

test("500 random states are the native library's frames, on the canvas too", async () => {
    const page = await open();
    const description = await page.evaluate(() => ninefold.description);
    const members = await page.evaluate(() => ninefold.families().flatMap((family) => ninefold.members(family)));
    assert.equal(members.length, description.codes);
    // Kernels that draw nothing are many and alike.
    const drawing = members.filter((name) => !/line(point|bilinear)/.test(name) || name.includes(".table."));
    const states = randomStates(description, drawing, 500);
    const frames = execFileSync(native, [`${here}../gallery/pictures`], { input: states.join("\n"), maxBuffer: 1 << 30 });
    const words = description.width * description.height;
    assert.equal(frames.length, states.length * words * 4);
    const sum = (value, at) => {
        let hash = 2166136261;
        for (let i = 0; i < words; ++i) hash = Math.imul(hash ^ value(at + i), 16777619) >>> 0;
        return hash;
    };
    const got = await page.evaluate(async ([states, sumText, words]) => {
        const sum = new Function("words", `return ${sumText}`)(words);
        const canvas = document.getElementById("picture").getContext("2d", { willReadFrequently: true });
        const results = [];
        for (const state of states) {
            const changed = new Promise((resolve) => addEventListener("hashchange", resolve, { once: true }));
            location.hash = `#play?${state}`;
            await changed;
            const shown = new DataView(canvas.getImageData(0, 0, 256, 192).data.buffer);
            const { findings, error } = ninefold.draw(state);
            const drawn = ninefold.pixels();
            ninefold.clear(state);
            const before = ninefold.pixels();
            results.push({ before: sum((i) => before[i], 0), canvas: sum((i) => shown.getUint32(4 * i) >>> 8, 0), words: sum((i) => drawn[i], 0), error,
                message: document.getElementById("message").className, findings: (findings ?? []).filter((f) => f.severity === 2) });
        }
        return results;
    }, [states, sum.toString(), words]);
    const view = new DataView(frames.buffer, frames.byteOffset, frames.byteLength);
    let drew = 0;
    for (const [i, state] of states.entries()) {
        assert.equal(got[i].error, undefined, state);
        assert.equal(got[i].message, "", state);
        assert.deepEqual(got[i].findings, [], state);
        assert.equal(got[i].words, sum((at) => view.getUint32(4 * at, true), i * words), `words of ${state}`);
        assert.equal(got[i].canvas, sum((at) => view.getUint32(4 * at, true) & 0xffffff, i * words), `canvas of ${state}`);
        // Frames of the background alone would prove little.
        drew += got[i].words !== got[i].before ? 1 : 0;
    }
    assert.ok(drew > 300, `only ${drew} states draw anything`);
    await close(page);
});

test("every value of every axis, and the way to those that do not go with the rest", async () => {
    const page = await open();
    const axes = await page.evaluate(() => ninefold.description.axes);
    for (const [at, axis] of axes.entries())
        for (const value of axis.values) {
            await page.evaluate(() => (location.hash = "#play"));
            await page.waitForFunction(() => document.querySelector("h1").textContent === "rect.stretch.bilinear.alphafast");
            const control = page.locator(`#${axis.key}-${value.value}`);
            await control.waitFor({ state: "attached" });
            if ((await control.getAttribute("type")) === "button") {
                await page.locator(`#axis-${axis.key} details summary`).click();
                assert.match(await control.locator("..").textContent(), /^\d \S+: .{10,}\. Go to /); // the reason
                await control.click();
                assert.match(await page.locator("#message").textContent(), /Went to/);
            } else {
                await control.click();
            }
            const look = await page.evaluate((state) => ninefold.look(state), await stateOf(page));
            assert.equal(look.axes[at].value, value.value);
            assert.equal(await name(page), look.name);
            await inAddress(page);
            assert.match(await page.locator("#lines").textContent(), new RegExp(`${axis.setter}\\(${value.name}\\)|SetBlendMode\\(NINEFOLD_BLEND_XOR\\)`));
        }
    await close(page);
});

test("every choice and every field changes the state, and what it can change of the picture", async () => {
    const states = ["name=rect.stretch.bilinear.alphafast.z+mask.tex1.rule.prescale&bank=scaled", "name=rect.table.mosaic.custom.mask.tex1", "name=rect.planeruns.point.copy.plane+z",
        "name=tri.gouraud.merge.z", "name=tri.bilinear.constalpha.corners.pers", "name=rect.unit.mosaic.merge.colour&multi=constalphargb", "name=line.gouraud.alpha"];
    const page = await open();
    const description = await page.evaluate(() => ninefold.description);
    const driven = new Set();
    let changes = 0;
    for (const state of states) {
        await page.evaluate((state) => (location.hash = `#play?${state}`), state);
        await page.waitForFunction((state) => document.getElementById("playground").dataset.state === state, state);
        const look = await page.evaluate((state) => ninefold.look(state), state);
        for (const key of look.choices) {
            driven.add(key);
            const control = page.locator(`#choice-${key}`);
            if (key === "stipple") {
                await control.fill("40");
                assert.match(await stateOf(page), /stipple=40/);
                continue;
            }
            const before = await pixelsOf(page);
            for (const value of await control.locator("option").evaluateAll((options) => options.map((option) => option.value))) {
                if (value === "dropped") continue;
                await control.selectOption(value);
                assert.match(await stateOf(page), new RegExp(`${key}=${value}(&|$)`));
                assert.equal(await page.locator("#message").getAttribute("class") || "", "");
                changes += (await pixelsOf(page)) !== before ? 1 : 0;
            }
        }
        await inAddress(page);
        await page.evaluate((state) => (location.hash = `#play?${state}`), state);
        await page.waitForFunction((state) => document.getElementById("playground").dataset.state === state, state);
        for (const [field, count] of Object.entries(look.reads)) {
            driven.add(field);
            const kind = description.fields.find((one) => one.name === field).kind;
            for (let at = 0; at < count; ++at) {
                const control = page.locator(`#field-${field}-${at}`);
                if (kind === "corners" && at % 3 === 2 && !(await control.count())) continue;
                const wanted = { corners: "40", clip: "90", colour: "#123456", texels: "3.5", number: "9", bits: "00FF00FF" }[kind];
                await control.fill(wanted);
                await control.dispatchEvent("change");
                const value = (await page.evaluate((state) => ninefold.look(state).state, await stateOf(page))).match(new RegExp(`&${field}=([^&]*)`))[1].split(",")[at];
                const expected = { corners: 40, clip: 90, colour: 0x123456, texels: 3.5 * 65536, number: 9, bits: 0xff00ff }[kind];
                assert.equal(Number(value) & (kind === "colour" ? 0xffffff : -1), expected, `${field}[${at}]`);
            }
            if (kind === "colour") {
                await page.locator(`#field-${field}-0-alpha`).fill("7");
                assert.match(await page.evaluate((state) => ninefold.look(state).c, await stateOf(page)), /rs.color\[0\] = 0x07123456/);
            }
        }
        await inAddress(page);
    }
    for (const key of [...Object.keys(description.choices), ...Object.keys(description.lists), ...description.fields.map((field) => field.name)])
        assert.ok(driven.has(key), `${key} was in none of the states`);
    assert.ok(changes > 60, `${changes} choices changed the picture`);
    await close(page);
});

test("handles by mouse, keyboard and touch", async () => {
    const page = await open("", { hasTouch: true });
    const box = await page.locator(".stage").boundingBox();
    const at = (x, y) => [box.x + ((x + 0.5) * box.width) / 256, box.y + ((y + 0.5) * box.height) / 192];
    const vertex = async () => (await stateOf(page)).match(/vertex=([-\d,]*)/)?.[1].split(",").map(Number);
    await page.mouse.move(...at(20, 16));
    await page.mouse.down();
    await page.mouse.move(...at(60, 40), { steps: 4 });
    await page.mouse.up();
    assert.deepEqual((await vertex()).slice(0, 2), [60, 40]);
    await inAddress(page);
    // Another view and back: the picture is as it was.
    await page.getByRole("link", { name: "Manual" }).click();
    await page.waitForSelector("#manual");
    await page.getByRole("link", { name: "Playground" }).click();
    await page.waitForSelector("#playground");
    assert.deepEqual((await vertex()).slice(0, 2), [60, 40]);
    await page.locator("#corner-1").focus();
    for (const key of ["ArrowLeft", "ArrowLeft", "ArrowUp", "Shift+ArrowDown"]) await page.keyboard.press(key);
    assert.deepEqual((await vertex()).slice(3, 5), [234, 185]);
    const touch = await page.context().newCDPSession(page);
    const point = ([x, y]) => [{ x, y }];
    await touch.send("Input.dispatchTouchEvent", { type: "touchStart", touchPoints: point(at(60, 40)) });
    await touch.send("Input.dispatchTouchEvent", { type: "touchMove", touchPoints: point(at(50, 45)) });
    await touch.send("Input.dispatchTouchEvent", { type: "touchMove", touchPoints: point(at(30, 50)) });
    await touch.send("Input.dispatchTouchEvent", { type: "touchEnd", touchPoints: [] });
    assert.deepEqual((await vertex()).slice(0, 2), [30, 50]);
    await page.locator("#clip-start").focus();
    await page.keyboard.press("Shift+ArrowRight");
    await page.locator("#clip-end").focus();
    await page.keyboard.press("Shift+ArrowUp");
    assert.match(await stateOf(page), /clipLeft=10&.*clipBottom=182|clipBottom=182.*clipLeft=10/);
    await close(page);
});

test("the inspector tells the words of a pixel", async () => {
    const page = await open("#play?name=rect.unit.point.alpha&tex0=matte");
    await page.locator("#picture").click({ position: { x: 301, y: 201 } });
    const told = async () => page.locator("#inspected dd").allTextContents();
    const [pixel, texel, source, , after] = await told();
    assert.equal(pixel, "150, 100");
    const [word, of] = await page.evaluate(() => [ninefold.pixels(), (ninefold.draw("name=rect.unit.point.copy&tex0=matte"), ninefold.pixels())].map((words) => words[100 * 256 + 150]));
    const hex = (value) => value.toString(16).toUpperCase().padStart(8, "0");
    assert.deepEqual([texel, source, after], [hex(of), hex(of), hex(word)]);
    await page.locator("#picture").press("ArrowDown");
    assert.equal((await told())[0], "150, 101");
    await close(page);
});

test("names, codes, comparison, overlays, zoom, copying, starting over", async () => {
    const page = await open("", { permissions: ["clipboard-read", "clipboard-write"] });
    await page.locator("#find").fill("0x40769");
    await page.locator("#find").press("Enter");
    assert.equal(await name(page), "rect.stretch.point.alpha");
    await page.locator("#find").fill("rect.foo");
    await page.locator("#find").press("Enter");
    assert.match(await page.locator("#message").textContent(), /no combination 'rect.foo'/);
    await page.locator("#other").fill("rect.stretch.point.alphafast");
    await page.locator("#other").press("Enter");
    assert.match(await page.locator("#differences").textContent(), /\d+ pixels differ/);
    await inAddress(page);
    const link = await page.evaluate(() => location.href);
    const again = await open(new URL(link).hash);
    assert.equal(await again.locator("#differences").textContent(), await page.locator("#differences").textContent());
    await close(again);
    await page.locator("#other").fill("rect.stretch.point.alpha");
    await page.locator("#other").press("Enter");
    assert.match(await page.locator("#differences").textContent(), /No pixel differs/);
    await page.evaluate(() => (location.hash = "#play?name=rect.stretch.point.copy.plane+z"));
    const picture = () => page.evaluate(() => document.getElementById("picture").toDataURL());
    const plain = await picture();
    await page.locator("#show-taken").check();
    const taken = await picture();
    await page.locator("#show-priorities").check();
    assert.equal(new Set([plain, taken, await picture()]).size, 3);
    await page.locator("#zoom").selectOption("1");
    assert.equal((await page.locator("#picture").boundingBox()).width, 256);
    await page.getByRole("button", { name: "Copy the lines" }).click();
    assert.match(await page.evaluate(() => navigator.clipboard.readText()), /SearchDrawFunc\(CreateDrawCode\(\)\)/);
    await inAddress(page);
    await page.getByRole("button", { name: "Copy the link" }).click();
    assert.equal(await page.evaluate(() => navigator.clipboard.readText()), await page.evaluate(() => location.href));
    await page.locator("#choice-tex0").selectOption("stars");
    await page.locator("#reset").click();
    assert.equal(await stateOf(page), "name=rect.stretch.point.copy.plane+z");
    await settled(page);
    assert.match(await page.locator("#speed").textContent(), /^\d+\.\d\d ns a pixel/);
    await close(page);
});

test("wrong addresses are told of", async () => {
    for (const [hash, words] of [["#play?name=rect.foo", /name=rect.foo is none/], ["#play?name=rect.unit.point.copy&zRef=1000", /zRef=1000: values are whole numbers from 0 to 255/],
        ["#play?name=tri.point.copy.pers&uv0=-1", /must not be negative/], ["#play?name=rect.unit.point.copy&clipLeft=100&clipRight=50", /inside out/], ["#play?name=rect.unit.point.copy&tex0=dropped", /drop a file first/]]) {
        const page = await open(hash);
        assert.match(await page.locator("#message").textContent(), words);
        await close(page);
    }
});

test("dropped pictures keep straight alpha", async () => {
    const page = await open("#play?name=rect.unit.point.copy");
    const rows = [[200, 100, 50, 1], [10, 20, 30, 255], [7, 8, 9, 0], [255, 254, 253, 128]];
    const wanted = [0x01c86432, 0xff0a141e, 0, 0x80fffefd];
    // Of 16 bits a channel the page leaves the decoding to the browser.
    const files = [["eight.png", encode({ width: 4, height: 1, data: Uint8Array.from(rows.flat()), channels: 4, depth: 8 })],
        ["sixteen.png", encode({ width: 4, height: 1, data: Uint16Array.from(rows.flat(), (value) => value * 257), channels: 4, depth: 16 })]];
    for (const [name, bytes] of files) {
        await page.evaluate(([name, bytes]) => {
            const transfer = new DataTransfer();
            transfer.items.add(new File([new Uint8Array(bytes)], name));
            document.getElementById("playground").dispatchEvent(new DragEvent("drop", { dataTransfer: transfer, bubbles: true, cancelable: true }));
        }, [name, [...bytes]]);
        await page.waitForFunction((name) => document.getElementById("message").textContent.startsWith(name), name);
        assert.match(await page.locator("#message").textContent(), /4 x 1 pixels/);
        const got = await page.evaluate(() => (ninefold.draw("name=rect.unit.point.copy&tex0=dropped&back=black&vertex=0,0,1,4,1,1"), [...ninefold.pixels().slice(0, 4)]));
        assert.deepEqual(got, wanted.map((word) => word || 0xff000000), name);
    }
    await page.locator("#file").setInputFiles({ name: "words.png", mimeType: "image/png", buffer: Buffer.from("no picture") });
    await page.waitForFunction(() => document.getElementById("message").className === "wrong");
    assert.match(await page.locator("#message").textContent(), /words.png: no picture/);
    await page.locator("#file").setInputFiles({ name: "large.png", mimeType: "image/png", buffer: Buffer.from(encode({ width: 3000, height: 1, data: new Uint8Array(3000), channels: 1, depth: 8 })) });
    await page.waitForFunction(() => /too large/.test(document.getElementById("message").textContent));
    await close(page);
});

test("the twin speaks up", async () => {
    const page = await open("#play?name=rect.unit.point.copy");
    assert.equal(await page.locator("#findings li").first().textContent(), "Nothing.");
    // Of states as they are at first nothing is to be said, of any family.
    assert.deepEqual(await page.evaluate(() => ninefold.families().flatMap((name) => ninefold.draw(`name=${name}`).findings)), []);
    // A thousand draws that reach no pixel are told of.
    await page.evaluate(() => {
        for (let i = 0; i < 999; ++i) ninefold.draw("name=rect.unit.point.copy&clipRight=0");
        location.hash = "#play?name=rect.unit.point.copy&clipRight=0";
    });
    await page.waitForFunction(() => location.hash.endsWith("clipRight=0") && document.querySelector("#findings li").textContent !== "Nothing.");
    assert.match(await page.locator("#findings li").first().textContent(), /nothing-drawn/);
    await close(page);
});

test("every link of every view leads somewhere", async () => {
    const page = await open("#manual");
    const hashes = async () => page.locator("a").evaluateAll((links) => links.map((link) => link.href));
    const links = new Set(await hashes());
    await page.evaluate(() => (location.hash = "#codes"));
    await page.waitForSelector("#codes");
    for (const link of await hashes()) links.add(link);
    assert.ok(links.size > 250);
    const base = await page.evaluate(() => location.href.split("#")[0]);
    const wrong = await page.evaluate(async (links) => {
        const wrong = [];
        for (const link of links) {
            const hash = new URL(link).hash;
            if (hash !== location.hash) {
                const changed = new Promise((resolve) => addEventListener("hashchange", resolve, { once: true }));
                location.hash = hash;
                await changed;
            }
            const anchor = hash.startsWith("#manual/") && !document.getElementById(hash.slice(1));
            if (anchor || !document.querySelector("main h1")?.textContent || document.querySelector("main .wrong")) wrong.push(hash);
        }
        return wrong;
    }, [...links]);
    assert.deepEqual(wrong, []);
    for (const link of links) assert.equal(link.split("#")[0], base);
    await close(page);
});

test("every family has its sheet", async () => {
    const page = await open("#codes");
    const families = await page.evaluate(() => ninefold.families());
    let members = 0;
    for (const family of [families[0], families[90], families.at(-1)]) {
        await page.locator("#family").selectOption(family);
        await page.waitForFunction((family) => document.querySelector("#codes figcaption a").textContent.length && location.hash.endsWith(family), family);
        const count = Number((await page.locator("#count").textContent()).split(" ")[0]);
        assert.equal(await page.locator("#codes canvas").count(), count);
        members += count;
    }
    assert.ok(members > 100);
    await close(page);
});

test("looks: accessible in light and dark, on wide and narrow screens", async () => {
    for (const [screen, options] of [["wide", {}], ["narrow", { viewport: { width: 360, height: 740 }, isMobile: true, hasTouch: true }]])
        for (const colorScheme of ["light", "dark"]) {
            const page = await open("", { ...options, colorScheme });
            for (const [view, hash] of [["playground", "#play?name=rect.stretch.bilinear.alphafast.z+mask.tex1.rule&other=rect.stretch.point.alpha"], ["triangle", "#play?name=tri.mip.copy.pers"], ["manual", "#manual"], ["codes", "#codes"]]) {
                await page.evaluate((hash) => (location.hash = hash), hash);
                await page.waitForSelector(view === "manual" || view === "codes" ? `#${view}` : "#playground");
                if (view === "playground") await settled(page);
                await page.screenshot({ path: `${views}/${view}-${screen}-${colorScheme}.png`, fullPage: screen === "wide" && view === "playground" });
                assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), `${view} is wider than a ${screen} screen`);
                await page.evaluate(axe);
                const { violations } = await page.evaluate(() => axe.run(document, { runOnly: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "best-practice"] }));
                assert.deepEqual(violations.map((one) => `${one.id}: ${one.nodes[0].html.slice(0, 200)} ${one.nodes[0].failureSummary}`), [], `${view}, ${screen}, ${colorScheme}`);
            }
            await close(page);
        }
});

test("what is missing is said", async () => {
    for (const [prepare, words] of [[() => delete globalThis.WebAssembly, /runs no WebAssembly/], [() => (WebAssembly.validate = () => false), /no SIMD/],
        [() => delete globalThis.DecompressionStream, /cannot unpack/], [() => (WebAssembly.instantiate = () => Promise.reject(new Error("out of room"))), /could not be started/]]) {
        const page = await open("", {}, prepare);
        await page.waitForSelector("#failure");
        assert.match(await page.locator("#failure").textContent(), words);
        page.wrong = page.wrong.filter((text) => !/out of room/.test(text));
        await close(page);
    }
});

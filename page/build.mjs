// Makes dist/index.html, the whole page in one file: build.mjs [MODULE_FOLDER], where ninefold.js and ninefold.wasm lie.
import { build } from "esbuild";
import { encode } from "fast-png";
import { mkdirSync, readdirSync, readFileSync, writeFileSync } from "node:fs";
import { gzipSync } from "node:zlib";

const here = new URL(".", import.meta.url).pathname;
const folder = process.argv[2] ?? `${here}../build-wasm/page`;
const read = (path) => readFileSync(path, "utf8");

// A 24-bit bitmap, bottom row first.
function pngOf(bytes) {
    const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
    const start = view.getUint32(10, true), width = view.getInt32(18, true), height = view.getInt32(22, true);
    const stride = (width * 3 + 3) & ~3;
    const data = new Uint8Array(width * height * 3);
    for (let y = 0; y < height; ++y)
        for (let x = 0; x < width; ++x)
            for (let c = 0; c < 3; ++c)
                data[(y * width + x) * 3 + c] = bytes[start + (height - 1 - y) * stride + 3 * x + 2 - c];
    return encode({ width, height, data, channels: 3, depth: 8 });
}

// The comments of the headers, by what they stand before: functions, records, and fields that the manual has a section for.
function headerComments() {
    const comments = {};
    const before = /[ \t]*\/\*((?:(?!\*\/)[^])*)\*\/\s*(?:NINEFOLD_API [^(;]*?(\w+)\(|typedef struct (\w+)|int32_t (ruleThreshold);|uint16_t \*(shaheiPlane);)/g;
    const behind = /(scanShift|zBuffer); \/\* ([^]*?) \*\//g;
    for (const header of ["render_state.h", "texture.h"]) {
        const text = read(`${here}../include/ninefold/${header}`);
        for (const [, comment, ...names] of text.matchAll(before)) {
            const name = names.find(Boolean);
            if (name) comments[name] = comment.replace(/^[ \t]*\* ?/gm, "").replace(/^ {5}/gm, "").trim();
        }
        for (const [, name, comment] of text.matchAll(behind)) comments[name] = comment;
    }
    for (const name of ["SetBlendMode", "ruleThreshold", "shaheiPlane", "zBuffer", "scanShift", "LineTableRecord", "CreateMipmapTexture"])
        if (!comments[name]) throw new Error(`the headers' comment on ${name} is not where build.mjs looks for it`);
    return comments;
}

// The table of docs/debug-rules.md.
function twinRules() {
    const text = read(`${here}../docs/debug-rules.md`);
    const row = /^\| (NF-\d+) `([\w-]+)` \| (\w+) \| ([^|]*) \| (.*?) \*(.*)\* \|$/gm;
    const rules = [...text.matchAll(row)].map(([, number, name, severity, asked, text, advice]) => ({ number, name, severity, asked, text, advice }));
    if (!rules.length || rules.length !== text.match(/^\| NF-/gm).length) throw new Error("docs/debug-rules.md is written otherwise than build.mjs expects");
    return rules;
}

const pictures = Object.fromEntries(readdirSync(`${here}../gallery/pictures`).filter((name) => name.endsWith(".bmp"))
    .map((name) => [name.slice(0, -4), Buffer.from(pngOf(readFileSync(`${here}../gallery/pictures/${name}`))).toString("base64")]));

const bundle = await build({
    entryPoints: [`${here}web/main.ts`], bundle: true, write: false, minify: true, format: "iife", target: "es2022", charset: "utf8",
    define: { PICTURES: JSON.stringify(pictures), HEADER_COMMENTS: JSON.stringify(headerComments()), TWIN_RULES: JSON.stringify(twinRules()) },
});
const inScript = (text) => text.replaceAll("</script", "<\\/script");
const script = inScript(`${read(`${folder}/ninefold.js`)}\n${bundle.outputFiles[0].text}`);
const packed = gzipSync(readFileSync(`${folder}/ninefold.wasm`), { level: 9 });
const style = (await build({ entryPoints: [`${here}web/page.css`], write: false, minify: true })).outputFiles[0].text;
const parts = { STYLE: style, MODULE: packed.toString("base64"), SCRIPT: script };
const page = read(`${here}web/index.html`).replace(/\/\*(STYLE|MODULE|SCRIPT)\*\//g, (_, part) => parts[part]);

mkdirSync(`${here}dist`, { recursive: true });
writeFileSync(`${here}dist/index.html`, page);
const kb = (bytes) => `${Math.round(bytes / 1024)} KiB`;
console.log(`page/dist/index.html: ${kb(page.length)}, compressed ${kb(gzipSync(page).length)}; the module in it ${kb(packed.length)}`);

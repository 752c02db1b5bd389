// Makes dist/index.html, the whole page in one file, and beside it the Japanese font: build.mjs [MODULE_FOLDER], where ninefold.js and
// ninefold.wasm lie.
import { build } from "esbuild";
import { execFileSync } from "node:child_process";
import { mkdirSync, readdirSync, readFileSync, writeFileSync } from "node:fs";
import { gzipSync } from "node:zlib";

const here = new URL(".", import.meta.url).pathname;
const folder = process.argv[2] ?? `${here}../build-wasm/page`;
const read = (path) => readFileSync(path, "utf8");

// The pixels of a 24-bit bitmap, whose bottom row comes first and blue before red.
function pixelsOf(name, bytes) {
    const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
    const start = view.getUint32(10, true), width = view.getInt32(18, true), height = view.getInt32(22, true);
    const stride = (width * 3 + 3) & ~3;
    const data = new Uint8Array(width * height * 3);
    for (let y = 0; y < height; ++y)
        for (let x = 0; x < width; ++x)
            for (let c = 0; c < 3; ++c)
                data[(y * width + x) * 3 + c] = bytes[start + (height - 1 - y) * stride + 3 * x + 2 - c];
    return { name, width, height, data };
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
            if (name) comments[name] = comment.replace(/^[ \t]*\* ?/gm, "").trim();
        }
        for (const [, name, comment] of text.matchAll(behind)) comments[name] = comment;
    }
    for (const name of ["SetBlendMode", "ruleThreshold", "shaheiPlane", "zBuffer", "scanShift", "LineTableRecord", "CreateMipmapTexture"])
        if (!comments[name]) throw new Error(`the headers' comment on ${name} is not where build.mjs looks for it`);
    return comments;
}

// The table of blends in a comment: a number, a name, the colour, and behind two spaces the alpha; more of either goes below.
function blendFormulas(comment) {
    const formulas = {};
    let last = null;
    for (const line of comment.split("\n")) {
        const row = line.match(/^\s{2,4}(\d+) (.{0,19}?) {2,}(.*?)(?: {2,}(.*))?$/);
        const more = last && line.match(/^ {20,}(.*?)(?: {2,}(.*))?$/);
        if (row) last = formulas[row[1]] = { colour: row[3], alpha: row[4] ?? "" };
        else if (more) last.colour += ` ${more[1]}`, last.alpha += more[2] ? ` ${more[2]}` : "";
        else last = null;
    }
    return formulas;
}

// The table of docs/debug-rules.md.
function twinRules() {
    const text = read(`${here}../docs/debug-rules.md`);
    const row = /^\| (NF-\d+) `([\w-]+)` \| (\w+) \| ([^|]*) \| (.*?) \*(.*)\* \|$/gm;
    const rules = [...text.matchAll(row)].map(([, number, name, severity, asked, text, advice]) => ({ number, name, severity, asked, text, advice }));
    if (!rules.length || rules.length !== text.match(/^\| NF-/gm).length) throw new Error("docs/debug-rules.md is written otherwise than build.mjs expects");
    return rules;
}

const decoded = readdirSync(`${here}../gallery/pictures`).filter((name) => name.endsWith(".bmp"))
    .map((name) => pixelsOf(name.slice(0, -4), readFileSync(`${here}../gallery/pictures/${name}`)));
const pictures = { sizes: decoded.map(({ name, width, height }) => ({ name, width, height })),
    packed: gzipSync(Buffer.concat(decoded.map(({ data }) => data)), { level: 9 }).toString("base64") };

const comments = headerComments();
const formulas = blendFormulas(comments.SetBlendMode);
const blends = [...read(`${here}../include/ninefold/axes.h`).matchAll(/X\(NINEFOLD_BLEND_\w+, +(\d+),/g)].map(([, number]) => Number(number)).filter((number) => number <= 12);
if (!blends.length || blends.some((number) => !formulas[number]?.colour || !formulas[number].alpha)) throw new Error("the table in the comment of SetBlendMode is written otherwise than build.mjs expects");

// ---- fonts, of Debian's packages ----

const fonts = "/usr/share/fonts/truetype";
const latin = `${folder}/latin.ttf`; // the characters of code page 932 that are neither Greek, Cyrillic nor Japanese
execFileSync("hb-subset", [`${fonts}/dejavu/DejaVuSans.ttf`, "--unicodes=20-7E,A7,A8,B0,B1,B4,B6,D7,F7,2018,2019,201C,201D,2020,2021,2025,2026,2030,2190-2193",
    "--layout-features=", `--output-file=${latin}`]);
const other = { name: "VL Gothic", file: "vlgothic.js" };
const copyright = (name) => read(`/usr/share/doc/${name}/copyright`).trim();
const freetype = readdirSync(`${folder}/../sources`).find((name) => /^freetype-\d/.test(name));
const notices = [`Portions of this software are copyright © 2022 The FreeType Project (www.freetype.org). All rights reserved.\n\n${read(`${folder}/../sources/${freetype}/docs/FTL.TXT`).trim()}`,
    `DejaVu Sans, a part of it\n\n${copyright("fonts-dejavu-core")}`, `VL Gothic\n\n${copyright("fonts-vlgothic")}`].join("\n\n----\n\n");
const packedOther = gzipSync(readFileSync(`${fonts}/vlgothic/VL-Gothic-Regular.ttf`), { level: 9 });
const otherFile = `/* ${copyright("fonts-vlgothic").replaceAll("*/", "* /")} */\nninefoldFont("${packedOther.toString("base64")}");\n`;

// ---- measured runs ----

const results = Object.fromEntries(readdirSync(`${here}../bench/results`).filter((name) => name.endsWith(".csv")).map((name) => [name, read(`${here}../bench/results/${name}`)]));

const bundle = await build({
    entryPoints: [`${here}web/main.ts`], bundle: true, write: false, minify: true, format: "iife", target: "es2022", charset: "utf8",
    define: { BLEND_FORMULAS: JSON.stringify(formulas), PICTURES: JSON.stringify(pictures), HEADER_COMMENTS: JSON.stringify(comments), TWIN_RULES: JSON.stringify(twinRules()),
        LATIN_FONT: JSON.stringify(gzipSync(readFileSync(latin), { level: 9 }).toString("base64")), OTHER_FONT: JSON.stringify({ ...other, size: packedOther.length }),
        FONT_NOTICES: JSON.stringify(notices), BENCH_RESULTS: JSON.stringify(results) },
});
const inScript = (text) => text.replaceAll("</script", "<\\/script");
const script = inScript(`${read(`${folder}/ninefold.js`)}\n${bundle.outputFiles[0].text}`);
const packed = gzipSync(readFileSync(`${folder}/ninefold.wasm`), { level: 9 });
const style = (await build({ entryPoints: [`${here}web/page.css`], write: false, minify: true })).outputFiles[0].text;
const parts = { STYLE: style, MODULE: packed.toString("base64"), SCRIPT: script };
const page = read(`${here}web/index.html`).replace(/\/\*(STYLE|MODULE|SCRIPT)\*\//g, (_, part) => parts[part]);

mkdirSync(`${here}dist`, { recursive: true });
writeFileSync(`${here}dist/index.html`, page);
writeFileSync(`${here}dist/${other.file}`, otherFile);
const packedPage = gzipSync(page).length, most = 2.5e6;
const kb = (bytes) => `${Math.round(bytes / 1024)} KiB`;
console.log(`page/dist/index.html: ${kb(page.length)}, compressed ${kb(packedPage)}; the module in it ${kb(packed.length)}`);
if (packedPage > most) throw new Error(`the page is ${packedPage} bytes compressed, more than the ${most} that it may have`);

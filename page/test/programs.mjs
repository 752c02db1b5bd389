// Runs a test program of the WebAssembly build, a file that Emscripten made: programs.mjs FILE.js [node|browser] [NAME=VALUE...],
// variables of its environment. The browser is Debian's Chromium.
import { createServer } from "node:http";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { basename, resolve as absolute } from "node:path";
import { fileURLToPath } from "node:url";
import { launch } from "./browser.mjs";

const options = (wasmBinary, variables, print, exited) => ({
    wasmBinary, arguments: ["--gtest_color=no"], print, printErr: print,
    preRun: [(module) => Object.assign(module.ENV, variables)],
    onExit: exited, quit: (status, reason) => { exited(status); throw reason; },
});

async function inNode(file, variables, print) {
    const create = createRequire(import.meta.url)(absolute(file));
    return new Promise((resolve) => {
        create(options(readFileSync(file.replace(/js$/, "wasm")), variables, print, resolve)).catch(() => {});
    });
}

// A file: page may not read the module, so it comes from a server of this process.
async function inBrowser(file, variables, print) {
    const server = createServer((request, response) => {
        if (request.url === "/") response.setHeader("Content-Type", "text/html").end("<!doctype html><title>programs</title>");
        else if (request.url === "/program.wasm") response.end(readFileSync(file.replace(/js$/, "wasm")));
        else response.writeHead(404).end();
    });
    await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
    const browser = await launch();
    try {
        const page = await browser.newPage();
        await page.exposeFunction("say", print);
        await page.goto(`http://127.0.0.1:${server.address().port}/`);
        await page.addScriptTag({ content: readFileSync(file, "utf8") });
        await page.evaluate(`globalThis.options = ${options}`);
        return await page.evaluate(async (environment) => {
            const wasm = new Uint8Array(await (await fetch("/program.wasm")).arrayBuffer());
            return new Promise((resolve) => createTest(options(wasm, environment, say, resolve)).catch(() => {}));
        }, variables);
    } finally {
        await browser.close();
        server.close();
    }
}

export async function run(file, where, variables, print) {
    return (where === "browser" ? inBrowser : inNode)(file, variables, print);
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
    const [file, where = "node", ...pairs] = process.argv.slice(2);
    if (!file || !["node", "browser"].includes(where)) {
        console.error("programs.mjs FILE.js [node|browser] [NAME=VALUE...]: runs a test program of the WebAssembly build");
        process.exit(file === "--help" ? 0 : 2);
    }
    let passed = false; // a program that ends early says nothing of the kind
    const began = Date.now();
    const status = await run(file, where, Object.fromEntries(pairs.map((pair) => pair.split(/=(.*)/s, 2))), (line) => {
        passed ||= /\[  PASSED  \] [1-9]/.test(line);
        console.log(line);
    });
    console.log(`${basename(file)} under ${where}: status ${status} after ${((Date.now() - began) / 1000).toFixed(1)} s`);
    process.exit(status === 0 && passed ? 0 : 1);
}

// The page: unpacks the module, then shows what the address names.
import { h } from "./dom";
import { captureMagic, Inspector } from "./inspector";
import { manual } from "./manual";
import { Module } from "./module";
import { decodePng } from "./pictures";
import { Playground } from "./playground";
import { sheet } from "./sheet";

// Put in when the page is built: the pictures' PNG files by name.
declare const PICTURES: Record<string, string>;

function bytesOf(base64: string): Uint8Array {
    return Uint8Array.from(atob(base64), (c) => c.charCodeAt(0));
}

async function unpacked(base64: string): Promise<Uint8Array> {
    const stream = new Blob([bytesOf(base64) as BlobPart]).stream().pipeThrough(new DecompressionStream("gzip"));
    return new Uint8Array(await new Response(stream).arrayBuffer());
}

// A module of one function that has a vector in it.
const vectorModule = new Uint8Array([0, 97, 115, 109, 1, 0, 0, 0, 1, 5, 1, 96, 0, 1, 123, 3, 2, 1, 0, 10, 10, 1, 8, 0, 65, 0, 253, 15, 253, 98, 11]);

function missing(): string {
    if (typeof WebAssembly !== "object") return "This browser runs no WebAssembly, or it is switched off; Ninefold's kernels are WebAssembly here. Any browser of the last years has it.";
    if (!WebAssembly.validate(vectorModule)) return "This browser's WebAssembly has no SIMD, which Ninefold's kernels are made of. Chrome 91, Firefox 89 and Safari 16.4 have it, and those after them.";
    if (typeof DecompressionStream !== "function") return "This browser cannot unpack the page's module (DecompressionStream). Chrome 80, Firefox 113 and Safari 16.4 can, and those after them.";
    return "";
}

async function start() {
    const body = document.getElementById("body")!;
    const fail = (text: string) => body.replaceChildren(h("main", {}, h("h1", {}, "Ninefold"), h("p", { id: "failure", role: "alert", class: "wrong" }, text)));
    const wrong = missing();
    if (wrong) return fail(wrong);
    let module: Module, wasm: Uint8Array;
    try {
        wasm = await unpacked(document.getElementById("module")!.textContent!.trim());
        module = await Module.load(wasm);
        for (const [name, png] of Object.entries(PICTURES)) {
            const picture = decodePng(bytesOf(png))!;
            module.giveFile(name, picture.words, picture.width, picture.height);
        }
    } catch (error) {
        return fail(`The module could not be started: ${(error as Error).message}`);
    }

    // Browsers refuse an address that changes too often, as while something is dragged.
    let waiting = 0;
    const home = document.querySelector<HTMLAnchorElement>('header nav a[href^="#play"]')!;
    const playground = new Playground(module, (text) => {
        home.href = `#play?${text}`;
        clearTimeout(waiting);
        waiting = window.setTimeout(() => history.replaceState(null, "", home.href), 200);
    });
    const inspector = new Inspector(module, wasm);
    let pages: HTMLElement | null = null;
    const show = () => {
        clearTimeout(waiting);
        const address = decodeURIComponent(location.hash.slice(1));
        const [page, rest] = address.includes("?") ? [address.slice(0, address.indexOf("?")), address.slice(address.indexOf("?") + 1)] : [address, ""];
        const view = page.split("/")[0] || "play";
        if (view === "manual") {
            if (pages?.id !== "manual") pages = manual(module);
            document.title = "Manual - Ninefold";
        } else if (view === "codes") {
            pages = sheet(module, rest, (name) => (location.hash = `#codes?${name}`));
            document.title = "All codes - Ninefold";
        } else if (view === "capture") {
            pages = inspector.root;
            document.title = "Capture - Ninefold";
        } else {
            pages = playground.root;
        }
        if (body.firstChild !== pages) body.replaceChildren(pages);
        if (pages === playground.root) playground.show(rest);
        for (const link of document.querySelectorAll<HTMLAnchorElement>("header nav a"))
            link.toggleAttribute("aria-current", link.hash.slice(1) === view || (link === home && pages === playground.root));
        const target = page.includes("/") && document.getElementById(page);
        if (target) target.scrollIntoView();
        else window.scrollTo(0, 0);
    };
    window.addEventListener("hashchange", show);
    show();

    // Captures go to their view from anywhere, other files are pictures; on that view all are taken for captures.
    window.addEventListener("dragover", (event) => event.preventDefault());
    window.addEventListener("drop", async (event) => {
        event.preventDefault();
        const file = event.dataTransfer?.files[0];
        if (!file) return;
        const start = new Uint8Array(await file.slice(0, captureMagic.length).arrayBuffer());
        if (pages === inspector.root || file.name.endsWith(".nfc") || captureMagic.every((byte, k) => start[k] === byte)) {
            location.hash = "#capture";
            show();
            void inspector.open(file);
        } else {
            if (pages !== playground.root) location.hash = "#play", show();
            void playground.take(file);
        }
    });
    document.documentElement.dataset.ready = "yes";
    Object.assign(window, { ninefold: module }); // for the browser's console
}

void start();

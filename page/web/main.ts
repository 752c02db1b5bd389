// The page: unpacks the module, then shows what the address names.
import { benchmark, takeRun } from "./bench";
import { h } from "./dom";
import { captureMagic, Inspector } from "./inspector";
import { manual } from "./manual";
import { Module } from "./module";
import { Playground } from "./playground";
import { sheet } from "./sheet";
import { decoded, TextView } from "./text";

// Put in when the page is built: the pictures' sizes, and their pixels one behind the other, packed: red, green and blue.
declare const PICTURES: { sizes: { name: string; width: number; height: number }[]; packed: string };

function bytesOf(base64: string): Uint8Array {
    if ("fromBase64" in Uint8Array) return (Uint8Array as unknown as { fromBase64(text: string): Uint8Array }).fromBase64(base64);
    const text = atob(base64), bytes = new Uint8Array(text.length);
    for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
    return bytes;
}

function unpacking(base64: string): ReadableStream {
    return new Blob([bytesOf(base64) as BlobPart]).stream().pipeThrough(new DecompressionStream("gzip"));
}

async function unpacked(base64: string): Promise<Uint8Array> {
    return new Uint8Array(await new Response(unpacking(base64)).arrayBuffer());
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
    let module: Module;
    const packed = document.getElementById("module")!.textContent!.trim();
    try {
        const pictures = unpacked(PICTURES.packed);
        module = await Module.load(unpacking(packed));
        const bytes = await pictures;
        let at = 0;
        for (const { name, width, height } of PICTURES.sizes) {
            const words = new Uint32Array(width * height);
            for (let i = 0; i < words.length; ++i, at += 3) words[i] = 0xff000000 | (bytes[at] << 16) | (bytes[at + 1] << 8) | bytes[at + 2];
            module.giveFile(name, words, width, height);
        }
    } catch (error) {
        return fail(`The module could not be started: ${(error as Error).message}`);
    }

    // Browsers refuse an address that changes too often, as while something is dragged.
    let waiting = 0;
    const keep = (link: HTMLAnchorElement) => {
        clearTimeout(waiting);
        const before = location.hash; // another one by then is another view, which is about to be shown
        waiting = window.setTimeout(() => location.hash === before && history.replaceState(null, "", link.href), 200);
    };
    const linkTo = (view: string) => document.querySelector<HTMLAnchorElement>(`header nav a[href^="#${view}"]`)!;
    const home = linkTo("play"), textLink = linkTo("text");
    const playground = new Playground(module, (text) => {
        home.href = `#play?${text}`;
        keep(home);
    });
    const text = new TextView(module, unpacked, (state) => {
        textLink.href = `#text?${state}`;
        keep(textLink);
    });
    const inspector = new Inspector(module, () => unpacked(packed));
    let pages: HTMLElement | null = null;
    const show = () => {
        clearTimeout(waiting);
        const raw = location.hash.slice(1), address = decoded(raw);
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
        } else if (view === "bench") {
            pages = benchmark(rest, (group) => (location.hash = `#bench/jobs?${group}`));
            document.title = "Benchmark - Ninefold";
        } else if (view === "text") {
            pages = text.root;
            document.title = "Text - Ninefold";
        } else {
            pages = playground.root;
        }
        if (body.firstChild !== pages) body.replaceChildren(pages);
        if (pages === playground.root) playground.show(rest);
        if (pages === text.root) void text.show(raw.slice(raw.indexOf("?") + 1 || raw.length));
        for (const link of document.querySelectorAll<HTMLAnchorElement>("header nav a"))
            link.toggleAttribute("aria-current", link.hash.slice(1).split("?")[0] === view || (link === home && pages === playground.root));
        const target = page.includes("/") && document.getElementById(page);
        if (target) target.scrollIntoView();
        else window.scrollTo(0, 0);
    };
    window.addEventListener("hashchange", show);
    show();

    // Captures, fonts and runs of the benchmark go to their views from anywhere, other files are pictures; on the view of captures all are taken for some.
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
        } else if (/\.(ttf|otf|ttc)$/i.test(file.name)) {
            if (pages !== text.root) location.hash = textLink.hash, show();
            void text.take(file);
        } else if (/\.csv$/i.test(file.name)) {
            await takeRun(file);
            location.hash = "#bench";
            show();
        } else {
            if (pages !== playground.root) location.hash = "#play", show();
            void playground.take(file);
        }
    });
    document.documentElement.dataset.ready = "yes";
    Object.assign(window, { ninefold: module }); // for the browser's console
}

void start();

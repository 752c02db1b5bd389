// Text by the library's glyph functions: what they put into the atlas, and what a kernel makes of it on the screen.
import { copyButton, h } from "./dom";
import { imageOf, type Drawn, type Module } from "./module";

// Put in when the page is built: the Latin font, packed, and the Japanese one, which lies in a file of its own beside the page.
declare const LATIN_FONT: string;
declare const OTHER_FONT: { name: string; file: string; size: number };
declare const FONT_NOTICES: string;

const samples = { latin: "Every glyph is drawn anew, into an atlas.", japanese: "吾輩は猫である。\nABC カタカナ ｶﾅ" };
const titles: Record<string, string> = { fontHeight: "Height, fontHeight", fontWeight: "Weight, fontWeight", fontItalic: "Italic, fontItalic" };

export class TextView {
    readonly root = h("main", { id: "text", class: "playground" });
    private state = new Map<string, string>();
    private readonly fonts: string[] = [];
    private readonly loading = new Map<string, Promise<unknown>>(); // what was begun

    private readonly canvas: HTMLCanvasElement;
    private readonly atlas: HTMLCanvasElement;
    private readonly message = h("p", { id: "text-message", role: "status" });
    private readonly words = h("textarea", { id: "text-words", rows: "3", spellcheck: "false" });
    private readonly controls = h("div", { id: "text-controls" });
    private readonly lines = h("code", { id: "text-lines" });
    private readonly findings = h("ul", { id: "text-findings" });
    private readonly glyphs = h("tbody", {});

    constructor(private readonly module: Module, private readonly unpacked: (base64: string) => Promise<Uint8Array>, private readonly address: (text: string) => void) {
        const { width, height, text } = module.description;
        const side = String(text.atlasSide);
        this.canvas = h("canvas", { id: "text-picture", width: String(width), height: String(height), role: "img", "aria-label": "The text on the screen" });
        this.atlas = h("canvas", { id: "text-atlas", width: side, height: side, role: "img", "aria-label": "The atlas" });
        this.words.maxLength = text.longest;
        this.words.addEventListener("input", () => this.set("text", this.words.value, false));
        const file = h("input", { type: "file", id: "text-file", accept: ".ttf,.otf,.ttc", change: () => file.files?.[0] && void this.take(file.files[0]) });
        const stage = h("div", { class: "stage" }, this.canvas);
        stage.style.setProperty("--zoom", "2");
        const head = ["Character", "Atlas x, y", "Size", "Origin", "Advance", "Pen"].map((title) => h("th", { scope: "col" }, title));
        this.root.append(
            h("section", { class: "view", "aria-label": "Text" },
                h("div", { class: "heading" }, h("h1", {}, "Text"), copyButton("Copy the link", () => `${location.href.split("#")[0]}#text?${this.encoded()}`)),
                h("p", {}, "A glyph function rasterises one character of code page 932 into the atlas; a kernel draws it from there like any other picture."),
                stage, this.message,
                h("h2", {}, "The atlas"), h("div", { class: "atlas" }, this.atlas),
                h("h2", {}, "What the debug twin says"), this.findings,
                h("h2", {}, "The same in C"), h("pre", { tabindex: "0", "aria-label": "C lines" }, this.lines), copyButton("Copy the lines", () => this.lines.textContent ?? "")),
            h("section", { class: "controls", "aria-label": "Controls" },
                h("h2", {}, h("label", { for: "text-words" }, "The text")), this.words,
                h("p", { class: "row" },
                    h("button", { type: "button", id: "sample-latin", click: () => this.sample(samples.latin, "") }, "A sample"),
                    h("button", { type: "button", id: "sample-japanese", click: () => this.sample(samples.japanese, OTHER_FONT.name) }, `A Japanese sample (loads ${OTHER_FONT.name}, ${(OTHER_FONT.size / 1e6).toFixed(1)} MB)`)),
                this.controls,
                h("p", { class: "row" }, h("label", { for: "text-file" }, "A font of your own, here or dropped on the page"), file),
                h("h2", {}, "What the glyph functions told"),
                h("div", { class: "scroll tall", tabindex: "0", role: "region", "aria-label": "Glyphs" }, h("table", {}, h("thead", {}, h("tr", {}, ...head)), this.glyphs)),
                h("details", {}, h("summary", {}, "Whose fonts and rasteriser these are"), h("pre", { class: "comment", tabindex: "0", "aria-label": "Notices" }, FONT_NOTICES))));
    }

    // The state that the address holds, its values percent-encoded.
    async show(encoded: string) {
        const state = new Map<string, string>();
        for (const pair of encoded.split("&")) {
            const equals = pair.indexOf("=");
            if (equals > 0) state.set(pair.slice(0, equals), decoded(pair.slice(equals + 1)));
        }
        if (!state.has("text")) state.set("text", samples.latin);
        this.state = state;
        this.words.value = state.get("text")!;
        await this.prepare();
        this.fill();
        this.draw();
        this.root.dataset.ready = "yes";
    }

    // The fonts that the state asks for.
    private async prepare() {
        try {
            await this.once("latin", async () => this.give(await this.unpacked(LATIN_FONT), "the page's Latin font"));
            if (this.state.get("font") === OTHER_FONT.name) await this.once(OTHER_FONT.name, () => this.loadOther());
        } catch (error) {
            this.state.delete("font");
            this.say((error as Error).message, true);
            return;
        }
        this.say("");
    }

    private once(what: string, load: () => Promise<unknown>): Promise<unknown> {
        if (!this.loading.has(what)) this.loading.set(what, load().catch((error) => { this.loading.delete(what); throw error; }));
        return this.loading.get(what)!;
    }

    // A script, as pages that were opened from a folder may read no other files.
    private loadOther(): Promise<void> {
        this.say(`Loading ${OTHER_FONT.name} ...`);
        return new Promise((resolve, reject) => {
            const script = h("script", {
                src: OTHER_FONT.file,
                error: () => reject(new Error(`${OTHER_FONT.file} does not lie beside the page; put it there, or drop a font's file.`)),
            });
            Object.assign(window, { ninefoldFont: (base64: string) => this.unpacked(base64).then((bytes) => { this.give(bytes, OTHER_FONT.name); script.remove(); }).then(resolve, reject) });
            document.head.append(script);
        });
    }

    private give(bytes: Uint8Array, what: string): string {
        const given = this.module.giveFont(bytes);
        if (!given.name) throw new Error(`${what}: ${given.error}`);
        this.fonts.push(given.name);
        return given.name;
    }

    // A font's file.
    async take(file: File) {
        await this.prepare();
        try {
            const name = this.give(new Uint8Array(await file.arrayBuffer()), file.name);
            this.set("font", name);
            this.say(`${file.name}: ${name}. It stays on this machine; a link does not carry it.`);
        } catch (error) {
            this.say((error as Error).message, true);
        }
    }

    private sample(text: string, font: string) {
        this.words.value = text;
        this.state.set("text", text);
        void this.change(font ? ["font", font] : ["font"]);
    }

    private async change([key, value]: [string, string?]) {
        if (value === undefined) this.state.delete(key);
        else this.state.set(key, value);
        await this.prepare();
        this.address(this.encoded());
        this.fill();
        this.draw();
    }

    // `fill`: the controls follow as well, which those that are in use must not.
    private set(key: string, value: string, fill = true) {
        this.state.set(key, value);
        this.say("");
        this.address(this.encoded());
        if (fill) this.fill();
        this.draw();
    }

    private encoded(): string {
        return [...this.state].map(([key, value]) => `${key}=${encodeURIComponent(value)}`).join("&");
    }

    private say(text: string, wrong = false) {
        this.message.textContent = text;
        this.message.className = wrong ? "wrong" : "";
    }

    private draw() {
        this.root.dataset.state = this.encoded();
        const font = this.state.get("font");
        if (font && !this.fonts.includes(font)) this.say(`The font '${font}' is not here; drop its file, or choose another.`, true);
        const result = this.module.text(font && this.fonts.includes(font) ? this.encoded() : `font=${encodeURIComponent(this.fonts[0] ?? "")}&${this.encoded().replace(/(^|&)font=[^&]*/, "")}`);
        if (result.error) return this.say(result.error, true);
        const drawn: Drawn = result.drawn!;
        const { width, text } = this.module.description;
        this.canvas.getContext("2d")!.putImageData(imageOf(this.module.pixels(), width), 0, 0);
        this.atlas.getContext("2d")!.putImageData(imageOf(this.module.atlas(), text.atlasSide, true), 0, 0);
        if (drawn.full) this.say(`The atlas was full after ${drawn.glyphs.length} glyphs.`, true);
        const characters = [...(this.state.get("text") ?? "").replaceAll("\n", "")];
        this.glyphs.replaceChildren(...drawn.glyphs.map((g, i) => h("tr", {}, h("th", { scope: "row" }, `${characters[i]} ${g.code}`),
            ...[`${g.x}, ${g.y}`, `${g.width} x ${g.height}`, `${g.originX}, ${g.originY}`, String(g.advance), `${g.penX}, ${g.penY}`].map((cell) => h("td", {}, cell)))));
        this.lines.textContent = drawn.c;
        this.findings.replaceChildren(...(result.findings ?? []).map((f) => h("li", { class: ["hint", "warning", "wrong"][f.severity] }, `${f.rule}: ${f.text} ${f.advice}`)));
        if (!result.findings?.length) this.findings.append(h("li", {}, "Nothing."));
    }

    private fill() {
        const { text, choices } = this.module.description;
        const focused = (document.activeElement as HTMLElement | null)?.id;
        const row = (id: string, title: string, control: HTMLElement, ...rest: (HTMLElement | undefined)[]) => h("p", { class: "row" }, h("label", { for: id }, title), control, ...rest);
        const select = (key: string, title: string, options: { word: string; title: string }[], value: string) => {
            const id = `text-${key}`;
            const list = h("select", { id, change: () => void this.change([key, list.value]) }, ...options.map((one) => h("option", { value: one.word, selected: one.word === value }, one.title)));
            return row(id, title, list);
        };
        const names = [...this.fonts, ...(this.fonts.includes(OTHER_FONT.name) ? [] : [OTHER_FONT.name])];
        const colour = Number(this.state.get("color") ?? 0xffffffff);
        const hue = h("input", { type: "color", id: "text-color", value: `#${(colour & 0xffffff).toString(16).padStart(6, "0")}`, input: () => this.set("color", String((0xff000000 | parseInt(hue.value.slice(1), 16)) >>> 0), false) });
        this.controls.replaceChildren(
            select("style", "Glyph function", text.styles, this.state.get("style") ?? text.styles[0].word),
            select("font", "Font, fontName", names.map((name) => ({ word: name, title: name })), this.state.get("font") ?? this.fonts[0]),
            ...text.fields.map((field) => {
                const id = `text-${field.name}`;
                const value = this.state.get(field.name) ?? String(field.first);
                if (field.most === 1) {
                    const check = h("input", { type: "checkbox", id, checked: value === "1", change: () => this.set(field.name, check.checked ? "1" : "0", false) });
                    return row(id, titles[field.name], check);
                }
                const output = h("output", {}, value);
                const slider = h("input", {
                    type: "range", id, min: String(field.least), max: String(field.most), value, title: field.meaning,
                    input: () => { output.textContent = slider.value; this.set(field.name, slider.value, false); },
                });
                return h("div", {}, row(id, titles[field.name], slider, output), h("p", { class: "meaning" }, field.meaning));
            }),
            select("fontQuality", "Quality, fontQuality", text.qualities, this.state.get("fontQuality") ?? text.quality),
            row("text-color", "Colour, color[0]", hue),
            select("back", "On the screen before", choices.back.filter((one) => one.word !== "dropped"), this.state.get("back") ?? text.back));
        if (focused) document.getElementById(focused)?.focus();
    }
}

export function decoded(text: string): string {
    try {
        return decodeURIComponent(text);
    } catch {
        return text; // a sign of percent that encodes nothing
    }
}

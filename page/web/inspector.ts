// The inspector: a capture's frames and draws, step by step.
import { Capture, type CaptureList, type Shown, type Step } from "./capture";
import { h } from "./dom";
import { imageOf, type Module } from "./module";
import { titleOf } from "./playground";

const titles: Record<string, string> = {
    after: "After", before: "Before", difference: "Difference", overdraw: "Overdraw", plane: "Shahei plane", priorities: "Priorities",
};
const meanings: Record<string, string> = {
    after: "The frame buffer after the step.", before: "The frame buffer before the draw.",
    difference: "What the draw changed; the rest is grey.",
    overdraw: "How often draws of this frame changed each pixel so far: black never, then red, yellow, white.",
    plane: "The Shahei plane after the draw; white is taken.", priorities: "The priority plane after the draw; brighter is higher.",
};
const rowHeight = 24;
const largestFile = 1 << 30;

export const captureMagic = [0x89, 0x4e, 0x46, 0x43, 0x0d, 0x0a, 0x1a, 0x0a];
const count = (number: number, thing: string) => `${number.toLocaleString("en")} ${thing}${number === 1 ? "" : "s"}`;
const inTime = (ns: number) => (ns < 1000 ? `${Math.round(ns)} ns` : ns < 1e6 ? `${(ns / 1e3).toFixed(1)} µs` : `${(ns / 1e6).toFixed(2)} ms`);

function download(blob: Blob, name: string) {
    const link = h("a", { href: URL.createObjectURL(blob), download: name });
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

export class Inspector {
    readonly root = h("main", { id: "capture", class: "capture" });
    private capture: Capture | null = null;
    private list!: CaptureList;
    private rows: number[] = []; // indices of the steps that the list holds
    private frames = new Map<number, { draws: number; nanoseconds: number }>();
    private longest = 1;
    private at = 0; // the step that is shown
    private shown!: Shown;
    private view = "after";
    private edits = new Map<string, string>();
    private file = "";
    private opening = 0;
    private later = 0; // a timer

    private readonly title = h("h1", {}, "Capture");
    private readonly message = h("p", { id: "capture-message", role: "status" });
    private readonly progress = h("progress", { id: "capture-progress", max: "100", hidden: true, "aria-label": "Drawing the capture" });
    private readonly body = h("div", { class: "stepping", hidden: true });
    private readonly filter = h("input", { id: "step-filter", type: "text", spellcheck: "false", autocomplete: "off", placeholder: "part of a name; or a draw's number", input: () => this.fillRows(), keydown: (event) => event.key === "Enter" && this.find() });
    private readonly inner = h("div", { role: "presentation" });
    private readonly steps = h("div", { id: "steps", role: "listbox", tabindex: "0", "aria-label": "Draws and ends of frames" }, this.inner);
    private readonly slider = h("input", { id: "step-slider", type: "range", min: "0", "aria-label": "Step", input: () => this.go(Number(this.slider.value)) });
    private readonly heading = h("h2", { id: "step-title" });
    private readonly result = h("p", { id: "step-result" });
    private readonly tabs = h("div", { class: "values", role: "group", "aria-label": "What is shown" });
    private whole = () => {}; // says what the capture is as a whole
    private readonly zoom = h("select", { id: "capture-zoom", change: () => this.place() }, ...["fit", "1", "2", "4"].map((one) => h("option", { value: one }, one === "fit" ? "to fit" : `${one} times`)));
    private readonly canvas = h("canvas", { id: "shown", role: "img" });
    private readonly meaning = h("p", { class: "meaning" });
    private readonly textures = h("div", { id: "textures", class: "cards small" });
    private readonly words = h("pre", { id: "step-words", tabindex: "0", "aria-label": "The code in words" });
    private readonly all = h("input", { id: "all-fields", type: "checkbox", change: () => this.fillState() });
    private readonly axes = h("div", { id: "edit-axes" });
    private readonly cells = h("tbody", {});
    private readonly reset = h("button", { id: "as-recorded", type: "button", click: () => this.setEdits(new Map()) }, "As recorded");
    private readonly exports = h("p", { class: "row" });

    constructor(private readonly module: Module, private readonly wasm: () => Promise<Uint8Array>) {
        const choose = h("input", { id: "capture-file", type: "file", accept: ".nfc", change: () => { const file = choose.files?.[0]; choose.value = ""; if (file) void this.open(file); } });
        const button = (id: string, label: string, text: string, to: () => number) => h("button", { id, type: "button", "aria-label": label, title: label, click: () => this.go(to()) }, text);
        const save = (id: string, text: string, act: () => void) => h("button", { id, type: "button", click: () => this.guarded(act) }, text);
        this.exports.append(save("save-png", "Picture as PNG", () => this.savePng()), save("save-program", "Draw as a C program", () => this.saveProgram()),
            save("save-capture", "Draw as a capture of its own", () => this.saveCapture()));
        this.body.append(
            h("section", { "aria-label": "Steps" },
                h("p", { class: "row" }, h("label", { for: "step-filter" }, "Only kernels with"), this.filter), this.steps),
            h("section", { "aria-label": "The step" },
                this.heading,
                h("div", { class: "row" },
                    button("first-step", "First step", "|<", () => 0), button("frame-back", "Frame before", "<<", () => this.frameEnd(-1)),
                    button("step-back", "Step back, left arrow", "<", () => this.at - 1), button("step-on", "Step forwards, right arrow", ">", () => this.at + 1),
                    button("frame-on", "Next frame", ">>", () => this.frameEnd(1)), button("last-step", "Last step", ">|", () => this.list.steps.length - 1), this.slider),
                h("p", { class: "meaning" }, "Left and right arrow keys step, too."),
                this.result, this.tabs,
                h("p", { class: "row" }, h("label", { for: "capture-zoom" }, "Shown"), this.zoom),
                h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Picture" }, this.canvas), this.meaning, this.exports,
                h("h3", {}, "Textures that it reads"), this.textures),
            h("section", { "aria-label": "State" },
                h("h2", {}, "State"), this.words, this.axes,
                h("p", { class: "row" }, h("label", { class: "check" }, this.all, "also fields that are 0"), this.reset),
                h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Fields of rs" },
                    h("table", { id: "fields-of-rs" }, h("caption", {}, "rs before the draw. Marked: new since the draw before. Numbers can be edited: the draw is then made anew."),
                        h("thead", {}, h("tr", {}, ...["Field", "Value", "Draw before"].map((text) => h("th", { scope: "col" }, text)))), this.cells))));
        this.root.append(this.title,
            h("p", { class: "row" }, h("label", { for: "capture-file" }, "A capture file, here or dropped anywhere on the page"), choose),
            h("p", { class: "meaning" }, "Files come from ", h("code", {}, "ninefold-debug --capture game.nfc ./game"), " and stay on this machine."),
            this.message, this.progress, this.body);
        this.steps.addEventListener("scroll", () => this.paintRows());
        new ResizeObserver(() => this.paintRows()).observe(this.steps);
        this.steps.addEventListener("click", (event) => {
            const row = (event.target as Element).closest<HTMLElement>("[role=option]");
            if (row) this.go(Number(row.dataset.step));
        });
        this.root.addEventListener("keydown", (event) => this.key(event));
    }

    // ---- files ----

    async open(file: File) {
        const turn = ++this.opening;
        this.body.hidden = true;
        this.title.textContent = this.file = file.name;
        document.title = `${file.name} - Ninefold`;
        this.progress.hidden = false;
        this.progress.value = 0;
        this.say("Reading ...");
        try {
            if (file.size > largestFile) throw new Error("it is larger than 1 GiB, which a page does not hold; ninefold-replay trim cuts it down");
            const bytes = new Uint8Array(await file.arrayBuffer());
            const fresh = await Capture.load(await this.wasm());
            if (turn !== this.opening) return;
            this.capture = fresh;
            const wrong = this.capture.open(bytes);
            if (wrong) throw new Error(wrong);
            for (let done = false; !done;) {
                const now = this.capture.scan(40);
                done = now.done;
                this.progress.value = now.part;
                this.say(`Drawing: ${count(now.steps, "step")} ...`);
                await new Promise((resolve) => setTimeout(resolve));
                if (turn !== this.opening) return;
            }
            this.list = this.capture.list();
        } catch (error) {
            if (turn !== this.opening) return;
            this.capture = null;
            this.progress.hidden = true;
            return this.say(`${file.name}: ${this.reason(error)}`, true);
        }
        this.progress.hidden = true;
        this.present();
    }

    private reason(error: unknown): string {
        const { message } = error as Error;
        if (error instanceof RangeError || (error instanceof WebAssembly.RuntimeError && /abort/i.test(message))) return "there is not enough memory to draw it";
        return error instanceof WebAssembly.RuntimeError ? `drawing it failed (${message})` : message;
    }

    // Runs what may end for want of memory; the module is of no use afterwards.
    private guarded(act: () => void) {
        try {
            act();
        } catch (error) {
            this.body.hidden = true;
            this.capture = null;
            this.say(`${this.file}: ${this.reason(error)}`, true);
        }
    }

    private say(text: string, wrong = false) {
        this.message.textContent = text;
        this.message.className = wrong ? "wrong" : "";
    }

    private present() {
        const { list } = this;
        this.frames.clear();
        this.longest = 1;
        let otherwise = 0, missing = 0, total = 0;
        for (const step of list.steps) {
            const frame = this.frames.get(step.frame) ?? { draws: 0, nanoseconds: 0 };
            this.frames.set(step.frame, frame);
            if (step.name >= 0) ++frame.draws;
            frame.nanoseconds += step.nanoseconds;
            total += step.nanoseconds;
            this.longest = Math.max(this.longest, step.nanoseconds);
            otherwise += step.state === 1 ? 1 : 0;
            missing += step.state === 2 ? 1 : 0;
        }
        const said = [`${count(list.draws, "draw")} in ${count(list.frames, "frame")}, ${inTime(total)} in kernels here.`];
        if (list.notes.library) said.push(`Recorded by library ${list.notes.library}.`);
        if (otherwise) said.push(`${count(otherwise, "step")} not as recorded.`);
        if (missing) said.push(`${count(missing, "draw")} could not be made.`);
        if (list.lost) said.push(`${count(list.lost, "draw")} could not be recorded, because memory that they need was missing.`);
        if (list.problem) said.push(`The file is not whole: ${list.problem}. It goes up to draw ${list.draws.toLocaleString("en")}.`);
        this.whole = () => this.say(said.join(" "), Boolean(list.problem || otherwise || missing));
        this.whole();
        this.body.hidden = !list.steps.length;
        if (!list.steps.length) return;
        this.slider.max = String(list.steps.length - 1);
        this.filter.value = "";
        this.at = -1;
        this.fillRows();
        this.go(0);
    }

    // ---- the list ----

    private label(step: Step): string {
        if (step.name >= 0) return `${step.number} ${this.list.names[step.name]}`;
        const frame = this.frames.get(step.frame)!;
        return `End of frame ${step.number}, ${count(frame.draws, "draw")}`;
    }

    private fillRows() {
        const text = this.filter.value.trim().toLowerCase(), wanted = /^\d+$/.test(text) ? "" : text;
        const fits = this.list.names.map((name) => name.toLowerCase().includes(wanted));
        this.rows = [];
        this.list.steps.forEach((step, index) => { if (!wanted || (step.name >= 0 && fits[step.name])) this.rows.push(index); });
        this.inner.style.height = `${this.rows.length * rowHeight}px`;
        this.paintRows();
    }

    // To the draw of the number that was typed.
    private find() {
        const draw = Number(this.filter.value.trim().replaceAll(",", "") || NaN);
        const step = this.list.steps.findIndex((one) => one.name >= 0 && one.number === draw);
        if (step < 0) return;
        this.filter.value = "";
        this.fillRows();
        this.go(step);
    }

    // The rows that can be seen, and a few beside them.
    private paintRows() {
        if (this.body.hidden) return;
        const first = Math.max(0, Math.floor(this.steps.scrollTop / rowHeight) - 5);
        const end = Math.min(this.rows.length, Math.ceil((this.steps.scrollTop + this.steps.clientHeight) / rowHeight) + 5);
        const rows: HTMLElement[] = [];
        for (let k = first; k < end; ++k) {
            const index = this.rows[k];
            const step = this.list.steps[index];
            const frame = step.name < 0;
            const time = frame ? this.frames.get(step.frame)!.nanoseconds : step.nanoseconds;
            const row = h("div", {
                role: "option", id: `step-${index}`, "data-step": String(index), class: frame ? "frame" : "", "aria-selected": String(index === this.at),
                "aria-setsize": String(this.rows.length), "aria-posinset": String(k + 1),
            }, h("span", {}, this.label(step)), h("span", { class: step.state ? "wrong" : "" }, step.state === 2 ? "not made" : step.state ? "not as recorded" : inTime(time)));
            row.style.top = `${k * rowHeight}px`;
            if (!frame) row.style.setProperty("--part", `${((100 * time) / this.longest).toFixed(1)}%`);
            rows.push(row);
        }
        this.inner.replaceChildren(...rows);
        if (document.getElementById(`step-${this.at}`)) this.steps.setAttribute("aria-activedescendant", `step-${this.at}`);
        else this.steps.removeAttribute("aria-activedescendant");
    }

    private reveal() {
        const row = this.rows.indexOf(this.at);
        if (row < 0) return;
        const top = row * rowHeight;
        if (top < this.steps.scrollTop) this.steps.scrollTop = top;
        else if (top + rowHeight > this.steps.scrollTop + this.steps.clientHeight) this.steps.scrollTop = top + rowHeight - this.steps.clientHeight;
    }

    // The nearest frame's end before or behind.
    private frameEnd(way: number): number {
        let to = this.at + way;
        while (to > 0 && to < this.list.steps.length - 1 && this.list.steps[to].name >= 0) to += way;
        return to;
    }

    private key(event: KeyboardEvent) {
        const target = event.target as HTMLElement;
        if (this.body.hidden || event.ctrlKey || event.altKey || event.metaKey || target.closest("input, select, textarea")) return;
        const inList = target === this.steps;
        const row = this.rows.indexOf(this.at);
        const page = Math.max(1, Math.floor(this.steps.clientHeight / rowHeight) - 1);
        const along = (by: number) => this.rows[Math.min(Math.max((row < 0 ? 0 : row) + by, 0), this.rows.length - 1)] ?? this.at;
        const to = event.key === "ArrowLeft" ? this.at - 1 : event.key === "ArrowRight" ? this.at + 1
            : !inList ? undefined
            : event.key === "ArrowUp" ? along(-1) : event.key === "ArrowDown" ? along(1) : event.key === "PageUp" ? along(-page) : event.key === "PageDown" ? along(page)
            : event.key === "Home" ? along(-Infinity) : event.key === "End" ? along(Infinity) : undefined;
        if (to === undefined) return;
        event.preventDefault();
        this.go(to);
    }

    // ---- the step ----

    private go(step: number) {
        const to = Math.min(Math.max(step, 0), this.list.steps.length - 1);
        if (!this.capture || to === this.at) return;
        this.guarded(() => {
            this.edits.clear();
            this.shown = this.capture!.show(to);
            if (this.shown.error) throw new Error(this.shown.error);
            this.at = to;
            this.slider.value = String(to);
            this.slider.setAttribute("aria-valuetext", this.label(this.list.steps[to]));
            const entry = this.list.steps[to];
            // Measured for longer, and with a kernel that the browser has got to know.
            if (this.shown.nanoseconds) entry.nanoseconds = this.shown.nanoseconds;
            this.reveal();
            this.paintRows();
            this.fill();
        });
    }

    private setEdits(edits: Map<string, string>) {
        this.guarded(() => {
            const shown = this.capture!.edit([...edits].map((pair) => pair.join("=")).join("&"));
            if (shown.error) return this.say(shown.error, true);
            this.whole();
            this.edits = edits;
            this.shown = shown;
            this.fill();
        });
    }
    private change(key: string, value: string) {
        this.setEdits(new Map(this.edits).set(key, value.trim()));
    }

    private fill() {
        const s = this.shown;
        this.heading.textContent = s.draw ? `Draw ${s.draw.toLocaleString("en")} of frame ${s.frame}: ${s.name}${s.edited ? ", edited" : ""}` : `End of frame ${s.frame}`;
        this.result.className = "";
        if (!s.draw) {
            this.result.textContent = `${s.cut === "SetFrameBuffer" ? "The program called SetFrameBuffer" : s.cut === "mark" ? "The program marked it" : s.cut === "pause" ? "The program paused" : "The capture ends"}. The picture is ${s.asRecorded ? "as recorded" : "not as recorded"}.`;
        } else if (s.refusal) {
            this.result.textContent = `${s.edited ? "It cannot be drawn so" : "The draw was not made"}: ${s.refusal}`;
            this.result.className = "wrong";
        } else {
            const reach = s.reach ? `It reaches pixels ${s.reach[0]} to ${s.reach[2] - 1} of rows ${s.reach[1]} to ${s.reach[3] - 1}; ${count(s.changed, "pixel")} changed.` : "It reaches no pixel.";
            const as = s.edited ? "" : !s.hasResult ? " The capture ends in this draw, without its result." : s.differences ? ` Not as recorded: ${s.differences}.` : " The result is as recorded.";
            this.result.textContent = `${reach} ${inTime(s.nanoseconds)} here, ${inTime(s.recorded)} where it was recorded.${as}`;
            if (as.startsWith(" Not")) this.result.className = "wrong";
        }
        if (!s.views.includes(this.view)) this.view = "after";
        this.tabs.replaceChildren(...s.views.map((view) => h("label", {}, h("input", { type: "radio", name: "capture-view", id: `view-${view}`, checked: view === this.view, change: () => { this.view = view; this.guarded(() => this.paint()); } }), titles[view])));
        this.paint();
        // Large ones take their time, which steps in quick succession do not.
        clearTimeout(this.later);
        this.later = window.setTimeout(() => this.capture && this.guarded(() => this.fillTextures()), 80);
        this.words.hidden = !s.words;
        this.words.textContent = s.words ?? "";
        for (const id of ["save-program", "save-capture"]) (this.exports.querySelector(`#${id}`) as HTMLButtonElement).disabled = !s.reach;
        this.fillAxes();
        this.fillState();
    }

    private fillTextures() {
        this.textures.replaceChildren(...this.shown.textures.flatMap((texture) => {
            const picture = this.capture!.view(String(texture.index));
            if (!picture) return [];
            const name = `${texture.field}${texture.level ? `, level ${texture.level}` : ""}: ${texture.name}`;
            const canvas = h("canvas", { width: String(picture.width), height: String(picture.height), role: "img", "aria-label": name });
            canvas.getContext("2d")!.putImageData(imageOf(picture.words, picture.width, true), 0, 0);
            return [h("figure", {}, canvas, h("figcaption", {}, name))];
        }));
        if (!this.textures.firstChild) this.textures.append(h("p", {}, "None."));
    }

    private paint() {
        const picture = this.capture!.view(this.view);
        this.meaning.textContent = picture ? meanings[this.view] : "The frame buffer's size is not known: there is no picture.";
        this.canvas.width = picture?.width ?? 1, this.canvas.height = picture?.height ?? 1;
        this.canvas.setAttribute("aria-label", `${titles[this.view]}: ${this.heading.textContent}`);
        if (picture) this.canvas.getContext("2d")!.putImageData(imageOf(picture.words, picture.width), 0, 0);
        this.place();
    }
    private place() {
        this.canvas.style.width = this.zoom.value === "fit" ? "100%" : `${this.canvas.width * Number(this.zoom.value)}px`;
        this.canvas.style.maxWidth = this.zoom.value === "fit" ? `${this.canvas.width * 4}px` : "none";
    }

    // ---- its state ----

    private fillAxes() {
        const s = this.shown;
        const focused = document.activeElement?.id;
        this.axes.replaceChildren();
        if (!s.kernel) return;
        const look = this.module.look(`name=${s.name}`);
        const selects = this.module.description.axes.map((axis, i) => {
            const id = `edit-${axis.key}`;
            const select = h("select", { id, change: () => this.change("name", look.axes[i].values[select.selectedIndex].leads) },
                ...axis.values.map((value, k) => h("option", { selected: value.value === look.axes[i].value }, `${value.value} ${value.word || value.meaning}${look.axes[i].values[k].why ? ", with changes of others" : ""}`)));
            return h("label", { for: id }, titleOf(axis.key, true), select);
        });
        this.axes.append(h("fieldset", {}, h("legend", {}, "Draw code"), h("div", { class: "axes" }, ...selects)));
        if (focused?.startsWith("edit-")) document.getElementById(focused)?.focus();
    }

    private fillState() {
        const focused = document.activeElement?.id;
        this.reset.disabled = !this.shown.edited;
        this.cells.replaceChildren(...this.shown.cells.filter((cell) => this.all.checked || !cell.zero || cell.isNew || cell.edited).map((cell) => {
            const id = `rs-${cell.name}`;
            const input = h("input", { id, type: "text", value: cell.value, "aria-label": `rs.${cell.name}`, size: "12", spellcheck: "false", autocomplete: "off",
                // When the focus is where it goes: it would be lost with a field that is made anew.
                change: () => setTimeout(() => this.change(cell.name, input.value)) });
            return h("tr", { class: cell.edited ? "edited" : cell.isNew ? "new" : "" },
                h("th", { scope: "row" }, cell.name, cell.edited ? " (edited)" : cell.isNew ? " *" : ""), h("td", {}, cell.number ? input : cell.text), h("td", {}, cell.isNew && cell.number ? cell.was : ""));
        }));
        if (focused?.startsWith("rs-")) document.getElementById(focused)?.focus();
    }

    // ---- downloads ----

    private name(): string {
        const step = this.list.steps[this.at];
        return `${this.file.replace(/\.nfc$/, "")}-${step.name < 0 ? "frame" : "draw"}-${step.number}`;
    }
    private savePng() {
        this.canvas.toBlob((blob) => blob && download(blob, `${this.name()}-${this.view}.png`), "image/png");
    }
    private saveProgram() {
        const text = this.capture!.program(this.file);
        if (text) download(new Blob([text], { type: "text/x-c" }), `${this.name()}.c`);
    }
    private saveCapture() {
        const bytes = this.capture!.trim();
        if (bytes.length) download(new Blob([bytes as BlobPart]), `${this.name()}.nfc`);
        else this.say("The draw could not be recorded.", true);
    }
}

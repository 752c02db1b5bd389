// The playground: one draw, everything that its kernel reads as controls, and what comes of it.
import { copyButton, h, svg } from "./dom";
import { imageOf, type Description, type Field, type Look, type Module } from "./module";
import { readPicture } from "./pictures";
import { State } from "./state";

const titles: Record<string, string> = {
    shape: "Shape", rectOpt: "Rect option", filter: "Filter", blend: "Blend", shahei: "Shahei mode", multi: "Multi stage",
    pers: "Perspective", rule: "Rule", prescale: "Prescale", back: "On the screen before", tex0: "Picture, tex0",
    tex1: "Second picture, tex1", tex2: "Rule picture, tex2", plane: "Shahei plane", priority: "Priority plane",
    table0: "Line table of tex0", table1: "Line table of tex1", shift: "Shift of spans, scanShift", operator: "blendFunc",
    bank: "Bank of multi operators", curve: "Curve of the rule", stipple: "Stipple",
};
export const titleOf = (key: string, axis: boolean) => (key === "multi" && !axis ? "Multi operator" : titles[key] ?? key);

export const first = "name=rect.stretch.bilinear.alphafast";
const magnified = 11; // pixels each way of the magnifier
const otherKey = "other"; // of the address alone: the name of a combination to compare with

const hex8 = (word: number) => (word >>> 0).toString(16).toUpperCase().padStart(8, "0");

export class Playground {
    readonly root = h("main", { id: "playground", class: "playground" });
    private readonly d: Description;
    private state = State.parse(first);
    private look!: Look;
    private probed = { x: 128, y: 96 };
    private zoom = 2;
    private timer = 0;
    private words: Uint32Array = new Uint32Array();

    private readonly title = h("h1", {});
    private readonly code = h("code", { id: "code" });
    private readonly canvas = h("canvas", { id: "picture", width: "256", height: "192", tabindex: "0", role: "img", "aria-label": "The picture; arrow keys move the pixel that is inspected" });
    private readonly overlay = svg("svg", { viewBox: "0 0 256 192", class: "handles" });
    private readonly stage = h("div", { class: "stage" }, this.canvas, this.overlay);
    private readonly message = h("p", { id: "message", role: "status" });
    private readonly speed = h("p", { id: "speed" });
    private readonly actual = h("canvas", { id: "actual", width: "256", height: "192", role: "img", "aria-label": "The picture in real pixels" });
    private readonly magnifier = h("canvas", { id: "magnifier", width: String(magnified), height: String(magnified), role: "img", "aria-label": "The pixels around the inspected one" });
    private readonly inspected = h("dl", { id: "inspected" });
    private readonly axes = h("div", { id: "axes" });
    private readonly choices = h("div", { id: "choices" });
    private readonly fields = h("div", { id: "fields" });
    private readonly lines = h("code", { id: "lines" });
    private readonly findings = h("ul", { id: "findings" });
    private readonly planes = { taken: false, priorities: false };
    private readonly search = h("input", { id: "find", type: "text", spellcheck: "false", autocomplete: "off" });
    private readonly other = h("input", { id: "other", type: "text", spellcheck: "false", autocomplete: "off", placeholder: "name or code" });
    private readonly comparison = h("div", { id: "comparison" });

    constructor(private readonly module: Module, private readonly address: (text: string) => void) {
        this.d = module.description;
        this.build();
    }

    // The state that the address holds.
    show(text: string) {
        this.state = State.parse(text || first);
        this.search.value = "";
        this.other.value = this.state.get(otherKey) ?? "";
        this.update(false);
    }

    private build() {
        const check = (id: "taken" | "priorities", label: string) =>
            h("label", { class: "check" }, h("input", { type: "checkbox", id: `show-${id}`, change: (event) => { this.planes[id] = event.target.checked; this.paint(); } }), label);
        const zoom = h("select", { id: "zoom", change: () => { this.zoom = Number(zoom.value); this.stage.style.setProperty("--zoom", zoom.value); } },
            ...[1, 2, 3, 4].map((n) => h("option", { value: String(n), selected: n === 2 }, `${n} times`)));
        this.stage.style.setProperty("--zoom", "2");
        const go = (event: Event) => {
            event.preventDefault();
            const name = this.module.find(this.search.value.trim());
            if (name) this.go(this.state.named(name));
            else this.say(`There is no combination '${this.search.value}'. Names are words joined by full stops, codes hexadecimal, such as 0x40769.`, true);
        };
        const compare = (event: Event) => {
            event.preventDefault();
            const text = this.other.value.trim();
            const name = text && this.module.find(text);
            if (text && !name) this.say(`There is no combination '${text}' to compare with.`, true);
            else this.go(name ? this.state.with(otherKey, name) : this.state.without(otherKey));
        };
        const file = h("input", { type: "file", id: "file", accept: "image/*", change: () => file.files?.[0] && this.take(file.files[0]) });
        this.root.append(
            h("section", { class: "view", "aria-label": "Picture" },
                h("div", { class: "heading" }, this.title, this.code,
                    copyButton("Copy the link", () => `${location.href.split("#")[0]}#play?${this.state}`), // the address follows later
                    h("button", { type: "button", id: "reset", click: () => this.go(State.parse(`name=${this.state.name}`)) }, "Start over")),
                h("form", { class: "row", submit: go }, h("label", { for: "find" }, "Go to a name or code"), this.search, h("button", { type: "submit" }, "Go")),
                this.stage,
                h("div", { class: "row" }, h("label", { for: "zoom" }, "Shown"), zoom, check("taken", "Shahei plane"), check("priorities", "priorities")),
                this.message, this.speed,
                h("div", { class: "inspector" }, this.magnifier, this.inspected, h("figure", {}, this.actual, h("figcaption", {}, "Real pixels"))),
                h("h2", {}, "What the debug twin says"), this.findings,
                h("h2", {}, "Beside another combination"),
                h("form", { class: "row", submit: compare }, h("label", { for: "other" }, "Compare with"), this.other, h("button", { type: "submit" }, "Compare")),
                this.comparison,
                h("h2", {}, "The same in C"),
                h("pre", { tabindex: "0", "aria-label": "C lines" }, this.lines), copyButton("Copy the lines", () => this.look.c)),
            h("section", { class: "controls", "aria-label": "Controls" },
                h("h2", {}, "The nine axes"), this.axes,
                h("h2", {}, "What the kernel reads"), this.choices,
                h("p", { class: "row" }, h("label", { for: "file" }, "A picture of your own, here or dropped on the page"), file),
                this.fields));
        this.canvas.addEventListener("pointerdown", (event) => this.probeAt(this.place(event)));
        this.canvas.addEventListener("keydown", (event) => {
            const [x, y] = arrow(event);
            if (x || y) { event.preventDefault(); this.probeAt({ x: this.probed.x + x, y: this.probed.y + y }); }
        });
    }

    // A picture of the user's.
    async take(file: File) {
        try {
            const picture = await readPicture(file);
            this.module.giveDropped(picture.words, picture.width, picture.height);
            this.go(this.state.with("tex0", "dropped").without("uv0"));
            this.say(`${file.name}: ${picture.width} x ${picture.height} pixels. It stays on this machine; a link does not carry it.`);
        } catch (error) {
            this.say((error as Error).message, true);
        }
    }

    private say(text: string, wrong = false) {
        this.message.textContent = text;
        this.message.className = wrong ? "wrong" : "";
    }

    private go(state: State) {
        this.state = state;
        this.update(true);
    }

    // The same while a slider moves, which has to stay what it is: only what is shown changes.
    private slide(state: State) {
        this.state = state;
        this.root.dataset.state = state.toString();
        this.address(state.toString());
        this.look = this.module.look(this.text());
        this.lines.textContent = this.look.c;
        this.draw();
    }

    // Its name and all that follows from it; `keep` puts it into the address too.
    private update(keep: boolean) {
        const text = this.text();
        const look = this.module.look(text);
        this.root.dataset.state = this.state.toString();
        if (keep) this.address(this.state.toString());
        if (look.error) {
            this.say(look.error, true);
            if (!this.look) { this.state = State.parse(first); this.update(false); this.say(look.error, true); }
            return;
        }
        this.say(look.draws ? "" : "This kernel draws nothing: a mip level for each line is chosen under a line table only.");
        this.look = look;
        if (this.title.textContent !== look.name) this.speed.textContent = ""; // another kernel's
        this.title.textContent = look.name;
        this.code.textContent = look.code;
        this.lines.textContent = look.c;
        document.title = `${look.name} - Ninefold`;
        const focused = (document.activeElement as HTMLElement | null)?.id;
        this.fillAxes();
        this.fillChoices();
        this.fillFields();
        this.fillHandles();
        if (focused) document.getElementById(focused)?.focus();
        this.draw();
    }

    private text(): string {
        return this.state.without(otherKey).toString();
    }

    private draw() {
        const text = this.text();
        const drawn = this.module.draw(text);
        if (drawn.error) return this.say(drawn.error, true);
        this.words = this.module.pixels();
        this.findings.replaceChildren(...(drawn.findings ?? []).map((f) => h("li", { class: ["hint", "warning", "wrong"][f.severity] }, `${f.rule}: ${f.text} ${f.advice}`)));
        if (!drawn.findings?.length) this.findings.append(h("li", {}, "Nothing."));
        this.paint();
        this.compare();
        this.probe();
        this.measure(text, Infinity, [250, 1500, 3000]);
    }

    // Measures after each of the delays; the quickest counts, as browsers compile code better while it runs.
    private measure(text: string, best: number, delays: number[]) {
        clearTimeout(this.timer);
        if (!delays.length) return;
        this.timer = window.setTimeout(() => {
            const time = this.module.time(text, 8);
            const ns = Math.min(best, time.ns);
            this.speed.textContent = time.pixels && ns > 0
                ? `${(ns / time.pixels).toFixed(2)} ns a pixel here: ${(ns / 1000).toFixed(1)} µs for ${time.pixels} pixels that the shape covers`
                : "The shape covers no pixel.";
            this.measure(text, ns, delays.slice(1));
        }, delays[0]);
    }

    // The frame on the canvases, with the planes over the large one.
    private paint() {
        const image = imageOf(this.words, this.d.width);
        this.actual.getContext("2d")!.putImageData(image, 0, 0);
        if (this.planes.taken || this.planes.priorities) {
            this.module.draw(this.text());
            const taken = this.module.taken(), priorities = this.module.priorities();
            for (let i = 0; i < this.words.length; ++i) {
                const at = 4 * i;
                if (this.planes.priorities)
                    for (let c = 0; c < 3; ++c) image.data[at + c] = (image.data[at + c] + 3 * priorities[i]) >> 2;
                if (this.planes.taken && (taken[i >> 4] >> (15 - (i & 15))) & 1) image.data[at] = (image.data[at] + 255) >> 1;
            }
        }
        this.canvas.getContext("2d")!.putImageData(image, 0, 0);
    }

    private compare() {
        const name = this.state.get(otherKey);
        if (!name) return this.comparison.replaceChildren();
        const mine = this.words;
        const drawn = this.module.draw(State.parse(this.text()).named(name).toString());
        if (drawn.error) return this.comparison.replaceChildren(h("p", { class: "wrong" }, drawn.error));
        const others = this.module.pixels();
        const difference = new Uint32Array(mine.length);
        let count = 0, largest = 0;
        for (let i = 0; i < mine.length; ++i) {
            let word = 0;
            for (const shift of [16, 8, 0]) {
                const one = Math.abs(((mine[i] >> shift) & 255) - ((others[i] >> shift) & 255));
                largest = Math.max(largest, one);
                word |= Math.min(255, one * 4) << shift;
            }
            count += word ? 1 : 0;
            difference[i] = word;
        }
        const figure = (id: string, words: Uint32Array, caption: string) => {
            const canvas = h("canvas", { id, width: "256", height: "192", role: "img", "aria-label": caption });
            canvas.getContext("2d")!.putImageData(imageOf(words, this.d.width), 0, 0);
            return h("figure", {}, canvas, h("figcaption", {}, caption));
        };
        this.comparison.replaceChildren(figure("own-picture", mine, this.state.name), figure("other-picture", others, name), figure("difference", difference, "Difference, times 4"),
            h("p", { id: "differences" }, count ? `${count} pixels differ in colour, by up to ${largest} in a channel.` : "No pixel differs in colour."));
        this.module.draw(this.text());
    }

    // ---- pixels ----

    private place(event: MouseEvent): { x: number; y: number } {
        const box = this.stage.getBoundingClientRect();
        return { x: Math.floor(((event.clientX - box.left) / box.width) * this.d.width), y: Math.floor(((event.clientY - box.top) / box.height) * this.d.height) };
    }

    private probeAt(place: { x: number; y: number }) {
        this.probed = { x: Math.min(Math.max(place.x, 0), this.d.width - 1), y: Math.min(Math.max(place.y, 0), this.d.height - 1) };
        this.probe();
    }

    private probe() {
        const { x, y } = this.probed;
        const around = new Uint32Array(magnified * magnified).fill(0xff808080);
        const half = magnified >> 1;
        for (let j = 0; j < magnified; ++j)
            for (let i = 0; i < magnified; ++i) {
                const px = x + i - half, py = y + j - half;
                if (px >= 0 && px < this.d.width && py >= 0 && py < this.d.height) around[j * magnified + i] = this.words[py * this.d.width + px];
            }
        this.magnifier.getContext("2d")!.putImageData(imageOf(around, magnified), 0, 0);
        const p = this.module.probe(this.text(), x, y);
        const none = (word: string) => (word === "00000000" ? `${word}, no pixel` : word);
        const rows: [string, string][] = [["Pixel", `${x}, ${y}`], ["Texel, filtered", none(p.texel)],
            ["Before, the blend's first input", p.before], ["Source, its second input", none(p.source)], ["Output of the blend", p.output], ["After", p.after], ["Shahei bit before", p.taken ? "1, taken" : "0, free"], ["Priority before", String(p.priority)]];
        this.inspected.replaceChildren(...rows.flatMap(([term, text]) => [h("dt", {}, term), h("dd", {}, text)]));
    }

    // ---- controls ----

    private fillAxes() {
        this.axes.replaceChildren(...this.d.axes.map((axis, at) => {
            const now = this.look.axes[at];
            const fits = h("div", { class: "values" });
            const rest: HTMLElement[] = [];
            axis.values.forEach((value, k) => {
                const option = now.values[k];
                const label = `${value.value} ${value.word || (value.meaning.length < 20 ? value.meaning : value.name.replace(/^NINEFOLD_[A-Z]+_/, "").toLowerCase())}`;
                const id = `${axis.key}-${value.value}`;
                const go = () => {
                    this.go(this.state.named(option.leads));
                    if (option.why) this.say(`Went to ${option.leads}, the nearest with ${value.name}: ${option.why}.`);
                };
                if (!option.why)
                    fits.append(h("label", { title: value.meaning }, h("input", { type: "radio", id, name: axis.key, checked: value.value === now.value, change: go }), label));
                else
                    rest.push(h("li", {}, `${label}: ${option.why}. `, h("button", { type: "button", id, click: go }, `Go to ${option.leads}`)));
            });
            const meaning = axis.values.find((value) => value.value === now.value)?.meaning ?? "";
            return h("fieldset", { id: `axis-${axis.key}` }, h("legend", {}, titleOf(axis.key, true)), fits, h("p", { class: "meaning" }, meaning),
                rest.length ? h("details", {}, h("summary", {}, `${rest.length} that do${rest.length === 1 ? "es" : ""} not go with the rest`), h("ul", {}, ...rest)) : undefined);
        }));
    }

    private fillChoices() {
        const full = State.parse(this.look.state);
        this.choices.replaceChildren(...this.look.choices.map((key) => {
            const value = full.get(key) ?? "";
            const change = (to: string) => this.go(this.state.with(key, to).without(...(/^tex\d$/.test(key) ? [`uv${key[3]}`] : [])));
            if (key === "stipple") {
                const words = (at: string) => {
                    const known = this.d.lists.stipple.find((one) => String(one.value) === at);
                    return known ? `${at}, ${known.meaning}` : `${at}, ${Number(at) + 1} of 256 pixels`;
                };
                const output = h("output", {}, words(value));
                const slider = h("input", {
                    type: "range", id: "choice-stipple", min: "0", max: "261", value,
                    input: () => {
                        this.slide(this.state.with(key, slider.value));
                        output.textContent = words(slider.value);
                    },
                });
                return h("p", { class: "row" }, h("label", { for: "choice-stipple" }, titleOf(key, false)), slider, output);
            }
            const options = this.d.choices[key]?.map((one) => ({ word: one.word, title: one.title })) ??
                this.d.lists[key].map((one) => ({ word: one.word, title: `${one.word}: ${one.meaning}` }));
            const select = h("select", { id: `choice-${key}`, change: () => change(select.value) },
                ...options.map((one) => h("option", { value: one.word, selected: one.word === value }, one.title)));
            return h("p", { class: "row" }, h("label", { for: `choice-${key}` }, titleOf(key, false)), select);
        }));
    }

    private fillFields() {
        const full = State.parse(this.look.state);
        const read = this.d.fields.filter((field) => this.look.reads[field.name]);
        const clip = read.filter((field) => field.kind === "clip");
        this.fields.replaceChildren(...read.filter((field) => field.kind !== "clip").map((field) => this.fieldset(`rs.${field.name}`, [field], full)));
        this.fields.firstChild?.after(this.fieldset("Clip rectangle", clip, full));
    }

    private fieldset(legend: string, fields: Field[], full: State): HTMLElement {
        return h("fieldset", {}, h("legend", {}, legend), h("div", { class: "values" }, ...fields.flatMap((field) => this.controlsOf(field, full))),
            h("details", {}, h("summary", {}, "What it is"), h("p", { class: "meaning" }, fields[0].meaning)));
    }

    private controlsOf(field: Field, full: State): HTMLElement[] {
        const count = this.look.reads[field.name];
        const all = full.numbers(field.name);
        const changed = (at: number, value: number) => {
            if (Number.isFinite(value)) all[at] = Math.min(Math.max(Math.round(value), field.least), field.most);
            return this.state.with(field.name, all.join(","));
        };
        const set = (at: number, value: number) => this.go(changed(at, value));
        const inputs: HTMLElement[] = [];
        for (let at = 0; at < count; ++at) {
            const id = `field-${field.name}-${at}`;
            const label = this.labelOf(field, at);
            if (field.kind === "corners" && at % 3 === 2 && !this.look.axes[6].value) continue; // depth without perspective
            if (field.kind === "colour") {
                const output = h("output", {}, hex8(all[at]));
                const slide = (word: number) => {
                    this.slide(changed(at, word >>> 0));
                    output.textContent = hex8(all[at]);
                };
                const colour = h("input", { type: "color", id, value: `#${hex8(all[at]).slice(2).toLowerCase()}`, input: () => slide((all[at] & 0xff000000) | parseInt(colour.value.slice(1), 16)) });
                const alpha = h("input", { type: "range", id: `${id}-alpha`, min: "0", max: "255", value: String(all[at] >>> 24), input: () => slide((Number(alpha.value) << 24) | (all[at] & 0xffffff)) });
                inputs.push(h("label", {}, label, colour), h("label", {}, "alpha", alpha), output);
            } else if (field.kind === "bits") {
                const bits = h("input", { type: "text", id, value: hex8(all[at]), pattern: "[0-9a-fA-F]{1,8}", maxlength: "8", change: () => set(at, parseInt(bits.value, 16)) });
                inputs.push(h("label", {}, label, bits));
            } else if (field.kind === "texels") {
                const texel = h("input", { type: "number", id, step: "0.25", value: String(all[at] / 65536), change: () => set(at, Number(texel.value) * 65536) });
                inputs.push(h("label", {}, label, texel));
            } else if (field.kind === "number") {
                const output = h("output", {}, String(all[at]));
                const slider = h("input", {
                    type: "range", id, min: String(field.least), max: String(field.most), value: String(all[at]),
                    input: () => {
                        this.slide(changed(at, Number(slider.value)));
                        output.textContent = String(all[at]);
                    },
                });
                inputs.push(h("label", {}, label, slider), output);
            } else {
                const number = h("input", { type: "number", id, min: String(field.least), max: String(field.most), value: String(all[at]), change: () => set(at, Number(number.value)) });
                inputs.push(h("label", {}, label, number));
            }
        }
        return inputs;
    }

    private labelOf(field: Field, at: number): string {
        if (field.kind === "corners") return `[${Math.floor(at / 3)}] ${"xyz"[at % 3]}`;
        if (field.kind === "texels") return `[${at >> 1}] ${"uv"[at % 2]}`;
        return field.words > 1 ? `[${at}]` : field.name;
    }

    // ---- handles on the picture ----

    private fillHandles() {
        const full = State.parse(this.look.state);
        const vertex = full.numbers("vertex");
        const corners = this.look.reads.vertex / 3;
        const [left, top, right, bottom] = ["clipLeft", "clipTop", "clipRight", "clipBottom"].map((key) => Number(full.get(key)));
        const handles: SVGElement[] = [svg("rect", { class: "clip", x: String(left), y: String(top), width: String(right - left), height: String(bottom - top) })];
        const add = (id: string, name: string, x: number, y: number, square: boolean, move: (x: number, y: number) => void) => {
            const attributes = { id, class: "handle", tabindex: "0", role: "button", "aria-label": `${name}, ${x}, ${y}; arrow keys move it` };
            const shape = square ? svg("rect", { ...attributes, x: String(x - 4), y: String(y - 4), width: "8", height: "8" })
                : svg("circle", { ...attributes, cx: String(x), cy: String(y), r: "5" });
            this.makeMovable(shape, x, y, move);
            // Fingers need more room.
            const room = svg("circle", { class: "room", cx: String(x), cy: String(y), r: "11", pointerdown: (event) => { event.preventDefault(); shape.dispatchEvent(new PointerEvent("pointerdown", event)); } });
            handles.splice(1, 0, room);
            handles.push(shape);
        };
        const setClip = (keys: [string, number][]) => {
            let state = this.state;
            for (const [key, value] of keys) state = state.with(key, String(value));
            this.go(state);
        };
        const clamp = (value: number, least: number, most: number) => Math.min(Math.max(value, least), most);
        add("clip-start", "Top left of the clip rectangle", left, top, true, (x, y) => setClip([["clipLeft", clamp(x, 0, right)], ["clipTop", clamp(y, 0, bottom)]]));
        add("clip-end", "Bottom right of the clip rectangle", right, bottom, true, (x, y) => setClip([["clipRight", clamp(x, left, this.d.width)], ["clipBottom", clamp(y, top, this.d.height)]]));
        for (let i = 0; i < corners; ++i)
            add(`corner-${i}`, `Corner ${i}`, vertex[3 * i], vertex[3 * i + 1], false, (x, y) => {
                vertex[3 * i] = x, vertex[3 * i + 1] = y;
                this.go(this.state.with("vertex", vertex.join(",")));
            });
        this.overlay.replaceChildren(...handles);
    }

    private makeMovable(shape: SVGElement, x: number, y: number, move: (x: number, y: number) => void) {
        shape.addEventListener("keydown", (event) => {
            const [dx, dy] = arrow(event);
            if (!dx && !dy) return;
            event.preventDefault();
            move(x + dx, y + dy);
        });
        shape.addEventListener("pointerdown", (event) => {
            event.preventDefault();
            shape.focus();
            const began = this.place(event);
            const onMove = (moved: PointerEvent) => {
                const now = this.place(moved);
                move(x + now.x - began.x, y + now.y - began.y);
            };
            const onEnd = () => {
                window.removeEventListener("pointermove", onMove);
                window.removeEventListener("pointerup", onEnd);
                window.removeEventListener("pointercancel", onEnd);
            };
            window.addEventListener("pointermove", onMove);
            window.addEventListener("pointerup", onEnd);
            window.addEventListener("pointercancel", onEnd);
        });
    }
}

function arrow(event: KeyboardEvent): [number, number] {
    const step = event.shiftKey ? 10 : 1;
    switch (event.key) {
        case "ArrowLeft": return [-step, 0];
        case "ArrowRight": return [step, 0];
        case "ArrowUp": return [0, -step];
        case "ArrowDown": return [0, step];
        default: return [0, 0];
    }
}

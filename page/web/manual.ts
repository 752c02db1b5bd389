// The manual: what each value does, with a picture that a kernel has just drawn. All lists and words are the library's.
import { h } from "./dom";
import { imageOf, type Module, type Value } from "./module";
import { first } from "./playground";
import { State } from "./state";

// Comments of the headers, put in when the page is built.
declare const HEADER_COMMENTS: Record<string, string>;
// What the table in the comment of SetBlendMode says of each blend: the colour and the alpha that is left.
declare const BLEND_FORMULAS: Record<string, { colour: string; alpha: string }>;
// The rules of the debug twin, put in likewise.
declare const TWIN_RULES: { number: string; name: string; severity: string; asked: string; text: string; advice: string }[];

// A combination that draws, as near as can be to one that may be a kernel without pixels.
export function drawing(module: Module, state: string): string {
    const look = module.look(state);
    if (look.error || look.draws) return state;
    for (const axis of look.axes)
        for (const option of axis.values) {
            const other = State.parse(state).named(option.leads).toString();
            if (!option.why && module.look(other).draws) return other;
        }
    return state;
}

// Drawn when it comes into view: sheets have hundreds.
const seen = new IntersectionObserver((entries) => {
    for (const { target, isIntersecting } of entries) if (isIntersecting) drawNow(target);
}, { rootMargin: "600px" });
const waiting = new WeakMap<Element, () => void>();
function drawNow(figure: Element) {
    waiting.get(figure)?.();
    waiting.delete(figure);
    seen.unobserve(figure);
}

type Plane = "taken" | "priorities";

export function livePicture(module: Module, state: string, caption: string, plane?: Plane): HTMLElement {
    const { width, height } = module.description;
    const canvasOf = (label: string) => h("canvas", { width: String(width), height: String(height), role: "img", "aria-label": label });
    const canvas = canvasOf(caption), after = plane && canvasOf(`The plane after ${caption}`);
    const figure = h("figure", { class: "live" }, canvas, after,
        h("figcaption", {}, h("a", { href: `#play?${state}` }, caption), plane ? (plane === "taken" ? "; below the Shahei plane after it, white: taken" : "; below the priorities after it, black 0, white 255") : ""));
    waiting.set(figure, () => {
        const drawn = module.draw(state);
        if (drawn.error) return figure.replaceChildren(h("p", { class: "wrong" }, drawn.error));
        canvas.getContext("2d")!.putImageData(imageOf(module.pixels(), width), 0, 0);
        if (!after) return;
        const bits = module.taken(), bytes = module.priorities();
        const grey = (i: number) => (plane === "taken" ? ((bits[i >> 4] >> (15 - (i & 15))) & 1) * 255 : bytes[i]);
        after.getContext("2d")!.putImageData(imageOf(Uint32Array.from({ length: width * height }, (_, i) => grey(i) * 0x10101), width), 0, 0);
    });
    seen.observe(figure);
    return figure;
}

interface Section {
    key: string;
    title: string;
    setter: string; // whose comment in the headers it is
    values: { heading: string; name?: string; meaning: string; state: string; formula?: string }[];
    plane?: Plane; // to be shown besides
}

function sections(module: Module): Section[] {
    const { axes, lists, choices } = module.description;
    const shown = (value: Value, state: string) => ({ heading: `${value.value} ${value.word || "(no word)"}`, name: value.name, meaning: value.meaning, state });
    const formulaOf = (key: string, { value }: Value) => (key === "blend" ? { formula: `${BLEND_FORMULAS[value].colour}; alpha: ${BLEND_FORMULAS[value].alpha}` } : {});
    const look = module.look(first);
    const title = (setter: string) => setter.replace(/^Set/, "").replace(/([a-z])([A-Z])/g, "$1 $2").replace(/^./, (c) => c.toUpperCase());
    const axisSections = axes.map((axis, i) => ({
        key: axis.key, title: title(axis.setter), setter: axis.setter,
        values: axis.values.map((value, k) => ({ ...formulaOf(axis.key, value), ...shown(value, drawing(module, State.parse(first).named(look.axes[i].values[k].leads).toString())) })),
    }));
    const listSection = (key: string, heading: string, setter: string, base: string, word: (value: Value) => string) => ({
        key, title: heading, setter, values: lists[key].map((value) => shown(value, `${base}&${key}=${word(value)}`)),
    });
    const choiceSection = (key: string, heading: string, setter: string, base: string) => ({
        key, title: heading, setter, values: choices[key].filter((one) => one.word !== "dropped").map((one) => ({ heading: one.title, meaning: "", state: `${base}&${key}=${one.word}` })),
    });
    // Texels closer and closer: where a filter with levels has them.
    const levels = ["point", "bilinear", "mip", "mipbilinear"].flatMap((filter) => [4, 16].map((times) => ({
        heading: `${filter}, ${times} texels a pixel`, meaning: "", state: `name=rect.stretch.${filter}.copy&tex0=bricks&vertex=0,0,256,256,192,256&uv0=0,0,${256 * times * 65536},${192 * times * 65536}`,
    })));
    const multi = `name=${look.name}.tex1`;
    // A picture wiped in, with a soft edge and a hard one.
    const wipe = [255, 160, 64, -32].flatMap((threshold) => [64, 0].map((width) => ({
        heading: `ruleThreshold ${threshold}, ruleWidth ${width}`, meaning: "", state: `name=rect.stretch.bilinear.copy.rule&tex2=diagonal&ruleThreshold=${threshold}&ruleWidth=${width}`,
    })));
    const fade = [16, 64, 128, 192].map((step) => ({ heading: String(step), meaning: `${step + 1} of 256 pixels`, state: `name=${look.name}.mask&stipple=${step}` }));
    return [
        ...axisSections,
        listSection("operator", "Operators for blend 12", "SetBlendMode", "name=rect.stretch.bilinear.custom", (v) => v.word),
        { ...listSection("multi", "Multi operators", "SetBlendModeMulti", multi, (v) => v.word), key: "multi-operators" },
        listSection("bank", "Banks of multi operators", "SetPrescaleMultiMode", multi, (v) => v.word),
        listSection("stipple", "Stipples", "SetPresetDrawMask", `name=${look.name}.mask`, (v) => String(v.value)),
        { key: "fade", title: "Stipples of the fade", setter: "SetPresetDrawMask", values: fade },
        { key: "rule-test", title: "The rule test", setter: "ruleThreshold", values: wipe },
        listSection("curve", "Curves of the rule", "ruleThreshold", `name=${look.name}.rule`, (v) => v.word),
        choiceSection("tex2", "Rule pictures", "ruleThreshold", `name=${look.name}.rule`),
        { key: "levels", title: "Mip levels", setter: "CreateMipmapTexture", values: levels },
        choiceSection("table0", "Line tables", "LineTableRecord", "name=rect.table.bilinear.alphafast"),
        choiceSection("shift", "Shifts of spans", "scanShift", "name=tri.bilinear.alphafast"),
        { ...choiceSection("plane", "Shahei plane", "shaheiPlane", "name=rect.stretch.bilinear.copy.plane"), plane: "taken" },
        { ...choiceSection("priority", "Priority plane", "zBuffer", `name=${look.name}.z`), plane: "priorities" },
    ];
}

export function manual(module: Module): HTMLElement {
    const all = sections(module);
    const link = (section: Section) => h("li", {}, h("a", { href: `#manual/${section.key}` }, section.title));
    return h("main", { id: "manual", class: "manual" },
        h("h1", {}, "The manual, with live pictures"),
        h("p", {}, `Nine axes make ${module.description.codes.toLocaleString("en")} combinations, each with a kernel of its own. Every picture here was drawn by one of them as it came into view; a click on its name opens it in the playground.`),
        h("nav", { "aria-label": "Sections of the manual" }, h("ul", { class: "toc" }, ...all.map(link), h("li", {}, h("a", { href: "#manual/fields" }, "What a kernel reads")), h("li", {}, h("a", { href: "#manual/rules" }, "What the debug twin says")),
            h("li", {}, h("a", { href: "#codes" }, "All codes of a family")), h("li", {}, h("a", { href: "#text" }, "Text")), h("li", {}, h("a", { href: "#bench" }, "The benchmark")))),
        ...all.map((section) => h("section", { id: `manual/${section.key}`, "aria-label": section.title },
            h("h2", {}, section.title),
            HEADER_COMMENTS[section.setter] ? h("pre", { class: "comment", tabindex: "0", "aria-label": `What the header says of ${section.setter}` }, HEADER_COMMENTS[section.setter]) : undefined,
            h("div", { class: "cards" }, ...section.values.map(({ heading, name, meaning, formula, state }) => h("article", {},
                h("h3", {}, heading), name ? h("code", {}, name) : undefined, meaning ? h("p", {}, meaning) : undefined,
                formula ? h("p", {}, h("code", { class: "formula" }, formula)) : undefined,
                livePicture(module, state, State.parse(state).name, section.plane)))))),
        h("section", { id: "manual/fields", "aria-label": "What a kernel reads" },
            h("h2", {}, "What a kernel reads"),
            h("p", {}, "Fields of rs that the host stores itself; which of them a combination reads, the playground shows."),
            h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Fields of rs" }, h("table", {},
                h("thead", {}, h("tr", {}, ...["Field", "Words", "What it is"].map((text) => h("th", { scope: "col" }, text)))),
                h("tbody", {}, ...module.description.fields.map((field) => h("tr", {}, h("th", { scope: "row" }, field.name), h("td", {}, String(field.words)), h("td", {}, field.meaning))))))),
        h("section", { id: "manual/rules", "aria-label": "What the debug twin says" },
            h("h2", {}, "What the debug twin says"),
            h("p", {}, "The library checks nothing. The debug twin, the same library with the same pixels, looks at every call first; it is in this page too, and its words stand in the playground."),
            h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Rules of the debug twin" }, h("table", {},
                h("thead", {}, h("tr", {}, ...["Rule", "Severity", "Asked for", "Says", "Advice"].map((text) => h("th", { scope: "col" }, text)))),
                h("tbody", {}, ...TWIN_RULES.map((rule) => h("tr", {}, h("th", { scope: "row" }, `${rule.number} ${rule.name}`), ...[rule.severity, rule.asked, rule.text, rule.advice].map((text) => h("td", {}, text)))))))));
}

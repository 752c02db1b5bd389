// The manual: what each value does, with a picture that a kernel has just drawn. All lists and words are the library's.
import { h } from "./dom";
import { imageOf, type Module, type Value } from "./module";
import { first } from "./playground";
import { State } from "./state";

// Comments of the headers, put in when the page is built.
declare const HEADER_COMMENTS: Record<string, string>;

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

export function livePicture(module: Module, state: string, caption: string): HTMLElement {
    const { width, height } = module.description;
    const canvas = h("canvas", { width: String(width), height: String(height), role: "img", "aria-label": caption });
    const drawn = module.draw(state);
    if (drawn.error) return h("p", { class: "wrong" }, drawn.error);
    canvas.getContext("2d")!.putImageData(imageOf(module.pixels(), width), 0, 0);
    return h("figure", {}, canvas, h("figcaption", {}, h("a", { href: `#play?${state}` }, caption)));
}

interface Section {
    key: string;
    title: string;
    setter: string; // whose comment in the headers it is
    values: { value: Value; state: string }[];
}

function sections(module: Module): Section[] {
    const { axes, lists } = module.description;
    const look = module.look(first);
    const title = (setter: string) => setter.replace(/^Set/, "").replace(/([a-z])([A-Z])/g, "$1 $2").replace(/^./, (c) => c.toUpperCase());
    const axisSections = axes.map((axis, i) => ({
        key: axis.key, title: title(axis.setter), setter: axis.setter,
        values: axis.values.map((value, k) => ({ value, state: drawing(module, State.parse(first).named(look.axes[i].values[k].leads).toString()) })),
    }));
    const listSection = (key: string, heading: string, setter: string, base: string, word: (value: Value) => string) => ({
        key, title: heading, setter, values: lists[key].map((value) => ({ value, state: `${base}&${key}=${word(value)}` })),
    });
    const multi = `name=${look.name}.tex1`;
    return [
        ...axisSections,
        listSection("operator", "Operators for blend 12", "SetBlendMode", "name=rect.stretch.bilinear.custom", (v) => v.word),
        { ...listSection("multi", "Multi operators", "SetBlendModeMulti", multi, (v) => v.word), key: "multi-operators" },
        listSection("bank", "Banks of multi operators", "SetPrescaleMultiMode", multi, (v) => v.word),
        listSection("stipple", "Stipples", "SetPresetDrawMask", `name=${look.name}.mask`, (v) => String(v.value)),
        listSection("curve", "Curves of the rule", "ruleThreshold", `name=${look.name}.rule`, (v) => v.word),
    ];
}

export function manual(module: Module): HTMLElement {
    const all = sections(module);
    const link = (section: Section) => h("li", {}, h("a", { href: `#manual/${section.key}` }, section.title));
    return h("main", { id: "manual", class: "manual" },
        h("h1", {}, "The manual, with live pictures"),
        h("p", {}, `Nine axes make ${module.description.codes.toLocaleString("en")} combinations, each with a kernel of its own. Every picture here was drawn by one of them as the page opened; a click opens it in the playground.`),
        h("nav", { "aria-label": "Sections of the manual" }, h("ul", { class: "toc" }, ...all.map(link))),
        ...all.map((section) => h("section", { id: `manual/${section.key}`, "aria-label": section.title },
            h("h2", {}, section.title),
            HEADER_COMMENTS[section.setter] ? h("pre", { class: "comment", tabindex: "0", "aria-label": `What the header says of ${section.setter}` }, HEADER_COMMENTS[section.setter]) : undefined,
            h("div", { class: "cards" }, ...section.values.map(({ value, state }) => h("article", {},
                h("h3", {}, `${value.value} ${value.word || "(no word)"}`), h("code", {}, value.name), h("p", {}, value.meaning),
                livePicture(module, state, State.parse(state).name)))))));
}

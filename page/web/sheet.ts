// All combinations of a family on one sheet.
import { h } from "./dom";
import type { Module } from "./module";
import { livePicture } from "./manual";

export function sheet(module: Module, wanted: string, go: (name: string) => void): HTMLElement {
    const families = module.families();
    const family = families.includes(wanted) ? wanted : families.find((name) => name.startsWith("rect.stretch.bilinear"))!;
    const select = h("select", { id: "family", change: () => go(select.value) }, ...families.map((name) => h("option", { value: name, selected: name === family }, name)));
    const members = module.members(family);
    return h("main", { id: "codes", class: "sheet" },
        h("h1", {}, "All codes of a family"),
        h("p", {}, "A family is what shape, rect option, filter, perspective, rule and prescale make; Shahei mode, blend and multi stage make its members."),
        h("p", { class: "row" }, h("label", { for: "family" }, `One of ${families.length} families, by its first member`), select),
        h("p", { id: "count" }, `${members.length} members`),
        h("div", { class: "cards small" }, ...members.map((name) => livePicture(module, `name=${name}`, name))));
}

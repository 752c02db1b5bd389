// Elements, made in one call.

type Attributes = Record<string, string | number | boolean | ((event: any) => void) | undefined>;
type Child = Node | string | undefined;

function fill(element: Element, attributes: Attributes, children: Child[]) {
    for (const [name, value] of Object.entries(attributes)) {
        if (typeof value === "function") element.addEventListener(name, value);
        else if (value === true) element.setAttribute(name, "");
        else if (value !== false && value !== undefined) element.setAttribute(name, String(value));
    }
    for (const child of children) if (child !== undefined) element.append(child);
}

export function h<K extends keyof HTMLElementTagNameMap>(tag: K, attributes: Attributes = {}, ...children: Child[]): HTMLElementTagNameMap[K] {
    const element = document.createElement(tag);
    fill(element, attributes, children);
    return element;
}

export function svg<K extends keyof SVGElementTagNameMap>(tag: K, attributes: Attributes = {}, ...children: Child[]): SVGElementTagNameMap[K] {
    const element = document.createElementNS("http://www.w3.org/2000/svg", tag);
    fill(element, attributes, children);
    return element;
}

// A button that copies a text and says so.
export function copyButton(label: string, text: () => string): HTMLButtonElement {
    const button = h("button", {
        type: "button",
        click: async () => {
            try {
                await navigator.clipboard.writeText(text());
                button.textContent = "Copied";
            } catch {
                button.textContent = "The browser does not let the page copy";
            }
            setTimeout(() => (button.textContent = label), 1500);
        },
    }, label);
    return button;
}

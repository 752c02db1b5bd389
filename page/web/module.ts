// The module: the library and what page/module/ puts round it.

export interface Value {
    value: number;
    name: string;
    word: string;
    meaning: string;
}
export interface Choice {
    word: string;
    title: string;
}
export interface Field {
    name: string;
    kind: "corners" | "clip" | "colour" | "texels" | "number" | "bits";
    words: number;
    least: number;
    most: number;
    meaning: string;
}
export interface Description {
    version: number;
    codes: number;
    width: number;
    height: number;
    axes: { key: string; setter: string; values: Value[] }[];
    choices: Record<string, Choice[]>;
    lists: Record<string, Value[]>;
    fields: Field[];
}
export interface Look {
    error?: string;
    name: string;
    code: string;
    state: string; // all of it
    axes: { value: number; values: { value: number; leads: string; why?: string }[] }[];
    reads: Record<string, number>; // words of fields
    choices: string[]; // those that matter
    draws: boolean;
    c: string;
}
export interface Finding {
    rule: string;
    severity: number;
    text: string;
    advice: string;
}
export interface Probe {
    texel: string;
    source: string;
    before: string;
    after: string;
    taken: boolean;
    priority: number;
}

export interface Emscripten {
    HEAPU8: Uint8Array;
    UTF8ToString(pointer: number): string;
    stringToUTF8(text: string, pointer: number, size: number): void;
    lengthBytesUTF8(text: string): number;
    _malloc(size: number): number;
    _free(pointer: number): void;
    [name: `_page${string}` | `_capture${string}`]: (...values: number[]) => number;
}
declare global {
    const createNinefold: (options: object) => Promise<Emscripten>;
}

export class Module {
    readonly description: Description;

    private constructor(private readonly m: Emscripten) {
        m._pageStart();
        this.description = JSON.parse(m.UTF8ToString(m._pageDescribe()));
    }

    static async load(wasm: Uint8Array): Promise<Module> {
        return new Module(await createNinefold({ wasmBinary: wasm }));
    }

    families(): string[] {
        return JSON.parse(this.m.UTF8ToString(this.m._pageFamilies()));
    }
    members(name: string): string[] {
        return this.withText(name, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageMembers(at))));
    }
    // The name of a code or name; "" where there is none.
    find(text: string): string {
        return this.withText(text, (at) => this.m.UTF8ToString(this.m._pageFind(at)));
    }
    look(state: string): Look {
        return this.withText(state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageLook(at))));
    }
    draw(state: string): { error?: string; findings?: Finding[] } {
        return this.withText(state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageDraw(at))));
    }
    probe(state: string, x: number, y: number): Probe {
        return this.withText(state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageProbe(at, x, y))));
    }
    time(state: string, milliseconds: number): { ns: number; pixels: number } {
        return this.withText(state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageTime(at, milliseconds))));
    }
    clear(state: string) {
        this.withText(state, (at) => this.m._pageClear(at));
    }

    // Copies of what the last draw left.
    pixels(): Uint32Array {
        const size = this.description.width * this.description.height * 4;
        const at = this.m._pagePixels();
        return new Uint32Array(this.m.HEAPU8.slice(at, at + size).buffer);
    }
    taken(): Uint16Array {
        const at = this.m._pagePlane();
        return new Uint16Array(this.m.HEAPU8.slice(at, at + (this.description.width * this.description.height) / 8).buffer);
    }
    priorities(): Uint8Array {
        const at = this.m._pagePriorities();
        return this.m.HEAPU8.slice(at, at + this.description.width * this.description.height);
    }

    giveFile(file: string, words: Uint32Array, width: number, height: number) {
        this.withText(file, (name) => this.withWords(words, (at) => this.m._pageGiveFile(name, at, width, height)));
    }
    giveDropped(words: Uint32Array, width: number, height: number) {
        this.withWords(words, (at) => this.m._pageGiveDropped(at, width, height));
    }

    private withText<T>(text: string, use: (at: number) => T): T {
        const size = this.m.lengthBytesUTF8(text) + 1;
        const at = this.m._malloc(size);
        this.m.stringToUTF8(text, at, size);
        try {
            return use(at);
        } finally {
            this.m._free(at);
        }
    }
    private withWords<T>(words: Uint32Array, use: (at: number) => T): T {
        const at = this.m._malloc(words.byteLength);
        this.m.HEAPU8.set(new Uint8Array(words.buffer, words.byteOffset, words.byteLength), at);
        try {
            return use(at);
        } finally {
            this.m._free(at);
        }
    }
}

// The words of a frame as what a canvas shows: a frame buffer's alpha means nothing, a texture's does.
export function imageOf(words: Uint32Array, width: number, alpha = false): ImageData {
    const swapped = new Uint32Array(words.length); // red and blue change places
    const opaque = alpha ? 0 : 0xff000000;
    for (let i = 0; i < words.length; ++i) {
        const word = words[i];
        swapped[i] = opaque | (word & 0xff00ff00) | ((word & 255) << 16) | ((word >> 16) & 255);
    }
    return new ImageData(new Uint8ClampedArray(swapped.buffer), width);
}

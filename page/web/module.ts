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
    text: {
        atlasSide: number;
        longest: number; // bytes
        back: string;
        quality: string;
        styles: Choice[];
        qualities: Choice[];
        fields: { name: string; least: number; most: number; first: number; meaning: string }[];
    };
}
export interface Drawn {
    glyphs: { code: string; x: number; y: number; width: number; height: number; originX: number; originY: number; advance: number; penX: number; penY: number }[];
    full: boolean;
    c: string;
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
    output: string; // of the blend
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

// Calls `use` with the address of a copy of the text in the module's memory, which then is freed.
export function withText<T>(m: Emscripten, text: string, use: (at: number) => T): T {
    const size = m.lengthBytesUTF8(text) + 1;
    const at = m._malloc(size);
    m.stringToUTF8(text, at, size);
    try {
        return use(at);
    } finally {
        m._free(at);
    }
}

export class Module {
    readonly description: Description;

    private constructor(private readonly m: Emscripten) {
        m._pageStart();
        this.description = JSON.parse(m.UTF8ToString(m._pageDescribe()));
    }

    // Compiled while it is unpacked.
    static async load(wasm: ReadableStream): Promise<Module> {
        const response = new Response(wasm, { headers: { "Content-Type": "application/wasm" } });
        return new Module(await new Promise<Emscripten>((resolve, reject) => {
            const instantiateWasm = (imports: WebAssembly.Imports, take: (instance: WebAssembly.Instance) => void) => {
                WebAssembly.instantiateStreaming(response, imports).then(({ instance }) => take(instance), reject);
                return {};
            };
            createNinefold({ instantiateWasm }).then(resolve, reject);
        }));
    }

    families(): string[] {
        return JSON.parse(this.m.UTF8ToString(this.m._pageFamilies()));
    }
    members(name: string): string[] {
        return withText(this.m, name, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageMembers(at))));
    }
    // The name of a code or name; "" where there is none.
    find(text: string): string {
        return withText(this.m, text, (at) => this.m.UTF8ToString(this.m._pageFind(at)));
    }
    look(state: string): Look {
        return withText(this.m, state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageLook(at))));
    }
    draw(state: string): { error?: string; findings?: Finding[] } {
        return withText(this.m, state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageDraw(at))));
    }
    probe(state: string, x: number, y: number): Probe {
        return withText(this.m, state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageProbe(at, x, y))));
    }
    time(state: string, milliseconds: number): { ns: number; pixels: number } {
        return withText(this.m, state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageTime(at, milliseconds))));
    }
    clear(state: string) {
        withText(this.m, state, (at) => this.m._pageClear(at));
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

    // Of a text, which text.ts makes, and of a font's file.
    text(state: string): { error?: string; findings?: Finding[]; drawn?: Drawn } {
        return withText(this.m, state, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageText(at))));
    }
    atlas(): Uint32Array {
        const at = this.m._pageAtlas();
        return new Uint32Array(this.m.HEAPU8.slice(at, at + this.description.text.atlasSide ** 2 * 4).buffer);
    }
    giveFont(bytes: Uint8Array): { name?: string; error?: string } {
        return this.withBytes(bytes, (at) => JSON.parse(this.m.UTF8ToString(this.m._pageGiveFont(at, bytes.length))));
    }

    giveFile(file: string, words: Uint32Array, width: number, height: number) {
        withText(this.m, file, (name) => this.withWords(words, (at) => this.m._pageGiveFile(name, at, width, height)));
    }
    giveDropped(words: Uint32Array, width: number, height: number) {
        this.withWords(words, (at) => this.m._pageGiveDropped(at, width, height));
    }

    private withWords<T>(words: Uint32Array, use: (at: number) => T): T {
        return this.withBytes(new Uint8Array(words.buffer, words.byteOffset, words.byteLength), use);
    }
    private withBytes<T>(bytes: Uint8Array, use: (at: number) => T): T {
        const at = this.m._malloc(bytes.length);
        this.m.HEAPU8.set(bytes, at);
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

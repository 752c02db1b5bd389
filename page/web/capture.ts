// A capture in an instance of the module of its own: its player has the render state to itself.
import { type Emscripten, withText } from "./module";

export interface Step {
    name: number; // of CaptureList.names; -1: the end of a frame
    frame: number;
    number: number;
    nanoseconds: number; // here
    recorded: number; // on the machine that recorded it
    state: number; // 1: not as recorded, 2: not made
}
export interface CaptureList {
    problem: string;
    lost: number;
    bytes: number;
    draws: number;
    frames: number;
    notes: Record<string, string>;
    names: string[];
    steps: Step[];
}
export interface CellInWords {
    name: string;
    text: string;
    value: string;
    was: string; // before the draw before
    zero: boolean;
    isNew: boolean;
    number: boolean;
    edited: boolean;
}
export interface Shown {
    error?: string;
    frame: number;
    views: string[];
    textures: { index: number; field: string; level: number; name: string }[];
    cells: CellInWords[];
    cut?: string; // of the end of a frame
    asRecorded?: boolean;
    draw?: number; // what follows is of draws
    name: string;
    kernel: boolean;
    words: string;
    refusal: string;
    edited: boolean;
    hasResult: boolean;
    differences: string;
    changed: number;
    nanoseconds: number;
    recorded: number;
    reach?: [number, number, number, number];
}
export interface View {
    words: Uint32Array;
    width: number;
    height: number;
}

export class Capture {
    private constructor(private readonly m: Emscripten) {
        m._pageStart();
    }

    static async load(wasm: Uint8Array): Promise<Capture> {
        return new Capture(await createNinefold({ wasmBinary: wasm }));
    }

    // "", or why it is none.
    open(bytes: Uint8Array): string {
        const at = this.m._malloc(bytes.length);
        if (!at) throw new Error("no memory");
        this.m.HEAPU8.set(bytes, at);
        const wrong = this.m.UTF8ToString(this.m._captureOpen(at, bytes.length));
        this.m._free(at);
        return wrong;
    }
    // Goes on for so long.
    scan(milliseconds: number): { done: boolean; steps: number; part: number } {
        return this.json(this.m._captureScan(milliseconds));
    }
    list(): CaptureList {
        const list = this.json(this.m._captureList());
        list.steps = list.steps.map(([name, frame, number, nanoseconds, recorded, state]: number[]) => ({ name, frame, number, nanoseconds, recorded, state }));
        return list;
    }
    show(step: number): Shown {
        return this.json(this.m._captureShow(step));
    }
    edit(edits: string): Shown {
        return withText(this.m, edits, (at) => this.json(this.m._captureEdit(at)));
    }
    // Null where there is none.
    view(what: string): View | null {
        const at = withText(this.m, what, (text) => this.m._captureView(text));
        const width = this.m._captureWidth(), height = this.m._captureHeight();
        return width && height ? { words: new Uint32Array(this.m.HEAPU8.slice(at, at + 4 * width * height).buffer), width, height } : null;
    }
    program(name: string): string {
        return withText(this.m, name, (at) => this.m.UTF8ToString(this.m._captureProgram(at)));
    }
    trim(): Uint8Array {
        const size = this.m._captureTrim(), at = this.m._captureBytes();
        return this.m.HEAPU8.slice(at, at + size);
    }

    private json(at: number) {
        return JSON.parse(this.m.UTF8ToString(at));
    }
}

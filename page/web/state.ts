// The state of a picture as text, as the module and the address have it: KEY=VALUE joined by '&'.

export class State {
    private constructor(private readonly pairs: Map<string, string>) {}

    static parse(text: string): State {
        const pairs = new Map<string, string>();
        for (const pair of text.split("&")) {
            const equals = pair.indexOf("=");
            if (equals > 0) pairs.set(pair.slice(0, equals), pair.slice(equals + 1));
        }
        return new State(pairs);
    }

    get name(): string {
        return this.pairs.get("name") ?? "";
    }
    get(key: string): string | undefined {
        return this.pairs.get(key);
    }
    with(key: string, value: string): State {
        const pairs = new Map(this.pairs);
        pairs.set(key, value);
        return new State(pairs);
    }
    without(...keys: string[]): State {
        const pairs = new Map(this.pairs);
        for (const key of keys) pairs.delete(key);
        return new State(pairs);
    }

    // Another combination: what belongs to the shape that was goes.
    named(name: string): State {
        const shape = (text: string) => text.split(".").slice(0, 2).join(".");
        const next = this.with("name", name);
        return shape(name) === shape(this.name) ? next : next.without("vertex", "uv0", "uv1", "uv2");
    }

    numbers(key: string): number[] {
        return (this.get(key) ?? "").split(",").map(Number);
    }

    toString(): string {
        return [...this.pairs].map(([key, value]) => `${key}=${value}`).join("&");
    }
}

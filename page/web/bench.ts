// The benchmark's charts: a measured run of the repository's, or a bench.csv that is dropped here.
import { h, svg } from "./dom";

// Put in when the page is built: bench/results/, by file.
declare const BENCH_RESULTS: Record<string, string>;

interface Row {
    contender: string;
    role: "memcpy" | "ours" | "scalar" | "yardstick" | "peer" | "less";
    unit: string;
    median: number;
    low: number;
    high: number;
    toRival: number; // NaN: the job has none
    goal: number;
    note: string;
}
export interface Run {
    about: [string, string][];
    jobs: Map<string, Row[]>;
}

const roles: Record<Row["role"], string> = {
    ours: "Ninefold, by instruction set", scalar: "its scalar loop", peer: "peers, other libraries", less: "peers that leave work out",
    yardstick: "yardsticks: the least that the job can cost, or another kernel", memcpy: "memcpy of the same bytes",
};
const heading = "job,contender,role,unit,median_ns,p10_ns,p90_ns,to_memcpy,to_best_peer,goal,note";

// Throws where the text is no bench.csv.
export function parseRun(text: string): Run {
    const lines = text.split(/\r?\n/).filter(Boolean);
    const about = lines.filter((line) => line.startsWith("#")).map((line) => line.slice(1).trim().split(/: (.*)/s).slice(0, 2) as [string, string]);
    const rest = lines.filter((line) => !line.startsWith("#"));
    if (rest[0] !== heading) throw new Error(`no bench.csv of the benchmark's: its first line is not '${heading}'`);
    const jobs = new Map<string, Row[]>();
    for (const line of rest.slice(1)) {
        const cells = line.match(/"(?:[^"]|"")*"|[^,]+|(?<=,)(?=,|$)/g) ?? [];
        if (cells.length !== 11 || !(cells[2] in roles)) throw new Error(`no line of a bench.csv: ${line}`);
        const [job, contender, role, unit, median, low, high, , toRival, goal, note] = cells;
        if (!jobs.has(job)) jobs.set(job, []);
        jobs.get(job)!.push({ contender, role: role as Row["role"], unit, median: +median, low: +low, high: +high, toRival: toRival ? +toRival : NaN, goal: +goal, note: note.slice(1, -1).replaceAll('""', '"') });
    }
    return { about, jobs };
}

const figure = (value: number) => (value < 0.1 ? value.toFixed(4) : value < 1 ? value.toFixed(3) : value < 10 ? value.toFixed(2) : value < 100 ? value.toFixed(1) : value.toFixed(0));
const groupOf = (job: string) => job.split("/")[0];
// What Ninefold is held against: the highest instruction set beside the fastest yardstick, or else the fastest peer.
const oursOf = (rows: Row[]) => rows.filter((row) => row.role === "ours").at(-1);
function rivalOf(rows: Row[]): Row | undefined {
    const fastest = (role: Row["role"]) => rows.filter((row) => row.role === role).sort((a, b) => a.median - b.median)[0];
    return fastest("yardstick") ?? fastest("peer");
}

function table(caption: string, head: string[], rows: string[][]): HTMLElement {
    return h("div", { class: "scroll tall", tabindex: "0", role: "region", "aria-label": caption }, h("table", {},
        h("thead", {}, h("tr", {}, ...head.map((text) => h("th", { scope: "col" }, text)))),
        h("tbody", {}, ...rows.map(([first, ...rest]) => h("tr", {}, h("th", { scope: "row" }, first), ...rest.map((text) => h("td", {}, text)))))));
}

// Every job as a point: its time to that of its rival, logarithmically.
function overview(run: Run, rival: "peer" | "yardstick", go: (group: string) => void): HTMLElement {
    const points = [...run.jobs].flatMap(([job, rows]) => {
        const other = rivalOf(rows), ours = oursOf(rows);
        return other?.role === rival && ours && ours.toRival > 0 ? [{ job, ratio: ours.toRival, other: other.contender }] : [];
    });
    const groups = [...new Set(points.map((point) => groupOf(point.job)))];
    const most = Math.max(2, ...points.map((point) => Math.max(point.ratio, 1 / point.ratio)));
    const left = 230, width = 470, row = 17, top = 30, bottom = top + groups.length * row;
    const x = (ratio: number) => left + (width * (Math.log(ratio) / Math.log(most) + 1)) / 2;
    const ticks = [0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50].filter((ratio) => ratio <= most && ratio >= 1 / most);
    const words = rival === "peer" ? "Time to that of the fastest peer" : "Time to that of the yardstick";
    const faster = points.filter((point) => point.ratio < 1).length;
    const mean = Math.exp(points.reduce((sum, point) => sum + Math.log(point.ratio), 0) / points.length);
    const chart = svg("svg", { viewBox: `0 0 ${left + width + 20} ${bottom + 8}`, class: "chart", role: "img", "aria-label": `${words}: ${faster} of ${points.length} jobs are below 1; the table behind has all` },
        ...ticks.flatMap((ratio) => [
            svg("line", { x1: x(ratio), x2: x(ratio), y1: top - 6, y2: bottom, class: ratio === 1 ? "one" : "grid" }),
            svg("text", { x: x(ratio), y: top - 12, class: "middle" }, String(ratio))]),
        ...groups.map((group, i) => svg("text", { x: left - 12, y: top + i * row + 12, class: "end link", click: () => go(group) }, group)),
        ...points.map((point) => svg("circle", { cx: x(point.ratio), cy: top + groups.indexOf(groupOf(point.job)) * row + 8, r: 4, class: "ours", click: () => go(groupOf(point.job)) },
            svg("title", {}, `${point.job}: ${figure(point.ratio)} of ${point.other}`))));
    return h("section", {}, h("h2", {}, words),
        h("p", {}, `A point is a job; left of 1 Ninefold takes less. ${faster} of ${points.length} jobs do; the geometric mean is ${mean.toFixed(3)}.`),
        h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": words }, chart),
        h("details", {}, h("summary", {}, "The figures as a table"), table(`${words}, as a table`, ["Job", "Ratio", "Rival"], points.map((point) => [point.job, figure(point.ratio), point.other]))));
}

function bars(job: string, rows: Row[]): HTMLElement {
    const longest = Math.max(...rows.map((row) => row.high));
    const left = 130, width = 380, line = 19;
    const ours = oursOf(rows), rival = rivalOf(rows);
    const x = (value: number) => (width * value) / longest;
    const unit = rows[0].unit;
    const said = ours && rival && ours.toRival > 0 ? `${ours.contender} takes ${figure(ours.toRival)} of the time of ${rival.contender}; the goal is ${figure(ours.goal)}` : "without a rival";
    return h("article", {},
        h("h3", {}, job), h("p", { class: "meaning" }, `ns per ${unit}; ${said}.`),
        h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": `Chart of ${job}` },
            svg("svg", { viewBox: `0 0 ${left + width + 80} ${rows.length * line + 4}`, class: "chart", role: "img", "aria-label": `${job}: ${rows.map((row) => `${row.contender} ${figure(row.median)}`).join(", ")} ns per ${unit}` },
                ...rows.flatMap((row, i) => [
                    svg("text", { x: left - 8, y: i * line + 14, class: "end" }, row.contender),
                    svg("rect", { x: left, y: i * line + 3, width: Math.max(1, x(row.median)), height: line - 6, class: row.role }, svg("title", {}, `${row.contender}: ${figure(row.median)}, p10 ${figure(row.low)}, p90 ${figure(row.high)}${row.note ? `; ${row.note}` : ""}`)),
                    svg("line", { x1: left + x(row.low), x2: left + x(row.high), y1: i * line + line / 2, y2: i * line + line / 2, class: "range" }),
                    svg("text", { x: left + Math.max(x(row.high), x(row.median)) + 6, y: i * line + 14 }, figure(row.median))]))),
        h("details", {}, h("summary", {}, "As a table"), table(`${job} as a table`, ["Contender", `Median, ns per ${unit}`, "p10", "p90", "To the rival", "Note"],
            rows.map((row) => [row.contender, figure(row.median), figure(row.low), figure(row.high), row.toRival > 0 ? figure(row.toRival) : "", row.note]))));
}

let dropped: Run | null = null;
let wrong = "";

// Takes a bench.csv in place of the repository's; what is wrong with it is said where the charts are shown next.
export async function takeRun(file: File) {
    wrong = "";
    try {
        dropped = parseRun(await file.text());
        dropped.about.unshift(["file", file.name]);
    } catch (error) {
        wrong = `${file.name}: ${(error as Error).message}`;
    }
}

export function benchmark(wanted: string, go: (group: string) => void): HTMLElement {
    const file = Object.keys(BENCH_RESULTS)[0];
    const run = dropped ?? parseRun(BENCH_RESULTS[file]);
    const groups = [...new Set([...run.jobs.keys()].map(groupOf))];
    const group = groups.includes(wanted) ? wanted : groups[0];
    const select = h("select", { id: "bench-group", change: () => go(select.value) }, ...groups.map((one) => h("option", { value: one, selected: one === group }, one)));
    const message = h("p", { id: "bench-message", role: "status", class: wrong && "wrong" }, wrong);
    const input = h("input", { type: "file", id: "bench-file", accept: ".csv", change: () => input.files?.[0] && void takeRun(input.files[0]).then(() => root.replaceWith(benchmark("", go))) });
    const root = h("main", { id: "bench", class: "bench" },
        h("h1", {}, "The benchmark"),
        h("p", {}, "Nanoseconds per pixel or per call on one thread: bars are medians of interleaved turns, the line on each goes from p10 to p90; shorter is faster. Figures of one machine say little of another; bench/README.md says how they are measured and how all contenders are held to one instruction set."),
        h("dl", { class: "about" }, ...[...(dropped ? [] : [["results", `bench/results/${file}`]]), ...run.about].flatMap(([term, text]) => [h("dt", {}, term), h("dd", {}, text)])),
        h("p", { class: "row" }, h("label", { for: "bench-file" }, "A bench.csv of your own"), input), message,
        overview(run, "peer", go), overview(run, "yardstick", go),
        h("section", { id: "bench/jobs" }, h("h2", {}, "The jobs of a group"),
            h("p", { class: "row" }, h("label", { for: "bench-group" }, `One of ${groups.length} groups`), select),
            h("ul", { class: "legend" }, ...Object.entries(roles).map(([role, text]) => h("li", {}, svg("svg", { viewBox: "0 0 12 12", width: "12", height: "12", "aria-hidden": "true" }, svg("rect", { width: "12", height: "12", class: role })), ` ${text}`))),
            h("div", { class: "cards wide" }, ...[...run.jobs].filter(([job]) => groupOf(job) === group).map(([job, rows]) => bars(job, rows)))));
    return root;
}

// Debian's Chromium without a window.
import { existsSync } from "node:fs";
import { chromium } from "playwright-core";

const places = [process.env.CHROMIUM, "/usr/bin/chromium", "/usr/bin/chromium-browser", "/usr/bin/google-chrome"];

export function launch() {
    const executablePath = places.find((place) => place && existsSync(place));
    if (!executablePath) throw new Error("no Chromium here (scripts/setup page installs it; CHROMIUM may name another)");
    // Its sandbox wants user namespaces, which containers lack.
    return chromium.launch({ executablePath, args: ["--no-sandbox", "--enable-unsafe-swiftshader"] });
}

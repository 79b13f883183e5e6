// Opens a page in Debian's Chromium, headless and drawing with software
// WebGL, and does one thing with it as a user (or a stopwatch) would;
// prints what it found as JSON on the standard output.
//   browse.mjs click URL OBJECT SCREENSHOT   clicks OBJECT, waits for it to move
//   browse.mjs key URL KEY MS                holds KEY (a name puppeteer knows) MS
//                                            milliseconds on the view; the camera before and after
//   browse.mjs steps URL                     what the page at URL found (window.found)
//   browse.mjs timing URL SECONDS [high]     cold start to first frame, frames a second
//                                            (frames on the high-quality path with "high")
//   browse.mjs look URL PNG high|low         the view on the high-quality or light path,
//                                            its pictures decoded, saved as PNG
//   browse.mjs stop URL SPINNER OTHER        clicks SPINNER, whose code runs away, waits for
//                                            the page to tell the stop, clicks OTHER
//   browse.mjs sound URL OBJECT N            the page's sound once the world started N sounds
//                                            itself, and after a click on OBJECT
// Requests to any address but the page's own are refused and listed (elsewhere).
// VESSA_WEB_MODULES names the npm packages' folder (puppeteer-core).
import { createRequire } from "node:module";

const require = createRequire(`${process.env.VESSA_WEB_MODULES}/`);
const puppeteer = require("puppeteer-core");

const [action, url, ...rest] = process.argv.slice(2);
const WAIT_MS = 120000;

const browser = await puppeteer.launch({
    executablePath: process.env.VESSA_CHROMIUM ?? "/usr/bin/chromium",
    headless: true,
    args: ["--no-sandbox", "--enable-unsafe-swiftshader", "--use-angle=swiftshader",
           "--disable-gpu-sandbox", "--window-size=800,600", "--no-first-run"],
});

async function ready(page) {
    await page.waitForFunction(() => window.vessa47?.ready || window.vessa47?.failure,
                               { timeout: WAIT_MS, polling: 50 });
    const failure = await page.evaluate(() => window.vessa47.failure);
    if (failure)
        throw new Error(failure);
}

// Where the object's middle is drawn, in the page's pixels.
async function screenPointOf(page, name) {
    return page.evaluate((wanted) => {
        const { engine, backend } = window.vessa47;
        const made = backend.objects.get(engine.scene.find(wanted).id);
        const point = made.group.getWorldPosition(made.group.position.clone()).project(backend.camera);
        const box = backend.canvas.getBoundingClientRect();
        return { x: box.left + (point.x + 1) / 2 * box.width, y: box.top + (1 - point.y) / 2 * box.height };
    }, name);
}

async function clickOn(page, name) {
    const at = await screenPointOf(page, name);
    await page.mouse.click(at.x, at.y);
}

// Waits until what(...args), run in the page, answers something true; answers that.
async function until(page, what, ...args) {
    return (await page.waitForFunction(what, { timeout: WAIT_MS, polling: 50 }, ...args)).jsonValue();
}

async function stopped(page, url, spinner, other) {
    await page.goto(url);
    await ready(page);
    const before = (await page.evaluate(() => window.vessa47.objects()))[other];
    await clickOn(page, spinner);
    const told = await until(page, () => {
        const text = document.getElementById("vessa47-status").textContent;
        return /took too long/.test(text) && text;
    });
    const frames = await page.evaluate(() => window.vessa47.frames);
    await clickOn(page, other);
    const after = await until(page, (name, y) => {
        const now = window.vessa47.objects()[name];
        return now.position[1] > y + 0.9 && now;
    }, other, before.position[1]);
    const framesSince = (await page.evaluate(() => window.vessa47.frames)) - frames;
    return { told, before, after, framesSince };
}

// The page's sound: what the world started by itself (STARTED sounds,
// played or refused), then what a click on OBJECT started.
async function heard(page, url, name, started) {
    await page.goto(url);
    await ready(page);
    const sound = () => {
        const { backend } = window.vessa47;
        return { state: backend.audio?.state ?? null, started: backend.soundsStarted,
                 unplayable: [...backend.unplayable] };
    };
    await page.evaluate(`window.vessa47.sound = ${sound}`);
    const beforeClick = await until(page, (n) => {
        const now = window.vessa47.sound();
        return now.started.length + now.unplayable.length >= n && now;
    }, Number(started));
    await clickOn(page, name);
    const afterClick = await until(page, (n) => {
        const now = window.vessa47.sound();
        return now.started.length > n && now.state === "running" && now;
    }, beforeClick.started.length);
    return { beforeClick, afterClick };
}

try {
    const page = await browser.newPage();
    await page.setViewport({ width: 800, height: 600 });
    const out = { elsewhere: [] };
    // The page works offline: whatever it asks of another address is refused and told.
    const served = new URL(url).origin;
    await page.setRequestInterception(true);
    page.on("request", (request) => {
        if (new URL(request.url()).origin === served || request.url().startsWith("data:")) {
            request.continue();
        } else {
            out.elsewhere.push(request.url());
            request.abort();
        }
    });
    if (action === "click") {
        const [name, screenshot] = rest;
        await page.goto(url);
        await ready(page);
        out.before = (await page.evaluate(() => window.vessa47.objects()))[name];
        const at = await screenPointOf(page, name);
        await page.mouse.click(at.x, at.y);
        const moved = await page.waitForFunction((wanted, y) => {
            const now = window.vessa47.objects()[wanted];
            return now.position[1] > y + 0.9 ? now : false;
        }, { timeout: 20000, polling: 50 }, name, out.before.position[1]).then((h) => h.jsonValue(), () => null);
        out.after = moved ?? (await page.evaluate(() => window.vessa47.objects()))[name];
        out.clickedAt = at;
        if (screenshot)
            await page.screenshot({ path: screenshot });
    } else if (action === "key") {
        const [key, ms] = rest;
        await page.goto(url);
        await ready(page);
        out.before = (await page.evaluate(() => window.vessa47.objects())).Camera;
        await page.focus("canvas");
        await page.keyboard.down(key);
        await new Promise((done) => setTimeout(done, Number(ms)));
        await page.keyboard.up(key);
        await page.waitForFunction((n) => window.vessa47.frames > n, { timeout: 20000 },
                                   await page.evaluate(() => window.vessa47.frames) + 2);
        out.after = (await page.evaluate(() => window.vessa47.objects())).Camera;
    } else if (action === "steps") {
        await page.goto(url);
        await page.waitForFunction(() => window.found, { timeout: WAIT_MS, polling: 50 });
        Object.assign(out, await page.evaluate(() => window.found));
    } else if (action === "timing") {
        const seconds = Number(rest[0] ?? 3);
        const start = Date.now();
        await page.goto(url);
        await page.waitForFunction(() => window.vessa47?.frames > 0 || window.vessa47?.failure,
                                   { timeout: WAIT_MS, polling: 10 });
        out.firstFrameSeconds = (Date.now() - start) / 1000;
        if (rest[1] === "high") {
            // Counted once the shadows' first frame (which builds their shader) is drawn.
            await page.evaluate(() => window.vessa47.engine.SetAcceleration(1));
            await page.waitForFunction((n) => window.vessa47.frames > n, { timeout: 20000 },
                                       await page.evaluate(() => window.vessa47.frames) + 2);
        }
        const before = await page.evaluate(() => window.vessa47.frames);
        await new Promise((done) => setTimeout(done, seconds * 1000));
        out.framesPerSecond = ((await page.evaluate(() => window.vessa47.frames)) - before) / seconds;
    } else if (action === "look") {
        const [picture, quality] = rest;
        await page.goto(url);
        await ready(page);
        await page.evaluate(async (high) => {
            const { engine, backend } = window.vessa47;
            engine.SetAcceleration(high ? 1 : 0);
            await Promise.all([...backend.pictures.values()].flat());
            const drawn = window.vessa47.frames + 2;
            await new Promise((done) => {
                const wait = () => (window.vessa47.frames > drawn ? done() : requestAnimationFrame(wait));
                wait();
            });
        }, quality === "high");
        await (await page.$("canvas")).screenshot({ path: picture });
        out.frames = await page.evaluate(() => window.vessa47.frames);
        out.failure = await page.evaluate(() => window.vessa47.failure);
    } else if (action === "stop" || action === "sound") {
        Object.assign(out, await (action === "stop" ? stopped : heard)(page, url, ...rest));
    } else {
        throw new Error(`no action ${action}`);
    }
    process.stdout.write(JSON.stringify(out) + "\n");
} catch (error) {
    process.stderr.write(`${error.message ?? error}\n`);
    process.exitCode = 1;
} finally {
    await browser.close();
}

// Starts a world in a web page: Python (WebAssembly) with the engine's
// package, the world from its archive, the page's backend, then a loop that
// steps the engine and draws each frame. Everything comes from beside the
// page; nothing is fetched from elsewhere.

import { loadPyodide } from "./pyodide/pyodide.mjs";
import { WebBackend } from "./backend.js";

const WORLD = "/world";
const ENGINE = "/engine";
const TYPEFACE = "three/droid_sans_regular.typeface.json";

async function fetchBytes(url) {
    const answer = await fetch(url);
    if (!answer.ok)
        throw new Error(`${url} could not be loaded (${answer.status})`);
    return new Uint8Array(await answer.arrayBuffer());
}

// Loads Python, the engine and the world; answers {python, engine, backend}.
// options: player (folder, ending in "/"), archive, models (URLs), canvas;
// manualClock: the world's time moves only by advance() (for comparisons).
export async function load(options) {
    const [python, engineZip, archive, models, typeface] = await Promise.all([
        loadPyodide({ indexURL: new URL(`${options.player}pyodide/`, document.baseURI).href,
                      fullStdLib: false, stdout: () => {}, stderr: () => {} }),
        fetchBytes(`${options.player}vessa.zip`),
        fetchBytes(options.archive),
        fetch(options.models).then((a) => {
            if (!a.ok)
                throw new Error(`${options.models} could not be loaded (${a.status})`);
            return a.json();
        }),
        // Without its typeface the page plays on with its texts undrawn.
        fetch(`${options.player}${TYPEFACE}`).then((a) => (a.ok ? a.json() : null)).catch(() => null),
    ]);
    python.unpackArchive(engineZip, "zip", { extractDir: ENGINE });
    python.unpackArchive(archive, "zip", { extractDir: WORLD });
    const inPage = {};
    for (const [path, model] of Object.entries(models))
        inPage[`${WORLD}/${path}`] = model;
    const readFile = (path) => {
        try {
            return python.FS.readFile(path);
        } catch {
            return null;
        }
    };
    const backend = new WebBackend(options.canvas, inPage, readFile, typeface);
    python.runPython(`import sys; sys.path.insert(0, ${JSON.stringify(ENGINE)})`,
                     { filename: "<Init>" });
    const web = python.pyimport("vessa.web");
    const engine = web.start(backend, WORLD, Boolean(options.manualClock));
    const objects = () => JSON.parse(engine.GetObjectStates());
    return { python, engine, backend, objects };
}

// What the page shows of the engine's records in its status line: the
// world's printed output, and what went wrong in its code.
// The object tree's records, which no tree here shows, are let go.
function report(engine, status) {
    engine.flushout();
    engine.PollForTreeDifferences().destroy();
    const polled = engine.PollForMiscDifferences();
    const records = polled.toJs();
    polled.destroy(); // a list of Python's lives until its proxy is let go
    for (const record of records) {
        const kind = record[0];
        const text = String(record[1] ?? "").trim();
        if (status && text && (kind === "output" || kind === "popuperrordialog"))
            status.textContent = text.split("\n").pop();
    }
}

function wireNavigator(navigator, backend) {
    if (!navigator || navigator.hidden)
        return;
    for (const button of navigator.querySelectorAll("button")) {
        const key = button.dataset.key;
        const rawkey = Number(button.dataset.rawkey);
        button.addEventListener("pointerdown", () => backend.pressKey("KeyDown", key, rawkey));
        for (const end of ["pointerup", "pointerleave"])
            button.addEventListener(end, () => backend.pressKey("KeyUp", key, rawkey));
    }
}

// The page's own start: loads, then runs the world on the wall clock. The
// page's state (window.vessa47) tells how far it has come.
export async function play(options) {
    const page = { ready: false, frames: 0, failure: null };
    window.vessa47 = page;
    try {
        const { engine, backend, objects } = await load(options);
        Object.assign(page, { engine, backend, objects });
        wireNavigator(options.navigator, backend);
        if (options.status)
            options.status.textContent = "";
        const frame = () => {
            const failure = engine.Loop();
            if (failure) {
                page.failure = failure;
                if (options.status)
                    options.status.textContent = "This world stopped: " + failure.trim().split("\n").pop();
            }
            report(engine, options.status);
            backend.draw();
            page.frames += 1;
            page.ready = true;
            requestAnimationFrame(frame);
        };
        requestAnimationFrame(frame);
    } catch (error) {
        page.failure = String(error);
        if (options.status)
            options.status.textContent = `This world can't be played: ${error.message ?? error}`;
    }
}

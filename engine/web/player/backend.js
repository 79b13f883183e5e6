// The engine's backend in a web page: the world's state and tweens
// (WorldState), drawn with three.js into one canvas, picked with its ray
// caster, heard through Web Audio. The engine's Python calls it through
// vessa/web.py with plain arrays, numbers and texts.
//
// The engine's axes are left-handed (x right, y up, z forward); three.js's
// are right-handed. Mirroring x carries one into the other, as the desktop's
// drawing does, so model files (described in the right-handed frame) are
// drawn as they come.

import * as THREE from "./three/three.module.min.js";
import { WorldState, STYLES } from "./tweens.js";
import { PlanarShadows } from "./shadows.js";
import { SolidLetters } from "./letters.js";
import { LitMaterial, SCENE_LIGHT } from "./lighting.js";

THREE.ColorManagement.enabled = false;

const FIELD_OF_VIEW_DEGREES = 50;
const NEAR = 0.05;
const FAR = 2000;
const SKY_HORIZON = [0.78, 0.87, 0.96];
const SKY_TOP = [0.30, 0.52, 0.84];
// The desktop's lights: the world's ambient light, a fill light from above
// and behind the default eye, and the world's own lights (lighting.js).
const AMBIENT = [0.32, 0.32, 0.34];
const FILL = 0.45;
const FILL_DIRECTION = new THREE.Vector3(0.35, 1.0, -0.55);
const DEFAULT_EYE = [0, 1.5, -8];
const SOUNDS_KEPT = 32; // sounds started lately, as the page's state tells them

// How the export writes a model's picture into the page's files.
const PICTURE_PREFIX = "data:image/png;base64,";

// A shape whose lowest point is deeper than this is in the ground.
const SUNK = 0.01;

const toThreePoint = (p) => new THREE.Vector3(-p[0], p[1], p[2]);
const fromThreePoint = (v) => [-v.x, v.y, v.z];
const toThreeRotation = (q) => new THREE.Quaternion(q[1], -q[2], -q[3], q[0]);

export class WebBackend {
    // models: {file path in the page's file system: {name, parts, files,
    // missing, meshes: [[mesh, ...] per part], pictures: [PNG data URL or
    // null, ...]}}; readFile(path) -> bytes or null; font: the letters'
    // typeface (three.js's JSON form), or null: texts are then not drawn.
    constructor(canvas, models, readFile, font = null) {
        this.state = new WorldState();
        this.models = models;
        this.readFile = readFile;
        this.canvas = canvas;
        this.objects = new Map(); // node id -> {group, shape, light}
        this.input = [];
        this.frameTimes = [];
        this.scene = new THREE.Scene();
        this.scene.background = skyTexture();
        this.scene.add(new THREE.AmbientLight(new THREE.Color(...AMBIENT), 1));
        const fill = new THREE.DirectionalLight(0xffffff, FILL);
        fill.position.copy(FILL_DIRECTION);
        this.scene.add(fill);
        this.camera = new THREE.PerspectiveCamera(FIELD_OF_VIEW_DEGREES, 4 / 3, NEAR, FAR);
        this.raycaster = new THREE.Raycaster();
        this.renderer = canvas ? new THREE.WebGLRenderer({ canvas, antialias: true, stencil: true,
                                                           preserveDrawingBuffer: true }) : null;
        // Colours are drawn as the world gives them, as on the desktop.
        if (this.renderer)
            this.renderer.outputColorSpace = THREE.LinearSRGBColorSpace;
        this.letters = font ? new SolidLetters(font) : null;
        this.pictures = new Map(); // model file -> [texture promise or null, ...]
        this.shadows = new PlanarShadows(this.scene);
        this.highQuality = this.hardware_accelerated();
        this.sounds = new Map(); // path -> its bytes, or once played the AudioBuffer promise
        this.audio = null;
        this.soundsStarted = []; // the last SOUNDS_KEPT: {path, seconds, volume, loop}
        this.unplayable = new Set(); // paths of sound files the browser could not decode
        if (canvas)
            this.listen(canvas);
    }

    // -- the scene graph ----------------------------------------------------

    add_node(id, values, kind = "model") {
        this.remove_node(id);
        this.state.addNode(id, values, kind);
        const group = new THREE.Group();
        group.userData.nodeId = id;
        const made = { group, shape: null, light: null, model: null };
        if (kind === "light") {
            made.light = new THREE.PointLight(0xffffff, SCENE_LIGHT, 0, 0);
            group.add(made.light);
        }
        this.objects.set(id, made);
        if (kind === "scene")
            this.scene.add(group);
        this.reshape(id);
    }

    remove_node(id) {
        const made = this.objects.get(id);
        if (made) {
            made.group.removeFromParent();
            for (const child of [...made.group.children]) {
                if (child.userData.nodeId !== undefined)
                    child.removeFromParent();
            }
        }
        this.objects.delete(id);
        this.state.removeNode(id);
    }

    get(id, channel) {
        return this.state.node(id).values[channel].slice();
    }

    set(id, channel, value) {
        this.state.node(id).values[channel] = Array.from(value, Number);
        if (channel === "color")
            this.recolor(id);
    }

    set_parent(id, parentId) {
        this.state.setParent(id, parentId);
        const group = this.objects.get(id).group;
        group.removeFromParent();
        if (parentId !== null && parentId !== undefined)
            this.objects.get(parentId).group.add(group);
        else if (this.state.node(id).kind === "scene")
            this.scene.add(group);
    }

    bounds(id) {
        const node = this.state.node(id);
        if (node.kind !== "model")
            return null;
        const box = this.shapeBox(id);
        if (box === null || box.isEmpty()) {
            const half = node.values.size.map((x) => Math.abs(x) / 2);
            return [half.map((x) => -x), half];
        }
        const size = node.values.size;
        const low = fromThreePoint(box.min).map((x, i) => x * size[i]);
        const high = fromThreePoint(box.max).map((x, i) => x * size[i]);
        return [low.map((x, i) => Math.min(x, high[i])), high.map((x, i) => Math.max(x, low[i]))];
    }

    get_style(id, style) {
        return this.state.node(id).styles[style];
    }

    set_style(id, style, value) {
        this.state.setStyle(id, style, value);
        if (style === "model")
            this.reshape(id);
        else
            this.restyle(id);
    }

    // -- tweens -------------------------------------------------------------

    add_tween(id, channel, delta, start, duration, style) {
        return this.state.addTween(id, channel, delta, start, duration, style);
    }

    cancel(tweenId) {
        this.state.cancel(tweenId);
    }

    step(now) {
        const finished = this.state.step(now);
        for (const made of this.objects.values())
            made.colorDirty = true;
        return finished;
    }

    tween_count() {
        return this.state.tweens.size;
    }

    // -- shapes ---------------------------------------------------------------

    reshape(id) {
        const made = this.objects.get(id);
        if (made.shape)
            made.shape.removeFromParent();
        made.shape = null;
        const node = this.state.node(id);
        if (node.kind !== "model")
            return;
        const model = node.styles.model;
        made.shape = model === "" ? this.box() : this.modelShape(model);
        if (made.shape) {
            made.shape.userData.shapeOf = id;
            made.group.add(made.shape);
        }
        this.restyle(id);
    }

    box() {
        const mesh = new THREE.Mesh(new THREE.BoxGeometry(1, 1, 1), worldMaterial());
        const shape = new THREE.Group();
        shape.add(mesh);
        return shape;
    }

    // "text:<words>": solid letters; "<file>#<part>": the part's meshes as
    // the export described them, with their pictures.
    modelShape(reference) {
        if (reference.startsWith("text:")) {
            const geometry = this.letters?.geometry(reference.slice("text:".length));
            return geometry ? shapeOf([new THREE.Mesh(geometry, worldMaterial())]) : null;
        }
        const hash = reference.lastIndexOf("#");
        if (hash < 0)
            return null;
        const file = reference.slice(0, hash);
        const meshes = this.models[file]?.meshes?.[Number(reference.slice(hash + 1))];
        if (!meshes)
            return null;
        const pictures = this.picturesOf(file);
        return shapeOf(meshes.map((described) => meshFrom(described, pictures)));
    }

    // The model's pictures, decoded once for all its parts. One that the
    // browser can't decode is left out: its meshes keep their colours. Only
    // pictures held in the page's own files are read, never an address.
    picturesOf(file) {
        if (!this.pictures.has(file)) {
            const urls = this.models[file]?.pictures;
            this.pictures.set(file, (Array.isArray(urls) ? urls : []).map((url) =>
                typeof url === "string" && url.startsWith(PICTURE_PREFIX)
                    ? new THREE.TextureLoader().loadAsync(url).catch(() => null) : null));
        }
        return this.pictures.get(file);
    }

    shapeBox(id) {
        const made = this.objects.get(id);
        if (!made?.shape)
            return null;
        const box = new THREE.Box3();
        for (const mesh of meshesOf(made.shape)) {
            mesh.geometry.computeBoundingBox();
            box.union(mesh.geometry.boundingBox);
        }
        return box;
    }

    restyle(id) {
        const made = this.objects.get(id);
        const styles = this.state.node(id).styles;
        if (!made.shape)
            return;
        made.shape.visible = styles.visible;
        for (const mesh of meshesOf(made.shape)) {
            mesh.material.wireframe = String(styles.filling).toLowerCase() === "lines";
            mesh.userData.textured = styles.texture;
            mesh.material.picture = styles.texture ? mesh.userData.picture ?? null : null;
        }
        this.recolor(id);
    }

    recolor(id) {
        const made = this.objects.get(id);
        if (!made?.shape)
            return;
        const [r, g, b] = this.state.node(id).values.color;
        for (const mesh of meshesOf(made.shape))
            mesh.material.setTint(r, g, b);
        made.colorDirty = false;
    }

    // -- drawing --------------------------------------------------------------

    // Places every node as the state has it, then draws through the first
    // camera in the world.
    draw() {
        for (const [id, made] of this.objects) {
            const v = this.state.node(id).values;
            made.group.position.copy(toThreePoint(v.position));
            made.group.quaternion.copy(toThreeRotation(v.orientation));
            if (made.shape)
                made.shape.scale.set(v.size[0], v.size[1], v.size[2]);
            if (made.colorDirty)
                this.recolor(id);
            if (made.light)
                made.light.color.setRGB(v.color[0], v.color[1], v.color[2]);
        }
        this.scene.updateMatrixWorld(true);
        this.placeCamera();
        if (this.highQuality)
            this.shadows.place(this.shadowCasters(), this.shadowSource());
        else
            this.shadows.hide();
        if (this.renderer) {
            this.renderer.render(this.scene, this.camera);
            this.frameTimes.push(performance.now());
        }
    }

    // The shapes that stand on or above the ground, as on the desktop: a
    // shape sunk into it (the ground itself) throws no shadow.
    shadowCasters() {
        const casters = [];
        for (const [id, made] of this.objects) {
            const node = this.state.node(id);
            if (!made.shape || !node.styles.visible || !node.styles.shadow || !this.state.inWorld(id))
                continue;
            const box = new THREE.Box3().setFromObject(made.shape);
            if (!box.isEmpty() && box.min.y >= -SUNK)
                casters.push(...meshesOf(made.shape));
        }
        return casters;
    }

    // The first light in the world (a point), else the fill light's direction.
    shadowSource() {
        const id = [...this.state.nodes.keys()].find(
            (n) => this.state.node(n).kind === "light" && this.state.inWorld(n));
        if (id === undefined)
            return new THREE.Vector4(FILL_DIRECTION.x, FILL_DIRECTION.y, FILL_DIRECTION.z, 0);
        const at = toThreePoint(this.state.worldPlace(id).position);
        return new THREE.Vector4(at.x, at.y, at.z, 1);
    }

    placeCamera() {
        const id = [...this.state.nodes.keys()].find(
            (n) => this.state.node(n).kind === "camera" && this.state.inWorld(n));
        const place = id !== undefined ? this.state.worldPlace(id)
                                       : { position: DEFAULT_EYE, orientation: [1, 0, 0, 0] };
        this.camera.position.copy(toThreePoint(place.position));
        // A camera node looks along its forward axis (+z); a three.js eye
        // along its -z: half a turn about up between them.
        this.camera.quaternion.copy(toThreeRotation(place.orientation))
            .multiply(new THREE.Quaternion().setFromAxisAngle(new THREE.Vector3(0, 1, 0), Math.PI));
        if (this.canvas) {
            this.camera.aspect = this.canvas.width / Math.max(this.canvas.height, 1);
        }
        this.camera.updateProjectionMatrix();
        this.camera.updateMatrixWorld(true);
    }

    frames_per_second() {
        const now = performance.now();
        this.frameTimes = this.frameTimes.filter((t) => now - t < 1000);
        return this.frameTimes.length;
    }

    // -- picking and input ----------------------------------------------------

    listen(canvas) {
        const buttons = ["Left", "Middle", "Right"];
        canvas.addEventListener("contextmenu", (e) => e.preventDefault());
        canvas.addEventListener("pointerdown", (e) => {
            canvas.focus();
            this.push(e, `${buttons[e.button]}MouseDown`, true);
        });
        // Any touch of the page (the view, a key, the navigator) lets its sound out.
        for (const touch of ["pointerdown", "keydown"])
            canvas.ownerDocument.addEventListener(touch, () => this.startAudio(), true);
        canvas.addEventListener("pointerup", (e) => this.push(e, `${buttons[e.button]}MouseUp`, true));
        canvas.addEventListener("pointermove", (e) => this.push(e, "MouseMove", false));
        canvas.addEventListener("wheel", (e) => {
            e.preventDefault();
            this.push(e, "Wheel", false, { wheel: -Math.sign(e.deltaY) });
        });
        canvas.addEventListener("keydown", (e) => this.pushKey(e, "KeyDown"));
        canvas.addEventListener("keyup", (e) => this.pushKey(e, "KeyUp"));
    }

    push(e, kind, picks, more = {}) {
        const rect = this.canvas.getBoundingClientRect();
        const x = (e.clientX - rect.left) * (this.canvas.width / rect.width);
        const y = (e.clientY - rect.top) * (this.canvas.height / rect.height);
        const hit = picks ? this.pick(x, y) : null;
        this.input.push({ kind, x, y, node: hit?.node ?? null, point: hit?.point ?? null,
                          ray: this.rayAt(x, y), wheel: 0, key: "", rawkey: 0,
                          shift: e.shiftKey, control: e.ctrlKey, ...more });
    }

    pushKey(e, kind) {
        const key = keyName(e);
        if (key === null)
            return;
        e.preventDefault();
        this.input.push({ kind, x: 0, y: 0, node: null, point: null, ray: [[0, 0, 0], [0, 0, 1]],
                          wheel: 0, key: key.key, rawkey: key.rawkey, shift: e.shiftKey,
                          control: e.ctrlKey });
    }

    // A key as the camera view's buttons give it (the navigator's arrows).
    pressKey(kind, key, rawkey) {
        this.input.push({ kind, x: 0, y: 0, node: null, point: null, ray: [[0, 0, 0], [0, 0, 1]],
                          wheel: 0, key, rawkey, shift: false, control: false });
    }

    setPointer(x, y) {
        this.raycaster.setFromCamera(new THREE.Vector2(
            (x / this.canvas.width) * 2 - 1, -(y / this.canvas.height) * 2 + 1), this.camera);
    }

    rayAt(x, y) {
        this.placeCamera();
        this.setPointer(x, y);
        const r = this.raycaster.ray;
        return [fromThreePoint(r.origin), fromThreePoint(r.direction)];
    }

    // The nearest visible shape under the pixel: its node and where it is met.
    pick(x, y) {
        this.draw();
        this.setPointer(x, y);
        return this.firstShapeHit(Infinity);
    }

    firstShapeHit(maxDistance) {
        const shapes = [];
        for (const [id, made] of this.objects) {
            if (made.shape && this.state.node(id).styles.visible && this.state.inWorld(id))
                shapes.push(made.shape);
        }
        this.raycaster.far = maxDistance;
        const hit = this.raycaster.intersectObjects(shapes, true)[0];
        this.raycaster.far = Infinity;
        if (!hit)
            return null;
        let at = hit.object;
        while (at && at.userData.shapeOf === undefined)
            at = at.parent;
        return { node: at.userData.shapeOf, point: fromThreePoint(hit.point), distance: hit.distance };
    }

    poll_input() {
        const events = this.input;
        this.input = [];
        return events;
    }

    input_waiting() {
        return this.input.length > 0;
    }

    first_hit(origin, direction, maxDistance) {
        this.scene.updateMatrixWorld(true);
        this.raycaster.set(toThreePoint(origin), toThreePoint(direction).normalize());
        return this.firstShapeHit(maxDistance)?.distance ?? null;
    }

    // -- the camera view: the page's canvas is the view -----------------------

    open_view() { return null; }
    move_view() { return null; }
    resize_view() {}
    close_view() {}
    focus_view() { this.canvas?.focus(); return null; }
    check_drawing() { return this.renderer ? "" : "This page can't draw: the browser gives it no WebGL"; }
    // A browser that draws with a graphics card; software WebGL (SwiftShader,
    // llvmpipe) draws the light path unless the world asks for more.
    hardware_accelerated() {
        const gl = this.renderer?.getContext();
        if (!gl)
            return false;
        const info = gl.getExtension("WEBGL_debug_renderer_info");
        const name = String(gl.getParameter(info ? info.UNMASKED_RENDERER_WEBGL : gl.RENDERER));
        return !/swiftshader|llvmpipe|softpipe|software/i.test(name);
    }

    // The high-quality path adds shadows on the ground.
    set_acceleration(on) {
        this.highQuality = Boolean(on);
        return null;
    }
    save_picture(path) { return `${path} is not written: a web page keeps no pictures`; }
    screen_size() { return [window.screen?.width ?? 1920, window.screen?.height ?? 1080]; }

    // -- model files: what the export described --------------------------------

    model_formats() { return []; }

    load_model(path) {
        const model = this.models[path];
        if (!model)
            throw new Error(`${path} can't be read: it did not come with the page`);
        const { name, parts, files, missing } = model;
        return { name, parts, files, missing };
    }

    store_model(path) {
        throw new Error(`${path} can't be written: a web page keeps no files`);
    }

    // -- sound ----------------------------------------------------------------

    // The page's audio. A browser holds a page's sound until the user first
    // touches the page; sounds started before that (a World Start animation's)
    // wait in the held audio and begin at that touch.
    audioContext() {
        if (!this.audio && typeof AudioContext !== "undefined")
            this.audio = new AudioContext();
        return this.audio;
    }

    startAudio() {
        this.audioContext()?.resume().catch(() => {});
    }

    start_sound() {}

    load_sound(path) {
        if (this.sounds.has(path))
            return null;
        const bytes = this.readFile(path);
        if (bytes === null)
            return `There is no sound file ${path}`;
        this.sounds.set(path, bytes);
        return null;
    }

    // Decoded once, when first played; a file the browser can't decode is
    // kept in `unplayable` and the world plays on without it.
    play_sound(path, volume = 1.0) {
        const failure = this.load_sound(path);
        const audio = this.audioContext();
        if (failure !== null || !audio)
            return failure;
        let decoded = this.sounds.get(path);
        if (decoded instanceof Uint8Array) {
            decoded = audio.decodeAudioData(decoded.slice().buffer);
            this.sounds.set(path, decoded);
        }
        decoded.then((buffer) => {
            const source = audio.createBufferSource();
            const gain = audio.createGain();
            gain.gain.value = volume;
            source.buffer = buffer;
            source.connect(gain).connect(audio.destination);
            source.start();
            this.soundsStarted.push({ path, seconds: buffer.duration, volume: gain.gain.value,
                                      loop: source.loop });
            this.soundsStarted.splice(0, this.soundsStarted.length - SOUNDS_KEPT);
        }, () => this.unplayable.add(path));
        return null;
    }
}

// The sky behind the world, from the horizon's colour at the bottom of the
// view to the top's at the top, as the desktop draws it.
function skyTexture() {
    const rows = 64;
    const pixels = new Uint8Array(rows * 4);
    for (let row = 0; row < rows; row++) {
        const t = row / (rows - 1);
        for (let c = 0; c < 3; c++)
            pixels[row * 4 + c] = Math.round(255 * (SKY_HORIZON[c] + (SKY_TOP[c] - SKY_HORIZON[c]) * t));
        pixels[row * 4 + 3] = 255;
    }
    const texture = new THREE.DataTexture(pixels, 1, rows);
    texture.magFilter = THREE.LinearFilter;
    texture.needsUpdate = true;
    return texture;
}

function meshesOf(shape) {
    const found = [];
    shape.traverse((o) => { if (o.isMesh) found.push(o); });
    return found;
}

function shapeOf(meshes) {
    const shape = new THREE.Group();
    for (const mesh of meshes)
        shape.add(mesh);
    return shape;
}

// A material lit as the desktop lights it (lighting.js). It marks the
// pixels the world covers, where shadows may fall.
function worldMaterial(options = {}, look = {}) {
    const material = new LitMaterial(options, look);
    PlanarShadows.markGround(material);
    return material;
}

// One mesh of a model file's description: positions, normals (none, one
// for all, or one a vertex), colours (likewise, r g b a), texture
// coordinates (none, or s t a vertex) with a picture, triangles.
function meshFrom(d, pictures) {
    const geometry = new THREE.BufferGeometry();
    const count = d.positions.length / 3;
    geometry.setAttribute("position", new THREE.Float32BufferAttribute(d.positions, 3));
    geometry.setIndex(d.triangles);
    if (d.normals.length === count * 3)
        geometry.setAttribute("normal", new THREE.Float32BufferAttribute(d.normals, 3));
    else
        geometry.computeVertexNormals();
    const perVertex = d.colors.length === count * 4;
    if (perVertex)
        geometry.setAttribute("color", new THREE.Float32BufferAttribute(d.colors, 4));
    // One colour for the whole mesh stands for its material's diffuse colour.
    const own = d.colors.length === 4 ? d.colors : d.diffuse ?? [1, 1, 1];
    const material = worldMaterial({ vertexColors: perVertex, side: THREE.DoubleSide,
                                     transparent: Boolean(d.blended) },
                                   { ...d, diffuse: own.slice(0, 3), opacity: own[3] ?? 1 });
    const mesh = new THREE.Mesh(geometry, material);
    const picture = Number.isInteger(d.picture) ? pictures[d.picture] : null;
    if (picture && d.texcoords?.length === count * 2) {
        geometry.setAttribute("uv", new THREE.Float32BufferAttribute(d.texcoords, 2));
        mesh.userData.textured = true;
        picture.then((texture) => {
            if (!texture)
                return;
            texture.wrapS = texture.wrapT = THREE.RepeatWrapping;
            mesh.userData.picture = texture;
            if (mesh.userData.textured)
                material.picture = texture;
        });
    }
    return mesh;
}

const NAMED_KEYS = {
    Backspace: ["Backspace", 8], Tab: ["Tab", 9], Enter: ["Enter", 13], Shift: ["Shift", 16],
    Control: ["Control", 17], Alt: ["Alt", 18], Escape: ["Escape", 27], " ": ["Space", 32],
    PageUp: ["PageUp", 33], PageDown: ["PageDown", 34], End: ["End", 35], Home: ["Home", 36],
    ArrowLeft: ["Left", 37], ArrowUp: ["Up", 38], ArrowRight: ["Right", 39], ArrowDown: ["Down", 40],
    Insert: ["Insert", 45], Delete: ["Delete", 46], "+": ["+", 107], "-": ["-", 109],
    ".": [".", 190], ",": [",", 188],
};

// The key's name and Windows key code as the desktop's camera view gives them.
function keyName(e) {
    if (/^[a-zA-Z0-9]$/.test(e.key)) {
        const key = e.key.toUpperCase();
        return { key, rawkey: key.charCodeAt(0) };
    }
    const named = NAMED_KEYS[e.key];
    return named ? { key: named[0], rawkey: named[1] } : null;
}

export { STYLES };

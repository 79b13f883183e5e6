// The world's state without drawing: nodes with their channels, parents and
// styles, and the eased tweens that change them. The same arithmetic as the
// engine's other backends, in the same order, so that a world moves the same
// in the page as on the desktop.

export const CHANNELS = ["position", "orientation", "size", "color"];
export const STYLES = { visible: true, filling: "Solid", lighting: "Lit", texture: true, model: "", shadow: true };
const FLAG_STYLES = new Set(["visible", "texture", "shadow"]);
export const IDENTITY = [1, 0, 0, 0];
const DEFAULT_VALUES = { position: [0, 0, 0], orientation: IDENTITY, size: [1, 1, 1], color: [1, 1, 1] };

export function quatMul(p, q) {
    const [pw, px, py, pz] = p;
    const [qw, qx, qy, qz] = q;
    return [pw * qw - px * qx - py * qy - pz * qz,
            pw * qx + px * qw + py * qz - pz * qy,
            pw * qy - px * qz + py * qw + pz * qx,
            pw * qz + px * qy - py * qx + pz * qw];
}

export function quatNormalized(q) {
    const n = Math.sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    return n > 1e-12 ? q.map((c) => c / n) : IDENTITY.slice();
}

function normalized(a) {
    const n = Math.sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    return n > 1e-12 ? a.map((c) => c / n) : [0, 0, 0];
}

export function quatAxisAngle(axis, angle) {
    const a = normalized(axis);
    const s = Math.sin(angle / 2);
    return [Math.cos(angle / 2), a[0] * s, a[1] * s, a[2] * s];
}

export function rotate(q, v) {
    const conj = [q[0], -q[1], -q[2], -q[3]];
    const r = quatMul(quatMul(q, [0, v[0], v[1], v[2]]), conj);
    return [r[1], r[2], r[3]];
}

const EASING = {
    abruptly: (t) => t,
    gently: (t) => t * t * (3 - 2 * t),
    begingently: (t) => t * t,
    endabruptly: (t) => t * t,
    beginabruptly: (t) => 1 - (1 - t) * (1 - t),
    endgently: (t) => 1 - (1 - t) * (1 - t),
};

class Tween {
    constructor(nodeId, channel, delta, start, duration, ease) {
        Object.assign(this, { nodeId, channel, delta, start, duration, ease });
        this.done = 0; // the eased fraction applied so far
    }

    get end() {
        return this.start + this.duration;
    }

    fraction(now) {
        if (this.duration <= 0 || now >= this.end)
            return 1;
        return this.ease(Math.max(0, (now - this.start) / this.duration));
    }
}

// Node ids are the engine's; values are plain arrays of numbers.
export class WorldState {
    constructor() {
        this.nodes = new Map(); // id -> {values, kind, parent, styles}
        this.tweens = new Map();
        this.nextTween = 1;
    }

    addNode(id, values, kind = "model") {
        this.removeNode(id);
        const own = {};
        for (const c of CHANNELS)
            own[c] = Array.from(values[c] ?? DEFAULT_VALUES[c], Number);
        this.nodes.set(id, { values: own, kind, parent: null, styles: { ...STYLES } });
    }

    removeNode(id) {
        this.nodes.delete(id);
        for (const [tweenId, tween] of this.tweens) {
            if (tween.nodeId === id)
                this.tweens.delete(tweenId);
        }
    }

    node(id) {
        const node = this.nodes.get(id);
        if (node === undefined)
            throw new Error(`no node ${id}`);
        return node;
    }

    setStyle(id, style, value) {
        if (!(style in STYLES))
            throw new Error(`unknown style ${style}`);
        this.node(id).styles[style] = FLAG_STYLES.has(style) ? Boolean(value) : String(value);
    }

    // Python's None comes as undefined: no parent either way.
    setParent(id, parent) {
        const parentId = parent ?? null;
        if (parentId !== null && !this.nodes.has(parentId))
            throw new Error(`no node ${parentId}`);
        this.node(id).parent = parentId;
    }

    inWorld(id) {
        for (let at = id; at !== null && at !== undefined; at = this.nodes.get(at)?.parent) {
            if (this.nodes.get(at)?.kind === "scene")
                return true;
        }
        return false;
    }

    // Position and orientation in the world, the node's size left out.
    worldPlace(id) {
        let position = [0, 0, 0];
        let orientation = IDENTITY;
        for (let at = id; at !== null; at = this.nodes.get(at).parent) {
            const v = this.nodes.get(at).values;
            const turned = rotate(v.orientation, position);
            position = [v.position[0] + turned[0], v.position[1] + turned[1], v.position[2] + turned[2]];
            orientation = quatMul(v.orientation, orientation);
        }
        return { position, orientation };
    }

    addTween(nodeId, channel, delta, start, duration, style) {
        const id = this.nextTween++;
        const ease = EASING[String(style).toLowerCase()] ?? EASING.gently;
        this.tweens.set(id, new Tween(nodeId ?? null, channel, Array.from(delta ?? [], Number), start,
                                      Math.max(Number(duration), 0), ease));
        return id;
    }

    cancel(id) {
        this.tweens.delete(id);
    }

    // Advances every tween to now; answers those that reached their end, in
    // order of end (a Map keeps the order tweens were made in, which breaks ties).
    step(now) {
        const finished = [];
        for (const [id, tween] of this.tweens) {
            if (now < tween.start)
                continue;
            const fraction = tween.fraction(now);
            if (tween.nodeId !== null && fraction !== tween.done)
                this.apply(tween, fraction - tween.done);
            tween.done = fraction;
            if (now >= tween.end)
                finished.push([tween.end, id]);
        }
        finished.sort((a, b) => a[0] - b[0] || a[1] - b[1]);
        for (const [, id] of finished)
            this.tweens.delete(id);
        return finished.map(([, id]) => id);
    }

    apply(tween, amount) {
        const node = this.nodes.get(tween.nodeId);
        if (node === undefined)
            return;
        const v = node.values;
        if (tween.channel === "orientation") {
            const turn = quatAxisAngle(tween.delta.slice(0, 3), tween.delta[3] * amount);
            v.orientation = quatNormalized(quatMul(turn, v.orientation));
        } else {
            v[tween.channel] = v[tween.channel].map((x, i) => x + tween.delta[i] * amount);
        }
    }
}

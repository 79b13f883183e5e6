// Shadows as the desktop draws them on its high-quality path: each shape
// that throws one is drawn a second time, flattened onto the ground plane
// along the lines from the light, as a dark glaze. No shadow maps: one more
// pass over the casters' own geometry and no lookups in every pixel, which
// keeps software WebGL quick.
//
// The stencil keeps the glaze where the world was drawn (not on the sky
// beyond the ground) and darkens each pixel once however many shapes shade it.

import * as THREE from "./three/three.module.min.js";

const DARKNESS = 0.35;       // how much of the light a shadow takes away
const HEIGHT = 0.002;        // the glaze lies a hair above the ground
const WORLD_DRAWN = 1;       // stencil value of the pixels the world covers

// Projects points onto the plane y = height along lines from light (w = 1)
// or along its direction (w = 0).
function flattenedFrom(light, height, into) {
    const plane = [0, 1, 0, -height];
    const l = [light.x, light.y, light.z, light.w];
    const d = plane[1] * l[1] + plane[3] * l[3];
    const m = [];
    for (let row = 0; row < 4; row++) {
        for (let col = 0; col < 4; col++)
            m.push((row === col ? d : 0) - l[row] * plane[col]);
    }
    return into.set(...m);
}

export class PlanarShadows {
    constructor(scene) {
        this.group = new THREE.Group();
        this.group.matrixAutoUpdate = false;
        scene.add(this.group);
        this.pool = []; // shadow meshes, reused frame after frame
        this.flatten = new THREE.Matrix4();
        this.material = new THREE.MeshBasicMaterial({
            color: 0x000000, transparent: true, opacity: DARKNESS, depthWrite: false,
            side: THREE.DoubleSide, forceSinglePass: true, polygonOffset: true, polygonOffsetFactor: -1,
            polygonOffsetUnits: -1, stencilWrite: true, stencilRef: WORLD_DRAWN,
            stencilFunc: THREE.EqualStencilFunc, stencilZPass: THREE.IncrementStencilOp });
    }

    // A material of the world's shapes marks the pixels it covers.
    static markGround(material) {
        material.stencilWrite = true;
        material.stencilRef = WORLD_DRAWN;
        material.stencilFunc = THREE.AlwaysStencilFunc;
        material.stencilZPass = THREE.ReplaceStencilOp;
    }

    // casters: meshes, their world matrices up to date; light: a point
    // (w = 1) or a direction toward the light (w = 0), in three.js's axes.
    place(casters, light) {
        flattenedFrom(light, HEIGHT, this.flatten);
        while (this.pool.length < casters.length) {
            const shadow = new THREE.Mesh(new THREE.BufferGeometry(), this.material);
            shadow.matrixAutoUpdate = false;
            shadow.matrixWorldAutoUpdate = false;
            shadow.frustumCulled = false;
            shadow.renderOrder = 1;
            this.group.add(shadow);
            this.pool.push(shadow);
        }
        this.pool.forEach((shadow, i) => {
            const caster = casters[i];
            shadow.visible = caster !== undefined;
            if (caster) {
                shadow.geometry = caster.geometry;
                shadow.matrixWorld.multiplyMatrices(this.flatten, caster.matrixWorld);
            }
        });
    }

    hide() {
        for (const shadow of this.pool)
            shadow.visible = false;
    }
}

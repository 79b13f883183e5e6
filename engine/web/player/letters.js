// Solid letters for a text object, as the desktop makes them: a meter to
// the em of DejaVu Sans, a fifth of a meter deep behind their faces,
// centred on their base line. The typeface comes beside the player: Droid
// Sans in three.js's JSON form, the sans-serif face three.js ships nearest to
// DejaVu Sans, sized and widened to stand where the desktop's letters stand.
// Nothing is fetched or converted elsewhere.

import * as THREE from "./three/three.module.min.js";
import { Font } from "./three/FontLoader.js";

const CAP_HEIGHT = 0.729; // DejaVu Sans's capitals, a meter to the em
const WIDER = 1.09;       // DejaVu Sans sets its letters wider than Droid Sans
const LETTER_DEPTH = 0.2;
const CURVE_SEGMENTS = 6; // points along each curve of a letter's outline

function boxOf(shapes) {
    const geometry = new THREE.ShapeGeometry(shapes);
    geometry.computeBoundingBox();
    return geometry.boundingBox;
}

export class SolidLetters {
    constructor(typeface) {
        this.font = new Font(typeface);
        const capital = boxOf(this.font.generateShapes("H", 1));
        this.size = CAP_HEIGHT / (capital.max.y - capital.min.y);
    }

    // The letters' geometry, or null for words with nothing to draw.
    geometry(words) {
        const shapes = this.font.generateShapes(words, this.size);
        if (shapes.length === 0)
            return null;
        const geometry = new THREE.ExtrudeGeometry(shapes, { depth: LETTER_DEPTH, bevelEnabled: false,
                                                             curveSegments: CURVE_SEGMENTS });
        geometry.scale(WIDER, 1, 1);
        geometry.computeBoundingBox();
        const box = geometry.boundingBox;
        geometry.translate(-(box.min.x + box.max.x) / 2, 0, -LETTER_DEPTH);
        return geometry;
    }
}

// The desktop's lighting in the page. The desktop draws with fixed-function
// OpenGL: each corner of a triangle is lit, the colours blended between
// them, and a picture multiplies the blend. A large flat face whose corners
// lie far from a light is therefore dim all over, however close its middle
// comes to the light; lighting each pixel would make it bright there. So the
// page lights each corner as OpenGL does: the world's ambient light in the
// material's ambient colour, then each light's diffuse part and highlight,
// the eye looking along -z everywhere (no local viewer), the lights
// unweakened by distance, back faces lit as front faces, the sum held
// within white before it is blended.

import * as THREE from "./three/three.module.min.js";

// A world's light: diffuse strength and highlight strength. The fill light
// (a directional light) gives no highlight.
export const SCENE_LIGHT = 0.8;
const SCENE_LIGHT_SPECULAR = 0.3;
// Shapes without a material of their own shine a little.
const SPECULAR = 0.15;
const SHININESS = 24;

const VERTEX_SHADER = /* glsl */ `
#include <common>
#include <lights_pars_begin>

uniform vec4 materialDiffuse;
uniform vec3 materialAmbient;
uniform vec3 materialSpecular;
uniform vec3 materialEmission;
uniform float shininess;
varying vec4 vLit;
#ifdef PICTURED
varying vec2 vUv;
#endif

// One light's diffuse part and highlight at a corner; toLight and normal
// are of unit length, in the eye's frame.
vec3 shine(vec3 normal, vec3 toLight, vec3 light, float specularShare, vec3 diffuse) {
    float facing = dot(normal, toLight);
    if (facing <= 0.0)
        return vec3(0.0);
    vec3 halfway = normalize(toLight + vec3(0.0, 0.0, 1.0));
    float highlight = pow(max(dot(normal, halfway), 0.0), shininess);
    return light * (facing * diffuse + specularShare * highlight * materialSpecular);
}

void main() {
    vec4 own = materialDiffuse;
    vec3 ambient = materialAmbient;
#if defined( USE_COLOR_ALPHA )
    own *= color;
    ambient *= color.rgb;
#elif defined( USE_COLOR )
    own.rgb *= color;
    ambient *= color;
#endif
    vec4 seen = modelViewMatrix * vec4(position, 1.0);
    vec3 normal = normalize(normalMatrix * normal);
    vec3 lit = materialEmission + ambientLightColor * ambient;
#if NUM_DIR_LIGHTS > 0
    for (int i = 0; i < NUM_DIR_LIGHTS; i++)
        lit += shine(normal, normalize(directionalLights[i].direction), directionalLights[i].color,
                     0.0, own.rgb);
#endif
#if NUM_POINT_LIGHTS > 0
    for (int i = 0; i < NUM_POINT_LIGHTS; i++)
        lit += shine(normal, normalize(pointLights[i].position - seen.xyz), pointLights[i].color,
                     ${SCENE_LIGHT_SPECULAR / SCENE_LIGHT}, own.rgb);
#endif
    vLit = vec4(clamp(lit, 0.0, 1.0), own.a);
#ifdef PICTURED
    vUv = uv;
#endif
    gl_Position = projectionMatrix * seen;
}
`;

const FRAGMENT_SHADER = /* glsl */ `
uniform vec3 tint;
varying vec4 vLit;
#ifdef PICTURED
uniform sampler2D picture;
varying vec2 vUv;
#endif

void main() {
    vec4 colour = vLit;
#ifdef PICTURED
    colour *= texture2D(picture, vUv);
#endif
    // A node's colour multiplies all it shows, highlight and picture too.
    colour.rgb *= tint;
#ifdef OPAQUE
    colour.a = 1.0;
#endif
    gl_FragColor = colour;
}
`;

// A shape's material lit as the desktop lights it: by default the desktop's
// own (its colour as ambient and diffuse colour, a small highlight), or what
// a model file gives (look: diffuse, ambient, specular, emission, shininess).
// options: three.js material settings (side, transparent, vertexColors...).
export class LitMaterial extends THREE.ShaderMaterial {
    constructor(options = {}, look = {}) {
        const diffuse = look.diffuse ?? [1, 1, 1];
        const specular = look.specular ?? [SPECULAR, SPECULAR, SPECULAR];
        super({
            uniforms: THREE.UniformsUtils.merge([THREE.UniformsLib.lights, {
                materialDiffuse: { value: new THREE.Vector4(...diffuse.slice(0, 3), look.opacity ?? 1) },
                materialAmbient: { value: new THREE.Vector3(...(look.ambient ?? diffuse)) },
                materialSpecular: { value: new THREE.Vector3(...specular) },
                materialEmission: { value: new THREE.Vector3(...(look.emission ?? [0, 0, 0])) },
                shininess: { value: Math.min(Math.max(look.shininess ?? SHININESS, 0), 128) },
                tint: { value: new THREE.Vector3(1, 1, 1) },
                picture: { value: null },
            }]),
            vertexShader: VERTEX_SHADER, fragmentShader: FRAGMENT_SHADER, lights: true, ...options,
        });
    }

    get picture() {
        return this.uniforms.picture.value;
    }

    // A picture (a texture) that multiplies the lit colour, or null.
    set picture(texture) {
        if (texture === this.picture)
            return;
        this.uniforms.picture.value = texture;
        if (texture)
            this.defines.PICTURED = "";
        else
            delete this.defines.PICTURED;
        this.needsUpdate = true;
    }

    // The node's colour, r g b, 0 to 1.
    setTint(r, g, b) {
        this.uniforms.tint.value.set(r, g, b);
    }
}

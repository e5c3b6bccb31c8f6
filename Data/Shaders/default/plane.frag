#version 110

// The solid side of a plane. Of the texture coordinates the first is the signed distance, the second the depth
// in parts of that in which the brightness comes 1/e nearer to that of the deep. Lengths in world units.
uniform sampler2D BorderSampler;  // brightness of the rim along the radius of a disc
uniform vec4 Color;
uniform float Width;      // of the rim; 0 draws none
uniform float PixelSize;  // side of a pixel

const float DEEP_BRIGHTNESS = 0.6;
const float GRASS_BRIGHTNESS = 0.28;  // more, just below the rim
const float GRASS_START = 1.0;        // depths, in widths of the rim
const float GRASS_END = 4.0;
const float RIM_START = 0.8;  // part of the radius at which the picture's rim begins

// d: signed distance, negative inside.
vec3 Rim(float d) {
    if (Width <= 0.0) return vec3(1.0);
    float k = clamp(1.0 + d / Width, 0.0, 1.0);
    return texture2D(BorderSampler, vec2(0.5 + 0.49 * (RIM_START + (1.0 - RIM_START) * k), 0.5)).rgb;
}

float Ground(float depth, float falloffs) {
    float t = Width > 0.0 ? smoothstep(GRASS_START, GRASS_END, depth / Width) : 1.0;
    return (DEEP_BRIGHTNESS + (1.0 - DEEP_BRIGHTNESS) * exp(-falloffs)) * (1.0 + GRASS_BRIGHTNESS * (1.0 - t));
}

// Texture coordinates are divided by q, which is 1, as the fixed pipeline does: a driver that draws in software
// compiles a program for each set of components that some shader reads.
void main() {
    vec2 place = gl_TexCoord[0].st / gl_TexCoord[0].q;
    float d = place.s;
    float falloffs = max(place.t, 0.0);
    float coverage = clamp(-d / PixelSize, 0.0, 1.0);
    gl_FragColor = vec4(min(Color.rgb * Ground(max(-d, 0.0), falloffs), 1.0) * Rim(d), Color.a * coverage);
}

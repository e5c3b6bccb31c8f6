#version 110

// A circle with a rim, a smooth outline and a spot that shows its turning. Lengths in world units.
uniform sampler2D BorderSampler;  // brightness of the rim along the radius of a disc
uniform vec4 Color;
uniform float Width;      // of the rim; 0 draws none
uniform float PixelSize;  // side of a pixel
uniform float Radius;

const float RIM_START = 0.8;       // part of the radius at which the picture's rim begins
const float SPOT_PLACE = 0.6;      // centre of the spot, in radii along the first axis
const float SPOT_RADIUS = 0.11;    // in radii
const float SPOT_DARKNESS = 0.35;  // opacity of its black

// d: signed distance, negative inside.
vec3 Rim(float d) {
    if (Width <= 0.0) return vec3(1.0);
    float k = clamp(1.0 + d / Width, 0.0, 1.0);
    return texture2D(BorderSampler, vec2(0.5 + 0.49 * (RIM_START + (1.0 - RIM_START) * k), 0.5)).rgb;
}

float Spot(vec2 p) {
    float d = (length(p - vec2(SPOT_PLACE, 0.0)) - SPOT_RADIUS) * Radius;
    return 1.0 - SPOT_DARKNESS * clamp(0.5 - d / PixelSize, 0.0, 1.0);
}

// Texture coordinates are divided by q, which is 1, as the fixed pipeline does: a driver that draws in software
// compiles a program for each set of components that some shader reads.
void main() {
    vec2 p = 2.0 * gl_TexCoord[0].st / gl_TexCoord[0].q - 1.0;
    float d = (length(p) - 1.0) * Radius;
    float coverage = clamp(-d / PixelSize, 0.0, 1.0);  // the quad ends at the outline
    gl_FragColor = vec4(Color.rgb * Rim(d) * Spot(p), Color.a * coverage);
}

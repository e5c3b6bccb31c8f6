#version 110

// The surface of the water: the sum of the particles' fields, cut where it falls below Cutoff.
uniform sampler2D FieldSampler;  // red: the field, saturated; green: a tenth of it, which saturates later
uniform float Cutoff;
uniform vec4 Color;

const vec3 RIM_COLOR = vec3(0.88, 0.96, 1.0);  // nearly white: it must part the water from the sky
const float RIM_ALPHA = 0.95;

// Texture coordinates are divided by q, which is 1, as the fixed pipeline does: a driver that draws in software
// compiles a program for each set of components that some shader reads.
void main() {
    vec4 texel = texture2DProj(FieldSampler, gl_TexCoord[0].stq);
    float field = texel.r;
    if (field <= Cutoff) discard;
    // The red field tells the depth below the surface until it saturates, the green one after that.
    float depth = (field - Cutoff) / (1.0 - Cutoff) + 12.0 * max(0.0, texel.g - 0.04);
    float rim = 1.0 - smoothstep(0.35, 1.3, depth);
    float edge = clamp((field - Cutoff) / max(fwidth(field), 0.001), 0.25, 1.0);
    gl_FragColor = vec4(mix(Color.rgb, RIM_COLOR, rim), mix(Color.a, RIM_ALPHA, rim) * edge);
}

#version 110

// A polygon from its distance texture: fill, rim and smooth outline in one quad. Lengths in world units.
uniform sampler2D DistSampler;    // alpha: signed distance over DistScale, moved to 0..1; 1 is outside
uniform sampler2D BorderSampler;  // brightness of the rim along the radius of a disc
uniform vec4 Color;
uniform float Width;      // of the rim; 0 draws none
uniform float DistScale;  // distance at alpha 1
uniform float PixelSize;  // side of a pixel

const float RIM_START = 0.8;  // part of the radius at which the picture's rim begins

// d: signed distance, negative inside.
vec3 Rim(float d) {
    if (Width <= 0.0) return vec3(1.0);
    float k = clamp(1.0 + d / Width, 0.0, 1.0);
    return texture2D(BorderSampler, vec2(0.5 + 0.49 * (RIM_START + (1.0 - RIM_START) * k), 0.5)).rgb;
}

// Texture coordinates are divided by q, which is 1, as the fixed pipeline does: a driver that draws in software
// compiles a program for each set of components that some shader reads.
void main() {
    float d = (2.0 * texture2DProj(DistSampler, gl_TexCoord[0].stq).a - 1.0) * DistScale;
    float coverage = clamp(0.5 - d / PixelSize, 0.0, 1.0);
    gl_FragColor = vec4(Color.rgb * Rim(d), Color.a * coverage);
}

#version 110

// As in "default", with hard edges.
uniform sampler2D BorderSampler;
uniform vec4 Color;
uniform float Width;
uniform float PixelSize;
uniform float Radius;

void main() {
    vec2 p = 2.0 * gl_TexCoord[0].st - 1.0;
    float d = (length(p) - 1.0) * Radius;
    if (d > -0.5 * PixelSize) discard;
    vec3 rim = Width > 0.0 && d > -Width ? texture2D(BorderSampler, vec2(0.94, 0.5)).rgb : vec3(1.0);
    float spot = length(p - vec2(0.6, 0.0)) < 0.11 ? 0.65 : 1.0;
    gl_FragColor = vec4(Color.rgb * rim * spot, Color.a);
}

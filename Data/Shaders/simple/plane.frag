#version 110

// As in "default", with a hard edge.
uniform sampler2D BorderSampler;
uniform vec4 Color;
uniform float Width;
uniform float PixelSize;

void main() {
    float d = gl_TexCoord[0].s;
    if (d > -0.5 * PixelSize) discard;
    vec3 rim = Width > 0.0 && d > -Width ? texture2D(BorderSampler, vec2(0.94, 0.5)).rgb : vec3(1.0);
    gl_FragColor = vec4(Color.rgb * rim, Color.a);
}

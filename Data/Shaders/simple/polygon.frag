#version 110

// As in "default", with hard edges.
uniform sampler2D DistSampler;
uniform sampler2D BorderSampler;
uniform vec4 Color;
uniform float Width;
uniform float DistScale;
uniform float PixelSize;

void main() {
    float d = (2.0 * texture2D(DistSampler, gl_TexCoord[0].st).a - 1.0) * DistScale;
    if (d > 0.5 * PixelSize) discard;
    vec3 rim = Width > 0.0 && d > -Width ? texture2D(BorderSampler, vec2(0.94, 0.5)).rgb : vec3(1.0);
    gl_FragColor = vec4(Color.rgb * rim, Color.a);
}

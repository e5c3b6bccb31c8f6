#version 110

// As in "default", in one colour.
uniform sampler2D FieldSampler;
uniform float Cutoff;
uniform vec4 Color;

void main() {
    if (texture2D(FieldSampler, gl_TexCoord[0].st).r <= Cutoff) discard;
    gl_FragColor = Color;
}

#version 110

// A picture as it is.
uniform sampler2D Picture;

void main() {
    gl_FragColor = texture2D(Picture, gl_TexCoord[0].st);
}

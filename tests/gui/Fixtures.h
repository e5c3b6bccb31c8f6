#pragma once

#include "gui/TextFormat.h"
#include "util/String.h"

namespace test {

// Files that the toolkit asks for, tiny and of known sizes, written to the scratch folder before the first
// test. The font: every glyph is 8 units wide, but "i" 4 and "m" 12, in cells of 16; in its cell glyph g has
// a line of eight pixels, GLYPH_ROW below the top, of which pixel k is opaque when bit k of g is set, and a
// marker at the top left. The skins: "window" 6 thick, 26 at the top; "button" 4 thick.
constexpr int CELL = 16;
constexpr int GLYPH_ROW = 2;
constexpr unsigned char WIDTH = 8, NARROW = 4, WIDE = 12;
constexpr int DENSITY = 4;  // texels of a picture per GUI unit

String FontPath(const String& file);     // in the scratch folder
String TexturePath(const String& file);  // likewise
void WriteBytes(const String& path, const String& bytes);
void WritePicture(const String& path, int width, int height, unsigned char alpha = 255);  // grey, 32 bit TGA
void WriteSkin(const String& name, int sideUnits, int topUnits);

gui::TextFormat Format();

}  // namespace test

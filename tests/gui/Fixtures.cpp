#include "Fixtures.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "gui/LookAndFeel.h"
#include "util/FileSystem.h"
#include "util/FileWrapper.h"

namespace test {
namespace {

String MakeSheet() {
    constexpr int SIDE = CELL * 16;
    String sheet(SIDE * SIDE, '\0');
    for (int glyph = 0; glyph < 256; ++glyph) {
        const int x = glyph % 16 * CELL, y = glyph / 16 * CELL;
        sheet[y * SIDE + x] = '\xff';
        for (int bit = 0; bit < 8; ++bit) {
            if (glyph >> bit & 1) sheet[(y + GLYPH_ROW) * SIDE + x + bit] = '\xff';
        }
    }
    return sheet;
}

String MakeWidths() {
    String widths(256, static_cast<char>(WIDTH));
    widths['i'] = static_cast<char>(NARROW);
    widths['m'] = static_cast<char>(WIDE);
    return widths;
}

class FixtureFiles : public testing::Environment {
  public:
    void SetUp() override {
        WriteBytes(FontPath("fixedsys.raw"), MakeSheet());
        WriteBytes(FontPath("fixedsys.dat"), MakeWidths());
        WriteSkin("window", 6, 26);
        WriteSkin("button", 4, 4);
        WritePicture(TexturePath("gui/mouse.tga"), 16, 32);
    }
};

testing::Environment* const s_fixtures = testing::AddGlobalTestEnvironment(new FixtureFiles);

}  // namespace

String FontPath(const String& file) {
    return util::FileSystem::Instance().GetFontsDir() + file;
}

String TexturePath(const String& file) {
    return util::FileSystem::Instance().GetTexturesDir() + file;
}

void WriteBytes(const String& path, const String& bytes) {
    util::FileSystem::Instance().MakeDir(path.substr(0, path.rfind('/')));
    util::FILEWrapper file(path, "wb");
    file.Write(bytes.data(), bytes.size());
    file.Close();
}

void WritePicture(const String& path, int width, int height, unsigned char alpha) {
    String bytes(18, '\0');
    bytes[2] = 2;
    bytes[12] = static_cast<char>(width);
    bytes[14] = static_cast<char>(height);
    bytes[16] = 32;
    bytes[17] = 8;
    for (int i = 0; i < width * height; ++i) {
        bytes += {'\x80', '\x80', '\x80', static_cast<char>(alpha)};
    }
    WriteBytes(path, bytes);
}

void WriteSkin(const String& name, int sideUnits, int topUnits) {
    const String base = TexturePath("gui/vexa/" + name + "/");
    constexpr int LENGTH = 8 * DENSITY;
    const int side = sideUnits * DENSITY, top = topUnits * DENSITY;
    for (const char* const edge : {"l.tga", "r.tga"}) WritePicture(base + edge, side, LENGTH);
    for (const char* const corner : {"lt.tga", "rt.tga"}) WritePicture(base + corner, side, top);
    for (const char* const corner : {"lb.tga", "rb.tga"}) WritePicture(base + corner, side, side);
    WritePicture(base + "t.tga", LENGTH, top);
    WritePicture(base + "b.tga", LENGTH, side);
    WritePicture(base + "body.tga", LENGTH, LENGTH);
}

gui::TextFormat Format() {
    return gui::LookAndFeel::Get().GetTextFormat();
}

}  // namespace test

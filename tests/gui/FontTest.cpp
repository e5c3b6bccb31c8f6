#include "gui/Font.h"

#include <gtest/gtest.h>

#include "Fixtures.h"
#include "gui/LookAndFeel.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "support/gl/GlWindow.h"
#include "util/Exception.h"

namespace {

using gui::Font;
using gui::FontPtr;
using test::CELL;

TEST(Font, ReadsAdvancesWithoutAContext) {
    const FontPtr font = new Font(test::FontPath("fixedsys.dat"), test::FontPath("fixedsys.raw"));
    EXPECT_EQ(font->GetCellSize(), CELL);
    EXPECT_EQ(font->GetAdvance('a'), 0.5f);
    EXPECT_EQ(font->GetAdvance('i'), 0.25f);
    EXPECT_EQ(font->GetAdvance('m'), 0.75f);
}

TEST(Font, AFinerSheetHasAdvancesOfItsOwn) {
    constexpr int SIDE = 2 * CELL * Font::CELLS_PER_SIDE;
    test::WriteBytes(test::FontPath("wide.raw"), String(SIDE * SIDE, '\xff'));
    test::WriteBytes(test::FontPath("wide.dat"), String(Font::NUM_GLYPHS, 11));
    const FontPtr font = new Font(test::FontPath("fixedsys.dat"), test::FontPath("fixedsys.raw"),
                                  {test::FontPath("wide.raw")});
    const float fine = 11.0f / (2 * CELL);
    for (const auto& [pixelsPerUnit, advance] :
         {std::pair(1.0f, 0.5f), {1.5f, fine}, {3.0f, fine}, {0.5f, 0.5f}}) {
        Font::SetPixelsPerUnit(pixelsPerUnit);
        EXPECT_EQ(font->GetAdvance('a'), advance) << pixelsPerUnit;
    }
    Font::SetPixelsPerUnit(1);
}

TEST(Font, RefusesDamagedFiles) {
    const String widths = test::FontPath("short.dat");
    test::WriteBytes(widths, String(255, 'x'));
    const test::LogCapture log;
    const String failure = "File \"" + widths + "\" is corrupt.";
    EXPECT_EQ(test::FailureOf<FileReadException>([&] { new Font(widths, test::FontPath("fixedsys.raw")); }),
              failure);
    EXPECT_TRUE(log.Contains("!! ERROR: " + failure));

    const String sheet = test::FontPath("odd.raw");
    test::WriteBytes(sheet, String(100, 'x'));  // ten by ten: no grid of cells
    EXPECT_THROW(new Font(test::FontPath("fixedsys.dat"), sheet), BadDataException);
}

TEST(Font, IsReplacedByBoxesWhenItIsMissing) {
    const test::LogCapture log;
    const gui::FontMentorPtr mentor = Font::Get("no such font");
    ASSERT_TRUE(mentor->Get());
    EXPECT_TRUE(log.Contains("no such font"));
    EXPECT_GT(mentor->Get()->GetAdvance('a'), 0);
    EXPECT_EQ(Font::Get("no such font"), mentor);
}

class FontDrawing : public test::GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        if (IsSkipped()) return;
        glMatrixMode(GL_PROJECTION);
        glOrtho(0, SIZE, SIZE, 0, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        m_format = test::Format();
        m_format.m_color = {1, 1, 1, 1};
        m_format.m_font->Unload();  // it may have been loaded before there was a context
    }

    void TearDown() override {
        if (m_format.m_font) m_format.m_font->Unload();
    }

    // The glyph whose picture stands in the frame with its cell's top left at x, y from the upper left.
    static int ReadGlyph(const rendering::ImageRGBA32& frame, int x, int y) {
        const int row = SIZE - 1 - y;
        if (frame(x, row).x < 128) return -1;
        int glyph = 0;
        for (int bit = 0; bit < 8; ++bit) {
            if (frame(x + bit, row - test::GLYPH_ROW).x >= 128) glyph |= 1 << bit;
        }
        return glyph;
    }

    gui::TextFormat m_format;
};

TEST_F(FontDrawing, SheetReadsBackUprightAndInOrder) {
    constexpr int PER_FRAME = 64, PER_ROW = 8;
    for (int first = 0; first < Font::NUM_GLYPHS; first += PER_FRAME) {
        glClear(GL_COLOR_BUFFER_BIT);
        for (int i = 0; i < PER_FRAME; ++i) {
            const int glyph = first + i;
            if (glyph == '\n' || glyph == '\t') continue;
            const String text(1, static_cast<char>(glyph));
            gui::DrawString(m_format, static_cast<float>(i % PER_ROW * CELL),
                            static_cast<float>(i / PER_ROW * CELL), text);
        }
        const rendering::ImageRGBA32Ptr frame = ReadFrame();
        for (int i = 0; i < PER_FRAME; ++i) {
            const int glyph = first + i;
            const int expected = glyph == '\n' || glyph == '\t' ? -1 : glyph;
            EXPECT_EQ(ReadGlyph(*frame, i % PER_ROW * CELL, i / PER_ROW * CELL), expected);
        }
    }
}

// One and a half times or twice the size in every direction; here the fine sheet is all filled.
TEST_F(FontDrawing, FineSheetIsDrawnAtHighScalesIfItFits) {
    constexpr int SHEET = CELL * Font::CELLS_PER_SIDE;
    const struct {
        int side;
        float pixelsPerUnit;
        int expected;
    } cases[] = {{2 * SHEET, 2, 255}, {3 * SHEET / 2, 1.5f, 255}, {2 * SHEET, 1, 0}, {SHEET, 2, 0}};
    for (const auto& c : cases) {
        test::WriteBytes(test::FontPath("fine.raw"), String(c.side * c.side, '\xff'));
        const FontPtr font = new Font(test::FontPath("fixedsys.dat"), test::FontPath("fixedsys.raw"),
                                      {test::FontPath("fine.raw")});
        Font::SetPixelsPerUnit(c.pixelsPerUnit);
        EXPECT_EQ(font->FitsPixels(CELL), c.expected == 255 || c.pixelsPerUnit == 1);
        glClear(GL_COLOR_BUFFER_BIT);
        rendering::VertexBatch batch;
        font->AddGlyph(batch, 'a', {0, 0}, 2 * CELL);
        font->DrawGlyphs(batch);
        EXPECT_EQ((*ReadFrame())(8, SIZE - 1 - 3).x, c.expected);  // between lines of the ordinary sheet
        Font::SetPixelsPerUnit(1);
    }
}

// Glyphs are cut to their ink. Pixel for pixel they look as the same ones do that are drawn with a margin
// and sampled smoothly.
TEST_F(FontDrawing, NothingOfAGlyphIsCutOff) {
    const FontPtr font = m_format.m_font->Get();
    rendering::ImageRGBA32Ptr frames[2];
    for (const bool isExact : {false, true}) {
        Font::SetPixelsPerUnit(isExact ? 1 : 0.5f);
        glClear(GL_COLOR_BUFFER_BIT);
        rendering::VertexBatch batch;
        for (int i = 0; i < 49; ++i) {
            const math::Vec2 place(static_cast<float>(i % 7 * CELL + 3),
                                   static_cast<float>(i / 7 * CELL + 5));
            font->AddGlyph(batch, static_cast<unsigned char>('0' + i), place, CELL);
        }
        font->DrawGlyphs(batch, isExact);
        frames[isExact] = ReadFrame();
    }
    Font::SetPixelsPerUnit(1);
    EXPECT_GT(CountDifferences(*frames[0], rendering::ImageRGBA32(SIZE, SIZE), 100), 49);
    EXPECT_LE(GreatestDifference(*frames[0], *frames[1]), 1);
}

TEST_F(FontDrawing, PenFollowsAdvancesTabsAndLines) {
    const math::Vec2 pen = gui::DrawString(m_format, 2, 3, "mi\tb\nxy");
    EXPECT_EQ(pen, math::Vec2(2 + 16, 3 + 16));
    const rendering::ImageRGBA32Ptr frame = ReadFrame();
    EXPECT_EQ(ReadGlyph(*frame, 2 + 64, 3), 'b');
    EXPECT_EQ(ReadGlyph(*frame, 2, 3 + 16), 'x');
    EXPECT_EQ(ReadGlyph(*frame, 2 + 8, 3 + 16), 'y');
}

TEST_F(FontDrawing, LeavesColourAndMatrixAsTheyWere) {
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    renderer.SetColor({0.5f, 1, 1, 1});
    m_format.m_color = {1, 0.5f, 0, 1};
    gui::DrawString(m_format, 0, 0, "\xFF");
    EXPECT_EQ(renderer.GetColor(), math::Vec4(0.5f, 1, 1, 1));
    const rendering::RGBA32 pixel = (*ReadFrame())(1, SIZE - 1 - test::GLYPH_ROW);
    EXPECT_NEAR(pixel.x, 128, 2);
    EXPECT_NEAR(pixel.y, 128, 2);
    EXPECT_EQ(pixel.z, 0);
    GLfloat matrix[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, matrix);
    EXPECT_EQ(matrix[12], 0);
}

}  // namespace

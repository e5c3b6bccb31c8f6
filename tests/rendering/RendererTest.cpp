#include "rendering/Renderer.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Pictures.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Texture.h"
#include "rendering/VertexBatch.h"
#include "support/LogCapture.h"
#include "support/gl/GlWindow.h"
#include "util/FileSystem.h"

namespace {

using math::Vec2;
using math::Vec4;
using rendering::Renderer;
using rendering::RGBA32;
using rendering::VertexBatch;

Vec4 GlColor() {
    GLfloat color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    return {color[0], color[1], color[2], color[3]};
}

class RendererTest : public test::GlTest {
  protected:
    Renderer& m_renderer = Renderer::Instance();
};

TEST_F(RendererTest, TheCacheAndGlAgree) {
    m_renderer.SetColor({0.5f, 0.25f, 1, 0.5f});
    EXPECT_EQ(GlColor(), Vec4(0.5f, 0.25f, 1, 0.5f));
    m_renderer.MultColor({0.5f, 1, 1, 1});
    EXPECT_EQ(GlColor(), Vec4(0.25f, 0.25f, 1, 0.5f));
    EXPECT_EQ(m_renderer.GetColor(), GlColor());
    glColor4f(0, 0, 0, 0);
    m_renderer.MultColor({1, 1, 1, 1});  // white does not touch GL
    EXPECT_EQ(GlColor(), Vec4(0, 0, 0, 0));
    m_renderer.RestoreColor();
    EXPECT_EQ(GlColor(), m_renderer.GetColor());
}

TEST_F(RendererTest, PoppedAttributesBringTheColourBackInBothPlaces) {
    m_renderer.SetColor({1, 0, 0, 1});
    {
        const rendering::ScopedAttribs attribs;
        m_renderer.SetColor({0, 1, 0, 1});
        glEnable(GL_BLEND);
    }
    EXPECT_EQ(m_renderer.GetColor(), Vec4(1, 0, 0, 1));
    EXPECT_EQ(GlColor(), Vec4(1, 0, 0, 1));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));
}

TEST_F(RendererTest, MatricesReachGlColumnByColumn) {
    math::TMatrix3<float> matrix;
    matrix.m[0][0] = 2;
    matrix.m[0][1] = 3;
    matrix.m[0][2] = 4;
    matrix.m[1][0] = 5;
    matrix.m[1][1] = 6;
    matrix.m[1][2] = 7;
    m_renderer.MultMatrix(matrix);
    GLfloat gl[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, gl);
    const GLfloat expected[16] = {2, 5, 0, 0, 3, 6, 0, 0, 0, 0, 1, 0, 4, 7, 0, 1};
    for (int i = 0; i < 16; ++i) EXPECT_EQ(gl[i], expected[i]) << i;
}

TEST_F(RendererTest, LinesAreUntexturedAndLeaveTexturingAsItWas) {
    UsePixelUnits();
    const rendering::TexturePtr black =
        new rendering::Texture(new rendering::ImageRGBA32(4, 4), rendering::Texture::ImageType::Icon());
    const rendering::ScopedTexture bound(black);
    glEnable(GL_TEXTURE_2D);
    glLineWidth(4);
    const Vec2 corners[3] = {{20, 20}, {100, 20}, {100, 100}};
    m_renderer.DrawLines(corners, 3, false);
    EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D));
    EXPECT_EQ((*ReadFrame())(60, 20), RGBA32(255, 255, 255, 255));
    EXPECT_EQ((*ReadFrame())(60, 60).x, 0);  // an open strip
    m_renderer.DrawLines(corners, 3, true);
    EXPECT_EQ((*ReadFrame())(60, 60).x, 255);
}

TEST_F(RendererTest, BatchesDrawTheSameAsSingleQuads) {
    UsePixelUnits();
    const struct {
        Vec2 min, max;
        Vec4 color;
    } quads[] = {{{3, 5}, {40, 50}, {1, 0, 0, 1}}, {{30, 30}, {90, 70}, {0, 0.5f, 1, 1}}};
    VertexBatch batch(VertexBatch::OwnColors);
    for (const auto& quad : quads) {
        m_renderer.SetColor(quad.color);
        m_renderer.DrawQuad(quad.min, quad.max);
        batch.AddQuad(quad.min, quad.max, {0, 0}, {1, 1}, quad.color);
    }
    const rendering::ImageRGBA32Ptr single = ReadFrame();
    glClear(GL_COLOR_BUFFER_BIT);
    batch.DrawAndClear();
    EXPECT_LE(GreatestDifference(*single, *ReadFrame()), 1);
    EXPECT_TRUE(batch.IsEmpty());
    EXPECT_EQ(GlColor(), m_renderer.GetColor());
}

TEST_F(RendererTest, ColorsGoOverFromCornerToCorner) {
    UsePixelUnits();
    const struct {
        Vec4 start, end;
    } cases[] = {{{1, 0.5f, 0, 1}, {0, 0.5f, 1, 1}}, {{0.2f, 1.3f, -1, 1}, {0.2f, 0, 0, 1}}};
    const auto part = [](float a, float b, float t) {
        return (std::clamp(a, 0.0f, 1.0f) * (1 - t) + std::clamp(b, 0.0f, 1.0f) * t) * 255;
    };
    for (const auto& c : cases) {
        const Vec4 across[4] = {c.start, c.end, c.end, c.start}, down[4] = {c.start, c.start, c.end, c.end};
        const Vec2 upper[4] = {{0, 0}, {40, 0}, {40, 20}, {0, 20}},
                   lower[4] = {{0, 20}, {40, 20}, {40, 60}, {0, 60}};
        m_renderer.DrawColored(upper, across, 4);
        m_renderer.DrawColored(lower, down, 4);
        const rendering::ImageRGBA32Ptr frame = ReadFrame();
        for (uint32_t i = 0; i < 40; ++i) {
            const float t = (static_cast<float>(i) + 0.5f) / 40;
            for (const RGBA32& pixel : {(*frame)(i, 10), (*frame)(10, 20 + i)}) {
                EXPECT_NEAR(pixel.x, part(c.start.x, c.end.x, t), 2);
                EXPECT_NEAR(pixel.y, part(c.start.y, c.end.y, t), 2);
                EXPECT_NEAR(pixel.z, part(c.start.z, c.end.z, t), 2);
            }
        }
    }
}

TEST_F(RendererTest, ScreenshotsAreNumberedTgaFilesOfTheFrame) {
    const util::FileSystem& files = util::FileSystem::Instance();
    UsePixelUnits();
    m_renderer.SetColor({1, 0.5f, 0, 1});
    m_renderer.DrawQuad({0, 0}, {64, 32});
    const String prefix = files.GetWorkDir() + "Shots/vexa";
    m_renderer.Screenshot(prefix);
    m_renderer.Screenshot(prefix);
    const util::StringList names = files.ListFiles(files.GetWorkDir() + "Shots/", "vexa_??????_?.tga");
    ASSERT_EQ(names.size(), 2u);
    const rendering::ImageRGBA32Ptr shot =
        rendering::ImageRGBA32::LoadFile(files.GetWorkDir() + "Shots/" + names[0]);
    ASSERT_EQ(shot->GetWidth(), static_cast<uint32_t>(SIZE));
    EXPECT_EQ((*shot)(10, 10), RGBA32(255, 128, 0, 255));
    EXPECT_EQ((*shot)(10, 40), RGBA32(0, 0, 0, 255));
}

TEST_F(RendererTest, AScreenshotThatCannotBeWrittenIsLogged) {
    test::WriteFile("occupied", {1});
    const test::LogCapture log;
    m_renderer.Screenshot(util::FileSystem::Instance().GetWorkDir() + "occupied/vexa");
    EXPECT_TRUE(log.Contains("Could not save the screenshot"));
}

}  // namespace

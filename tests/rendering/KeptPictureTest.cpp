#include "rendering/KeptPicture.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "rendering/VertexBatch.h"
#include "support/gl/GlWindow.h"
#include "util/Mentor.h"

namespace {

using math::Vec2;
using math::Vec4;
using rendering::Context;
using rendering::ImageRGBA32;
using rendering::ImageRGBA32Ptr;
using rendering::KeptPicture;
using rendering::Renderer;
using rendering::RGBA32;

const math::BoundingBox2f WINDOW({16, 16}, {112, 96});
constexpr int TOLERANCE = 2;  // of 255, for layers that are rounded one by one

rendering::TextureMentorPtr MakeChecks(unsigned char brightness) {
    return rendering::TextureManager::Make([brightness] {
        const ImageRGBA32Ptr image = new ImageRGBA32(8, 8);
        for (int i = 0; i < 64; ++i) {
            const unsigned char c = (i / 8 + i) % 2 ? brightness : 40;
            (*image)(i % 8, i / 8) = RGBA32(c, 255 - c, 90, c);
        }
        return TextureFromImage(image, rendering::Texture::ImageType::Smooth());
    });
}

// Half-transparent layers over a background, with everything that a window draws by.
class KeptPictureTest : public test::GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        if (IsSkipped()) return;
        SetState();
    }
    void TearDown() override { Context::SetUseTargets(true); }

    static void SetState() {
        UsePixelUnits();
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }

    // Nobody sees the frame's alpha, to which a picture's layers and layers by themselves come in other ways.
    static ImageRGBA32Ptr ReadColors() {
        const ImageRGBA32Ptr frame = ReadFrame();
        for (RGBA32& pixel : frame->GetData()) pixel.w = 255;
        return frame;
    }

    static void DrawBackground() {
        const Vec2 corners[4] = {{0, 0}, {SIZE, 0}, {SIZE, SIZE}, {0, SIZE}};
        const Vec4 colors[4] = {{1, 0, 0, 1}, {0, 1, 0, 1}, {0, 0, 1, 1}, {1, 1, 1, 1}};
        Renderer::Instance().DrawColored(corners, colors, 4);
    }

    void DrawWindow() {
        ++m_calls;
        const rendering::ScopedMatrix matrix;
        glTranslatef(m_place.x, m_place.y, 0);
        const rendering::ScopedColor color(m_color);
        Renderer::Instance().DrawQuad({0, 0}, {90, 70});
        if (m_isClipped) {
            const GLdouble plane[4] = {-1, 0, 0, 40};
            glClipPlane(GL_CLIP_PLANE2, plane);
        }
        const rendering::ScopedCapability clip(GL_CLIP_PLANE2, m_isClipped);
        {
            const rendering::ScopedCapability textured(GL_TEXTURE_2D, true);
            const rendering::ScopedTexture bound(m_texture->Get());
            rendering::VertexBatch batch;
            for (int i = 0; i < 3; ++i) batch.AddQuad({5.0f + 25 * i, 10}, {25.0f + 25 * i, 50});
            batch.AddQuad(m_corner, m_corner + Vec2(12, 12), {0, 0}, {0.5f, 0.5f});
            batch.Draw();
        }
        if (m_throws) throw std::runtime_error("broken");
        const Vec2 line[3] = {{3, 3}, {80, 40}, {80, 60}};
        Renderer::Instance().DrawLines(line, 3, m_isClosed);
    }

    // The frame with the window drawn as if there were no pictures.
    ImageRGBA32Ptr DrawDirectly() {
        DrawBackground();
        DrawWindow();
        return ReadColors();
    }
    ImageRGBA32Ptr DrawKept() {
        DrawBackground();
        m_picture.Draw(WINDOW, [this] { DrawWindow(); });
        return ReadColors();
    }
    void ExpectLikeDrawing(const char* when) {
        const ImageRGBA32Ptr wanted = DrawDirectly();
        EXPECT_LE(GreatestDifference(*DrawKept(), *wanted), TOLERANCE) << when;
    }
    void MakeSteady() {
        for (int i = 0; i < 3; ++i) DrawKept();
        ASSERT_GT(KeptPicture::CountPixels(), 0u);
    }

    KeptPicture m_picture;
    int m_calls = 0;
    Vec2 m_place{20, 20};
    Vec2 m_corner{60, 52};
    Vec4 m_color{0.2f, 0.3f, 0.4f, 0.7f};
    rendering::TextureMentorPtr m_texture = MakeChecks(200);
    bool m_isClipped = false, m_isClosed = false, m_throws = false;
};

TEST_F(KeptPictureTest, EachFrameHasThePixelsOfDrawing) {
    const ImageRGBA32Ptr wanted = DrawDirectly();
    for (int i = 0; i < 5; ++i) {
        EXPECT_LE(GreatestDifference(*DrawKept(), *wanted), TOLERANCE) << "frame " << i;
    }
    EXPECT_GT(KeptPicture::CountPixels(), 0u);
}

// Drawing is cut off from the frame by what the recording does not know of.
TEST_F(KeptPictureTest, WhatIsShownComesFromThePicture) {
    MakeSteady();
    const ImageRGBA32Ptr wanted = DrawDirectly();
    DrawBackground();
    m_calls = 0;
    m_picture.Draw(WINDOW, [this] {
        glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
        DrawWindow();
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    });
    EXPECT_EQ(m_calls, 1);
    EXPECT_LE(GreatestDifference(*ReadColors(), *wanted), TOLERANCE);
}

TEST_F(KeptPictureTest, AChangeIsSeenInItsOwnFrame) {
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"colour", [this] { m_color.w = 0.9f; }},
        {"place", [this] { m_place.x += 2; }},
        {"one vertex", [this] { m_corner.y -= 1; }},
        {"clip plane", [this] { m_isClipped = true; }},
        {"kind of line", [this] { m_isClosed = true; }},
        {"line width", [] { glLineWidth(3); }},
        {"other texture", [this] { m_texture = MakeChecks(255); }},
        {"no blending", [] { glDisable(GL_BLEND); }},
    };
    for (const auto& [name, change] : changes) {
        MakeSteady();
        const ImageRGBA32Ptr before = DrawKept();
        change();
        EXPECT_GT(GreatestDifference(*DrawDirectly(), *before), TOLERANCE) << name << " changes nothing";
        for (int i = 0; i < 4; ++i) ExpectLikeDrawing(name);
    }
}

TEST_F(KeptPictureTest, ATextureThatIsLoadedAnewIsAnotherOne) {
    unsigned char brightness = 200;
    m_texture = rendering::TextureManager::Make([&brightness] {
        const ImageRGBA32Ptr image = new ImageRGBA32(8, 8, RGBA32(brightness, 10, 10, 255));
        return TextureFromImage(image, rendering::Texture::ImageType::Smooth());
    });
    MakeSteady();
    brightness = 50;
    m_texture->Unload();  // GL may well give the same name again
    ExpectLikeDrawing("reloaded");
}

TEST_F(KeptPictureTest, WhatChangesEachFrameIsDrawnOnceAndNeverKept) {
    for (int i = 0; i < 6; ++i) {
        m_corner.x = 40.0f + static_cast<float>(i);
        const ImageRGBA32Ptr wanted = DrawDirectly();
        m_calls = 0;
        EXPECT_EQ(GreatestDifference(*DrawKept(), *wanted), 0);
        EXPECT_EQ(m_calls, 1);
    }
    EXPECT_EQ(KeptPicture::CountPixels(), 0u);
}

TEST_F(KeptPictureTest, ThePictureOfALostContextIsGone) {
    MakeSteady();
    util::AbstractMentor::ForEach([](util::AbstractMentor& mentor) { mentor.Unload(); });
    Recreate();
    SetState();
    for (int i = 0; i < 4; ++i) ExpectLikeDrawing("in the new context");
}

TEST_F(KeptPictureTest, WithoutTargetsItIsDrawn) {
    Context::SetUseTargets(false);
    const ImageRGBA32Ptr wanted = DrawDirectly();
    for (int i = 0; i < 4; ++i) EXPECT_EQ(GreatestDifference(*DrawKept(), *wanted), 0);
    EXPECT_EQ(KeptPicture::CountPixels(), 0u);
}

TEST_F(KeptPictureTest, PicturesTakeABoundedRoom) {
    constexpr size_t FRAME = size_t{SIZE} * SIZE;
    KeptPicture pictures[4];
    const math::BoundingBox2f whole({0, 0}, {SIZE, SIZE});
    const ImageRGBA32Ptr wanted = DrawDirectly();
    for (int i = 0; i < 4; ++i) {
        for (KeptPicture& picture : pictures) {
            DrawBackground();
            picture.Draw(whole, [this] { DrawWindow(); });
            EXPECT_LE(GreatestDifference(*ReadColors(), *wanted), TOLERANCE);
        }
        EXPECT_LE(KeptPicture::CountPixels(), KeptPicture::MAX_FRAMES * FRAME);
    }
    EXPECT_EQ(KeptPicture::CountPixels(), KeptPicture::MAX_FRAMES * FRAME);
    for (KeptPicture& picture : pictures) picture.Forget();
    EXPECT_EQ(KeptPicture::CountPixels(), 0u);
}

TEST_F(KeptPictureTest, AWindowPartlyOutOfTheFrameIsCut) {
    m_place = {70, -30};
    const ImageRGBA32Ptr wanted = DrawDirectly();
    const math::BoundingBox2f box({68, -32}, {164, 44});
    for (int i = 0; i < 4; ++i) {
        DrawBackground();
        m_picture.Draw(box, [this] { DrawWindow(); });
        EXPECT_LE(GreatestDifference(*ReadColors(), *wanted), TOLERANCE) << "frame " << i;
    }
}

TEST_F(KeptPictureTest, ADrawingThatFailsLeavesNoStalePicture) {
    MakeSteady();
    m_color = {1, 0, 0, 1};
    m_throws = true;
    EXPECT_THROW(DrawKept(), std::runtime_error);
    EXPECT_FALSE(rendering::Recording::IsUnderWay());
    m_throws = false;
    for (int i = 0; i < 4; ++i) ExpectLikeDrawing("after a failure");
}

}  // namespace

#include "rendering/KeptFrame.h"

#include <gtest/gtest.h>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "support/gl/GlWindow.h"
#include "util/Mentor.h"

namespace {

using rendering::Context;
using rendering::ImageRGBA32Ptr;
using rendering::KeptFrame;
using rendering::RGBA32;

// With textures that can be drawn into, and with copies of the frame.
class KeptFrameTest : public test::GlTest, public testing::WithParamInterface<bool> {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        Context::SetUseTargets(GetParam());
    }
    void TearDown() override { Context::SetUseTargets(true); }

    // Red, with a green square in the lower left quarter.
    void DrawPicture() {
        ++m_drawn;
        glClearColor(1, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, SIZE / 2, SIZE / 2);
        glClearColor(0, 1, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
    }

    static void Blacken() {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    KeptFrame m_frame;
    int m_drawn = 0;
};

INSTANTIATE_TEST_SUITE_P(Ways, KeptFrameTest, testing::Bool());

TEST_P(KeptFrameTest, IsDrawnOnceAndShownAgainPixelForPixel) {
    DrawPicture();
    const ImageRGBA32Ptr picture = ReadFrame();
    Blacken();
    m_frame.Draw([this] { DrawPicture(); });
    EXPECT_EQ(GreatestDifference(*ReadFrame(), *picture), 0);
    for (int i = 0; i < 3; ++i) {
        Blacken();
        ASSERT_TRUE(m_frame.Show());
        EXPECT_EQ(GreatestDifference(*ReadFrame(), *picture), 0);
    }
    EXPECT_EQ(m_drawn, 2);
}

TEST_P(KeptFrameTest, AskedToForgetItShowsNothing) {
    EXPECT_FALSE(m_frame.Show());
    m_frame.Draw([this] { DrawPicture(); });
    m_frame.Forget();
    Blacken();
    EXPECT_FALSE(m_frame.Show());
    EXPECT_EQ((*ReadFrame())(1, 1), RGBA32(0, 0, 0, 0));
    m_frame.Draw([this] { DrawPicture(); });
    EXPECT_TRUE(m_frame.Show());
}

TEST_P(KeptFrameTest, ThePictureOfALostContextIsGone) {
    m_frame.Draw([this] { DrawPicture(); });
    util::AbstractMentor::ForEach([](util::AbstractMentor& mentor) { mentor.Unload(); });
    Recreate();
    EXPECT_FALSE(m_frame.Show());
    m_frame.Draw([this] { DrawPicture(); });
    Blacken();
    EXPECT_TRUE(m_frame.Show());
    EXPECT_EQ((*ReadFrame())(1, 1), RGBA32(0, 255, 0, 255));
    EXPECT_EQ((*ReadFrame())(SIZE - 1, SIZE - 1), RGBA32(255, 0, 0, 255));
}

TEST_P(KeptFrameTest, AFrameOfAnotherSizeIsNotShown) {
    m_frame.Draw([this] { DrawPicture(); });
    Context::SetViewport(SIZE / 2, SIZE);
    EXPECT_FALSE(m_frame.Show());
    Context::SetViewport(SIZE, SIZE);
    EXPECT_TRUE(m_frame.Show());
}

}  // namespace

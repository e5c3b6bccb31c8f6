#include "rendering/ShapePainter.h"
#include "support/SourceDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "support/gl/GlWindow.h"
#include "util/FileSystem.h"

namespace {

using math::Vec2;
using math::Vec3;
using rendering::Context;
using rendering::ImageRGBA32Ptr;
using rendering::ShapePainter;
using rendering::Texture;
using rendering::TexturePtr;

constexpr float DIST_SCALE = 8;  // pixels, as of a shape of 200
constexpr float BORDER = 3.4f;   // pixels

// Signed distance to a concave shape: a square of side 80 about the origin without its upper right quarter.
float AngleDistance(Vec2 p) {
    const auto box = [](Vec2 q, Vec2 half) {
        const float dx = std::fabs(q.x) - half.x, dy = std::fabs(q.y) - half.y;
        return std::max(dx, dy);
    };
    return std::max(box(p, {40, 40}), -box(p - Vec2(30, 30), {30, 30}));
}

TexturePtr MakeDistances(const math::OBB2D& box) {
    constexpr uint32_t SIDE = 128;
    const rendering::ImageFloatPtr image = new rendering::ImageFloat(SIDE, SIDE);
    for (uint32_t y = 0; y < SIDE; ++y) {
        for (uint32_t x = 0; x < SIDE; ++x) {
            const Vec2 p((static_cast<float>(x) + 0.5f) / SIDE * 2 - 1,
                         (static_cast<float>(y) + 0.5f) / SIDE * 2 - 1);
            const float d = AngleDistance({p.x * box.halfSize.x, p.y * box.halfSize.y});
            (*image)(x, y) = std::clamp((d / DIST_SCALE + 1) / 2, 0.0f, 1.0f);
        }
    }
    return new Texture(image, Texture::ImageType::Distance());
}

class ShapePainterTest : public test::GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        if (IsSkipped()) return;
        util::FileSystem& files = util::FileSystem::Instance();
        m_workDir = files.GetWorkDir();
        files.SetWorkDir(test::GetSourceDir() + "/");
        UsePixelUnits();
        glEnable(GL_TEXTURE_2D);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        rendering::ShapeView view;
        view.box = {{0, 0}, {SIZE, SIZE}};
        view.borderWidth = BORDER;
        ShapePainter::Instance().SetView(view);
        ReloadAll();
    }

    void TearDown() override {
        if (IsSkipped()) return;
        UseShaders(false);
        util::FileSystem::Instance().SetWorkDir(m_workDir);
        ReloadAll();
    }

    static void UseShaders(bool use) {
        Context::SetUseShaders(use);
        ReloadAll();
    }
    static void ReloadAll() {
        util::AbstractMentor::ForEach([](util::AbstractMentor& mentor) { mentor.Unload(); });
    }

    template <class Draw>
    static ImageRGBA32Ptr Picture(bool shaders, Draw draw) {
        UseShaders(shaders);
        glClear(GL_COLOR_BUFFER_BIT);
        draw();
        ShapePainter::Instance().Flush();
        return ReadFrame();
    }

    // Pixels whose coverage is clearly different: the outlines of both ways must agree within a pixel.
    static int CountStrayPixels(const rendering::ImageRGBA32& a, const rendering::ImageRGBA32& b) {
        int count = 0;
        for (int y = 1; y + 1 < SIZE; ++y) {
            for (int x = 1; x + 1 < SIZE; ++x) count += IsStray(a, b, x, y) + IsStray(b, a, x, y);
        }
        return count;
    }

    String m_workDir;

  private:
    // Lit in `a`, and dark in all of the neighbourhood in `b`.
    static bool IsStray(const rendering::ImageRGBA32& a, const rendering::ImageRGBA32& b, int x, int y) {
        const auto lit = [](const rendering::ImageRGBA32& image, int px, int py) {
            const auto& p = image(static_cast<size_t>(px), static_cast<size_t>(py));
            return p.x + p.y + p.z > 60;
        };
        if (!lit(a, x, y)) return false;
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                if (lit(b, x + dx, y + dy)) return false;
            }
        }
        return true;
    }
};

TEST_F(ShapePainterTest, CirclesHaveTheSameOutlineOnBothPaths) {
    for (const float radius : {3.0f, 20.0f, 55.0f}) {
        const auto draw = [radius] {
            ShapePainter::Instance().DrawCircle({0.7f, Vec2(64.3f, 61.6f)}, radius, {0.9f, 0.6f, 0.3f});
        };
        const ImageRGBA32Ptr shader = Picture(true, draw), fixed = Picture(false, draw);
        EXPECT_EQ(CountStrayPixels(*shader, *fixed), 0) << radius;
        EXPECT_NEAR((*shader)(64, 62).x, 230, 2) << radius;
        EXPECT_NEAR((*fixed)(64, 62).x, 230, 2) << radius;
        EXPECT_LT(CountDifferences(*shader, *fixed, 90), 12 + 2 * static_cast<int>(radius)) << radius;
    }
}

TEST_F(ShapePainterTest, ConcavePolygonsLookAlikeOnBothPaths) {
    math::OBB2D box;
    box.halfSize = {50, 50};
    const TexturePtr distances = MakeDistances(box);
    for (const float angle : {0.0f, 0.5f}) {
        const auto draw = [&] {
            ShapePainter::Instance().DrawPolygon({angle, Vec2(64, 64)}, box, distances, DIST_SCALE,
                                                 {0.5f, 0.8f, 0.9f});
        };
        const ImageRGBA32Ptr shader = Picture(true, draw), fixed = Picture(false, draw);
        EXPECT_EQ(CountStrayPixels(*shader, *fixed), 0) << angle;
        // Only the softened inside of the rim may differ visibly, and little.
        EXPECT_LT(CountDifferences(*shader, *fixed, 40), 40) << angle;
        const math::RigidTransform place(angle, Vec2(64, 64));
        for (const ImageRGBA32Ptr& image : {shader, fixed}) {
            const Vec2 inside = place({-20, -20}), notch = place({20, 20});
            EXPECT_NEAR((*image)(static_cast<size_t>(inside.x), static_cast<size_t>(inside.y)).y, 204, 2);
            EXPECT_EQ((*image)(static_cast<size_t>(notch.x), static_cast<size_t>(notch.y)).y, 0);
        }
    }
}

TEST_F(ShapePainterTest, PlanesLookAlikeOnBothPaths) {
    const Vec3 planes[] = {{0, 1, -40}, {0.6f, 0.8f, -70}, {-1, 0, 90}, {0, -1, -500}, {0, -1, 500}};
    for (const Vec3& plane : planes) {
        const auto draw = [&plane] { ShapePainter::Instance().DrawPlane(plane, {0.3f, 0.9f, 0.4f}); };
        const ImageRGBA32Ptr shader = Picture(true, draw), fixed = Picture(false, draw);
        EXPECT_EQ(CountStrayPixels(*shader, *fixed), 0) << plane.z;
        EXPECT_LT(CountDifferences(*shader, *fixed, 60), 40) << plane.z;
        EXPECT_EQ((*shader)(64, 20).y > 100, plane.x * 64 + plane.y * 20 + plane.z < 0);
    }
}

TEST_F(ShapePainterTest, TheRimHasAConstantWidthAndCanBeLeftOut) {
    const auto draw = [] { ShapePainter::Instance().DrawPlane({0, 1, -64}, {1, 1, 1}); };
    for (const bool shaders : {true, false}) {
        const ImageRGBA32Ptr image = Picture(shaders, draw);
        EXPECT_NEAR((*image)(30, 62).x, 89, 6) << shaders;
        EXPECT_EQ((*image)(30, 58).x, 255) << shaders;
        EXPECT_LT((*image)(30, 4).x, 210) << "the deep is darker";
    }
    rendering::ShapeView view = ShapePainter::Instance().GetView();
    view.borders = false;
    ShapePainter::Instance().SetView(view);
    for (const bool shaders : {true, false}) EXPECT_GE((*Picture(shaders, draw))(30, 62).x, 245) << shaders;
}

TEST_F(ShapePainterTest, ColoursMultiplyWithTheRenderersAndItIsGivenBack) {
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    renderer.SetColor({1, 0.5f, 0.5f, 1});
    for (const bool shaders : {true, false}) {
        const ImageRGBA32Ptr image = Picture(shaders, [] {
            ShapePainter::Instance().DrawCircle({0, Vec2(64, 64)}, 30, {0.5f, 0.5f, 1});
        });
        EXPECT_NEAR((*image)(64, 64).x, 128, 2);
        EXPECT_NEAR((*image)(64, 64).y, 64, 2);
        EXPECT_EQ(renderer.GetColor(), math::Vec4(1, 0.5f, 0.5f, 1));
    }
}

TEST_F(ShapePainterTest, NoStateIsLeftBehind) {
    math::OBB2D box;
    box.halfSize = {50, 50};
    const TexturePtr distances = MakeDistances(box);
    for (const bool shaders : {true, false}) {
        UseShaders(shaders);
        ShapePainter::Instance().DrawPolygon({0, Vec2(64, 64)}, box, distances, DIST_SCALE, {1, 1, 1});
        ShapePainter::Instance().DrawPlane({0, 1, -20}, {1, 1, 1});
        GLint unit = 0, program = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
        glGetIntegerv(GL_CURRENT_PROGRAM, &program);
        EXPECT_EQ(unit, GL_TEXTURE0);
        EXPECT_EQ(program, 0);
        EXPECT_TRUE(glIsEnabled(GL_TEXTURE_2D) && glIsEnabled(GL_BLEND));
        // A plain white quad comes out white: no other texture unit takes part.
        glDisable(GL_TEXTURE_2D);
        rendering::Renderer::Instance().DrawQuad({0, 0}, {SIZE, SIZE});
        EXPECT_EQ((*ReadFrame())(10, 100), rendering::RGBA32(255, 255, 255, 255));
        glEnable(GL_TEXTURE_2D);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

}  // namespace

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "app/App.h"
#include "app/drawing/Background.h"
#include "app/drawing/WaterPainter.h"
#include "app/entities/CircleEntity.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "support/SourceDir.h"
#include "support/gl/GlWindow.h"
#include "util/Clock.h"
#include "util/FileSystem.h"

namespace {

using app::App;
using math::Vec2;
using math::Vec4;
using physics::Simulation;
using rendering::Context;
using rendering::ImageRGBA32Ptr;
using rendering::Renderer;
using rendering::RGBA32;

constexpr float ZOOM = 32;               // the window shows 4 by 4 metres about the origin
const RGBA32 SKY = {77, 102, 255, 255};  // 0.3, 0.4, 1
constexpr float DROP_RADIUS = 0.15f;

// Up to rounding.
bool IsSky(const RGBA32& pixel) {
    return std::abs(pixel.x - SKY.x) <= 1 && std::abs(pixel.y - SKY.y) <= 1 && pixel.z >= 254;
}

// The scene in a window: pixel (x, y) counts from the lower left corner.
class SceneDrawingTest : public test::GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        if (IsSkipped()) return;
        Simulation::Instance();
        util::FileSystem& files = util::FileSystem::Instance();
        m_workDir = files.GetWorkDir();
        files.SetWorkDir(test::GetSourceDir() + "/");
        App& app = App::Instance();
        app.SetFillParent(false);
        app.SetSize(SIZE, SIZE);
        math::TMatrix3<float> view = math::TMatrix3<float>::Scale(ZOOM, -ZOOM);
        view.m[0][2] = view.m[1][2] = SIZE / 2;
        app.SetWorldToGUI(view, false);
        app.GetDrawSettings().m_drawClouds->Set(false);
        app.Update(0);
        physics::SPH::Instance().m_radius->Set(DROP_RADIUS);
        FindBackground().m_horizonColor->Set(FindBackground().m_skyColor->Get());
    }

    void TearDown() override {
        if (IsSkipped()) return;
        App& app = App::Instance();
        app.Clear();
        Simulation::Instance().Clear();
        app.GetDrawSettings().m_simpleWater->Set(false);
        physics::SPH::Instance().m_radius->Set(0.05f);
        app.GetDrawSettings().m_fadeColor->Set({0, 0, 0});
        app.GetDrawSettings().m_drawClouds->Set(true);
        Context::SetUseShaders(false);
        Context::SetHasAlpha(true);
        Context::SetUseTargets(true);
        util::AbstractMentor::ForEach([](util::AbstractMentor& mentor) { mentor.Unload(); });
        util::FileSystem::Instance().SetWorkDir(m_workDir);
    }

    static ImageRGBA32Ptr Draw() {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(0, SIZE, SIZE, 0, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glClear(GL_COLOR_BUFFER_BIT);
        App::Instance().DrawComp();
        return ReadFrame();
    }

    static void UseShaders(bool use) {
        Context::SetUseShaders(use);
        util::AbstractMentor::ForEach([](util::AbstractMentor& mentor) { mentor.Unload(); });
    }

    // A block of drops, two metres wide, about the origin.
    static void AddBlockOfWater() {
        for (int y = -5; y <= 5; ++y) {
            for (int x = -5; x <= 5; ++x) {
                const Vec2 place(0.2f * static_cast<float>(x), 0.2f * static_cast<float>(y));
                Simulation::Instance().AddParticle(new physics::Particle(place, {}));
            }
        }
    }

    static app::Background& FindBackground() {
        for (script::Reflected* object : script::Reflected::GetInstances()) {
            if (auto* const found = dynamic_cast<app::Background*>(object)) return *found;
        }
        THROW(BadCoderException, "no background");
    }

    static util::SharedPtr<app::Background> MakeSky() {
        const App& app = App::Instance();
        app.GetDrawSettings().m_drawClouds->Set(true);
        const util::SharedPtr<app::Background> sky =
            new app::Background(app.GetView(), app.GetDrawSettings().m_drawClouds);
        sky->SetSize(SIZE, SIZE);
        return sky;
    }

    static app::EntityPtr AddCircle(Vec2 place, math::Vec3 color) {
        const app::EntityPtr circle = new app::CircleEntity(new physics::Circle(0.5f, place));
        circle->SetColor(color);
        App::Instance().AddEntity(circle);
        return circle;
    }

    String m_workDir;
};

// Relative luminance of an opaque pixel, by the Web Content Accessibility Guidelines 2.1.
double Luminance(const RGBA32& pixel) {
    const auto linear = [](int byte) {
        const double c = byte / 255.0;
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(pixel.x) + 0.7152 * linear(pixel.y) + 0.0722 * linear(pixel.z);
}

double Contrast(const RGBA32& a, const RGBA32& b) {
    const double la = Luminance(a) + 0.05, lb = Luminance(b) + 0.05;
    return la > lb ? la / lb : lb / la;
}

TEST_F(SceneDrawingTest, AnEmptySceneIsSkyAndLeavesGlAsItWas) {
    Renderer::Instance().SetColor({0.5f, 0.5f, 0.5f, 0.5f});
    const ImageRGBA32Ptr frame = Draw();
    for (const size_t place : {0, 64, 127}) EXPECT_TRUE(IsSky((*frame)(place, 127 - place)));
    EXPECT_EQ(Renderer::Instance().GetColor(), Vec4(0.5f, 0.5f, 0.5f, 0.5f));
    GLint depth = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 1);
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(SceneDrawingTest, WaterIsWhereTheDropsAreOnEveryPath) {
    AddBlockOfWater();
    for (const int path : {0, 1, 2, 3, 4}) {
        UseShaders(path == 1);
        App::Instance().GetDrawSettings().m_simpleWater->Set(path == 2);
        Context::SetUseTargets(path < 3);  // without: by the frame buffer
        Context::SetHasAlpha(path != 4);   // and without its alpha: as simple
        const ImageRGBA32Ptr frame = Draw();
        const RGBA32 inside = (*frame)(64, 64);
        EXPECT_LT(inside.x, 70) << path;
        EXPECT_GT(inside.z, 200) << path;
        EXPECT_TRUE(IsSky((*frame)(64 + 46, 64))) << path;
        EXPECT_TRUE(IsSky((*frame)(10, 120))) << path;
    }
}

TEST_F(SceneDrawingTest, WaterLooksAlikeWhetherItsFieldIsDrawnIntoATextureOrCopied) {
    AddBlockOfWater();
    const ImageRGBA32Ptr drawn = Draw();
    Context::SetUseTargets(false);
    EXPECT_EQ(GreatestDifference(*drawn, *Draw()), 0);
}

TEST_F(SceneDrawingTest, WaterStandsOutFromTheSkyWithAndWithoutShaders) {
    AddBlockOfWater();
    for (const bool shaders : {true, false}) {
        UseShaders(shaders);
        const ImageRGBA32Ptr frame = Draw();
        double best = 0;
        for (size_t x = 64; x < SIZE; ++x) best = std::fmax(best, Contrast((*frame)(x, 64), SKY));
        EXPECT_GE(best, 3) << shaders;
    }
}

TEST_F(SceneDrawingTest, DropsStretchAlongTheirVelocity) {
    Simulation::Instance().AddParticle(new physics::Particle({0, 0}, {0, 20}));
    const ImageRGBA32Ptr frame = Draw();
    const auto extent = [&frame](size_t dx, size_t dy) {
        int count = 0;
        for (size_t i = 0; i < 60; ++i) count += !IsSky((*frame)(64 + i * dx, 64 + i * dy));
        return count;
    };
    EXPECT_GT(extent(0, 1), extent(1, 0) * 2);
}

TEST_F(SceneDrawingTest, SelectionBrightensEveryColourAndHasALineThatShowsOnIt) {
    static double s_now;
    util::Clock::SetSource([] { return s_now; });
    for (const math::Vec3 color :
         {math::Vec3(0.1f, 0.2f, 0.8f), {0.4f, 0.4f, 0.4f}, {1, 0.5f, 0.5f}, {1, 1, 1}}) {
        const app::EntityPtr circle = AddCircle({0, 0}, color);
        const RGBA32 plain = (*Draw())(64, 64);
        App::Instance().GetSelection().Add(circle);
        double contrast = 0;
        for (const double time : {std::acos(-1.0) / 10, std::acos(-1.0) * 3 / 10}) {  // brightest, darkest
            s_now = time;
            const ImageRGBA32Ptr frame = Draw();
            const RGBA32 middle = (*frame)(64, 64);
            EXPECT_GE(middle.x, plain.x);
            EXPECT_GE(middle.y, plain.y);
            EXPECT_GE(middle.z, plain.z);
            for (size_t x = 64; x < 84; ++x) contrast = std::fmax(contrast, Contrast((*frame)(x, 64), plain));
        }
        EXPECT_GT(contrast, 3) << plain.x << " " << plain.y << " " << plain.z;
        App::Instance().Clear();
    }
    util::Clock::SetSource(nullptr);
}

TEST_F(SceneDrawingTest, TheSkyGoesOverFromTheSkysColourToTheHorizons) {
    FindBackground().m_skyColor->Set({0.2f, 0.4f, 1, 1});
    FindBackground().m_horizonColor->Set({1, 0.4f, 0, 1});
    const ImageRGBA32Ptr frame = Draw();
    EXPECT_NEAR((*frame)(10, 127).x, 51, 2);
    EXPECT_NEAR((*frame)(10, 64).x, 153, 3);
    EXPECT_NEAR((*frame)(10, 0).z, 0, 2);
    FindBackground().m_skyColor->Set({0.3f, 0.4f, 1, 1});
}

TEST_F(SceneDrawingTest, ShapesOutsideTheViewAreLeftOut) {
    const app::EntityPtr circle = AddCircle({30, 0}, {1, 1, 1});
    circle->SetTint({0.25f, 0.25f, 0.25f});
    Draw();
    EXPECT_EQ(circle->GetTint(), math::Vec3(0.25f, 0.25f, 0.25f));  // not even prepared
}

TEST_F(SceneDrawingTest, FadingBringsTheLastFrameBackAndTakesNoMemoryUntilUsed) {
    AddCircle({0, 0}, {1, 1, 1});
    Draw();
    const unsigned int usage = rendering::GraphicsResource::GetTotalMemoryUsage();
    App& app = App::Instance();
    app.GetDrawSettings().m_fadeColor->Set({1, 1, 1});
    app.GetDrawSettings().m_fadeScale->Set({1, 1});
    Draw();
    EXPECT_EQ(rendering::GraphicsResource::GetTotalMemoryUsage(), usage + SIZE * SIZE * 4);
    app.Clear();
    // An opaque sky covers what fades.
    EXPECT_TRUE(IsSky((*Draw())(64, 64)));
    const script::AttribPtr<Vec4> skyColor = FindBackground().m_skyColor;
    AddCircle({0, 0}, {1, 1, 1});
    Draw();
    app.Clear();
    skyColor->Set({0.3f, 0.4f, 1, 0});
    FindBackground().m_horizonColor->Set({0.3f, 0.4f, 1, 0});
    EXPECT_EQ((*Draw())(64, 64).x, 255);
    EXPECT_NEAR((*Draw())(10, 10).x, 77, 1);  // the sky of the opaque frame, still there
    skyColor->Set({0.3f, 0.4f, 1, 1});
}

// ---- clouds
// ------------------------------------------------------------------------------------------------

TEST_F(SceneDrawingTest, CloudsMoveWithTheSimulationAndStopWithIt) {
    const util::SharedPtr<app::Background> sky =
        new app::Background(App::Instance().GetView(), App::Instance().GetDrawSettings().m_drawClouds);
    sky->Update(0.1f);
    EXPECT_TRUE(sky->GetClouds().empty());  // switched off
    App::Instance().GetDrawSettings().m_drawClouds->Set(true);
    Simulation& simulation = Simulation::Instance();
    simulation.m_running->Set(false);
    sky->Update(0.1f);
    ASSERT_EQ(sky->GetClouds().size(), 2500u);
    const app::Background::Cloud before = sky->GetClouds()[7];
    sky->Update(0.1f);
    EXPECT_EQ(sky->GetClouds()[7].position, before.position);
    simulation.m_running->Set(true);
    sky->Update(0.1f);
    const float t = simulation.GetRealtimeFraction() * simulation.m_timeFactor->Get() * 0.1f;
    EXPECT_FLOAT_EQ(sky->GetClouds()[7].position.x, before.position.x + before.velocity.x * t);
    sky->Update(20);  // a step of more than a second is a hitch, not a wind
    EXPECT_FLOAT_EQ(sky->GetClouds()[7].position.x, before.position.x + before.velocity.x * t);
    simulation.m_running->Set(false);
}

TEST_F(SceneDrawingTest, CloudsFillTheirBoxAndBigOnesAreFaster) {
    const util::SharedPtr<app::Background> sky =
        new app::Background(App::Instance().GetView(), App::Instance().GetDrawSettings().m_drawClouds);
    App::Instance().GetDrawSettings().m_drawClouds->Set(true);
    sky->Update(0);
    for (const app::Background::Cloud& cloud : sky->GetClouds()) {
        EXPECT_TRUE(cloud.size >= 5 && cloud.size <= 15);
        EXPECT_TRUE(cloud.position.x >= 0 && cloud.position.x <= 1950.5f);
        EXPECT_TRUE(cloud.position.y >= 0 && cloud.position.y <= 1219.1f);
        EXPECT_TRUE(cloud.velocity.x >= 0.1f * cloud.size && cloud.velocity.x <= 0.2001f * cloud.size);
        EXPECT_EQ(cloud.velocity.y, 0);
    }
    // Drawing brings all of them round the view.
    App& app = App::Instance();
    app.GetDrawSettings().m_drawClouds->Set(true);
    sky->SetSize(SIZE, SIZE);
    sky->Draw();
    const float half = 1950.5f / 2;
    for (const app::Background::Cloud& cloud : sky->GetClouds())
        EXPECT_LE(std::fabs(cloud.position.x), half + 3);
}

TEST_F(SceneDrawingTest, TheWindNeverSweepsTheSkyForLong) {
    App& app = App::Instance();
    const util::SharedPtr<app::Background> sky = MakeSky();
    const math::TMatrix3<float> view = app.GetView().GetWorldToGUI();
    for (const float factor : {1000.0f, 1.0f}) {  // clouds that came into a close view are specks now
        app.SetWorldToGUI(math::TMatrix3<float>::Scale(factor, factor) * view, false);
        sky->Update(1);
        sky->Draw();
    }
    Simulation::Instance().m_running->Set(true);
    const float half = SIZE / app.GetView().GetZoom() / app::Background::PARALLAX / 2;
    int empty = 0;  // seconds
    for (int second = 0; second < 600; ++second) {
        sky->Update(1);
        sky->Draw();
        const auto& clouds = sky->GetClouds();
        const bool any = std::any_of(clouds.begin(), clouds.end(), [half](const auto& cloud) {
            const float reach = half + cloud.size / 2;
            return cloud.size > half / 10 && std::fabs(cloud.position.x) < reach &&
                   std::fabs(cloud.position.y) < reach;
        });
        empty = any ? 0 : empty + 1;
        ASSERT_LE(empty, 3) << second;
    }
    Simulation::Instance().m_running->Set(false);
}

TEST_F(SceneDrawingTest, AViewFittedToTheSceneShowsCloudsOfItsSize) {
    App& app = App::Instance();
    const util::SharedPtr<app::Background> sky = MakeSky();
    sky->Update(1);
    for (int i = 0; i < 50; ++i) {
        app.Clear();
        AddCircle({20.0f * static_cast<float>(i), 3}, {1, 1, 1});  // often behind clouds larger than the view
        app.ZoomToScene();
        app.GetView().Arrive();
        sky->Draw();
        const float half = SIZE / app.GetView().GetZoom() / app::Background::PARALLAX / 2;
        const auto& clouds = sky->GetClouds();
        EXPECT_TRUE(std::any_of(clouds.begin(), clouds.end(), [&](const auto& cloud) {
            const math::Vec2 middle = cloud.position - app.GetView().GetViewBox().GetCenter();
            return cloud.size < 2 * half && std::fabs(middle.x) < half && std::fabs(middle.y) < half;
        })) << i;
    }
}

}  // namespace

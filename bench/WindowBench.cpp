// Drawing: the picture that a polygon is drawn from, the lists of one frame with and without the driver, and
// whole frames of growing content at 1024 by 768, so that each row's excess over the one before is the price
// of what it adds. Named to be linked last: the window stays open once it has been needed.

#include <SDL.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <stdexcept>

#include "app/App.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/files/SceneLoader.h"
#include "app/history/Undoer.h"
#include "bench/Driver.h"
#include "bench/Window.h"
#include "core/Platform.h"
#include "gui/GUI.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/TextureManager.h"
#include "util/FileSystem.h"
#include "util/Mentor.h"

namespace bench {

using math::Vec2;

// ---- the window ----------------------------------------------------------------------------------------

static String OpenWindow() {
    core::SetStretching(false);  // as in the program's ordinary window
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) != 0) return SDL_GetError();
    if (!core::HasDisplay()) return "there is no display";
    for (const SDL_GLattr channel :
         {SDL_GL_RED_SIZE, SDL_GL_GREEN_SIZE, SDL_GL_BLUE_SIZE, SDL_GL_ALPHA_SIZE}) {
        SDL_GL_SetAttribute(channel, 8);
    }
    for (const SDL_GLattr buffer : {SDL_GL_DEPTH_SIZE, SDL_GL_STENCIL_SIZE}) SDL_GL_SetAttribute(buffer, 0);
    if (SDL_SetVideoMode(WIDTH, HEIGHT, 0, SDL_OPENGL) == nullptr) return SDL_GetError();
    try {
        rendering::Context::InitExtensions();
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    rendering::Context::SetViewport(WIDTH, HEIGHT);
    return "";
}

bool NeedWindow(benchmark::State& state) {
    static const String s_failure = OpenWindow();
    if (!s_failure.empty()) state.SkipWithError(("needs a window: " + s_failure).c_str());
    return s_failure.empty();
}

ScopedFolder::ScopedFolder() : m_kept(util::FileSystem::Instance().GetWorkDir()) {
    util::FileSystem::Instance().SetWorkDir(String(VEXA_SOURCE_DIR) + "/");
}

ScopedFolder::~ScopedFolder() {
    util::FileSystem::Instance().SetWorkDir(m_kept);
}

// ---- what is drawn -------------------------------------------------------------------------------------

static physics::PolygonPtr MakeFlower(Vec2 pos) {
    constexpr int VERTICES = 20;
    math::Vec2List outline;
    for (int i = 0; i < VERTICES; ++i) {
        const float angle = math::TWO_PI * static_cast<float>(i) / VERTICES;
        outline.push_back(pos + Vec2(std::cos(angle), std::sin(angle)) * (0.3f + 0.1f * std::cos(3 * angle)));
    }
    return new physics::Polygon(outline);
}

void ClearWorld(float pixelsPerMetre) {
    app::App& app = app::App::Instance();
    app.SetFillParent(false);
    app.SetSize(WIDTH, HEIGHT);
    app.Clear();
    app::Undoer::Instance().Clear();
    physics::Simulation::Instance().Clear();
    physics::Simulation::Instance().m_running->Set(false);
    math::TMatrix3<float> view = math::TMatrix3<float>::Scale(pixelsPerMetre, -pixelsPerMetre);
    view.m[1][2] = HEIGHT;
    app.SetWorldToGUI(view, false);
}

static app::EntityPtr MakePolygonEntity(Vec2 pos) {
    return new app::PolyEntity(MakeFlower(pos));
}

static app::EntityPtr MakeCircleEntity(Vec2 pos) {
    return new app::CircleEntity(new physics::Circle(0.4f, pos));
}

// A thousand, all in view.
static void FillWithEntities(app::EntityPtr (*makeEntity)(Vec2)) {
    constexpr int COUNT = 1000, COLUMNS = 40;
    ClearWorld(25);
    for (int i = 0; i < COUNT; ++i) {
        const Vec2 cell(static_cast<float>(i % COLUMNS), static_cast<float>(i / COLUMNS));
        app::App::Instance().AddEntity(makeEntity(cell + Vec2(0.5f, 0.5f)));
    }
}

static void FillWithPolygons() {
    FillWithEntities(&MakePolygonEntity);
}

static void FillWithCircles() {
    FillWithEntities(&MakeCircleEntity);
}

static void FillWithParticles() {
    constexpr int COUNT = 4000, COLUMNS = 80;
    constexpr float SPACING = 0.055f;
    ClearWorld(150);
    for (int i = 0; i < COUNT; ++i) {
        const Vec2 cell(static_cast<float>(i % COLUMNS), static_cast<float>(i / COLUMNS));
        const Vec2 velocity(std::cos(static_cast<float>(i)), std::sin(static_cast<float>(i)));
        physics::Simulation::Instance().AddParticle(new physics::Particle(cell * SPACING, velocity));
    }
}

static void FillWithSky() {
    ClearWorld(150);
}

static void FillWithWelcome() {
    ClearWorld(150);
    app::App& app = app::App::Instance();
    if (!app::SceneLoader::LoadAtStart(app.GetScene(), app.GetView(), "welcome.vxa")) {
        throw std::runtime_error("no welcome scene");
    }
    app.SetWorldToGUI(app.GetView().GetTargetWorldToGUI(), false);
}

// ---- frames --------------------------------------------------------------------------------------------

void Clear() {
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

static void DrawWorld() {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, WIDTH, HEIGHT, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    app::App::Instance().DrawComp();
}

// Once for what is made at first use, again for what the first update makes.
static void WarmUp(bool useShaders) {
    rendering::Context::SetUseShaders(useShaders);
    util::AbstractMentor::ForEach([](util::AbstractMentor& mentor) { mentor.Unload(); });
    DrawWorld();
    app::App::Instance().Update(0);
    DrawWorld();
    glFinish();
}

static void BenchLists(benchmark::State& state, void (*fill)(), bool useShaders) {
    if (!NeedWindow(state)) return;
    const ScopedFolder folder;
    fill();
    WarmUp(useShaders);
    const ScopedIdleDriver idle;
    for (auto _ : state) DrawWorld();
}

static void BenchListsWithDriver(benchmark::State& state, void (*fill)(), bool useShaders) {
    if (!NeedWindow(state)) return;
    const ScopedFolder folder;
    fill();
    WarmUp(useShaders);
    for (auto _ : state) {
        DrawWorld();
        glFinish();
    }
}

static void BenchClearSwap(benchmark::State& state) {
    if (!NeedWindow(state)) return;
    for (auto _ : state) {
        Clear();
        SDL_GL_SwapBuffers();
    }
}

// What a frame with water does at least: the field is cleared, copied and cleared away.
static void BenchCopySwap(benchmark::State& state) {
    if (!NeedWindow(state)) return;
    const rendering::TextureMentorPtr mentor =
        rendering::TextureManager::MakeForFrame(rendering::Texture::ImageType::Frame());
    const rendering::TexturePtr texture = mentor->Get();
    for (auto _ : state) {
        Clear();
        texture->Copy(WIDTH, HEIGHT);
        Clear();
        SDL_GL_SwapBuffers();
    }
}

static void BenchFrame(benchmark::State& state, void (*fill)(), bool useShaders) {
    if (!NeedWindow(state)) return;
    const ScopedFolder folder;
    fill();
    WarmUp(useShaders);
    for (auto _ : state) {
        Clear();
        DrawWorld();
        SDL_GL_SwapBuffers();
    }
}

// ---- the picture of a polygon --------------------------------------------------------------------------

static void BenchDistPicture(benchmark::State& state) {
    const physics::PolygonPtr polygon = MakeFlower({0, 0});
    const app::PolyEntityPtr entity = new app::PolyEntity(polygon);
    for (auto _ : state) {
        const rendering::ImageFloatPtr image =
            app::PolyEntity::MakeDistImage(*polygon, entity->GetDistScale());
        benchmark::DoNotOptimize(image->GetData().data());
    }
}

static void BenchDistUpload(benchmark::State& state) {
    if (!NeedWindow(state)) return;
    const physics::PolygonPtr polygon = MakeFlower({0, 0});
    const app::PolyEntityPtr entity = new app::PolyEntity(polygon);
    const rendering::ImageFloatPtr image = app::PolyEntity::MakeDistImage(*polygon, entity->GetDistScale());
    for (auto _ : state) {
        const rendering::TexturePtr texture =
            rendering::TextureFromImageFloat(image, rendering::Texture::ImageType::Distance());
        benchmark::DoNotOptimize(texture.Get());
    }
}

// ---- rows ----------------------------------------------------------------------------------------------

static const bool s_isRegistered = [] {
    const auto add = [](const String& name, auto function, auto... arguments) {
        return benchmark::RegisterBenchmark(name.c_str(), function, arguments...)
            ->Unit(benchmark::kMillisecond);
    };
    // The driver's threads count as well.
    const auto addFrame = [add](const String& name, auto function, auto... arguments) {
        add(name, function, arguments...)->Iterations(FRAMES)->MeasureProcessCPUTime();
    };
    add("distance texture/vexa", BenchDistPicture);
    add("distance texture/upload", BenchDistUpload);
    const std::pair<String, void (*)()> lists[] = {{"draw lists/1000 polygons", &FillWithPolygons},
                                                   {"draw lists/1000 circles", &FillWithCircles},
                                                   {"draw lists/4000 particles", &FillWithParticles}};
    for (const auto& [name, fill] : lists) {
        add(name + "/vexa", BenchLists, fill, true)->Iterations(FRAMES);
        add(name + "/without shaders", BenchLists, fill, false)->Iterations(FRAMES);
        addFrame(name + "/with driver", BenchListsWithDriver, fill, true);
    }
    addFrame("frame/clear swap", BenchClearSwap);
    addFrame("frame/clear copy swap", BenchCopySwap);
    addFrame("frame/sky", BenchFrame, &FillWithSky, true);
    addFrame("frame/welcome", BenchFrame, &FillWithWelcome, true);
    addFrame("frame/welcome without shaders", BenchFrame, &FillWithWelcome, false);
    return true;
}();

}  // namespace bench

#include <SDL/SDL.h>

#include <boost/format.hpp>
#include <cmath>

#include "core/Platform.h"
#include "core/ResourceManager.h"
#include "core/Subsystem.h"
#include "gui/GUI.h"
#include "input/Input.h"
#include "input/Profiler.h"
#include "logging/Logger.h"
#include "physics/Simulation.h"
#include "rendering/Gl.h"
#include "script/Parser.h"
#include "util/Clock.h"
#include "util/Exception.h"
#include "util/Guarded.h"
#include "util/Interpolator.h"
#include "util/ProfileTree.h"
#include "util/Redraw.h"

// The frame loop, core::Subsystem's third part. Each frame runs its sections in a fixed order, and an
// exception that passes one of them on its way to main leaves its trace in the log.
namespace core {

namespace {

constexpr int FRAMES_PER_FLUSH = 10;     // dead callbacks do no harm: they are cleared away now and then
constexpr double FPS_INTERVAL = 1;       // seconds between two measurements
constexpr int FRAMES_PER_CHANGE = 3;     // drawn after each change of the picture
constexpr double LONGEST_UNDRAWN = 0.5;  // seconds
constexpr double LONGEST_KEPT = 10;      // seconds that one picture is shown again and again
constexpr double SLEEPY = 1;             // seconds without a change until updates become rare
constexpr int FRAMES_PER_REST = 6;       // that pass between two updates then, unless there is input
constexpr float LEAST_MAX_FPS = 1;       // the program stays usable whatever a script says

Uint32 MeasureSleep() {
    const Uint32 start = SDL_GetTicks();
    SDL_Delay(1);
    return SDL_GetTicks() - start;
}

Uint32 MeasureTick() {
    const Uint32 start = SDL_GetTicks();
    Uint32 now = start;
    while (now == start) now = SDL_GetTicks();
    return now - start;
}

void LogTimers() {
    const Uint32 sleep = MeasureSleep();
    Log(logging::Trace,
        boost::str(boost::format("sleep precision=%1%ms, timer precision: %2%ms") % sleep % MeasureTick()));
}

}  // namespace

void Subsystem::Run() {
    PrepareLoop();
    if (!m_quit) RunFrame();
    LogTimers();  // which takes some milliseconds: not before the user sees something
    while (!m_quit) RunFrame();
    ResourceManager::Instance().DestroyAll();
}

void Subsystem::PrepareLoop() {
    m_previousTime = m_fpsStart = util::Clock::Now();
    util::Profiler::Instance().Reset();
    Log(logging::Trace, "Entering game loop");
}

// A frame that asked to quit is not drawn.
void Subsystem::RunFrame() {
    PumpEvents();
    physics::Simulation::Instance().SetMaxUpdateTime(1 / m_minFPS->Get());
    if (m_quit) return;
    const double now = util::Clock::Now();
    const double dt = now - m_previousTime;
    FlushCallbackSets();
    CollectHandles();
    UpdateParser();
    UpdateInterpolators();
    UpdateGUI(dt);
    if (m_quit) return;
    const bool draws = NeedsDrawing(now);
    if (draws) {
        m_keptFrame.Forget();
        Draw();
    } else if (now - m_lastDrawn >= LONGEST_UNDRAWN) {
        ShowAgain(now);
    }
    MeasureFrameRate();
    util::Profiler::Instance().Update();
    UpdateLogger();
    if (draws) {
        LimitFrameRate(dt);
    } else {
        Rest();
    }
    m_previousTime = now;
}

void Subsystem::PumpEvents() {
    try {
        PROFILE_SECTION("Events");
        if (TakeTerminationRequest()) {
            SDL_Event quit{};
            quit.type = SDL_QUIT;
            SDL_PushEvent(&quit);
        }
        gui::Input::Instance().Pump();
        HandleDroppedFiles();
        RethrowLostWindow();
    }
    PASS_ON_EXCEPTIONS
}

void Subsystem::HandleDroppedFiles() {
    for (const String& path : TakeDroppedFiles()) {
        util::Redraw::Request();
        if (m_onFileDropped) util::Guarded([&] { m_onFileDropped(path); }, "", logging::Error);
    }
}

// Events and scripts are guarded by themselves, but the loss of the window is beyond their repair.
void Subsystem::RethrowLostWindow() {
    if (m_lostWindow) std::rethrow_exception(m_lostWindow);
}

void Subsystem::FlushCallbackSets() {
    if (++m_framesSinceFlush <= FRAMES_PER_FLUSH) return;
    m_framesSinceFlush = 0;
    try {
        PROFILE_SECTION("FlushCallbackSets");
        util::AbstractCallbackSet::ForEach([](util::AbstractCallbackSet& set) { set.Flush(); });
    }
    PASS_ON_EXCEPTIONS
}

void Subsystem::CollectHandles() {
    try {
        PROFILE_SECTION("GC");
        util::Pointee::SweepHandles();
    }
    PASS_ON_EXCEPTIONS
}

void Subsystem::UpdateParser() {
    try {
        PROFILE_SECTION("Parser::Update");
        script::Parser::Instance().Update();
    }
    PASS_ON_EXCEPTIONS
}

void Subsystem::UpdateInterpolators() {
    try {
        PROFILE_SECTION("Interp::Update");
        util::InterpolatorBase::ForEach([](util::InterpolatorBase& interpolator) { interpolator.Update(); });
    }
    PASS_ON_EXCEPTIONS
}

void Subsystem::UpdateGUI(double dt) {
    try {
        PROFILE_SECTION("GUI::Update");
        gui::GUI::Instance().Update(static_cast<float>(dt));
        RethrowLostWindow();
    }
    PASS_ON_EXCEPTIONS
}

// What a change brings about may show a frame or two later: a bound attribute, a layout, what lies under the
// mouse.
bool Subsystem::NeedsDrawing(double now) {
    const bool isMoving =
        physics::Simulation::Instance().m_running->Get() || util::ProfileTree::Get().IsEnabled();
    if (util::Redraw::Take() || isMoving) {
        m_framesToDraw = FRAMES_PER_CHANGE;
        m_lastChange = now;
    }
    if (m_framesToDraw == 0) return false;
    --m_framesToDraw;
    m_lastDrawn = now;
    return true;
}

// What has changed without a request, which nothing should, is seen some seconds later all the same.
void Subsystem::ShowAgain(double now) {
    m_lastDrawn = now;
    if (now - m_lastWholeFrame >= LONGEST_KEPT) m_keptFrame.Forget();
    try {
        PROFILE_SECTION("Show again");
        if (!m_keptFrame.Show()) {
            m_lastWholeFrame = now;
            m_keptFrame.Draw([this] { DrawPicture(); });
        }
        SwapBuffers();
    }
    PASS_ON_EXCEPTIONS
}

// In place of drawing, so that input is answered as soon as ever.
void Subsystem::Rest() {
    const bool isSleepy = util::Clock::Now() - m_lastChange > SLEEPY;
    for (int i = 0; i < (isSleepy ? FRAMES_PER_REST : 1); ++i) {
        if (i > 0 && gui::Input::Instance().IsWaiting()) return;
        SDL_Delay(static_cast<Uint32>(1000 / std::max(m_maxFPS->Get(), LEAST_MAX_FPS)));
    }
}

void Subsystem::Draw() {
    try {
        PROFILE_SECTION("Draw");
        DrawPicture();
        SwapBuffers();
    }
    PASS_ON_EXCEPTIONS
}

void Subsystem::DrawPicture() {
    Clear();
    gui::GUI::Instance().Draw();
}

void Subsystem::Clear() {
    PROFILE_SECTION("glClear");
    const math::Vec4 color = m_clearColor->Get();
    glClearColor(color.x, color.y, color.z, color.w);
    glClear(GL_COLOR_BUFFER_BIT);  // nothing tests depths
}

void Subsystem::SwapBuffers() {
    PROFILE_SECTION("SDL_GL_SwapBuffers");
    SDL_GL_SwapBuffers();
}

void Subsystem::MeasureFrameRate() {
    ++m_frameCount;
    const double now = util::Clock::Now();
    const double elapsed = now - m_fpsStart;
    if (m_fps == 0 && elapsed > 0) m_fps = m_frameCount / elapsed;
    if (elapsed <= FPS_INTERVAL) return;
    m_fps = m_frameCount / elapsed;
    m_fpsStart = now;
    m_frameCount = 0;
}

void Subsystem::UpdateLogger() {
    try {
        PROFILE_SECTION("Logger::Update");
        logging::Logger::Instance().Update();
    }
    PASS_ON_EXCEPTIONS
}

// `dt` is the whole time since the last frame and includes its sleep: a frame after a long sleep does not
// sleep again.
void Subsystem::LimitFrameRate(double dt) {
    if (!(m_maxFPS->Get() >= LEAST_MAX_FPS)) m_maxFPS->Set(LEAST_MAX_FPS);
    const double shortest = 1.0 / std::max(m_maxFPS->Get(), LEAST_MAX_FPS);
    if (dt < shortest) SDL_Delay(static_cast<Uint32>(std::floor((shortest - dt) * 1000 + 0.5)));
}

}  // namespace core

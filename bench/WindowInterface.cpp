// The interface: what a frame costs with the toolbar, the control window, the menu on a shape and a page of
// the console, whose excess over the same frame without them is their price, as they are and with another
// line in the console each frame, which no picture can be kept of; and how long the menu takes to open on
// many selected shapes.

#include <SDL.h>

#include "app/App.h"
#include "app/AppGUI.h"
#include "app/entities/CircleEntity.h"
#include "app/scene/AppGUISettings.h"
#include "bench/Window.h"
#include "gui/GUI.h"
#include "input/Key.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "script/Parser.h"

namespace bench {

using math::Vec2;

constexpr float SCALE = 40;          // pixels per metre
constexpr float FRAME_TIME = 1e-6f;  // seconds; nothing is to move
constexpr int COLUMNS = 20;          // of shapes

static app::App& GetApp() {
    return app::App::Instance();
}

// The world view as the root's child, the interface with these windows, and so many shapes, all selected.
static void BuildInterface(const String& windows, int shapes) {
    gui::GUI& gui = gui::GUI::Instance();
    gui.Resize(WIDTH, HEIGHT);
    if (GetApp().GetParent() == nullptr) {
        gui.GetRoot()->AddChild(&GetApp());
        script::Reflected::AddToRoot(&gui);
    }
    ClearWorld(SCALE);
    GetApp().GetGUISettings().m_windows->Set(windows);
    GetApp().CreateGUI();
    for (int i = 0; i < shapes; ++i) {
        const Vec2 place(static_cast<float>(4 + i % COLUMNS), static_cast<float>(4 + i / COLUMNS));
        const app::EntityPtr shape = new app::CircleEntity(new physics::Circle(0.4f, place));
        GetApp().AddEntity(shape);
        GetApp().GetSelection().Add(shape);
    }
}

static void OpenPopup() {
    gui::ClickEvent click;
    click.m_position = GetApp().WorldToGUI({4, 4});
    click.m_key = gui::Key::RightMouse;
    click.m_clicks = 1;
    GetApp().GetAppGUI()->OnClick(click);
}

static void ClosePopup() {
    gui::KeyEvent escape;
    escape.m_key = gui::Key::Escape;
    escape.m_pressed = true;
    GetApp().GetAppGUI()->OnKeyEvent(escape);
}

// No two are alike, or a page would look the same one line on.
static void AddConsoleLine() {
    static int s_count = 0;
    const String number = std::to_string(s_count++);
    gui::GUI::Instance().GetConsole()->AddLine(
        "Sim.gravity = [0.0, -9.82]; the quick brown fox jumps over the lazy dog " + number, false);
}

static void OpenConsolePage() {
    constexpr int LINES = 40;
    gui::Console& console = *gui::GUI::Instance().GetConsole();
    script::Parser::Instance().Execute("GUI.Console.delay = 0; GUI.Console.screenSize = 0.87");
    console.Clear();
    for (int i = 0; i < LINES; ++i) AddConsoleLine();
    if (!console.IsOpen()) console.Toggle();
}

static void CloseConsole() {
    gui::Console& console = *gui::GUI::Instance().GetConsole();
    if (console.IsOpen()) console.Toggle();
}

static void DrawFrame() {
    gui::GUI::Instance().Update(FRAME_TIME);
    Clear();
    gui::GUI::Instance().Draw();
    SDL_GL_SwapBuffers();
}

static void BenchFrame(benchmark::State& state, const String& windows, bool popup, bool console,
                       bool scrolls) {
    if (!NeedWindow(state)) return;
    const ScopedFolder folder;
    rendering::Context::SetUseShaders(true);
    BuildInterface(windows, popup ? 1 : 0);
    if (popup) OpenPopup();
    if (console) OpenConsolePage();
    for (int i = 0; i < 5; ++i) DrawFrame();  // what is made at first use, the pictures of windows among it
    glFinish();
    for (auto _ : state) {
        if (scrolls) AddConsoleLine();
        DrawFrame();
    }
    CloseConsole();
    ClosePopup();
}

// Up to the first frame that shows it, without the drawing.
static void BenchPopup(benchmark::State& state, int shapes) {
    if (!NeedWindow(state)) return;
    const ScopedFolder folder;
    BuildInterface("Tools open - - Control open - -", shapes);
    for (auto _ : state) {
        OpenPopup();
        gui::GUI::Instance().Update(FRAME_TIME);
        state.PauseTiming();
        ClosePopup();
        state.ResumeTiming();
    }
}

static const bool s_isRegistered = [] {
    const String closed = "Tools closed - - Control closed - -", open = "Tools open - - Control open - -";
    const auto addFrame = [](const String& name, const String& windows, bool popup, bool console,
                             bool scrolls = false) {
        benchmark::RegisterBenchmark(("interface/frame/" + name).c_str(), BenchFrame, windows, popup, console,
                                     scrolls)
            ->Unit(benchmark::kMillisecond)
            ->Iterations(FRAMES)
            ->MeasureProcessCPUTime();  // the driver's threads count as well
    };
    addFrame("empty", closed, false, false);
    addFrame("windows", open, false, false);
    addFrame("windows popup", open, true, false);
    addFrame("windows popup console", open, true, true);
    addFrame("windows popup scrolling console", open, true, true, true);
    for (const int shapes : {1, 200}) {
        benchmark::RegisterBenchmark(("interface/popup/" + std::to_string(shapes)).c_str(), BenchPopup,
                                     shapes)
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace bench

#include "app/App.h"

#include "app/AppGUI.h"
#include "app/Language.h"
#include "app/drawing/Background.h"
#include "app/history/Actions.h"
#include "app/history/Undoer.h"
#include "app/tools/EntityOperations.h"
#include "app/tools/Tool.h"
#include "gui/Focus.h"
#include "gui/Font.h"
#include "input/Key.h"
#include "physics/Simulation.h"
#include "util/Assert.h"
#include "util/Exception.h"
#include "util/FileNames.h"
#include "util/FileSystem.h"
#include "util/ProfileTree.h"
#include "util/RunSlot.h"

namespace app {

namespace {

constexpr float KEY_PAN_SPEED = 400;  // GUI units per second

}  // namespace

App::App()
    : Component("App"),
      m_guiSettings(new AppGUISettings),
      m_language(script::DeclareAttrib(*this, "language", "English")),
      m_DPI(script::DeclareAttrib(*this, "DPI", 86.0f)),
      m_maxSPHSpawn(script::DeclareAttrib(*this, "maxSPHSpawn", 10000)),
      m_maxUndo(script::DeclareAttrib(*this, "maxUndo", static_cast<unsigned int>(Undoer::DEFAULT_LIMIT))),
      m_autosaveTime(script::DeclareAttrib(*this, "autosaveTime", 30.0f)),
      m_view(m_DPI),
      m_renderer(m_scene, m_view, *this),
      m_autosave(m_scene),
      m_toolSettings(*this, m_guiSettings) {
    SetFillParent(true);
    AddReflected(m_guiSettings);
    m_scene.SetJointIconSetting(m_guiSettings->m_drawHingesWhenRunning);
    const auto noteName = [this] { m_guiSettings->m_sceneName->Set(m_scene.GetName()); };
    m_scene.GetOnNameChange().Add(new util::Callback(noteName, this));
    AddReflected(m_renderer.GetBackground());
    AddCommands();
    physics::Simulation::Instance().m_running->AddOnChange(
        new util::Callback([this] { OnRunningChange(); }, this));
    m_language->AddOnChange(new util::Callback([this] { OnLanguageChange(); }, this));
    m_maxUndo->AddOnChange(
        new util::Callback([this] { Undoer::Instance().SetLimit(m_maxUndo->Get()); }, this));
}

App::~App() noexcept(false) = default;

void App::AddCommands() {
    AddCmd("undo", [] { Undoer::Instance().Undo(); });
    AddCmd("redo", [] { Undoer::Instance().Redo(); });
    AddCmd("snapshot", this, &App::TakeSnapshot);
    AddCmd("dissolveChain", this, &App::DissolveChain);
}

// ---- each frame

void App::Update(float dt) {
    PROFILE_SECTION("App::Update");
    try {
        m_view.Update();
        const bool isRescaled = m_appGUI && m_textScale != gui::Font::GetPixelsPerUnit();
        if (m_rebuildsGUI || isRescaled) CreateGUI();
        Component::Update(dt);
        if (m_appGUI) m_autosave.Update(m_autosaveTime->Get());
        if (dt > 0) PanByKeys(dt);
        physics::Simulation::Instance().Update(dt);
        m_scene.Update(dt);
        Undoer::Instance().Trim();
        m_view.KeepZoomInBounds();
        CODE_ASSERTION(IsFinite(GetMousePos()));
        m_view.Follow(m_scene);
        m_renderer.Update(dt);
    }
    PASS_ON_EXCEPTIONS
}

void App::DrawComp() {
    PROFILE_SECTION("App::DrawComp");
    m_renderer.Draw([this] {
        if (m_appGUI) m_appGUI->GetTool().Draw();
    });
    if (m_appGUI) m_appGUI->OnSceneDrawn();
}

void App::OnGeometryChanged() {
    m_view.SetSize(GetSize());
    Component::OnGeometryChanged();
}

void App::PanByKeys(float dt) {
    const auto down = [this](int key) { return IsKeyDownHere(key) ? 1.0f : 0.0f; };
    const float x = down(gui::Key::Right) - down(gui::Key::Left);
    const float y = down(gui::Key::Down) - down(gui::Key::Up);
    if (x != 0 || y != 0) Pan(x * dt * -KEY_PAN_SPEED, y * dt * -KEY_PAN_SPEED);
}

void App::SetWorldToGUI(const math::TMatrix3<float>& matrix, bool animate) {
    m_view.SetWorldToGUI(matrix, animate);
}

// ---- history

void App::ClearScene() {
    Undoer::Instance().Do(new app::ClearScene(m_scene, m_view));
}

void App::TakeSnapshot() {
    Undoer::Instance().Do(new SnapshotAction("UndoSnapshot", new Snapshot(m_scene)));
}

void App::DissolveChain() {
    app::DissolveChain(m_scene, m_scene.GetSelection().Get());
}

void App::RunSimulation() {
    physics::Simulation::Instance().m_running->SetValue(script::ValueToObject(true));
}

void App::StopSimulation() {
    physics::Simulation::Instance().m_running->SetValue(script::ValueToObject(false));
}

void App::OnRunningChange() {
    if (physics::Simulation::Instance().m_running->Get()) Undoer::Instance().Do(new SimStart(m_scene));
}

// ---- the interface

// The window with the button that chose the language is still at work.
void App::OnLanguageChange() {
    m_rebuildsGUI = static_cast<bool>(m_appGUI);
}

Workbench App::GetWorkbench() {
    const auto tell = [this](const char* key, math::Vec2 world) {
        if (m_appGUI) m_appGUI->ShowHint(key, world);
    };
    return {m_scene, m_view, m_toolSettings, tell};
}

void App::CreateGUI() {
    const String language = m_language->Get();
    if (Language::Instance().GetName() != language) Language::Instance().Load(language);
    m_rebuildsGUI = false;
    m_textScale = gui::Font::GetPixelsPerUnit();
    const AppGUIPtr previous = m_appGUI;
    gui::Focus::Place focus;
    if (previous) {
        previous->CloseDialog();  // which gives the focus back
        previous->EndGesture();
        focus = gui::Focus::GetPlace(*previous);
        RemoveChild(previous);
    }
    m_appGUI = new AppGUI(*this);
    m_appGUI->SetSize(2, 2);  // until it takes this component's size
    AddChild(m_appGUI);
    gui::Focus::SetPlace(*m_appGUI, focus);
}

void App::OnExit() {
    const bool isSaved = m_appGUI->SaveSceneAs(ONEXIT_SCENE, true);
    m_scene.GetSettings().Set({});  // what is saved as the user's is his own
    // The autosaved scene goes only when its successor is on the disk.
    if (!isSaved) return;
    const util::FileSystem& files = util::FileSystem::Instance();
    files.Remove(files.GetScenesDir() + util::RunSlot::Instance().GetAutosaveScene());
}

}  // namespace app

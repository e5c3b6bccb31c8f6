#pragma once

#include "app/Fwd.h"
#include "app/drawing/SceneRenderer.h"
#include "app/files/Autosave.h"
#include "app/scene/AppGUISettings.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "app/tools/ToolSettings.h"
#include "gui/Component.h"
#include "script/Attributes.h"
#include "util/Singleton.h"

namespace app {

// The world view as a component, in scripts "App": it owns the scene, the view on it and what draws it, and
// holds the settings and commands of the application. Everything below it gets those three handed to it;
// only what has no owner to ask, the program's main function and its tests, asks for the instance.
//
// Once a frame Update advances the tools and widgets above it, then the physics, then the scene, and keeps
// the view in bounds.
//
// It works without a window and without GL: only drawing needs those. Without a parent its size has to be
// set by SetSize, or the view has no middle.
class App : public gui::Component, public util::Singleton<App> {
  public:
    App();
    ~App() noexcept(false) override;

    Scene& GetScene() { return m_scene; }
    const Scene& GetScene() const { return m_scene; }
    View& GetView() { return m_view; }
    const View& GetView() const { return m_view; }

    // ---- each frame

    void Update(float dt) override;  // seconds
    void DrawComp() override;
    void OnGeometryChanged() override;  // the view's size is this component's

    // ---- the view's and the scene's operations by the names under which this component offers them

    static constexpr float GetMinZoom() { return View::GetMinZoom(); }
    static constexpr float GetMaxZoom() { return View::GetMaxZoom(); }
    static constexpr float GetDefaultZoom() { return View::GetDefaultZoom(); }

    math::Vec2 GUIToWorld(const math::Vec2& gui) const { return m_view.GUIToWorld(gui); }
    math::Vec2 WorldToGUI(const math::Vec2& world) const { return m_view.WorldToGUI(world); }
    void SetWorldToGUI(const math::TMatrix3<float>& matrix, bool animate = true);
    math::Vec2 GetMousePos() const { return m_view.GetMousePos(); }
    void Pan(float x, float y) { m_view.Pan(x, y); }
    void SetZoom(float scale) { m_view.SetZoom(scale); }
    void ZoomToScene() { m_view.ZoomToScene(m_scene); }

    const EntityList& GetEntities() const { return m_scene.GetEntities(); }
    Selection& GetSelection() { return m_scene.GetSelection(); }
    void AddEntity(const EntityPtr& entity) { m_scene.AddEntity(entity); }
    void RemoveEntity(const EntityPtr& entity) { m_scene.RemoveEntity(entity); }
    void Clear() { m_scene.Clear(); }
    void FlushBodies() { m_scene.FlushBodies(); }

    // ---- steps of the history

    // A start is one, however `Sim.running` comes to be true.
    void RunSimulation();
    void StopSimulation();
    void ClearScene();
    void TakeSnapshot();  // a mark
    // The chains of the selected entities: their members stand for themselves from now on.
    void DissolveChain();

    // ---- the interface

    // Builds toolbars and menus, anew if they exist.
    void CreateGUI();
    const AppGUIPtr& GetAppGUI() const { return m_appGUI; }
    AppGUISettings& GetGUISettings() const { return *m_guiSettings; }
    Workbench GetWorkbench();
    const DrawSettings& GetDrawSettings() const { return m_renderer.GetSettings(); }
    const ToolSettings& GetToolSettings() const { return m_toolSettings; }
    // Saves the scene for the next start and drops the autosaved one.
    void OnExit();

  private:
    AppGUISettingsPtr m_guiSettings;  // read by what is declared below

  public:
    const script::AttribPtr<String> m_language;
    const script::AttribPtr<float> m_DPI;
    const script::AttribPtr<int> m_maxSPHSpawn;       // drops that one shape may turn into
    const script::AttribPtr<unsigned int> m_maxUndo;  // steps
    const script::AttribPtr<float> m_autosaveTime;    // s

  private:
    void AddCommands();
    void OnRunningChange();
    void OnLanguageChange();
    void PanByKeys(float dt);

    Scene m_scene;
    View m_view;
    SceneRenderer m_renderer;
    Autosave m_autosave;  // while there is an interface
    const ToolSettings m_toolSettings;
    AppGUIPtr m_appGUI;          // null until CreateGUI
    bool m_rebuildsGUI = false;  // at the next update
    float m_textScale = 1;       // by which the texts of the interface have been measured
};

}  // namespace app

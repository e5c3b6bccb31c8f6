#pragma once

#include <vector>

#include "app/Fwd.h"
#include "app/drawing/SceneThumbnail.h"
#include "app/tools/Tool.h"
#include "app/widgets/Hints.h"
#include "app/windows/Commands.h"
#include "app/windows/Desk.h"
#include "app/windows/WindowSet.h"
#include "gui/Component.h"

namespace app {

class MoveTool;
class RotateTool;
class PanTool;
class BrushTool;
class Hint;

// A tool as the interface offers it.
struct ToolEntry {
    const char* m_id;    // by which App.AppGUI.tool selects it
    const char* m_name;  // language key
    const char* m_icon;  // picture
    int m_key;
    ToolPtr m_tool;
};

// The interface over the world view, a child of app::App that fills it: it holds the tools, brings every
// gesture that no widget took to one of them, and has the keyboard shortcuts and the saving of scenes.
//
// A drag goes to the widgets, then to the selected tool, and if nobody took its start, by what lies under
// the press: with the left button an entity is moved and empty ground drawn on, with the right button an
// entity is turned and on empty ground the view pans. That tool overrides the selected one until the end
// of the drag.
//
// Whatever fails in a user's action ends in the log, cancels the tool, and goes no further.
class AppGUI : public gui::Component {
  public:
    explicit AppGUI(App& app);
    ~AppGUI() noexcept(false) override;

    // In the order of a toolbar; the last one, the brush, is selected at first.
    const std::vector<ToolEntry>& GetTools() const { return m_tools; }
    const ToolEntry& GetSelectedTool() const { return m_tools[m_selectedTool]; }
    void SelectTool(const String& name);  // as setting App.AppGUI.tool

    // The tool that the user's gesture goes to: the one that has taken it over, else the selected one.
    Tool& GetTool() const;
    bool CancelTool();  // as Tool::Cancel, of that tool

    // Saves the scene to Scenes/. An autosave is silent, has a name of the program's own and does not change
    // the scene's. A failure is told to the user, and the answer is false.
    bool SaveSceneAs(const String& name, bool autosave);
    // What the dialog does: under the name of the scene itself to where it lies.
    bool SaveSceneNamed(const String& name);
    // What the user chose, as SceneLoader::Load, after breaking off the gesture.
    void LoadScene(const String& file, bool import);

    // The text of a language key beside a place of the world, for a moment.
    void ShowHint(const char* key, math::Vec2 world);
    const Hint& GetHint() const { return *m_hint; }

    // ---- windows

    const Commands& GetCommands() const { return m_commands; }
    WindowSet& GetWindows() { return m_windows; }
    // In front of all, in the middle, in place of the dialog that was open.
    void OpenDialog(const gui::WindowPtr& dialog);
    void CloseDialog();  // and the popup
    // To be called when the scene has been drawn and no window yet.
    void OnSceneDrawn() { m_thumbnail.Take(); }

    void Update(float dt) override;
    void Draw() override;
    void OnDragStart(gui::DragEvent& event) override;
    void OnDrag(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void OnClick(gui::ClickEvent& event) override;
    void OnKeyEvent(gui::KeyEvent& event) override;

  private:
    template <class Operation>
    void Guard(const Operation& operation);
    ToolPtr ChooseOverride(const gui::DragEvent& event) const;
    void HandleClick(gui::ClickEvent& event);
    void FollowSelectedTool();
    bool HandleKey(const gui::KeyEvent& event);
    bool HandleWheel(const gui::KeyEvent& event);
    void StepHistory(bool redo);
    void EraseSelection();
    void SelectAll();
    void SelectNext(bool backward);
    bool IsWholeGroup(const EntitySet& selected) const;
    void SetGroup(bool assign);
    static String FindFreeName();
    void NoteSaved(const String& name);
    void ShowSceneName();  // in the title of the window

    // AppGUIWindows.cpp
    void AddToolCommands();
    void AddEditCommands();
    void AddFileCommands();
    void AddViewCommands();
    void AddWindowCommands();
    void LoadKeys();
    void AddWindows();
    void KeepRoomForTools();
    void OpenPopup(math::Vec2 place);
    void OpenPopupByKey();
    bool ClosePopup();  // whether there was one
    void BreakOff();
    void OpenSaveDialog();
    void Tell(const String& text);
    void OpenSceneDialog(bool import);
    void ChooseLanguage();
    void EraseWater();
    void ToggleFullscreen();

    App& m_app;
    Scene& m_scene;
    View& m_view;
    const util::SharedPtr<MoveTool> m_moveTool;
    const util::SharedPtr<RotateTool> m_rotateTool;
    const util::SharedPtr<PanTool> m_panTool;
    const util::SharedPtr<BrushTool> m_brushTool;
    ToolPtr m_overrideTool;                // from a drag's start to its end; null otherwise
    bool m_steppedHistory = false;         // by the wheel, in this frame
    const std::vector<ToolEntry> m_tools;  // in the toolbar's order
    size_t m_selectedTool;                 // index into m_tools
    Commands m_commands;
    const Desk m_desk;
    WindowSet m_windows;
    util::WeakPtr<gui::Window> m_dialog;
    gui::WindowPtr m_popup;  // null for none; torn off it belongs to this component alone
    const util::SharedPtr<Hints> m_hints;
    SceneThumbnail m_thumbnail;
    const util::SharedPtr<Hint> m_hint;
};

}  // namespace app

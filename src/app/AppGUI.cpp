#include "app/AppGUI.h"

#include <algorithm>
#include <cmath>

#include "app/App.h"
#include "app/Language.h"
#include "app/drawing/DrawSettings.h"
#include "app/entities/Entity.h"
#include "app/files/SceneFiles.h"
#include "app/history/Actions.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/AppGUISettings.h"
#include "app/tools/BoxTool.h"
#include "app/tools/BrushTool.h"
#include "app/tools/ChainTool.h"
#include "app/tools/CircleTool.h"
#include "app/tools/DragTool.h"
#include "app/tools/JointTool.h"
#include "app/tools/MoveTool.h"
#include "app/tools/PanTool.h"
#include "app/tools/PlaneTool.h"
#include "app/tools/RotateTool.h"
#include "app/tools/SpringTool.h"
#include "app/widgets/Hint.h"
#include "gui/GUI.h"
#include "input/Key.h"
#include "input/WindowHost.h"
#include "logging/Log.h"
#include "script/Parser.h"
#include "script/Scopes.h"
#include "util/FileNames.h"
#include "util/FileSystem.h"
#include "util/Guarded.h"
#include "util/ProfileTree.h"

namespace app {
namespace {

// The switch belongs to the owner of the GL resources, which only the script tree tells of here.
script::TAttribPtr<bool> FindShaderSwitch() {
    const script::ObjectPtr resources =
        script::Parser::Instance().GetRootClosure()->GetLocalValue("Resources");
    script::ClassObject* const owner = resources ? resources->AsClass() : nullptr;
    if (owner == nullptr) return nullptr;
    return util::DynamicCast<script::TAttrib<bool>>(owner->FindLocal("shaders"));
}

std::vector<ToolEntry> MakeTools(const Workbench& bench, const ToolPtr& brush) {
    return {{"hinge", "ToolHinge", "tools/hinge", 'h', new HingeTool(bench)},
            {"fixjoint", "ToolFixJoint", "tools/fixjoint", 'f', new FixJointTool(bench)},
            {"spring", "ToolSpring", "tools/spring", 's', new SpringTool(bench)},
            {"chain", "ToolChain", "tools/chain", 'n', new ChainTool(bench)},
            {"box", "ToolBox", "tools/box", 'x', new BoxTool(bench)},
            {"circle", "ToolCircle", "tools/circle", 'c', new CircleTool(bench)},
            {"plane", "ToolPlane", "tools/plane", 'p', new PlaneTool(bench)},
            {"drag", "ToolDrag", "tools/drag", 'd', new DragTool(bench)},
            {"brush", "ToolBrush", "tools/brush", 'b', brush}};
}

}  // namespace

AppGUI::AppGUI(App& app)
    : Component("Interface"),
      m_app(app),
      m_scene(app.GetScene()),
      m_view(app.GetView()),
      m_moveTool(new MoveTool(app.GetWorkbench())),
      m_rotateTool(new RotateTool(app.GetWorkbench())),
      m_panTool(new PanTool(app.GetWorkbench())),
      m_brushTool(new BrushTool(app.GetWorkbench())),
      m_tools(MakeTools(app.GetWorkbench(), m_brushTool)),
      m_selectedTool(m_tools.size() - 1),
      m_desk{m_scene,
             m_view,
             m_commands,
             app.GetGUISettings(),
             app.GetDrawSettings(),
             FindShaderSwitch(),
             app.m_maxSPHSpawn,
             app.m_DPI,
             *this,
             app},
      m_windows(*this, app.GetGUISettings().m_windows),
      m_hints(new Hints(app.GetGUISettings().m_hintsDone, m_view)),
      m_hint(new Hint) {
    SetFillParent(true);
    FollowSelectedTool();
    AddToolCommands();
    AddEditCommands();
    AddFileCommands();
    AddViewCommands();
    AddWindowCommands();
    LoadKeys();
    AddWindows();
    AddChild(m_hints);
    AddChild(m_hint);
    const util::WeakPtr<util::Pointee> self(this);
    Undoer::Instance().GetOnInterrupt().Add(new util::Callback([this] { BreakOff(); }, self));
    m_app.GetGUISettings().m_tool->AddOnChange(new util::Callback([this] { FollowSelectedTool(); }, self));
    m_scene.GetOnNameChange().Add(new util::Callback([this] { ShowSceneName(); }, self));
    m_scene.GetOnLoading().Add(new util::Callback([this] { ShowSceneName(); }, self));
}

AppGUI::~AppGUI() noexcept(false) {
    ClosePopup();
}

void AppGUI::LoadKeys() {
    const script::AttribPtr<String> keys = m_app.GetGUISettings().m_keys;
    m_commands.ReadKeys(keys->Get());
    m_commands.GetOnKeyChange().Add(new util::Callback([this, keys] { keys->Set(m_commands.WriteKeys()); },
                                                       util::WeakPtr<util::Pointee>(this)));
}

// The history is about to put another scene in the place of this one.
void AppGUI::BreakOff() {
    m_app.EndGesture();
    CancelTool();
    ClosePopup();
}

// ---- tools

Tool& AppGUI::GetTool() const {
    return m_overrideTool ? *m_overrideTool : *GetSelectedTool().m_tool;
}

void AppGUI::SelectTool(const String& name) {
    m_app.GetGUISettings().m_tool->Set(name);
}

// A name that no tool has gives way to the present one.
void AppGUI::FollowSelectedTool() {
    const String name = m_app.GetGUISettings().m_tool->Get();
    const auto found = std::find_if(m_tools.begin(), m_tools.end(),
                                    [&name](const ToolEntry& entry) { return entry.m_id == name; });
    if (found == m_tools.end()) {
        Log(logging::Warning, "There is no tool \"" + name + "\"");
        SelectTool(GetSelectedTool().m_id);
        return;
    }
    const auto index = static_cast<size_t>(found - m_tools.begin());
    if (index == m_selectedTool) return;
    GetSelectedTool().m_tool->Cancel();
    m_selectedTool = index;
}

void AppGUI::ShowHint(const char* key, math::Vec2 world) {
    m_hint->Show(Language::Instance().Get(key), m_view.WorldToGUI(world));
}

bool AppGUI::CancelTool() {
    return GetTool().Cancel();
}

// ---- gestures

template <class Operation>
void AppGUI::Guard(const Operation& operation) {
    if (!util::Guarded(operation, "", logging::Error)) CancelTool();
}

void AppGUI::OnDragStart(gui::DragEvent& event) {
    Guard([&] {
        Component::OnDragStart(event);
        if (!event.m_handled && event.m_key == gui::Key::LeftMouse) ClosePopup();
        GetTool().OnDragStart(event);
        if (event.m_handled) return;
        m_overrideTool = ChooseOverride(event);
        if (m_overrideTool) m_overrideTool->OnDragStart(event);
    });
}

ToolPtr AppGUI::ChooseOverride(const gui::DragEvent& event) const {
    const bool onEntity = static_cast<bool>(m_scene.GetEntityAt(m_view.GUIToWorld(event.m_position)));
    switch (event.m_key) {
        case gui::Key::LeftMouse:
            return onEntity ? ToolPtr(m_moveTool) : ToolPtr(m_brushTool);
        case gui::Key::RightMouse:
            return onEntity ? ToolPtr(m_rotateTool) : ToolPtr(m_panTool);
        default:
            return m_overrideTool;
    }
}

void AppGUI::OnDrag(gui::DragEvent& event) {
    Guard([&] {
        Component::OnDrag(event);
        GetTool().OnDrag(event);
    });
}

void AppGUI::OnDragEnd(gui::DragEvent& event) {
    Guard([&] {
        Component::OnDragEnd(event);
        GetTool().OnDragEnd(event);
    });
    m_overrideTool = nullptr;
}

void AppGUI::OnClick(gui::ClickEvent& event) {
    Guard([&] {
        Component::OnClick(event);
        GetTool().OnClick(event);
        if (!event.m_handled) HandleClick(event);
    });
}

void AppGUI::HandleClick(gui::ClickEvent& event) {
    Selection& selection = m_scene.GetSelection();
    const math::Vec2 world = m_view.GUIToWorld(event.m_position);
    const bool left = event.m_key == gui::Key::LeftMouse;
    const bool wantsMenu = event.m_key == gui::Key::RightMouse || (left && event.m_clicks == 2) ||
                           (left && m_app.GetGUISettings().m_leftClickMenus->Get());
    if (wantsMenu) {
        const EntityPtr entity = m_scene.GetEntityAt(world);
        if (!entity || !selection.Has(entity)) selection.ClickAt(world);
        OpenPopup(event.m_position);
        event.m_handled = true;
    } else if (left && event.m_clicks == 1) {
        ClosePopup();
        selection.ClickAt(world);
        event.m_handled = true;
    }
}

// ---- keyboard

void AppGUI::OnKeyEvent(gui::KeyEvent& event) {
    Guard([&] {
        Component::OnKeyEvent(event);
        // Escape is answered by one call of Cancel, below.
        const bool escape = event.m_pressed && event.m_key == gui::Key::Escape;
        if (!escape) GetTool().OnKeyEvent(event);
        if (event.m_pressed && !event.m_handled) event.m_handled = HandleKey(event);
        if (m_commands.HandleKey(event)) event.m_handled = true;
    });
}

bool AppGUI::HandleKey(const gui::KeyEvent& event) {
    switch (event.m_key) {
        case gui::Key::ScrollUp:
        case gui::Key::ScrollDown:
            return HandleWheel(event);
        case gui::Key::Escape:
            return CancelTool() || ClosePopup();
        default:
            return false;
    }
}

bool AppGUI::HandleWheel(const gui::KeyEvent& event) {
    const bool up = event.m_key == gui::Key::ScrollUp;
    if (event.m_ctrl) {
        // A touch pad sends many notches at once; each would be a step.
        if (!m_steppedHistory) StepHistory(up);
        m_steppedHistory = true;
        return true;
    }
    const float scale = m_view.GetTargetWorldToGUI().m[0][0];
    const float bound = up ? View::GetMaxZoom() : View::GetMinZoom();
    if (up ? scale >= bound : scale <= bound) return true;
    const float exponent = m_app.GetGUISettings().m_zoomFactor->Get() * (up ? 1 : -1);
    m_view.ZoomAbout(event.m_position, std::exp2(exponent));
    return true;
}

void AppGUI::StepHistory(bool redo) {
    if (redo) {
        Undoer::Instance().Redo();
    } else {
        Undoer::Instance().Undo();
    }
}

void AppGUI::EraseSelection() {
    // Cancelling a move brings the former selection back; what is meant is what the hand holds.
    const EntitySet selected = m_scene.GetSelection().Get();
    CancelTool();
    if (!selected.empty()) Undoer::Instance().Do(new EraseEntities(m_scene, selected));
}

void AppGUI::SelectAll() {
    CancelTool();
    const EntityList& entities = m_scene.GetEntities();
    m_scene.GetSelection().Set(EntitySet(entities.begin(), entities.end()));
}

void AppGUI::SelectNext(bool backward) {
    CancelTool();
    m_scene.GetSelection().SelectNext(m_view.GetViewBox(), backward);
}

// Whether those and no others have one group.
bool AppGUI::IsWholeGroup(const EntitySet& selected) const {
    const script::Int group = (*selected.begin())->GetGroup();
    if (group == Entity::NO_GROUP) return false;
    const EntityList& entities = m_scene.GetEntities();
    return std::all_of(entities.begin(), entities.end(), [&](const EntityPtr& entity) {
        return (entity->GetGroup() == group) == (selected.count(entity) != 0);
    });
}

void AppGUI::SetGroup(bool assign) {
    CancelTool();
    const EntitySet selected = m_scene.GetSelection().Get();
    if (selected.empty()) return;
    const auto isFree = [](const EntityPtr& entity) { return !entity->HasGroup(); };
    // What changes nothing is no step, so a key pressed twice leaves one.
    if (assign ? IsWholeGroup(selected) : std::all_of(selected.begin(), selected.end(), isFree)) return;
    const SnapshotPtr before = new Snapshot(m_scene);
    const script::Int group = assign ? m_scene.GetFreeGroup() : Entity::NO_GROUP;
    for (const EntityPtr& entity : selected) entity->SetGroup(group);
    Undoer::Instance().AddRestorer(before, assign ? "UndoGroupAssignment" : "UndoGroupRemoval");
}

// ---- saving

bool AppGUI::SaveSceneAs(const String& name, bool autosave) {
    const auto save = [&] {
        if (autosave) return WriteScene(m_scene, name);
        NoteSaved(app::SaveScene(m_scene, name));
    };
    return util::Guarded(save, "Error: ", logging::Error);
}

// A scene keeps its place, also outside of Scenes/, as long as its name stays.
bool AppGUI::SaveSceneNamed(const String& name) {
    if (name != m_scene.GetName()) return SaveSceneAs(name, false);
    const auto save = [&] {
        WriteScene(m_scene, name);
        NoteSaved(name);
    };
    return util::Guarded(save, "Error: ", logging::Error);
}

// Never over a scene that the user has not named himself.
String AppGUI::FindFreeName() {
    int number = 1;
    String name;
    do {
        name = "scene-" + std::to_string(number++) + SCENE_ENDING;
    } while (util::FileSystem::Instance().Exists(GetScenePath(name)));
    return name;
}

void AppGUI::NoteSaved(const String& name) {
    m_scene.SetName(name);
    m_thumbnail.Request(GetScenePath(name));
    Log(logging::Info, "Scene saved to " + name);
}

// While a great scene is being read no picture is drawn, and the title tells how far it is.
void AppGUI::ShowSceneName() {
    gui::WindowHost* const host = gui::GUI::Instance().GetWindowHost();
    if (!host) return;
    const int loaded = m_scene.GetLoadedPart();
    host->SetDocumentName(loaded < 100 ? std::to_string(loaded) + " %" : GetFileName(m_scene.GetName()));
}

// ---- each frame

void AppGUI::Update(float dt) {
    try {
        PROFILE_SECTION("AppGUI::Update");
        m_steppedHistory = false;
        Component::Update(dt);
        if (m_popup && m_popup->GetParent() == nullptr) m_popup = nullptr;  // with the menus that hang on it
        m_windows.Update();
        KeepRoomForTools();
        gui::GUI::Instance().GetNotices()->KeepAbove(m_hints->GetRoom());
        GetTool().Update();
    }
    PASS_ON_EXCEPTIONS
}

void AppGUI::Draw() {
    PROFILE_SECTION("AppGUI::Draw");
    Component::Draw();
}

}  // namespace app

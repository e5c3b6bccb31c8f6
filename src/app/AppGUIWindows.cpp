#include <algorithm>

#include "app/App.h"
#include "app/AppGUI.h"
#include "app/Language.h"
#include "app/files/SceneFiles.h"
#include "app/files/SceneLoader.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/AppGUISettings.h"
#include "app/widgets/Hint.h"
#include "app/windows/ControlWindow.h"
#include "app/windows/Dialogs.h"
#include "app/windows/EntityPopup.h"
#include "app/windows/KeysWindow.h"
#include "app/windows/MenuWindows.h"
#include "app/windows/SettingsWindow.h"
#include "app/windows/StatsWindow.h"
#include "app/windows/Toolbar.h"
#include "gui/Focus.h"
#include "gui/GUI.h"
#include "input/Key.h"
#include "input/WindowHost.h"
#include "physics/Simulation.h"
#include "script/Conversions.h"
#include "util/Encoding.h"

// The commands of the interface and its windows.
namespace app {
namespace {

// GUI units that scenes and hints keep clear of the tools at the left, and scenes of the control window
// above.
constexpr float TOOLS_ROOM = 120;
constexpr float CONTROL_ROOM = 60;

}  // namespace

// ---- commands

void AppGUI::AddToolCommands() {
    for (const ToolEntry& entry : m_tools) {
        const auto select = [this, id = entry.m_id] { SelectTool(id); };
        m_commands.Add({entry.m_name, entry.m_icon, entry.m_key, false, select});
    }
}

void AppGUI::AddEditCommands() {
    m_commands.Add({"TipUndo", "tools/backward", 'z', true, [this] { StepHistory(false); }});
    m_commands.Add({"TipRedo", "tools/forward", 'y', true, [this] { StepHistory(true); }});
    m_commands.Add({"KeySelectAll", "blank", 'a', true, [this] { SelectAll(); }});
    m_commands.Add({"KeyNextShape", "blank", gui::Key::PageDown, false, [this] { SelectNext(false); }});
    m_commands.Add({"KeyPreviousShape", "blank", gui::Key::PageUp, false, [this] { SelectNext(true); }});
    m_commands.Add({"KeyErase", "popup/erase", gui::Key::Delete, false, [this] { EraseSelection(); }});
    m_commands.Add({"KeyGroup", "blank", 'g', true, [this] { SetGroup(true); }});
    m_commands.Add({"KeyUngroup", "blank", 'u', true, [this] { SetGroup(false); }});
    m_commands.Add({"PopupTitle", "blank", 'e', true, [this] { OpenPopupByKey(); }});
    m_commands.Add({"EraseWater", "file/clear", 0, false, [this] { EraseWater(); }});
    m_commands.Add({"ClearScene", "file/clear", 0, false, [this] { m_app.ClearScene(); }});
}

void AppGUI::AddFileCommands() {
    m_commands.Add({"NewScene", "file/new", 'n', true, [this] {
                        m_app.ClearScene();
                        m_scene.SetName(String());
                    }});
    m_commands.Add({"SaveScene", "file/save", 's', true, [this] { OpenSaveDialog(); }});
    m_commands.Add({"LoadScene", "file/open", 'o', true, [this] { OpenSceneDialog(false); }});
    m_commands.Add({"ImportScene", "file/import", 'i', true, [this] { OpenSceneDialog(true); }});
    m_commands.Add({"Exit", "file/exit", 'q', true, [] {
                        if (gui::WindowHost* const host = gui::GUI::Instance().GetWindowHost()) host->Quit();
                    }});
}

void AppGUI::AddViewCommands() {
    m_commands.Add({"ResetView", "file/center", 0, false, [this] { m_view.SetDefaultView(true); }});
    m_commands.Add({"FitScene", "file/fit", gui::Key::Home, false, [this] { m_view.ZoomToScene(m_scene); }});
    m_commands.Add({"ToggleFullscreen", "file/fullscreen", 0, false, [this] { ToggleFullscreen(); }});
}

void AppGUI::AddWindowCommands() {
    const auto toggle = [this](const char* window) { return [this, window] { m_windows.Toggle(window); }; };
    m_commands.Add({"FileButton", "file/open", 0, false, toggle("File")});
    m_commands.Add({"OptionsButton", "file/options", 0, false, toggle("Options")});
    m_commands.Add({"GalleryButton", "file/gallery", 0, false, toggle("Gallery")});
    m_commands.Add({"AllSettings", "file/options", 0, false, toggle("Settings")});
    m_commands.Add({"KeysTitle", "file/keys", 0, false, toggle("Keys")});
    m_commands.Add({"ShowStats", "file/stats", 0, false, toggle("Statistics")});
    m_commands.Add({"ToolbarTitle", "tools/brush", 0, false, toggle("Tools")});
    m_commands.Add({"ControlTitle", "tools/play", 0, false, toggle("Control")});
    m_commands.Add({"ShowHelp", "file/help", gui::Key::F1, false, [this] {
                        const String text = Language::Instance().GetHelpText();
                        OpenDialog(MakeHelpDialog(m_desk, text));
                    }});
    m_commands.Add({"ShowAbout", "file/about", 0, false, [this] {
                        const String text = Language::Instance().GetAboutText();
                        OpenDialog(MakeTextDialog(m_desk, "AboutTitle", text));
                    }});
    m_commands.Add({"ShowInfo", "popup/info", 0, false, [this] { OpenDialog(MakeInfoWindow()); }});
    m_commands.Add({"ChangeLanguage", "file/language", 0, false, [this] { ChooseLanguage(); }});
}

void AppGUI::EraseWater() {
    CancelTool();
    if (physics::Simulation::Instance().GetParticles().empty()) return;
    const SnapshotPtr before = new Snapshot(m_scene);
    physics::Simulation::Instance().ClearParticles();
    Undoer::Instance().AddRestorer(before, "UndoEraseWater");
}

void AppGUI::ToggleFullscreen() {
    gui::WindowHost* const host = gui::GUI::Instance().GetWindowHost();
    if (host != nullptr) host->SetFullscreen(!host->IsFullscreen());
}

// ---- windows

void AppGUI::AddWindows() {
    using Dock = WindowSet::Dock;
    const auto makeToolbar = [this] {
        std::vector<const char*> names;
        for (const ToolEntry& entry : m_tools) names.push_back(entry.m_name);
        const auto isCurrent = [this](const String& name) { return name == GetSelectedTool().m_name; };
        return gui::WindowPtr(new Toolbar(m_desk, names, isCurrent));
    };
    const auto load = [this](const String& file) { LoadScene(file, false); };
    m_windows.Add("Tools", Dock::TopLeft, true, makeToolbar);
    m_windows.Add("Control", Dock::TopMiddle, true, [this] { return new ControlWindow(m_desk); });
    m_windows.Add("File", Dock::BesideTools, false, [this] { return MakeFileWindow(m_desk); });
    m_windows.Add("Options", Dock::BesideTools, false, [this] { return MakeOptionsWindow(m_desk); });
    m_windows.Add("Gallery", Dock::Middle, false, [this, load] { return MakeGallery(m_desk, load); });
    m_windows.Add("Settings", Dock::Middle, false, [this] { return new SettingsWindow(m_desk); });
    m_windows.Add("Keys", Dock::Middle, false, [this] { return new KeysWindow(m_commands, m_desk); });
    m_windows.Add("Statistics", Dock::TopRight, false, [this] { return new StatsWindow(m_scene); });
    m_windows.Restore();
    KeepRoomForTools();
}

// Scenes come to stand clear of the windows while these are in their place.
void AppGUI::KeepRoomForTools() {
    m_view.SetRooms(m_windows.IsDocked("Tools") ? TOOLS_ROOM : 0,
                    m_windows.IsDocked("Control") ? CONTROL_ROOM : 0);
}

// Above everything, its corner where the mouse is.
void AppGUI::OpenPopup(math::Vec2 place) {
    ClosePopup();
    m_popup = new EntityPopup(m_desk);
    if (!m_scene.GetSelection().IsEmpty()) m_hints->Finish(Hints::Popup);
    m_app.AddChild(m_popup);
    const math::Vec2 room = m_app.GetSize() - m_popup->GetOuterSize();
    const math::Vec2 inside =
        m_popup->GetNearestInView({std::min(place.x, room.x), std::min(place.y, room.y)});
    m_popup->SetPos(inside.x, inside.y);
    m_popup->StopWobble();
}

// Where the selection is, as far as it is in view, or in the middle; ready for the arrows.
void AppGUI::OpenPopupByKey() {
    const math::BoundingBox2f box = m_scene.GetSelection().GetExtent();
    const bool isInView = box.IsFinite() && m_view.GetViewBox().Contains(box.GetCenter());
    OpenPopup(isInView ? m_view.WorldToGUI(box.GetCenter()) : m_view.GetMiddle());
    m_popup->TakeFocus();
}

bool AppGUI::ClosePopup() {
    const gui::WindowPtr popup = m_popup;
    m_popup = nullptr;
    if (!popup || popup->GetParent() != &m_app) return false;
    popup->Close();
    return true;
}

void AppGUI::CloseDialog() {
    ClosePopup();
    if (gui::Window* const open = m_dialog.Get()) open->Close();
}

void AppGUI::OpenDialog(const gui::WindowPtr& dialog) {
    CloseDialog();
    m_dialog = dialog.Get();
    dialog->AddCloseButton();
    AddChild(dialog);
    PlaceInMiddle(*dialog, *this);
    dialog->TakeFocus();
}

void AppGUI::OpenSaveDialog() {
    const String name = m_scene.GetName().empty() ? FindFreeName() : m_scene.GetName();
    const auto save = [this](const String& chosen) {
        if (!SaveSceneNamed(chosen)) return false;
        Tell(Translate("SavedAs") + " " + util::Latin1FromUtf8(StripSceneEnding(GetFileName(chosen))));
        return true;
    };
    OpenDialog(new SaveDialog(m_scene, name, save));
}

// What a dialog that has closed came to, in the middle of the picture.
void AppGUI::Tell(const String& text) {
    m_hint->Show(text, m_view.GetMiddle());
}

void AppGUI::OpenSceneDialog(bool import) {
    const auto choose = [this, import](const String& file) { LoadScene(file, import); };
    OpenDialog(MakeSceneDialog(m_desk, import ? "Import" : "Load", choose));
}

void AppGUI::LoadScene(const String& file, bool import) {
    CancelTool();
    if (!SceneLoader::Load(m_scene, m_view, file, import)) Tell(Translate("LoadFailed"));
}

void AppGUI::ChooseLanguage() {
    const auto choose = [this](const String& name) {
        m_app.m_language->SetValue(script::ValueToObject(name));
    };
    OpenDialog(MakeLanguageDialog(choose));
}

}  // namespace app

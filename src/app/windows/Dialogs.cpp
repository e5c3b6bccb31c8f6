#include "app/windows/Dialogs.h"

#include <algorithm>
#include <boost/format.hpp>
#include <cmath>

#include "app/Language.h"
#include "app/files/SceneFiles.h"
#include "app/scene/Scene.h"
#include "app/widgets/InfoLabel.h"
#include "app/widgets/MenuButton.h"
#include "app/widgets/SceneButton.h"
#include "app/windows/Rows.h"
#include "app/windows/StatsWindow.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Icon.h"
#include "gui/components/Label.h"
#include "gui/components/ScrollArea.h"
#include "gui/components/TextField.h"
#include "rendering/GraphicsResource.h"
#include "util/Encoding.h"
#include "util/FileNames.h"
#include "util/FileSystem.h"

namespace app {
namespace {

using gui::ComponentPtr;
using gui::WindowPtr;

constexpr float NAME_WIDTH = 260;      // GUI units
constexpr float TEXT_WIDTH = 700;      // GUI units, of a wrapped text
constexpr float SIDE_ROOM = 40;        // GUI units that a dialog leaves free
constexpr size_t GALLERY_COLUMNS = 5;  // at most
constexpr size_t MAX_ROWS = 1000;      // of the list of scenes, whose cost grows with the square
constexpr size_t GESTURE_COLUMNS = 6;  // at most
constexpr float GESTURE_WIDTH = 96;    // GUI units
constexpr float INFO_WIDTH = 200;      // GUI units
constexpr double MEGABYTE = 1 << 20;

WindowPtr MakeDialog(const char* titleKey) {
    const WindowPtr window = MakeRowWindow(titleKey);
    window->SetClosesAtEscape(true);
    return window;
}

// The dialog goes first: what is chosen may take the whole interface away.
std::function<void()> CloseAnd(const WindowPtr& window, const std::function<void()>& run) {
    const util::WeakPtr<gui::Window> weak(window.Get());
    return [weak, run] {
        const auto chosen = run;
        if (gui::Window* const open = weak.Get()) open->Close();
        chosen();
    };
}

gui::ButtonPtr MakeCancelButton(const WindowPtr& window) {
    return MakeButton("Cancel", CloseAnd(window, [] {}));
}

// Rows of as many tiles, all of them about equally wide, as the interface has room for.
class Grid : public gui::Component {
  public:
    Grid(const Desk& desk, const std::vector<ComponentPtr>& tiles, size_t mostColumns)
        : Component("Grid", MakeRowLayout()), m_desk(desk), m_tiles(tiles), m_mostColumns(mostColumns) {
        LayOut(GetColumns());
    }

    void Update(float dt) override {
        Component::Update(dt);
        const size_t columns = GetColumns();
        if (columns != m_columns) LayOut(columns);
    }

  private:
    size_t GetColumns() const {
        float widest = 1;
        for (const ComponentPtr& tile : m_tiles) widest = std::max(widest, tile->GetOuterSize().x);
        const float room = std::max(m_desk.m_interface.GetSize().x - SIDE_ROOM, widest);
        return std::min(static_cast<size_t>(room / widest), m_mostColumns);
    }

    void LayOut(size_t columns) {
        m_columns = columns;
        RemoveAllChildren();
        for (size_t i = 0; i < m_tiles.size(); i += columns) {
            const auto first = m_tiles.begin() + static_cast<std::ptrdiff_t>(i);
            const auto count = static_cast<std::ptrdiff_t>(std::min(columns, m_tiles.size() - i));
            AddChild(MakeRow({first, first + count}));
        }
    }

    const Desk& m_desk;
    const std::vector<ComponentPtr> m_tiles;
    const size_t m_mostColumns;
    size_t m_columns = 0;
};

float GetTextWidth(const Desk& desk) {
    return std::min(TEXT_WIDTH, desk.m_interface.GetSize().x - SIDE_ROOM);
}

ComponentPtr MakeText(const Desk& desk, const String& text) {
    const gui::LabelPtr label = new gui::Label;
    label->SetMaxWidth(GetTextWidth(desk));
    label->SetText(text);
    return label;
}

struct Gesture {
    const char* m_picture;
    const char* m_key;  // of the text below it
};
const Gesture GESTURES[] = {{"gui/help/draw", "GestureDraw"},   {"gui/help/select", "SelectMenu"},
                            {"gui/help/erase", "GestureErase"}, {"gui/help/move", "GestureMove"},
                            {"gui/help/turn", "GestureTurn"},   {"gui/help/zoom", "Zoom"}};

ComponentPtr MakeGestureTile(const Gesture& gesture) {
    const ComponentPtr tile = new gui::Component("Gesture", new gui::ListLayout(gui::ListLayout::Vertical));
    tile->AddChild(new gui::Icon(gesture.m_picture));
    tile->AddChild(MakeCell(Translate(gesture.m_key), GESTURE_WIDTH));
    return tile;
}

}  // namespace

// ---- saving

SaveDialog::SaveDialog(const Scene& scene, const String& name, const SaveFunction& save)
    : Window(Translate("Save"), MakeRowLayout()),
      m_scene(scene),
      m_path(name),
      m_save(save),
      m_question(new gui::Label(Translate("SaveAsWhat"))),
      m_name(new gui::TextField(util::Latin1FromUtf8(StripSceneEnding(GetFileName(name))))),
      m_saveButton(MakeButton("Save", [this] { Save(); })) {
    SetKey("Save");
    SetClosesAtEscape(true);
    m_question->SetKey("SaveAsWhat");
    m_name->SetKey("EnterName");
    m_name->SetMinWidth(NAME_WIDTH);
    m_name->GetOnEnter().Add(new util::Callback([this] { Save(); }, util::WeakPtr<util::Pointee>(this)));
    const gui::ButtonPtr cancel = MakeButton("Cancel", [this] { Close(); });
    for (const ComponentPtr& row :
         {ComponentPtr(m_question), ComponentPtr(m_name), MakeRow({m_saveButton, cancel})}) {
        AddChild(row);
    }
}

SaveDialog::~SaveDialog() noexcept(false) = default;

void SaveDialog::TakeFocus() {
    Window::TakeFocus();
    gui::Focus::Set(m_name.Get());
    m_name->MarkAll();  // typing a name replaces the one that is proposed
}

bool SaveDialog::IsOtherScene(const String& file) const {
    return file != m_scene.GetName() && util::FileSystem::Instance().Exists(GetScenePath(file));
}

void SaveDialog::Save() {
    String file = CleanSceneName(util::Utf8FromLatin1(m_name->GetText()));
    if (file.empty()) return;
    if (file == GetFileName(m_path)) file = m_path;
    if (IsOtherScene(file) && m_asked != file) {
        m_asked = file;
        m_question->SetText(Translate("OverwriteScene"));
        m_saveButton->SetText(Translate("Replace"));
        return;
    }
    if (m_save(file)) return Close();
    m_question->SetText(Translate("SaveFailed"));
    TakeFocus();  // for another name: the one that has failed stays marked
}

// ---- choosing a scene

WindowPtr MakeSceneDialog(const Desk& desk, const char* titleKey, const NameFunction& choose) {
    const WindowPtr window = MakeDialog(titleKey);
    const ComponentPtr list = new gui::Component("SceneList", MakeRowLayout());
    util::StringList names = ListNewestScenes(MAX_ROWS);
    SortByTitle(names);
    for (const String& file : names) {
        list->AddChild(new SceneButton(file, SceneButton::Shape::Row,
                                       CloseAnd(window, [choose, file] { choose(file); })));
    }
    const size_t count = util::FileSystem::Instance().ListScenes("*" + SCENE_ENDING).size();
    if (count > names.size()) {
        list->AddChild(new gui::Label(std::to_string(names.size()) + " / " + std::to_string(count)));
    }
    if (list->GetChildren().empty()) list->AddChild(new gui::Label(Translate("NoScenes")));
    window->AddChild(MakeScrolled(list, desk));
    window->AddChild(MakeCancelButton(window));
    return window;
}

WindowPtr MakeGallery(const Desk& desk, const NameFunction& choose) {
    const WindowPtr window = MakeRowWindow("GalleryTitle");
    const util::FileSystem& files = util::FileSystem::Instance();
    util::StringList names = files.ListFiles(files.GetShippedScenesDir(), "*" + SCENE_ENDING);
    const auto isOwn = [](const String& name) { return !HasSceneTitle(name); };  // they may lie in one folder
    names.erase(std::remove_if(names.begin(), names.end(), isOwn), names.end());
    SortByTitle(names);
    std::vector<ComponentPtr> tiles;
    for (const String& file : names) {
        tiles.push_back(new SceneButton(file, SceneButton::Shape::Tile, [choose, file] { choose(file); }));
    }
    window->AddChild(MakeScrolled(new Grid(desk, tiles, GALLERY_COLUMNS), desk));
    return window;
}

// ---- the rest

WindowPtr MakeLanguageDialog(const NameFunction& choose) {
    const WindowPtr window = MakeDialog("ChangeLanguage");
    for (const String& name : Language::List()) {
        const util::SharedPtr<MenuButton> row = new MenuButton(
            Language::GetOwnName(name), "blank", CloseAnd(window, [choose, name] { choose(name); }));
        row->SetKey(name);
        window->AddChild(row);
    }
    window->AddChild(MakeCancelButton(window));
    return window;
}

WindowPtr MakeTextDialog(const Desk& desk, const char* titleKey, const String& text) {
    const WindowPtr window = MakeDialog(titleKey);
    window->AddChild(MakeScrolled(MakeText(desk, text), desk));
    return window;
}

WindowPtr MakeHelpDialog(const Desk& desk, const String& text) {
    const WindowPtr window = MakeDialog("HelpTitle");
    std::vector<ComponentPtr> tiles;
    for (const Gesture& gesture : GESTURES) tiles.push_back(MakeGestureTile(gesture));
    const ComponentPtr content = new gui::Component("Help", MakeRowLayout());
    content->AddChild(new Grid(desk, tiles, GESTURE_COLUMNS));
    content->AddChild(MakeText(desk, text));
    window->AddChild(MakeScrolled(content, desk));
    return window;
}

WindowPtr MakeInfoWindow() {
    const WindowPtr window = MakeDialog("Info");
    const auto text = [rate = SmoothedFrameRate()]() mutable {
        rate.Follow();
        const unsigned int bytes = rendering::GraphicsResource::GetTotalMemoryUsage();
        return boost::str(boost::format("%1%: %2$.0f\n%3%: %4$.1f MB\n%5%") % Translate("InfoFPS") %
                          rate.Get() % Translate("InfoVRAM") % (double(bytes) / MEGABYTE) % DescribeWorld());
    };
    window->AddChild(new InfoLabel(text, INFO_WIDTH));
    return window;
}

}  // namespace app

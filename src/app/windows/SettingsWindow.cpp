#include "app/windows/SettingsWindow.h"

#include <algorithm>
#include <cctype>
#include <set>

#include "app/Language.h"
#include "app/windows/Rows.h"
#include "gui/GUI.h"
#include "gui/LookAndFeel.h"
#include "gui/components/AttribWidgets.h"
#include "gui/components/Label.h"
#include "gui/components/ScrollArea.h"
#include "gui/components/TextField.h"
#include "script/Parser.h"
#include "script/Scopes.h"
#include "util/Guarded.h"

namespace app {
namespace {

using gui::ComponentPtr;
using script::AbstractAttribPtr;
using script::ObjectPtr;

// GUI units; with the list of objects less than LEAST_WIDTH.
constexpr float NAME_WIDTH = 190;
constexpr float PATH_WIDTH = 248;  // of a name with its object
constexpr float VALUE_WIDTH = 120;
constexpr float DEFAULT_WIDTH = 96;
constexpr float LEAST_WIDTH = 720;     // of a view that has room for all columns
constexpr float LIST_ROOM = 140;       // of the interface's height, left free
constexpr size_t MAX_FOUND = 200;      // rows of a search
constexpr size_t MAX_VALUE_TEXT = 14;  // characters of a default that are shown

void Collect(script::ClassObject& object, const String& path, std::set<script::ClassObject*>& seen,
             std::vector<Setting>& found) {
    if (!seen.insert(&object).second) return;
    for (const script::VariablePtr& variable : object.GetVariables()) {
        const auto attrib = util::DynamicCast<script::AbstractAttrib>(variable);
        if (attrib && !path.empty()) found.push_back({path, variable->GetName(), attrib});
    }
    for (const script::VariablePtr& variable : object.GetVariables()) {
        if (util::DynamicCast<script::AbstractAttrib>(variable)) continue;
        const ObjectPtr value = variable->GetValue();
        if (!util::DynamicCast<script::Reflected>(value)) continue;
        const String name = variable->GetName();
        Collect(*value->AsClass(), path.empty() ? name : path + "." + name, seen, found);
    }
}

String ToLower(String text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// What a person types, run as the assignment that it stands for; a text needs no quotes.
void Assign(const Setting& setting, const String& text) {
    util::Guarded([&] {
        if (util::DynamicCast<script::TAttrib<String>>(setting.m_attrib)) {
            setting.m_attrib->SetValue(script::ValueToObject(text));
            return;
        }
        script::Parser::Instance().Execute(setting.m_object + "." + setting.m_name + " = " + text + ";");
    });
}

// The value as source text, to be edited.
class ValueField : public gui::TextField {
  public:
    explicit ValueField(const Setting& setting) : TextField(String(), "ValueField"), m_setting(setting) {
        SetMinWidth(VALUE_WIDTH);
        SetMaxWidth(VALUE_WIDTH);
        const util::WeakPtr<util::Pointee> self(this);
        GetOnEnter().Add(new util::Callback([this] { Assign(m_setting, GetText()); }, self));
        GetOnLostFocus().Add(new util::Callback([this] { ShowValue(); }, self));
        ShowValue();
    }

    void Update(float dt) override {
        TextField::Update(dt);
        if (!HasFocus()) ShowValue();
    }

  private:
    void ShowValue() {
        const String text = m_setting.m_attrib->GetValue()->ToCode();
        if (text != GetText()) SetText(text);
    }

    const Setting m_setting;
};

ComponentPtr MakeValue(const Setting& setting) {
    const auto flag = util::DynamicCast<script::TAttrib<bool>>(setting.m_attrib);
    if (!flag) return new ValueField(setting);
    const util::SharedPtr<gui::AttribCheckbox> check = new gui::AttribCheckbox(String(), flag);
    const ComponentPtr cell = new gui::Component("Cell");
    cell->SetSize(VALUE_WIDTH + 2 * gui::TEXT_MARGIN, gui::ROW_HEIGHT);
    cell->AddChild(check);
    return cell;
}

ComponentPtr MakeSettingRow(const Setting& setting, bool withPath, bool withDefault) {
    String text = setting.m_attrib->MakeDefault()->ToCode();
    if (text.size() > MAX_VALUE_TEXT) text = text.substr(0, MAX_VALUE_TEXT - 2) + "..";
    const auto attrib = setting.m_attrib;
    const gui::ButtonPtr reset = MakeButton("Reset", [attrib] { attrib->SetValue(attrib->MakeDefault()); });
    reset->SetToolTip(text);
    const String name = withPath ? setting.m_object + "." + setting.m_name : setting.m_name;
    std::vector<ComponentPtr> cells = {MakeCell(name, withPath ? PATH_WIDTH : NAME_WIDTH),
                                       MakeValue(setting)};
    if (withDefault) cells.push_back(MakeCell(text, DEFAULT_WIDTH));
    cells.push_back(reset);
    const ComponentPtr row = app::MakeRow(cells);
    row->SetKey(setting.m_object + "." + setting.m_name);
    return row;
}

}  // namespace

std::vector<Setting> FindSettings() {
    std::vector<Setting> found;
    std::set<script::ClassObject*> seen;
    Collect(*script::Parser::Instance().GetRootClosure(), String(), seen, found);
    return found;
}

SettingsWindow::SettingsWindow(const Desk& desk)
    : Window(Translate("AllSettingsTitle"), MakeRowLayout()),
      m_isNarrow(gui::GUI::Instance().GetSize().x < LEAST_WIDTH),  // which comes before the interface's own
      m_search(new gui::TextField),
      m_rows(new gui::Component("Settings", MakeRowLayout())),
      m_scroll(MakeScrolled(m_rows, desk, LIST_ROOM)) {
    SetKey("AllSettingsTitle");
    m_search->SetKey("Search");
    AddChild(app::MakeRow({new gui::Label(Translate("Search")), m_search}));
    AddChild(m_isNarrow ? ComponentPtr(m_scroll) : app::MakeRow({MakeObjectList(), m_scroll}));
    Fill();
}

SettingsWindow::~SettingsWindow() noexcept(false) = default;

ComponentPtr SettingsWindow::MakeObjectList() {
    const ComponentPtr objects = new gui::Component("Objects", MakeRowLayout());
    std::set<String> names;
    for (const Setting& setting : FindSettings()) {
        if (!names.insert(setting.m_object).second) continue;
        if (m_object.empty()) m_object = setting.m_object;
        const String object = setting.m_object;
        const gui::ButtonPtr button = new gui::Button(object);
        button->SetKey(object);
        button->SetLeftAligned(true);
        button->GetOnPress().Add(
            new util::Callback([this, object] { ShowObject(object); }, util::WeakPtr<util::Pointee>(this)));
        objects->AddChild(button);
    }
    return objects;
}

void SettingsWindow::ShowObject(const String& path) {
    m_object = path;
    m_search->SetText(String());
    m_isStale = true;
}

// Rows are not taken away while one of their own buttons is at work.
void SettingsWindow::Update(float dt) {
    if (m_isStale || m_search->GetText() != m_shownSearch) Fill();
    Window::Update(dt);
}

void SettingsWindow::Fill() {
    m_isStale = false;
    m_shownSearch = m_search->GetText();
    const String wanted = ToLower(m_shownSearch);
    m_rows->RemoveAllChildren();
    const bool withPath = m_isNarrow || !wanted.empty();
    std::vector<ComponentPtr> titles = {
        MakeCell(Translate("SettingName"), withPath ? PATH_WIDTH : NAME_WIDTH),
        MakeCell(Translate("SettingValue"), VALUE_WIDTH + 2 * gui::TEXT_MARGIN)};
    if (!m_isNarrow) titles.push_back(MakeCell(Translate("SettingDefault"), DEFAULT_WIDTH));
    m_rows->AddChild(app::MakeRow(titles));
    size_t count = 0;
    for (const Setting& setting : FindSettings()) {
        const String path = setting.m_object + "." + setting.m_name;
        const bool matches =
            withPath ? ToLower(path).find(wanted) != String::npos : setting.m_object == m_object;
        if (!matches || count++ >= MAX_FOUND) continue;
        m_rows->AddChild(MakeSettingRow(setting, withPath, !m_isNarrow));
    }
    if (count == 0) m_rows->AddChild(new gui::Label(Translate("NothingFound")));
    m_scroll->ScrollTo(0.0f);
}

}  // namespace app

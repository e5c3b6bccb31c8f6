#include "app/widgets/Hints.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <sstream>
#include <utility>

#include "app/Language.h"
#include "app/history/Undoer.h"
#include "app/scene/View.h"
#include "app/widgets/StartButton.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Icon.h"
#include "gui/components/Label.h"
#include "physics/Simulation.h"

namespace app {
namespace {

constexpr float MARGIN = 16;  // GUI units, to the lower edge
constexpr float ICON_SIDE = 22;
constexpr float LEAST_START_SIDE = 64;  // of the button, GUI units
constexpr float LEAST_TEXT_WIDTH = 80;  // GUI units
constexpr int PRIORITY = 40;            // under all windows

struct HintText {
    Hints::Kind m_kind;
    const char* m_name;  // by which the setting has it
    const char* m_key;
    const char* m_icon;
};
constexpr std::array<HintText, 3> HINTS = {{{Hints::Draw, "draw", "HintDraw", "tools/brush"},
                                            {Hints::Play, "play", "HintPlay", "tools/play"},
                                            {Hints::Popup, "popup", "HintPopup", "file/options"}}};
const std::array<const char*, 4> DRAWN = {"UndoPolygon", "UndoBox", "UndoCircle", "UndoPlane"};

bool IsOver(const String& done, const char* name) {
    std::istringstream words(done);
    String word;
    while (words >> word) {
        if (word == name) return true;
    }
    return false;
}

gui::ComponentPtr MakeLine(const HintText& hint, const gui::LabelPtr& text) {
    const gui::ComponentPtr line =
        new gui::Component("Hint", new gui::ListLayout(gui::ListLayout::Horizontal));
    line->SetKey(hint.m_key);
    line->SetBorder(gui::LookAndFeel::Get().GetToolTipBorder());
    const gui::IconPtr icon = new gui::Icon(hint.m_icon);
    icon->SetSize(ICON_SIDE, ICON_SIDE);
    line->AddChild(icon);
    line->AddChild(text);
    return line;
}

}  // namespace

Hints::Hints(const script::TAttribPtr<String>& done, const View& view)
    : Component("Hints", new gui::ListLayout(gui::ListLayout::Horizontal)),
      m_done(done),
      m_view(view),
      m_lines(new gui::Component(
          "Lines", new gui::ListLayout(gui::ListLayout::Vertical | gui::ListLayout::StretchCross))) {
    SetPriority(PRIORITY);
    for (const HintText& hint : HINTS) {
        if (IsOver(m_done->Get(), hint.m_name)) continue;
        const gui::LabelPtr text = new gui::Label(Translate(hint.m_key));
        m_entries.push_back({hint.m_kind, MakeLine(hint, text), text});
        m_lines->AddChild(m_entries.back().m_line);
    }
    if (IsPending(Play)) {
        m_start = new StartButton(std::max(m_lines->GetOuterSize().y, LEAST_START_SIDE));
        AddChild(m_start);
    }
    AddChild(m_lines);
}

bool Hints::IsPending(Kind kind) const {
    return std::any_of(m_entries.begin(), m_entries.end(),
                       [kind](const Entry& entry) { return entry.m_kind == kind; });
}

void Hints::Finish(Kind kind) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [kind](const Entry& entry) { return entry.m_kind == kind; });
    if (found == m_entries.end()) return;
    m_lines->RemoveChild(found->m_line);
    if (kind == Play) RemoveChild(std::exchange(m_start, nullptr));
    m_entries.erase(found);
    const String done = m_done->Get();
    m_done->Set((done.empty() ? done : done + " ") + HINTS[kind].m_name);
}

bool Hints::HasDrawn() const {
    const char* const step = Undoer::Instance().GetUndoName();
    return step != nullptr && std::any_of(DRAWN.begin(), DRAWN.end(),
                                          [step](const char* name) { return !std::strcmp(step, name); });
}

void Hints::Update(float dt) {
    Component::Update(dt);
    if (m_entries.empty()) return;
    if (HasDrawn()) Finish(Draw);
    if (physics::Simulation::Instance().m_running->Get()) Finish(Play);
    Place();
}

float Hints::GetRoom() const {
    const gui::Component* const parent = GetParent();
    return m_entries.empty() || parent == nullptr ? 0 : parent->GetSize().y - GetPos().y;
}

void Hints::Place() {
    const gui::Component* const parent = GetParent();
    if (parent == nullptr) return;
    const float left = m_view.GetLeftRoom();
    WrapTexts(parent->GetSize().x - left - 2 * MARGIN);
    const math::Vec2 room = parent->GetSize() - GetOuterSize();
    SetPos(std::floor(std::max(left + (room.x - left) / 2, 0.0f)),
           std::floor(std::max(room.y - MARGIN, 0.0f)));
}

void Hints::WrapTexts(float width) {
    if (width == m_width) return;
    m_width = width;
    const float button = m_start ? m_start->GetOuterSize().x : 0;
    for (const Entry& entry : m_entries) {
        const float frame = entry.m_line->GetOuterSize().x - entry.m_line->GetSize().x;
        entry.m_text->SetMaxWidth(
            std::max(width - button - frame - ICON_SIDE - 2 * gui::TEXT_MARGIN, LEAST_TEXT_WIDTH));
    }
}

}  // namespace app

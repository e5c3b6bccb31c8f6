#include "app/widgets/Hint.h"

#include <algorithm>

#include "gui/LookAndFeel.h"
#include "rendering/Renderer.h"
#include "util/Clock.h"
#include "util/Redraw.h"

namespace app {

namespace {

constexpr double SHOW_TIME = 1.2;        // seconds until it begins to fade
constexpr double FADE_TIME = 0.6;        // seconds
constexpr math::Vec2 DISTANCE(14, -30);  // GUI units from its place: right above the cursor's picture
constexpr float WIDEST = 0.5f;           // of the picture, where a long text wraps
constexpr int PRIORITY = 90;             // above windows, below tool tips

}  // namespace

Hint::Hint() : Label(String(), "Hint"), m_since(-SHOW_TIME - FADE_TIME) {
    SetPriority(PRIORITY);
    SetBorder(gui::LookAndFeel::Get().GetToolTipBorder());
}

void Hint::Show(const String& text, math::Vec2 place) {
    SetMaxWidth(WIDEST * GetParent()->GetSize().x);
    SetText(text);
    m_since = util::Clock::Now();
    const math::Vec2 room = GetParent()->GetSize() - GetOuterSize();
    const math::Vec2 wanted = place + DISTANCE;
    SetPos(std::clamp(wanted.x, 0.0f, std::max(room.x, 0.0f)),
           std::clamp(wanted.y, 0.0f, std::max(room.y, 0.0f)));
}

float Hint::GetAlpha() const {
    const double left = (m_since + SHOW_TIME + FADE_TIME - util::Clock::Now()) / FADE_TIME;
    return static_cast<float>(std::clamp(left, 0.0, 1.0));
}

bool Hint::IsShown() const {
    return GetAlpha() > 0;
}

void Hint::Draw() {
    if (!IsShown()) return;
    util::Redraw::Request();  // until it has faded away
    math::Vec4 color = rendering::Renderer::Instance().GetColor();
    color.w *= GetAlpha();
    const rendering::ScopedColor faded(color);
    GetBorder().Draw(GetSize().x, GetSize().y);  // twice: it may lie over the text of a window
    Label::Draw();
}

}  // namespace app

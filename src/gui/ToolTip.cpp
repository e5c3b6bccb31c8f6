#include "gui/ToolTip.h"

#include <algorithm>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "input/Input.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "util/Clock.h"
#include "util/Redraw.h"

namespace gui {
namespace {

constexpr int TOOL_TIP_PRIORITY = 100;
constexpr double DELAY = 0.5;                 // seconds
constexpr math::Vec2 MOUSE_DISTANCE(14, 20);  // GUI units, beyond the cursor's picture
constexpr math::Vec4 BACKGROUND(0.1f, 0.11f, 0.14f, 1);
constexpr float MAX_WIDTH = 320;  // GUI units

}  // namespace

ToolTip::ToolTip() : Label(String(), "ToolTip") {
    SetPriority(TOOL_TIP_PRIORITY);
    SetBorder(LookAndFeel::Get().GetToolTipBorder());
    SetMaxWidth(MAX_WIDTH);
}

// The mouse or the keyboard, whichever moved last.
void ToolTip::ChooseLeader() {
    Component* const focused = Focus::Get();
    const math::Vec2 mouse = Input::Instance().GetMousePosition();
    if (focused != m_focused.Get()) m_followsKeyboard = focused != nullptr;
    if (mouse != m_mouse) m_followsKeyboard = false;
    m_focused = focused;
    m_mouse = mouse;
}

// The nearest component around the mouse's place or the focus that has a text to show.
const Component* ToolTip::FindTarget() const {
    const Component* c = m_followsKeyboard ? Focus::Get() : GetTreeRoot().FindAt(m_mouse);
    while (c != nullptr && c->GetToolTip().empty()) c = c->GetParent();
    return c;
}

void ToolTip::Update(float dt) {
    Label::Update(dt);
    ChooseLeader();
    const Component* const target = FindTarget();
    const double now = util::Clock::Now();
    if (target != m_target.Get()) {
        m_target = const_cast<Component*>(target);
        m_since = now;
        m_isOver = false;
    }
    const uint32_t presses = Input::Instance().GetMousePresses();
    if (Input::Instance().IsMouseButtonDown() || presses != m_presses) m_isOver = true;
    m_presses = presses;
    const bool isDue = target != nullptr && !m_isOver && now - m_since >= DELAY;
    if (isDue && !m_visible) Show(*target);
    if (isDue != m_visible) util::Redraw::Request();
    m_visible = isDue;
}

// Right below the mouse or the control, or above it where there is no room.
void ToolTip::Show(const Component& target) {
    SetText(target.GetToolTip());
    const math::BoundingBox2f box = GetBoxInView(target);
    const math::Vec2 size = GetOuterSize(), room = GetParent()->GetSize() - size;
    const float top = m_followsKeyboard ? box.min.y : m_mouse.y;
    math::Vec2 place = m_followsKeyboard ? math::Vec2(box.min.x, box.max.y) : m_mouse + MOUSE_DISTANCE;
    if (place.y > room.y) place.y = top - size.y;
    SetPos(std::clamp(place.x, 0.0f, std::max(room.x, 0.0f)), std::max(place.y, 0.0f));
}

// The skin is transparent; a tip lies over other texts.
void ToolTip::DrawComp() {
    {
        const rendering::ScopedColor kept;
        const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
        rendering::Renderer::Instance().MultColor(BACKGROUND);
        rendering::Renderer::Instance().DrawQuad({0, 0}, GetSize());
    }
    Label::DrawComp();
}

void ToolTip::Draw() {
    if (m_visible) Label::Draw();
}

}  // namespace gui

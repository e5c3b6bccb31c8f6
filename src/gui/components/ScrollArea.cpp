#include "gui/components/ScrollArea.h"

#include <algorithm>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "input/Key.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"

namespace gui {
namespace {

using math::Vec2;

constexpr float BAR_WIDTH = 12;        // GUI units
constexpr float MIN_KNOB_HEIGHT = 16;  // GUI units
constexpr float WHEEL_STEP = 3;        // rows
constexpr float LEAST_HEIGHT = 100;    // in a small view, GUI units
constexpr math::Vec4 BAR_COLOR(0.2f, 0.22f, 0.27f, 1);
constexpr math::Vec4 KNOB_COLOR(0.6f, 0.66f, 0.78f, 1);

// Nothing is drawn outside of a box at 0, 0 for the length of a scope. Planes, other than a rectangle of
// pixels, follow a sheared window.
class ScopedClip {
  public:
    explicit ScopedClip(Vec2 size) {
        const GLdouble planes[4][4] = {{1, 0, 0, 0}, {-1, 0, 0, size.x}, {0, 1, 0, 0}, {0, -1, 0, size.y}};
        for (int i = 0; i < 4; ++i) {
            glClipPlane(GL_CLIP_PLANE0 + i, planes[i]);
            glEnable(GL_CLIP_PLANE0 + i);
        }
    }
    ~ScopedClip() {
        for (int i = 0; i < 4; ++i) glDisable(GL_CLIP_PLANE0 + i);
    }
    ScopedClip(const ScopedClip&) = delete;
    ScopedClip& operator=(const ScopedClip&) = delete;
};

}  // namespace

ScrollArea::ScrollArea(const ComponentPtr& content, float maxHeight, const String& name)
    : Component(name), m_content(content), m_maxHeight(maxHeight) {
    AddChild(m_content);
}

// ---- place -------------------------------------------------------------------------------------------

void ScrollArea::SetMaxHeight(float maxHeight) {
    m_maxHeight = maxHeight;
    DoLayout();
}

void ScrollArea::DoLayout() {
    const Vec2 size = m_content->GetOuterSize();
    const float height = std::min(size.y, m_maxHeight);
    SetSize(size.x + (size.y > height ? BAR_WIDTH : 0), height);
    ScrollTo(m_offset);
}

float ScrollArea::GetMaxOffset() const {
    return std::max(m_content->GetOuterSize().y - GetSize().y, 0.0f);
}

void ScrollArea::ScrollTo(float offset) {
    m_offset = std::clamp(offset, 0.0f, GetMaxOffset());
    m_content->SetPos(0, -m_offset);
}

void ScrollArea::ScrollTo(const Component& component) {
    const math::BoundingBox2f box = component.GetOuterBox();
    const Vec2 top = ToContent(component.ToGUI(box.min)), bottom = ToContent(component.ToGUI(box.max));
    if (top.y < 0) {
        ScrollTo(m_offset + top.y);
    } else if (bottom.y > GetSize().y) {
        ScrollTo(m_offset + bottom.y - GetSize().y);
    }
}

// What the keyboard reaches has to be seen; but the user may scroll away from it again.
void ScrollArea::Update(float dt) {
    Component::Update(dt);
    const float most = std::max(GetTreeRoot().GetSize().y - m_room, LEAST_HEIGHT);
    if (m_room > 0 && most != m_maxHeight) SetMaxHeight(most);
    Component* const focused = Focus::Get();
    if (focused == m_lastFocus.Get()) return;
    m_lastFocus = focused;
    if (focused != nullptr && focused->IsInside(*m_content)) ScrollTo(*focused);
}

math::BoundingBox2f ScrollArea::GetKnob() const {
    const Vec2 size = GetSize();
    const float whole = m_content->GetOuterSize().y;
    const float height = std::max(size.y * size.y / whole, MIN_KNOB_HEIGHT);
    const float top = (size.y - height) * m_offset / GetMaxOffset();
    return {{size.x - BAR_WIDTH, top}, {size.x, top + height}};
}

// What is scrolled out of view is not there for the mouse.
Component* ScrollArea::FindAt(Vec2 place) {
    return GetOuterBox().Contains(GetFromParent()(place)) ? Component::FindAt(place) : nullptr;
}

// ---- input -------------------------------------------------------------------------------------------

bool ScrollArea::CanFocus() const {
    return CanScroll() && !Focus::CanMoveInto(*m_content);
}

void ScrollArea::OnKeyEvent(KeyEvent& event) {
    Component::OnKeyEvent(event);
    if (!event.m_pressed) {
        if (event.m_key == Key::LeftMouse) m_dragging = false;
    } else if (!event.m_handled && CanScroll()) {
        event.m_handled = HandlePress(event);
    }
}

void ScrollArea::EndGesture() {
    m_dragging = false;
    Component::EndGesture();
}

bool ScrollArea::HandlePress(const KeyEvent& event) {
    const Component* const focused = Focus::Get();
    const bool hasFocus = focused != nullptr && focused->IsInside(*this);
    if (!hasFocus && !IsHit(event.m_position)) return false;
    switch (event.m_key) {
        case Key::Up:
        case Key::Down:
            if (HasFocus()) ScrollTo(m_offset + (event.m_key == Key::Up ? -ROW_HEIGHT : ROW_HEIGHT));
            return HasFocus();
        case Key::ScrollUp:
            ScrollTo(m_offset - WHEEL_STEP * ROW_HEIGHT);
            return true;
        case Key::ScrollDown:
            ScrollTo(m_offset + WHEEL_STEP * ROW_HEIGHT);
            return true;
        case Key::PageUp:
            ScrollTo(m_offset - GetSize().y);
            return true;
        case Key::PageDown:
            ScrollTo(m_offset + GetSize().y);
            return true;
        case Key::LeftMouse:
            m_dragging = ToContent(event.m_position).x >= GetSize().x - BAR_WIDTH;
            return m_dragging;
        default:
            return false;
    }
}

void ScrollArea::OnMouseMove(MouseMoveEvent& event) {
    Component::OnMouseMove(event);
    if (event.m_handled || !m_dragging) return;
    event.m_handled = true;
    const float knob = GetKnob().GetSize().y;
    const float room = std::max(GetSize().y - knob, 1.0f);
    ScrollTo(GetMaxOffset() * (ToContent(event.m_position).y - knob / 2) / room);
}

// ---- drawing -----------------------------------------------------------------------------------------

void ScrollArea::DrawComp() {
    Component::DrawComp();
    if (CanScroll()) DrawBar();
}

void ScrollArea::DrawBar() const {
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
    {
        const rendering::ScopedColor kept;
        renderer.MultColor(BAR_COLOR);
        renderer.DrawQuad({GetSize().x - BAR_WIDTH, 0}, GetSize());
    }
    const rendering::ScopedColor kept;
    renderer.MultColor(KNOB_COLOR);
    const math::BoundingBox2f knob = GetKnob();
    renderer.DrawQuad(knob.min, knob.max);
}

void ScrollArea::DrawChildren() {
    {
        const ScopedClip clip(GetSize());
        Component::DrawChildren();
    }
    Focus::DrawRing(*this);
}

}  // namespace gui

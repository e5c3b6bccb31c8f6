#include "gui/Window.h"

#include <algorithm>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Button.h"
#include "input/Key.h"

namespace gui {
namespace {

using math::Vec2;

// GUI units, from the outer corner of the frame; the title is in line with the text of a label.
constexpr Vec2 TITLE_PLACE(10, 6);
constexpr float CLOSE_BUTTON_MARGIN = 3;  // to the upper and the right edge
constexpr float TITLE_ROOM = 18;          // beside the title
constexpr float CLOSE_BUTTON_ROOM = 8;    // beside the button
constexpr float LEAST_VIEW = 64;          // a smaller parent has not been given its size yet

bool HasTextAt(const Component& component, const math::BoundingBox2f& box) {
    if (!component.IsVisible()) return false;
    const bool hasText = component.IsTopLevel() || !component.GetShownText().empty();
    if (hasText && GetBoxInView(component).Overlaps(box)) return true;
    const ComponentList& children = component.GetChildren();
    return !component.IsTopLevel() &&
           std::any_of(children.begin(), children.end(),
                       [&box](const ComponentPtr& child) { return HasTextAt(*child, box); });
}

}  // namespace

Window::Window(const String& title, const LayoutPtr& layout) : WobbleComponent("Window", layout) {
    SetBorder(LookAndFeel::Get().GetWindowBorder());
    SetTitle(title);
}

Window::~Window() noexcept(false) = default;

void Window::SetTitle(const String& title) {
    m_title = title;
    m_titleText = FormatText(GetTextFormat(), title);
    Window::SetSize(GetSize().x, std::max(GetSize().y, m_titleText.m_height));
}

float Window::GetMinWidth() const {
    const float title = m_titleText.m_width + TITLE_ROOM;
    return m_closeButton ? title + m_closeButton->GetOuterSize().x + CLOSE_BUTTON_ROOM : title;
}

void Window::SetSize(float w, float h) {
    WobbleComponent::SetSize(std::max(w, GetMinWidth()), h);
}

void Window::OnGeometryChanged() {
    WobbleComponent::OnGeometryChanged();
    if (!m_closeButton) return;
    const Vec2 offset = GetContentOffset();
    m_closeButton->SetPos(offset.x + GetSize().x - m_closeButton->GetOuterSize().x - CLOSE_BUTTON_MARGIN,
                          CLOSE_BUTTON_MARGIN - offset.y);
}

// A window is a little transparent. Over another one its frame is drawn twice, or the texts of both would
// mix.
void Window::DrawComp() {
    if (LiesOverText()) GetBorder().Draw(GetSize().x, GetSize().y);
    WobbleComponent::DrawComp();
    const Vec2 place = TITLE_PLACE - GetContentOffset();
    DrawText(GetTextFormat(), place.x, place.y, m_titleText);
}

// What is drawn earlier lies below: the siblings before it, and before each that it hangs from.
bool Window::LiesOverText() const {
    const math::BoundingBox2f box = GetBoxInView(*this);
    for (const Component* c = this; c->GetParent() != nullptr; c = c->GetParent()) {
        for (const ComponentPtr& sibling : c->GetParent()->GetChildren()) {
            if (sibling.Get() == c) break;
            if (HasTextAt(*sibling, box)) return true;
        }
    }
    return false;
}

void Window::AddCloseButton() {
    if (m_closeButton) return;
    m_closeButton = new Button("x", "CloseButton");
    m_closeButton->SetExcludedFromLayout(true);
    m_closeButton->GetOnPress().Add(new util::Callback([this] { Close(); }, this));
    AddChild(m_closeButton);
    Window::SetSize(GetSize().x, GetSize().y);
    Window::OnGeometryChanged();
}

void Window::Close() {
    const WindowPtr self(this);  // the parent may be its last owner
    EndGesture();
    const bool hadFocus = HasFocusInside();
    if (Component* const parent = GetParent()) parent->RemoveChild(this);
    if (hadFocus) Focus::Set(m_focusBefore);
}

void Window::EndGesture() {
    m_dragging = false;
    WobbleComponent::EndGesture();
}

// ---- the keyboard

void Window::TakeFocus() {
    m_closesAtEscape = true;
    if (!HasFocusInside()) m_focusBefore = Focus::Get();
    Focus::Set(nullptr);
    Focus::Move(*this, false);
}

bool Window::HasFocusInside() const {
    const Component* const focused = Focus::Get();
    return focused != nullptr && focused->IsInside(*this);
}

// An arrow at the last control goes nowhere, above all not on to the world.
bool Window::HandleFocusKey(const KeyEvent& event) {
    if (event.m_handled || event.m_ctrl || event.m_alt || !HasFocusInside()) return false;
    switch (event.m_key) {
        case Key::Escape:
            if (m_closesAtEscape) Close();
            return m_closesAtEscape;
        case Key::Left:
        case Key::Right:
        case Key::Up:
        case Key::Down:
            Focus::Step(*this, event.m_key);
            return true;
        default:
            return false;
    }
}

// ---- moving ------------------------------------------------------------------------------------------

bool Window::IsOnTitleBar(Vec2 gui) const {
    const Vec2 place = ToContent(gui);
    return GetOuterBox().Contains(place) && place.y <= 0;
}

void Window::Raise() {
    Component* const parent = GetParent();
    if (parent == nullptr || parent->GetLayout()) return;
    if (parent->GetChildren().back().Get() != this) parent->AddChild(this);
}

void Window::OnKeyEvent(KeyEvent& event) {
    WobbleComponent::OnKeyEvent(event);
    if (event.m_pressed) {
        if (HandleFocusKey(event) || HandlePress(event)) event.m_handled = true;
    } else if (event.m_key == Key::LeftMouse && m_dragging) {
        m_dragging = false;
        event.m_handled = true;
    }
}

bool Window::HandlePress(const KeyEvent& event) {
    if (event.m_key != Key::LeftMouse || !IsHit(event.m_position)) return false;
    const bool isOnTitleBar = !event.m_handled && IsOnTitleBar(event.m_position);
    if (isOnTitleBar) {
        m_dragging = true;
        m_dragPos = GetPos();
    }
    Raise();
    return isOnTitleBar;
}

void Window::OnMouseMove(MouseMoveEvent& event) {
    WobbleComponent::OnMouseMove(event);
    if (event.m_handled || !m_dragging) return;
    event.m_handled = true;
    TearOff();
    m_dragPos += event.m_delta;
    const Vec2 pos = GetNearestInView(m_dragPos);
    SetPos(pos.x, pos.y);
    m_movedCallbacks.CallAll();
}

// The whole title bar where there is room for it, else its left end.
Vec2 Window::GetNearestInView(Vec2 pos) const {
    const Component* const parent = GetParent();
    if (parent == nullptr || parent->GetLayout() || parent->GetSize().x < LEAST_VIEW) return pos;
    const Vec2 room = parent->GetSize() - Vec2(GetOuterSize().x, GetContentOffset().y);
    return {std::clamp(pos.x, 0.0f, std::max(room.x, 0.0f)), std::clamp(pos.y, 0.0f, std::max(room.y, 0.0f))};
}

// Called when the parent's size changes, too.
void Window::FitToParent() {
    WobbleComponent::FitToParent();
    const Vec2 pos = GetNearestInView(GetPos());
    if (pos == GetPos() || !math::IsFinite(GetPos())) return;
    SetPos(pos.x, pos.y);
    StopWobble();
}

void Window::TearOff() {
    const util::LockPtr<Component> target = m_tearOffTarget.Lock();
    if (!target) return;
    m_tornOff = true;
    if (target.Get() != GetParent()) MoveTo(*target);
}

// The outer corner stays where it is on screen, and the change of coordinates must not set the spring going.
// A layout of the old parent would put the window back, so the parents change first.
void Window::MoveTo(Component& target) {
    const Vec2 corner = target.ToContent(ToGUI(-GetContentOffset()));
    const bool wobbleEnabled = IsWobbleEnabled();
    SetWobbleEnabled(false);
    target.AddChild(this);
    SetPos(corner.x, corner.y);
    m_dragPos = corner;
    StopWobble();
    SetWobbleEnabled(wobbleEnabled);
}

void Window::OnDragStart(DragEvent& event) {
    WobbleComponent::OnDragStart(event);
    if (IsHit(event.m_start)) event.m_handled = true;
}

void Window::OnClick(ClickEvent& event) {
    WobbleComponent::OnClick(event);
    if (IsHit(event.m_position)) event.m_handled = true;
}

}  // namespace gui

#include "gui/Window.h"

#include <algorithm>

#include "gui/LookAndFeel.h"
#include "gui/components/Button.h"
#include "input/Key.h"

namespace gui {
namespace {

using math::Vec2;

// GUI units, from the outer corner of the frame.
constexpr Vec2 TITLE_PLACE(4, 6);
constexpr float CLOSE_BUTTON_MARGIN = 3;  // to the upper and the right edge
constexpr float TITLE_ROOM = 12;          // beside the title
constexpr float CLOSE_BUTTON_ROOM = 8;    // beside the button

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

void Window::DrawComp() {
    WobbleComponent::DrawComp();
    const Vec2 place = TITLE_PLACE - GetContentOffset();
    DrawText(GetTextFormat(), place.x, place.y, m_titleText);
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
    m_dragging = false;
    if (Component* const parent = GetParent()) parent->RemoveChild(this);
    m_closedCallbacks.CallAll();
}

// ---- moving ------------------------------------------------------------------------------------------

bool Window::IsOnTitleBar(Vec2 gui) const {
    const Vec2 place = ToContent(gui);
    return GetOuterBox().Contains(place) && place.y <= 0;
}

void Window::Raise() {
    if (Component* const parent = GetParent()) parent->AddChild(this);
}

void Window::OnKeyEvent(KeyEvent& event) {
    WobbleComponent::OnKeyEvent(event);
    if (event.m_key != Key::LeftMouse) return;  // any other key would drag with the mouse over the title
    if (!event.m_pressed) {
        if (!m_dragging) return;
        m_dragging = false;
        event.m_handled = true;
    } else if (!event.m_handled && IsOnTitleBar(event.m_position)) {
        m_dragging = true;
        event.m_handled = true;
        Raise();
    }
}

void Window::OnMouseMove(MouseMoveEvent& event) {
    WobbleComponent::OnMouseMove(event);
    if (event.m_handled || !m_dragging) return;
    event.m_handled = true;
    const util::LockPtr<Component> target = m_tearOffTarget.Lock();
    if (target && target.Get() != GetParent()) TearOff(*target);
    const Vec2 pos = GetPos() + event.m_delta;
    SetPos(pos.x, pos.y);
    m_movedCallbacks.CallAll();
}

// The outer corner stays where it is on screen, and the change of coordinates must not set the spring going.
// A layout of the old parent would put the window back, so the parents change first.
void Window::TearOff(Component& target) {
    const Vec2 corner = target.ToContent(ToGUI(-GetContentOffset()));
    const bool wobbleEnabled = IsWobbleEnabled();
    SetWobbleEnabled(false);
    target.AddChild(this);
    SetPos(corner.x, corner.y);
    StopWobble();
    SetWobbleEnabled(wobbleEnabled);
}

void Window::OnDragStart(DragEvent& event) {
    WobbleComponent::OnDragStart(event);
    if (IsInOuterBox(event.m_start)) event.m_handled = true;
}

void Window::OnClick(ClickEvent& event) {
    WobbleComponent::OnClick(event);
    if (IsInOuterBox(event.m_position)) event.m_handled = true;
}

}  // namespace gui

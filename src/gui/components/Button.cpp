#include "gui/components/Button.h"

#include <cmath>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "input/Key.h"
#include "rendering/Renderer.h"
#include "util/Redraw.h"

namespace gui {
namespace {

constexpr math::Vec4 HOVER_COLOR(1.3f, 1.3f, 1.3f, 1.2f);
constexpr math::Vec4 PRESSED_COLOR(0.5f, 0.5f, 0.5f, 1);
constexpr math::Vec4 DISABLED_COLOR(0.4f, 0.4f, 0.4f, 1);

}  // namespace

void AbstractButton::OnKeyEvent(KeyEvent& event) {
    Component::OnKeyEvent(event);
    if (event.m_handled) {
        if (event.m_key == Key::LeftMouse && !event.m_pressed) m_pressed = false;
    } else if (IsFocusPress(event)) {
        event.m_handled = true;
        OnPressed();
    } else if (event.m_key == Key::LeftMouse) {
        HandleLeftButton(event);
    }
}

bool AbstractButton::IsFocusPress(const KeyEvent& event) const {
    const bool isPressKey =
        event.m_key == Key::Return || event.m_key == Key::KeypadEnter || event.m_key == Key::Space;
    return isPressKey && event.m_pressed && !event.m_repeated && m_enabled && HasFocus();
}

void AbstractButton::HandleLeftButton(KeyEvent& event) {
    const bool isInside = IsHit(event.m_position);
    const bool wasPressed = m_pressed;
    m_pressed = event.m_pressed && isInside && m_enabled;
    if (!isInside || !(event.m_pressed || wasPressed)) return;
    event.m_handled = true;
    if (!event.m_pressed) OnPressed();
}

void AbstractButton::EndGesture() {
    m_pressed = false;
    Component::EndGesture();
}

void AbstractButton::OnPressed() {
    m_onPress.CallAll();
}

void AbstractButton::AddAction(const std::function<void()>& run) {
    m_onPress.Add(new util::Callback(run, util::WeakPtr<util::Pointee>(this)));
}

void AbstractButton::SetEnabled(bool enabled) {
    if (enabled != m_enabled) util::Redraw::Request();
    m_enabled = enabled;
    if (!enabled) m_pressed = false;
}

void AbstractButton::MultStateColor() const {
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    if (!m_enabled) {
        renderer.MultColor(DISABLED_COLOR);
    } else if (IsMouseInside()) {
        renderer.MultColor(HOVER_COLOR);
        if (m_pressed) renderer.MultColor(PRESSED_COLOR);
    }
}

Button::Button(const String& text, const String& name) : AbstractButton(name) {
    SetBorder(LookAndFeel::Get().GetButtonBorder());
    SetText(text);
}

void Button::SetText(const String& text) {
    util::Redraw::Request();
    m_text = FormatText(GetTextFormat(), text);
    const Border& border = GetBorder();
    SetSize(m_text.m_width + 2 * TEXT_MARGIN,
            std::max(m_text.m_height, ROW_HEIGHT) - border.GetTop() - border.GetBottom());
}

void Button::SetTextFormat(const TextFormat& format) {
    AbstractButton::SetTextFormat(format);
    SetText(GetText());
}

void Button::DrawComp() {
    MultStateColor();
    AbstractButton::DrawComp();
    DrawLabel();
    Focus::DrawRing(*this);
}

// On whole units, where glyphs are crisp.
void Button::DrawLabel() const {
    const math::Vec2 size = GetSize();
    const float x = m_leftAligned ? TEXT_MARGIN : std::floor((size.x - m_text.m_width) / 2);
    DrawText(GetTextFormat(), x, std::floor((size.y - m_text.m_height) / 2), m_text);
}

}  // namespace gui

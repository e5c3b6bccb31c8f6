#include "gui/components/Button.h"

#include <cmath>

#include "gui/LookAndFeel.h"
#include "input/Key.h"
#include "rendering/Renderer.h"

namespace gui {
namespace {

constexpr math::Vec4 HOVER_COLOR(1.3f, 1.3f, 1.3f, 1.2f);
constexpr math::Vec4 PRESSED_COLOR(0.5f, 0.5f, 0.5f, 1);

}  // namespace

void AbstractButton::OnKeyEvent(KeyEvent& event) {
    Component::OnKeyEvent(event);
    const bool isLeftRelease = event.m_key == Key::LeftMouse && !event.m_pressed;
    if (event.m_handled) {
        if (isLeftRelease) m_pressed = false;
        return;
    }
    const bool hasModifier = event.m_shift || event.m_ctrl || event.m_alt;
    if (!event.m_pressed && !hasModifier && m_shortcutKeys.count(event.m_key) != 0) {
        event.m_handled = true;
        OnPressed();
        return;
    }
    if (event.m_key == Key::LeftMouse) HandleLeftButton(event);
}

void AbstractButton::HandleLeftButton(KeyEvent& event) {
    const bool isInside = IsInOuterBox(event.m_position);
    const bool wasPressed = m_pressed;
    m_pressed = event.m_pressed && isInside && !m_fireOnPress;
    if (!isInside) return;
    if (event.m_pressed) {
        event.m_handled = true;
        if (m_fireOnPress) OnPressed();
    } else if (wasPressed) {
        event.m_handled = true;
        OnPressed();
    }
}

void AbstractButton::OnPressed() {
    m_onPress.CallAll();
}

void AbstractButton::MultStateColor() const {
    if (!IsMouseInside()) return;
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    renderer.MultColor(HOVER_COLOR);
    if (m_pressed) renderer.MultColor(PRESSED_COLOR);
}

Button::Button(const String& text, const String& name) : AbstractButton(name) {
    SetBorder(LookAndFeel::Get().GetButtonBorder());
    SetText(text);
}

void Button::SetText(const String& text) {
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
}

// On whole units, where glyphs are crisp.
void Button::DrawLabel() const {
    const math::Vec2 size = GetSize();
    DrawText(GetTextFormat(), std::floor((size.x - m_text.m_width) / 2),
             std::floor((size.y - m_text.m_height) / 2), m_text);
}

}  // namespace gui

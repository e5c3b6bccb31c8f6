#include "gui/components/TextField.h"

#include <algorithm>
#include <cmath>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "input/Key.h"
#include "script/Conversions.h"
#include "util/Clock.h"
#include "util/Redraw.h"

namespace gui {

TextField::TextField(const String& text, const String& name) : Component(name), m_inputer(new TextInputer) {
    SetBorder(LookAndFeel::Get().GetTextFieldBorder());
    SetText(text);
}

void TextField::SetText(const String& text) {
    m_inputer->SetText(text);
    Format();
}

void TextField::SetMinWidth(float width) {
    m_minWidth = width;
    Format();
}

void TextField::SetTextFormat(const TextFormat& format) {
    Component::SetTextFormat(format);
    Format();
}

void TextField::Format() {
    m_text = FormatText(GetTextFormat(), GetText());
    const float borders = GetBorder().GetTop() + GetBorder().GetBottom();
    SetSize(std::max(m_text.m_width + 2 * TEXT_MARGIN, m_minWidth), ROW_HEIGHT - borders);
}

script::ObjectPtr TextField::GetState() const {
    return script::ValueToObject(GetText());
}

// Tab is the focus's key, not a character.
void TextField::OnKeyEvent(KeyEvent& event) {
    Component::OnKeyEvent(event);
    if (event.m_handled || !HasFocus() || event.m_key == Key::Tab) return;
    const String before = GetText();
    m_inputer->OnKeyEvent(event);
    if (!event.m_handled) return;
    m_lastInput = util::Clock::Now();
    if (GetText() == before) return;
    Format();
    m_onChange.CallAll();
}

void TextField::OnClick(ClickEvent& event) {
    Component::OnClick(event);
    if (event.m_handled || event.m_key != Key::LeftMouse || !IsHit(event.m_position)) return;
    event.m_handled = true;
    Focus::Set(this);
    m_inputer->SetCursor(GetCursorAt(ToContent(event.m_position).x));
}

void TextField::OnFocus(bool focused) {
    m_lastInput = util::Clock::Now();
    if (!focused) m_onLostFocus.CallAll();
}

// ---- drawing -----------------------------------------------------------------------------------------

float TextField::GetCursorX(size_t cursor) const {
    return TEXT_MARGIN + (cursor == 0 ? 0 : m_text.GetCharBounds(cursor - 1).max.x);
}

size_t TextField::GetCursorAt(float x) const {
    size_t best = 0;
    for (size_t i = 1; i <= GetText().size(); ++i) {
        if (std::fabs(GetCursorX(i) - x) < std::fabs(GetCursorX(best) - x)) best = i;
    }
    return best;
}

void TextField::DrawComp() {
    Component::DrawComp();
    DrawText(GetTextFormat(), TEXT_MARGIN, std::floor((GetSize().y - m_text.m_height) / 2), m_text);
    if (IsCursorShown()) DrawCursor();
    Focus::DrawRing(*this);
}

void TextField::Update(float dt) {
    Component::Update(dt);
    if (IsCursorShown() != m_cursorShown) util::Redraw::Request();
    m_cursorShown = IsCursorShown();
}

// Half a second on, half a second off.
bool TextField::IsCursorShown() const {
    return HasFocus() && std::lround(2 * (util::Clock::Now() - m_lastInput)) % 2 == 0;
}

void TextField::DrawCursor() const {
    const FormattedText bar = FormatText(GetTextFormat(), "|");
    const float x = GetCursorX(m_inputer->GetCursor()) - bar.m_width / 2;
    DrawText(GetTextFormat(), std::floor(x), std::floor((GetSize().y - bar.m_height) / 2), bar);
}

}  // namespace gui

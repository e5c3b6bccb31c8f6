#include "gui/components/TextField.h"

#include <algorithm>
#include <cmath>

#include "gui/Caret.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "input/Clipboard.h"
#include "input/Key.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "script/Conversions.h"
#include "util/Clock.h"
#include "util/Redraw.h"

namespace gui {
namespace {

constexpr math::Vec4 MARK_COLOR(0.3f, 0.5f, 0.9f, 0.9f);
constexpr float MARK_MARGIN = 2;  // GUI units, above and below

// Nothing is drawn left of 0 and right of the width for the length of a scope. Other planes than those of a
// scroll area, which the field may stand in.
class ScopedWidth {
  public:
    explicit ScopedWidth(float width) {
        const GLdouble planes[2][4] = {{1, 0, 0, 0}, {-1, 0, 0, width}};
        for (int i = 0; i < 2; ++i) {
            glClipPlane(FIRST + i, planes[i]);
            glEnable(FIRST + i);
        }
    }
    ~ScopedWidth() {
        for (int i = 0; i < 2; ++i) glDisable(FIRST + i);
    }
    ScopedWidth(const ScopedWidth&) = delete;
    ScopedWidth& operator=(const ScopedWidth&) = delete;

  private:
    static constexpr GLenum FIRST = GL_CLIP_PLANE4;
};

}  // namespace

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

void TextField::SetMaxWidth(float width) {
    m_maxWidth = width;
    Format();
}

void TextField::SetTextFormat(const TextFormat& format) {
    Component::SetTextFormat(format);
    Format();
}

void TextField::Format() {
    m_text = FormatText(GetTextFormat(), GetText());
    const float borders = GetBorder().GetTop() + GetBorder().GetBottom();
    const float wanted = std::min(m_text.m_width + 2 * TEXT_MARGIN, m_maxWidth);
    SetSize(std::max(wanted, m_minWidth), ROW_HEIGHT - borders);
}

script::ObjectPtr TextField::GetState() const {
    return script::ValueToObject(GetText());
}

// Tab is the focus's key, not a character.
void TextField::OnKeyEvent(KeyEvent& event) {
    Component::OnKeyEvent(event);
    if (event.m_handled || !HasFocus() || event.m_key == Key::Tab) return;
    const String before = GetText();
    if (!HandleMarkKey(event)) m_inputer->OnKeyEvent(event);
    if (!event.m_handled) return;
    m_lastInput = util::Clock::Now();
    if (GetText() != before) Format();
}

void TextField::MarkAll() {
    m_inputer->MarkAll();
    util::Redraw::Request();
}

bool TextField::HandleMarkKey(KeyEvent& event) {
    if (!event.m_pressed || !event.m_ctrl || event.m_alt) return false;
    if (event.m_key == 'a') {
        m_inputer->MarkAll();
    } else if (event.m_key == 'c' && m_inputer->IsMarked()) {
        SetClipboardText(GetText());
    } else {
        return false;
    }
    event.m_handled = true;
    return true;
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

// So far that the cursor is seen, and not at all for who only reads the beginning.
float TextField::GetShift() const {
    if (!HasFocus()) return 0;
    const size_t cursor = m_inputer->GetCursor();
    const float x = cursor == 0 ? 0 : m_text.GetCharBounds(cursor - 1).max.x;
    return std::max(x - (GetSize().x - 2 * TEXT_MARGIN), 0.0f);
}

float TextField::GetCursorX(size_t cursor) const {
    return TEXT_MARGIN - GetShift() + (cursor == 0 ? 0 : m_text.GetCharBounds(cursor - 1).max.x);
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
    {
        const ScopedWidth clip(GetSize().x);
        const float x = TEXT_MARGIN - GetShift();
        if (HasFocus() && m_inputer->IsMarked()) DrawMark(x);
        DrawText(GetTextFormat(), x, std::floor((GetSize().y - m_text.m_height) / 2), m_text);
        if (IsCursorShown()) DrawCursor();
    }
    Focus::DrawRing(*this);
}

void TextField::Update(float dt) {
    Component::Update(dt);
    if (IsCursorShown() != m_cursorShown) util::Redraw::Request();
    m_cursorShown = IsCursorShown();
}

bool TextField::IsCursorShown() const {
    return HasFocus() && IsCaretLit(m_lastInput);
}

void TextField::DrawMark(float x) const {
    const rendering::ScopedColor kept;
    const rendering::ScopedCapability untextured(GL_TEXTURE_2D, false);
    rendering::Renderer& renderer = rendering::Renderer::Instance();
    renderer.MultColor(MARK_COLOR);
    renderer.DrawQuad({x, MARK_MARGIN}, {x + m_text.m_width, GetSize().y - MARK_MARGIN});
}

void TextField::DrawCursor() const {
    const FormattedText bar = FormatText(GetTextFormat(), "|");
    const float x = GetCursorX(m_inputer->GetCursor()) - bar.m_width / 2;
    DrawText(GetTextFormat(), std::floor(x), std::floor((GetSize().y - bar.m_height) / 2), bar);
}

}  // namespace gui

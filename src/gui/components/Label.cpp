#include "gui/components/Label.h"

#include "gui/LookAndFeel.h"
#include "util/Redraw.h"

namespace gui {

Label::Label(const String& text, const String& name) : Component(name) {
    SetText(text);
}

// One line makes a row; more lines keep its margins.
void Label::SetText(const String& text) {
    util::Redraw::Request();
    m_text = FormatText(GetTextFormat(), text);
    const float width = m_fixedWidth > 0 ? m_fixedWidth : m_text.m_width + 2 * TEXT_MARGIN;
    SetSize(width, m_text.m_height + ROW_HEIGHT - GetTextFormat().m_lineHeight);
}

void Label::SetTextFormat(const TextFormat& format) {
    Component::SetTextFormat(format);
    SetText(GetText());
}

void Label::SetMaxWidth(float maxWidth) {
    TextFormat format = GetTextFormat();
    format.m_maxWidth = maxWidth;
    SetTextFormat(format);
}

void Label::SetFixedWidth(float width) {
    m_fixedWidth = width;
    SetText(GetText());
}

void Label::DrawComp() {
    Component::DrawComp();
    DrawText(GetTextFormat(), TEXT_MARGIN, (ROW_HEIGHT - GetTextFormat().m_lineHeight) / 2, m_text);
}

}  // namespace gui

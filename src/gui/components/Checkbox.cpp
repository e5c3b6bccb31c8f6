#include "gui/components/Checkbox.h"

#include <algorithm>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "script/Conversions.h"
#include "util/Redraw.h"

namespace gui {

void AbstractToggleButton::OnPressed() {
    SetState(m_state != On ? On : Off);
}

void AbstractToggleButton::SetStateSilent(State state) {
    if (state != m_state) util::Redraw::Request();
    m_state = state;
}

void AbstractToggleButton::SetState(State state) {
    SetStateSilent(state);
    AbstractButton::OnPressed();
}

script::ObjectPtr AbstractToggleButton::GetState() const {
    if (m_state == Unknown) return script::ValueToObject("unknown");
    return script::ValueToObject(m_state == On);
}

Checkbox::Checkbox(const String& text, const String& name) : AbstractToggleButton(name) {
    m_images = {GetGuiImage("checkbox-off.tga"), GetGuiImage("checkbox-on.tga"),
                GetGuiImage("checkbox-unknown.tga")};
    SetText(text);
}

void Checkbox::SetText(const String& text) {
    m_text = FormatText(GetTextFormat(), text);
    const math::Vec2 box = GetImageSize(m_images[GetToggleState()]);
    const float textWidth = text.empty() ? 0 : m_text.m_width + 2 * TEXT_MARGIN;
    SetSize(TEXT_MARGIN + box.x + textWidth, std::max(box.y, ROW_HEIGHT));
}

void Checkbox::SetTextFormat(const TextFormat& format) {
    AbstractToggleButton::SetTextFormat(format);
    SetText(GetShownText());
}

void Checkbox::DrawComp() {
    MultStateColor();
    AbstractToggleButton::DrawComp();
    const rendering::TextureMentorPtr& image = m_images[GetToggleState()];
    const math::Vec2 box = GetImageSize(image);
    const float middle = GetSize().y / 2;
    DrawImage(image, {TEXT_MARGIN, middle - box.y / 2}, {TEXT_MARGIN + box.x, middle + box.y / 2});
    DrawText(GetTextFormat(), 2 * TEXT_MARGIN + box.x, middle - m_text.m_height / 2, m_text);
    Focus::DrawRing(*this);
}

}  // namespace gui

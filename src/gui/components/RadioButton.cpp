#include "gui/components/RadioButton.h"

#include <algorithm>

#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "script/Conversions.h"

namespace gui {

void RadioGroup::Select(AbstractRadioButton* member) {
    const util::LockPtr<AbstractRadioButton> old = m_selected.Lock(), now(member);
    if (old.Get() == now.Get()) return;
    m_selected = member;
    if (old) old->SetSelected(false);
    if (now) now->SetSelected(true);
    m_onChange.CallAll();
}

AbstractRadioButton::AbstractRadioButton(const RadioGroupPtr& group, const String& name)
    : AbstractButton(name), m_group(group) {}

void AbstractRadioButton::OnPressed() {
    m_group->Select(this);
    AbstractButton::OnPressed();
}

script::ObjectPtr AbstractRadioButton::GetState() const {
    return script::ValueToObject(m_selected);
}

RadioButton::RadioButton(const RadioGroupPtr& group, const String& text, const String& name)
    : AbstractRadioButton(group, name),
      m_images{GetGuiImage("radio-off.tga"), GetGuiImage("radio-on.tga")},
      m_text(FormatText(GetTextFormat(), text)) {
    const math::Vec2 image = GetImageSize(m_images[0]);
    if (text.empty()) {
        SetSize(image.x, image.y);
    } else {
        SetSize(image.x + m_text.m_width + 3 * TEXT_MARGIN, std::max(image.y, ROW_HEIGHT));
    }
}

void RadioButton::DrawComp() {
    MultStateColor();
    AbstractRadioButton::DrawComp();
    const rendering::TextureMentorPtr& image = m_images[IsSelected() ? 1 : 0];
    const math::Vec2 size = GetImageSize(image);
    const float left = GetShownText().empty() ? 0 : TEXT_MARGIN, middle = GetSize().y / 2;
    DrawImage(image, {left, middle - size.y / 2}, {left + size.x, middle + size.y / 2});
    DrawText(GetTextFormat(), left + size.x + TEXT_MARGIN, middle - m_text.m_height / 2, m_text);
    Focus::DrawRing(*this);
}

}  // namespace gui

#include "gui/components/RadioButton.h"

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

}  // namespace gui

#pragma once

#include "gui/components/Button.h"

namespace gui {

// Of its members at most one is selected. Members hold the group; the group does not keep them alive.
class RadioGroup : public util::Pointee {
  public:
    AbstractRadioButton* GetSelected() const { return m_selected.Get(); }  // null for none
    void Select(AbstractRadioButton* member);                              // null for none
    util::CallbackSet& GetOnChange() { return m_onChange; }

  private:
    util::WeakPtr<AbstractRadioButton> m_selected;
    util::CallbackSet m_onChange;
};

// A button that selects itself in its group.
class AbstractRadioButton : public AbstractButton {
  public:
    explicit AbstractRadioButton(const RadioGroupPtr& group, const String& name = "AbstractRadioButton");

    void OnPressed() override;
    const char* GetKind() const override { return "RadioButton"; }
    script::ObjectPtr GetState() const override;  // whether it is selected

    bool IsSelected() const { return m_selected; }
    const RadioGroupPtr& GetGroup() const { return m_group; }

  protected:
    virtual void SetSelected(bool selected) { m_selected = selected; }

  private:
    friend class RadioGroup;

    const RadioGroupPtr m_group;
    bool m_selected = false;
};

}  // namespace gui

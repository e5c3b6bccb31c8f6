#pragma once

#include <functional>

#include "app/windows/Commands.h"
#include "gui/components/RadioButton.h"
#include "rendering/Texture.h"

namespace app {

// One tool of the toolbar, selected by its command.
class ToolIcon : public gui::AbstractRadioButton {
  public:
    // `isCurrent` tells whether its tool is the one in hand.
    ToolIcon(const gui::RadioGroupPtr& group, const Command& command, const std::function<bool()>& isCurrent);

    void OnPressed() override;
    void Update(float dt) override;
    void DrawComp() override;

  private:
    void DrawPlate();

    const std::function<void()> m_select;
    const std::function<bool()> m_isCurrent;
    const rendering::TextureMentorPtr m_icon;
};

}  // namespace app

#include "app/widgets/ToolIcon.h"

#include "app/Language.h"
#include "app/widgets/MenuButton.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "rendering/Renderer.h"

namespace app {
namespace {

constexpr math::Vec4 SELECTED_COLOR(1.25f, 1.25f, 1.4f, 1);
constexpr math::Vec4 UNSELECTED_COLOR(0.6f, 0.6f, 0.65f, 0.6f);

}  // namespace

ToolIcon::ToolIcon(const gui::RadioGroupPtr& group, const Command& command,
                   const std::function<bool()>& isCurrent)
    : AbstractRadioButton(group, "ToolIcon"),
      m_select(command.m_run),
      m_isCurrent(isCurrent),
      m_icon(GetIcon(command.m_icon)) {
    SetKey(command.m_name);
    SetBorder(gui::LookAndFeel::Get().GetButtonBorder());
    SetSize(ICON_SIZE, ICON_SIZE);
    SetToolTip(MakeToolTip(command, Translate((String("Tip") + command.m_name).c_str())));
    if (m_isCurrent()) group->Select(this);
}

void ToolIcon::OnPressed() {
    m_select();
    AbstractRadioButton::OnPressed();
}

// A key or a script may have taken up another tool.
void ToolIcon::Update(float dt) {
    AbstractRadioButton::Update(dt);
    if (m_isCurrent() && !IsSelected()) GetGroup()->Select(this);
}

// The button's face; its icon keeps its own colours.
void ToolIcon::DrawPlate() {
    const rendering::ScopedColor kept;
    rendering::Renderer::Instance().MultColor(IsSelected() ? SELECTED_COLOR : UNSELECTED_COLOR);
    Component::DrawComp();
}

void ToolIcon::DrawComp() {
    {
        const rendering::ScopedColor kept;
        MultStateColor();
        DrawPlate();
        const math::Vec2 corner = (GetSize() - math::Vec2(ICON_SIZE, ICON_SIZE)) * 0.5f;
        gui::DrawImage(m_icon, corner, corner + math::Vec2(ICON_SIZE, ICON_SIZE));
    }
    gui::Focus::DrawRing(*this);
}

}  // namespace app

#include "app/windows/Rows.h"

#include "app/Language.h"
#include "app/widgets/MenuButton.h"
#include "app/windows/Commands.h"
#include "gui/LookAndFeel.h"
#include "gui/Window.h"
#include "gui/components/AttribWidgets.h"
#include "gui/components/Label.h"
#include "gui/components/LabeledSlider.h"
#include "gui/components/ScrollArea.h"

namespace app {

gui::LayoutPtr MakeRowLayout() {
    return new gui::ListLayout(gui::ListLayout::Vertical | gui::ListLayout::StretchCross);
}

gui::WindowPtr MakeRowWindow(const char* titleKey) {
    const gui::WindowPtr window = new gui::Window(Translate(titleKey), MakeRowLayout());
    window->SetKey(titleKey);
    return window;
}

gui::ScrollAreaPtr MakeScrolled(const gui::ComponentPtr& content, const Desk& desk, float room) {
    const gui::ScrollAreaPtr area = new gui::ScrollArea(content, desk.m_interface.GetSize().y - room);
    area->FollowView(room);
    return area;
}

gui::ComponentPtr MakeActionRow(const char* key, const String& icon, const std::function<void()>& run,
                                const String& suffix) {
    const util::SharedPtr<MenuButton> row = new MenuButton(key, icon, suffix);
    row->AddAction(run);
    return row;
}

gui::ComponentPtr MakeCommandRow(const Desk& desk, const char* name, const String& suffix) {
    const Command& command = desk.m_commands.Find(name);
    const gui::ComponentPtr row = MakeActionRow(name, command.m_icon, command.m_run, suffix);
    const String key = GetKeyText(command);
    if (!key.empty()) row->SetToolTip(key);
    return row;
}

gui::ComponentPtr MakeCheckRow(const char* key, const script::TAttribPtr<bool>& attrib) {
    const gui::ComponentPtr row = new gui::AttribCheckbox(Translate(key), attrib);
    row->SetKey(key);
    return row;
}

gui::ComponentPtr MakeSliderRow(const char* key, const gui::SliderPtr& slider, const SliderFormat& format) {
    slider->SetKey(key);
    return new gui::LabeledSlider(Translate(key), slider, format.m_decimals, format.m_unit);
}

gui::LabelPtr MakeCell(const String& text, float width) {
    const gui::LabelPtr label = new gui::Label(text);
    label->SetFixedWidth(width);
    return label;
}

gui::ButtonPtr MakeButton(const char* key, const std::function<void()>& run) {
    const gui::ButtonPtr button = new gui::Button(Translate(key));
    button->SetKey(key);
    button->AddAction(run);
    return button;
}

gui::ComponentPtr MakeRow(const std::vector<gui::ComponentPtr>& components) {
    const gui::ComponentPtr row = new gui::Component("Row", new gui::ListLayout(gui::ListLayout::Horizontal));
    for (const gui::ComponentPtr& component : components) row->AddChild(component);
    return row;
}

}  // namespace app

#include "app/windows/Toolbar.h"

#include <boost/format.hpp>

#include "app/Language.h"
#include "app/scene/View.h"
#include "app/widgets/InfoLabel.h"
#include "app/widgets/ToolIcon.h"
#include "app/widgets/ZoomSlider.h"
#include "app/windows/Commands.h"
#include "app/windows/Rows.h"
#include "gui/LookAndFeel.h"

namespace app {
namespace {

constexpr size_t TOOLS_PER_ROW = 2;
const std::pair<const char*, const char*> BUTTONS[] = {
    // commands, and what they tell of themselves
    {"FileButton", "TipFile"},
    {"OptionsButton", "TipOptions"},
    {"GalleryButton", "TipGallery"},
    {"ShowHelp", "TipHelp"},
};

}  // namespace

Toolbar::Toolbar(const Desk& desk, const std::vector<const char*>& tools,
                 const std::function<bool(const char*)>& isCurrent)
    : Window(Translate("ToolbarTitle"),
             new gui::ListLayout(gui::ListLayout::Vertical | gui::ListLayout::StretchCross)) {
    SetKey("ToolbarTitle");
    AddTools(desk, tools, isCurrent);
    for (const auto& [name, tip] : BUTTONS) {
        const gui::ComponentPtr row = MakeCommandRow(desk, name);
        row->SetToolTip(MakeToolTip(desk.m_commands.Find(name), Translate(tip)));
        AddChild(row);
    }
    AddZoom(desk);
}

void Toolbar::AddTools(const Desk& desk, const std::vector<const char*>& tools,
                       const std::function<bool(const char*)>& isCurrent) {
    const gui::RadioGroupPtr group = new gui::RadioGroup;
    gui::ComponentPtr row;
    for (size_t i = 0; i < tools.size(); ++i) {
        if (i % TOOLS_PER_ROW == 0) {
            row = new gui::Component("ToolRow", new gui::ListLayout(gui::ListLayout::Horizontal));
            AddChild(row);
        }
        const char* const name = tools[i];
        row->AddChild(new ToolIcon(group, desk.m_commands.Find(name), [=] { return isCurrent(name); }));
    }
}

void Toolbar::AddZoom(const Desk& desk) {
    const View* const view = &desk.m_view;
    const String name = Translate("Zoom");
    const auto text = [=] { return boost::str(boost::format("%1% %2$.0fx") % name % view->GetZoom()); };
    AddChild(new InfoLabel(text, 0));
    const gui::SliderPtr slider = new ZoomSlider(desk.m_view);
    slider->SetSize(GetSize().x, gui::ROW_HEIGHT);
    AddChild(slider);
}

}  // namespace app

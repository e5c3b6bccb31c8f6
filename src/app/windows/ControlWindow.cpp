#include "app/windows/ControlWindow.h"

#include "app/Language.h"
#include "app/scene/AppGUISettings.h"
#include "app/widgets/Handles.h"
#include "app/widgets/SimPlayPauseButton.h"
#include "app/widgets/UndoRedoButton.h"
#include "app/windows/Commands.h"

namespace app {
namespace {

gui::ComponentPtr MakeFitButton(const Commands& commands) {
    const Command& command = commands.Find("FitScene");
    const util::SharedPtr<IconButton> button = new IconButton(command.m_icon);
    button->SetKey(command.m_name);
    button->SetToolTip(MakeToolTip(command, Translate("TipFitScene")));
    button->AddAction(command.m_run);
    return button;
}

}  // namespace

ControlWindow::ControlWindow(const Desk& desk)
    : Window(Translate("ControlTitle"), new gui::ListLayout(gui::ListLayout::Horizontal)) {
    SetKey("ControlTitle");
    AddChild(new UndoButton);
    AddChild(new RedoButton);
    AddChild(new SimPlayPauseButton);
    AddChild(new Panner(desk.m_view));
    AddChild(new Zoomer(desk.m_view, desk.m_settings.m_zoomFactor));
    AddChild(MakeFitButton(desk.m_commands));
}

}  // namespace app

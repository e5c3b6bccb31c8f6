#include "gui/Root.h"

#include "gui/Focus.h"
#include "gui/ToolTip.h"

namespace gui {

Root::Root() : Component("Root") {
    AddChild(new ToolTip);
}

void Root::OnKeyEvent(KeyEvent& event) {
    Component::OnKeyEvent(event);
    Focus::HandleKey(*this, event);
}

}  // namespace gui

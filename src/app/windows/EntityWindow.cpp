#include "app/windows/EntityWindow.h"

#include "app/Language.h"
#include "app/windows/Rows.h"

namespace app {

EntityWindow::EntityWindow(const char* titleKey, const EntityGroup& group)
    : Window(Translate(titleKey), MakeRowLayout()), m_group(group), m_isAboutSome(!group.IsEmpty()) {
    SetKey(titleKey);
}

EntityWindow::~EntityWindow() noexcept(false) = default;

void EntityWindow::Update(float dt) {
    Window::Update(dt);
    if (m_isAboutSome && GetParent() != nullptr && m_group.IsEmpty()) Close();
}

}  // namespace app

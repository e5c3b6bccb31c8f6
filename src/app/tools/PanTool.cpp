#include "app/tools/PanTool.h"

#include "app/entities/Entity.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Key.h"

namespace app {

void PanTool::OnDragStart(gui::DragEvent& event) {
    if (event.m_handled) return;
    if (m_scene.GetEntityAt(m_view.GUIToWorld(event.m_position))) return;
    m_grabbed = true;
    event.m_handled = true;
}

void PanTool::OnDrag(gui::DragEvent& event) {
    if (!m_grabbed) return;
    event.m_handled = true;
    m_view.Pan(event.m_delta.x, event.m_delta.y, false);
}

// A drag with any other button keeps the view grabbed: only the right button lets go.
void PanTool::OnDragEnd(gui::DragEvent& event) {
    if (event.m_key == gui::Key::RightMouse) event.m_handled = Cancel();
}

bool PanTool::Cancel() {
    const bool wasGrabbed = m_grabbed;
    m_grabbed = false;
    return wasGrabbed;
}

}  // namespace app

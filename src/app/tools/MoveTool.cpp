#include "app/tools/MoveTool.h"

#include "app/scene/View.h"
#include "input/Input.h"
#include "input/Key.h"

namespace app {

void MoveTool::OnDragStart(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse) return;
    if (!m_drag.Take(m_view.GUIToWorld(event.m_position))) return;
    event.m_handled = true;
    m_cloning = gui::Input::Instance().IsModifierDown(gui::Modifier::Ctrl);
    if (m_cloning) m_drag.Clone();
    m_drag.Hold();
}

void MoveTool::OnDrag(gui::DragEvent& event) {
    if (!m_drag.IsHolding()) return;
    event.m_handled = true;
    const math::Vec2 delta =
        m_view.GUIToWorld(event.m_position) - m_view.GUIToWorld(event.m_position - event.m_delta);
    m_drag.Transform(math::RigidTransform(0, delta));
}

void MoveTool::OnDragEnd(gui::DragEvent& event) {
    if (!m_drag.IsHolding() || event.m_key != gui::Key::LeftMouse) return;
    event.m_handled = true;
    m_drag.Finish(m_cloning ? "UndoClone" : "UndoMove");
}

bool MoveTool::Cancel() {
    m_drag.Revert();
    return false;
}

}  // namespace app

#include "gui/Draggable.h"

#include "input/Key.h"

namespace gui {

// Asked before the children, unlike everything else: what is dragged may carry them.
void Draggable::OnDragStart(DragEvent& event) {
    const bool isFree = !event.m_handled && event.m_key == Key::LeftMouse;
    if (isFree && IsInContentBox(event.m_start) && IsHit(event.m_start)) {
        m_dragging = true;
        event.m_handled = true;
    }
    Component::OnDragStart(event);
}

void Draggable::OnDragEnd(DragEvent& event) {
    m_dragging = false;
    Component::OnDragEnd(event);
}

void Draggable::EndGesture() {
    m_dragging = false;
    Component::EndGesture();
}

}  // namespace gui

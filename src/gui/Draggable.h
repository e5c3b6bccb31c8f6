#pragma once

#include "gui/Component.h"

namespace gui {

// A component that takes drags of the left button that start in its content box. What the drag does is the
// business of classes derived from it.
class Draggable : public Component {
  public:
    explicit Draggable(const String& name = "Draggable", const LayoutPtr& layout = nullptr)
        : Component(name, layout) {}

    void OnDragStart(DragEvent& event) override;
    void OnDragEnd(DragEvent& event) override;
    void EndGesture() override;

    bool TakesMouse() const override { return true; }

    bool IsDragged() const { return m_dragging; }

  private:
    bool m_dragging = false;
};

}  // namespace gui

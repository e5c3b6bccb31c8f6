#pragma once

#include "app/tools/Tool.h"
#include "math/BoundingBox.h"

namespace app {

// A drag from corner to corner makes a square, or with shift down any upright rectangle. One that is drawn
// round entities selects them instead.
class BoxTool : public Tool {
  public:
    using Tool::Tool;

    void OnDragStart(gui::DragEvent& event) override;
    void OnDrag(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void Draw() override;
    bool Cancel() override;

  private:
    math::BoundingBox2f GetBox(math::Vec2 mouse) const;  // world
    void MakeBox(const math::BoundingBox2f& box);

    bool m_drawing = false;
    math::Vec2 m_start;  // world
    math::Vec3 m_color;  // of this box from its first picture on
};

}  // namespace app

#pragma once

#include "app/tools/Tool.h"

namespace app {

// A drag from the middle outwards makes a circle.
class CircleTool : public Tool {
  public:
    explicit CircleTool(const Workbench& bench);
    ~CircleTool() noexcept(false) override;

    void OnDragStart(gui::DragEvent& event) override;
    void OnDrag(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void Draw() override;
    bool Cancel() override;

  private:
    bool m_drawing = false;
    math::Vec2 m_center;        // world
    math::Vec3 m_color;         // of this circle from its first picture on
    CircleEntityPtr m_preview;  // outside the scene; null until the circle has a radius
};

}  // namespace app

#pragma once

#include "app/tools/Tool.h"
#include "rendering/Texture.h"

namespace app {

// A drag makes a half plane through the press point, whose surface faces where the drag goes.
class PlaneTool : public Tool {
  public:
    explicit PlaneTool(const Workbench& bench);
    ~PlaneTool() noexcept(false) override;

    void OnDragStart(gui::DragEvent& event) override;
    void OnDrag(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void Draw() override;
    bool Cancel() override;

  private:
    void DrawArrow();

    bool m_drawing = false;
    math::Vec2 m_anchor;       // world
    math::Vec2 m_tip;          // world, of the arrow: where the mouse was when the plane was last turned
    PlaneEntityPtr m_preview;  // outside the scene; null until the plane has a direction
    rendering::TextureMentorPtr m_arrow;
};

}  // namespace app

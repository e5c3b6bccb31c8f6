#pragma once

#include "app/tools/SelectionDrag.h"
#include "app/tools/Tool.h"
#include "rendering/Texture.h"

namespace app {

// A right drag on an entity turns the selection about its centre, with shift in steps of 15 degrees.
class RotateTool : public Tool {
  public:
    explicit RotateTool(const Workbench& bench);

    void OnDragStart(gui::DragEvent& event) override;
    void OnDrag(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void Draw() override;
    bool Cancel() override;  // puts the scene back

  private:
    void Start(math::Vec2 mouse);
    void Turn(math::Vec2 mouse);
    void DrawSweep() const;
    void DrawPivot();

    SelectionDrag m_drag;
    math::Vec2 m_pivot;            // world; all from here on is valid during a drag
    math::Vec2 m_lastMouse;        // world, of the last drag event
    math::real m_startAngle = 0;   // rad, direction from the pivot to the mouse when turning began
    math::real m_accumulated = 0;  // rad, swept by the mouse, in (-2 pi, 2 pi)
    math::real m_applied = 0;      // rad, by which the selection is turned
    rendering::TextureMentorPtr m_pivotTexture;
};

}  // namespace app

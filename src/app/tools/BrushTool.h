#pragma once

#include "app/entities/Entity.h"
#include "app/tools/Tool.h"
#include "physics/Fwd.h"
#include "physics/Line.h"

namespace app {

// The free-hand tool. The shape of one left-button stroke alone decides what it does:
//
// - a nearly straight one erases every entity that it crosses, which is tinted meanwhile,
// - a loop round entities selects them,
// - any other loop becomes a polygon,
// - anything else vanishes, with a word why.
//
// With shift down the stroke gets a straight edge to the place where shift comes up.
class BrushTool : public Tool {
  public:
    using Tool::Tool;

    void OnDragStart(gui::DragEvent& event) override;
    void OnDrag(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void OnKeyEvent(gui::KeyEvent& event) override;
    void Draw() override;
    bool Cancel() override;

    bool IsDrawing() const { return m_drawing; }
    const math::Vec2List& GetPoints() const { return m_points; }

  private:
    // Ignored within minPointDist of the last point.
    void AppendPoint(math::Vec2 world);

    void Analyse(const math::Vec2List& stroke);
    bool EraseAlong(const math::Vec2List& stroke);  // whether it erased anything
    static void DrawDoomed(const EntitySet& doomed);
    // Tells why the stroke meant nothing, unless it is too short for a stroke.
    void Explain(const char* key, const math::Vec2List& stroke) const;
    // The polygon that the stroke means; null, and the user told why, for none.
    physics::PolygonPtr IsPolygon(const math::Vec2List& stroke) const;
    void CreateEntity(const physics::PolygonPtr& polygon);

    math::Vec2List m_points;  // world coordinates, in drawing order; no two equal ones in a row
    bool m_drawing = false;
};

}  // namespace app

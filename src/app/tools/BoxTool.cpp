#include "app/tools/BoxTool.h"

#include <algorithm>
#include <cmath>

#include "app/entities/PolyEntity.h"
#include "app/history/Snapshot.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Input.h"
#include "input/Key.h"
#include "rendering/Renderer.h"

namespace app {

using math::real;
using math::Vec2;

namespace {

real Sign(real x) {
    return static_cast<real>((x > 0) - (x < 0));
}

// Of the square with a corner at `start` that reaches as far as the mouse; no square to a side in whose
// direction the mouse has not gone.
Vec2 SquareCorner(Vec2 start, Vec2 mouse) {
    const Vec2 d = mouse - start;
    const real side = std::max(std::fabs(d.x), std::fabs(d.y));
    return start + Vec2(Sign(d.x), Sign(d.y)) * side;
}

}  // namespace

void BoxTool::OnDragStart(gui::DragEvent& event) {
    if (!TakesPress(event)) return;
    m_drawing = true;
    m_start = m_view.GUIToWorld(event.m_position);
    m_color = m_scene.GetNextColor();
}

void BoxTool::OnDrag(gui::DragEvent& event) {
    if (m_drawing) event.m_handled = true;
}

void BoxTool::OnDragEnd(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse || !m_drawing) return;
    event.m_handled = true;
    m_drawing = false;
    MakeBox(GetBox(m_view.GUIToWorld(event.m_position)));
}

math::BoundingBox2f BoxTool::GetBox(Vec2 mouse) const {
    const bool isFree = gui::Input::Instance().IsModifierDown(gui::Modifier::Shift);
    math::BoundingBox2f box;
    box.Extend(m_start);
    box.Extend(isFree ? mouse : SquareCorner(m_start, mouse));
    return box;
}

void BoxTool::MakeBox(const math::BoundingBox2f& box) {
    const Vec2 size = box.GetSize();
    if (!(size.x > 0 && size.y > 0)) return;
    const physics::PolygonPtr plain = physics::MakeBoxPolygon(box.min.x, box.min.y, box.max.x, box.max.y);
    if (SelectInside(*plain)) return;
    const physics::PolygonPtr polygon = MakePolygon(plain->GetWorldVertices());
    if (!polygon) return;
    const PolyEntityPtr entity = new PolyEntity(polygon);
    entity->SetColor(m_color);
    AddToScene(entity, new Snapshot(m_scene), "UndoBox");
}

void BoxTool::Draw() {
    if (!m_drawing) return;
    const math::BoundingBox2f box = GetBox(m_view.GetMousePos());
    const Vec2 min = box.min, max = box.max;
    const rendering::ScopedColor color({m_color.x, m_color.y, m_color.z, 1});
    rendering::Renderer::Instance().DrawLines({min, {max.x, min.y}, max, {min.x, max.y}}, true);
}

bool BoxTool::Cancel() {
    const bool wasDrawing = m_drawing;
    m_drawing = false;
    return wasDrawing;
}

}  // namespace app

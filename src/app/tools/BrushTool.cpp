#include "app/tools/BrushTool.h"

#include "app/entities/PolyEntity.h"
#include "app/history/Actions.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "app/tools/Eraser.h"
#include "app/tools/StrokeAnalysis.h"
#include "input/Input.h"
#include "input/Key.h"
#include "physics/Polygon.h"
#include "rendering/Renderer.h"
#include "rendering/ShapePainter.h"

namespace app {

using math::real;
using math::Vec2;
using math::Vec2List;

namespace {

const math::Vec4 STROKE_COLOR(0.85f, 1.0f, 0.85f, 1.0f);

const math::Vec4 DOOMED_COLOR(1, 0.3f, 0.25f, 0.75f);  // over what the stroke is about to erase
// Shorter strokes are slips of a click, of which nothing is said. In cm on the screen.
constexpr real LEAST_STROKE = 1;

}  // namespace

void BrushTool::OnDragStart(gui::DragEvent& event) {
    if (!TakesPress(event)) return;
    m_drawing = true;
    m_points.clear();
    m_points.push_back(m_view.GUIToWorld(event.m_position));
}

void BrushTool::OnDrag(gui::DragEvent& event) {
    if (!m_drawing) return;
    event.m_handled = true;
    // Draw shows a straight line to the mouse meanwhile.
    if (gui::Input::Instance().IsModifierDown(gui::Modifier::Shift)) return;
    AppendPoint(m_view.GUIToWorld(event.m_position));
}

void BrushTool::OnKeyEvent(gui::KeyEvent& event) {
    Tool::OnKeyEvent(event);
    const bool shift = event.m_key == gui::Key::LeftShift || event.m_key == gui::Key::RightShift;
    if (m_drawing && shift && !event.m_pressed) AppendPoint(m_view.GUIToWorld(event.m_position));
}

void BrushTool::OnDragEnd(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse || !m_drawing) return;
    event.m_handled = true;
    AppendPoint(m_view.GUIToWorld(event.m_position));
    // Idle before the analysis: what it does through the undoer cancels the active tool first.
    m_drawing = false;
    Vec2List stroke;
    stroke.swap(m_points);
    if (stroke.size() >= 2) Analyse(stroke);
}

void BrushTool::AppendPoint(Vec2 world) {
    const real minDistance = m_settings.m_minPointDist->Get() * m_view.GetCmToWorld();
    const Vec2 last = m_points.back();
    if (world != last && minDistance <= math::Length(world - last)) m_points.push_back(world);
}

void BrushTool::Draw() {
    if (!m_drawing) return;
    Vec2List strip = m_points;
    const Vec2 mouse = m_view.GetMousePos();
    if (mouse != strip.back()) strip.push_back(mouse);
    if (strip.size() > 1 && TestEraseLine(strip)) DrawDoomed(FindErased(m_scene, m_view, strip));
    const rendering::ScopedColor color(STROKE_COLOR);
    rendering::Renderer::Instance().DrawLines(strip, false);
}

void BrushTool::DrawDoomed(const EntitySet& doomed) {
    const rendering::ScopedColor color(DOOMED_COLOR);
    for (const EntityPtr& entity : doomed) entity->Draw();
    rendering::ShapePainter::Instance().Flush();
}

bool BrushTool::Cancel() {
    const bool wasDrawing = m_drawing;
    m_points.clear();
    m_drawing = false;
    return wasDrawing;
}

void BrushTool::Analyse(const Vec2List& stroke) {
    if (TestEraseLine(stroke)) {
        if (!EraseAlong(stroke)) Explain("StrokeNotClosed", stroke);
        return;
    }
    const physics::PolygonPtr polygon = IsPolygon(stroke);
    if (polygon && !SelectInside(*polygon)) CreateEntity(polygon);
}

bool BrushTool::EraseAlong(const Vec2List& stroke) {
    const EntitySet doomed = FindErased(m_scene, m_view, stroke);
    if (!doomed.empty()) Undoer::Instance().Do(new EraseEntities(m_scene, doomed));
    return !doomed.empty();
}

void BrushTool::Explain(const char* key, const Vec2List& stroke) const {
    if (PathLength(stroke) >= LEAST_STROKE * m_view.GetCmToWorld()) Tell(key, stroke.back());
}

physics::PolygonPtr BrushTool::IsPolygon(const Vec2List& stroke) const {
    Vec2List loop = stroke;
    const LoopResult result = ExtractLoop(loop);
    if (result == LoopResult::Open) {
        Explain("StrokeNotClosed", stroke);
        return nullptr;
    }
    // A big scribble with a tiny loop in it means nothing.
    if (result == LoopResult::Tangled || ClosedLength(loop) < PathLength(stroke) / 2) {
        Explain("StrokeCrosses", stroke);
        return nullptr;
    }
    const physics::PolygonPtr polygon = loop.size() < 3 ? nullptr : MakePolygon(loop);
    if (!polygon) Explain("StrokeTooSmall", stroke);
    return polygon;
}

void BrushTool::CreateEntity(const physics::PolygonPtr& polygon) {
    const SnapshotPtr before = new Snapshot(m_scene);
    AddToScene(new PolyEntity(polygon), before, "UndoPolygon");
}

}  // namespace app

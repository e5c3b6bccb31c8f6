#include "app/tools/BrushTool.h"

#include <algorithm>

#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/history/Actions.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "app/tools/StrokeAnalysis.h"
#include "input/Input.h"
#include "input/Key.h"
#include "physics/Polygon.h"
#include "rendering/Renderer.h"

namespace app {

using math::real;
using math::Vec2;
using math::Vec2List;

namespace {

const math::Vec4 STROKE_COLOR(0.85f, 1.0f, 0.85f, 1.0f);

// Erasing one selected entity erases all that are; a plane, easily hit by accident, goes only alone.
EntitySet Doom(const EntitySet& crossed, const EntitySet& selected) {
    EntitySet doomed = crossed;
    const bool hitSelection = std::any_of(crossed.begin(), crossed.end(),
                                          [&](const EntityPtr& entity) { return selected.count(entity); });
    if (hitSelection) doomed.insert(selected.begin(), selected.end());
    if (doomed.size() < 2) return doomed;
    for (auto i = doomed.begin(); i != doomed.end();) {
        i = util::DynamicCast<PlaneEntity>(*i) ? doomed.erase(i) : std::next(i);
    }
    return doomed;
}

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
    const rendering::ScopedColor color(STROKE_COLOR);
    Vec2List strip = m_points;
    const Vec2 mouse = m_view.GetMousePos();
    if (mouse != strip.back()) strip.push_back(mouse);
    rendering::Renderer::Instance().DrawLines(strip, false);
}

bool BrushTool::Cancel() {
    const bool wasDrawing = m_drawing;
    m_points.clear();
    m_drawing = false;
    return wasDrawing;
}

void BrushTool::Analyse(const Vec2List& stroke) {
    if (TestEraseLine(stroke)) {
        EraseAlong(stroke);
        return;
    }
    const physics::PolygonPtr polygon = IsPolygon(stroke);
    if (!polygon) return;
    if (!SelectInside(*polygon)) CreateEntity(polygon);
}

void BrushTool::EraseAlong(const Vec2List& stroke) {
    physics::LineList lines;
    for (size_t i = 1; i < stroke.size(); ++i) lines.push_back({stroke[i - 1], stroke[i]});
    EntitySet crossed;
    for (const EntityPtr& entity : m_scene.GetEntities()) {
        if (entity->CrossesLines(lines)) crossed.insert(entity);
    }
    const EntitySet doomed = Doom(crossed, m_scene.GetSelection().Get());
    if (!doomed.empty()) Undoer::Instance().Do(new EraseEntities(m_scene, doomed));
}

physics::PolygonPtr BrushTool::IsPolygon(const Vec2List& stroke) const {
    if (stroke.size() < 3) return nullptr;
    Vec2List loop = stroke;
    if (ExtractLoop(loop) != LoopResult::Loop) return nullptr;
    // A big scribble with a tiny loop at its end means nothing.
    if (PathLength(loop) < PathLength(stroke) / 2) return nullptr;
    return MakePolygon(loop);
}

void BrushTool::CreateEntity(const physics::PolygonPtr& polygon) {
    const SnapshotPtr before = new Snapshot(m_scene);
    AddToScene(new PolyEntity(polygon), before, "UndoPolygon");
}

}  // namespace app

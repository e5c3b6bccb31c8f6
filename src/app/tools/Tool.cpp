#include "app/tools/Tool.h"

#include "app/entities/Entity.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "app/tools/StrokeAnalysis.h"
#include "input/Key.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "util/Guarded.h"

namespace app {

namespace {

// The distance map and the search for crossings of an outline take time and memory by its vertices; far
// more than a hand can draw.
constexpr size_t MAX_EDGES = 4000;

// The greatest length of an outline's edges, in world units. A setting that would split it into more
// pieces than MAX_EDGES, or that is no length at all, counts as the length at that many.
math::real EdgeLimit(const math::Vec2List& outline, math::real wanted) {
    const math::real closed = ClosedLength(outline);
    const math::real least = closed / MAX_EDGES;
    return wanted > least ? wanted : least;
}

}  // namespace

void Tool::OnKeyEvent(gui::KeyEvent& event) {
    InputListener::OnKeyEvent(event);
    if (event.m_handled || !event.m_pressed || event.m_key != gui::Key::Escape) return;
    event.m_handled = Cancel();
}

bool Tool::MayDrawAt(math::Vec2 world) const {
    return m_settings.m_drawInside->Get() || !m_scene.GetEntityAt(world);
}

bool Tool::TakesPress(gui::DragEvent& event) const {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse) return false;
    event.m_handled = MayDrawAt(m_view.GUIToWorld(event.m_position));
    return event.m_handled;
}

physics::Surface Tool::GetSurface() {
    return physics::Simulation::Instance().GetDefaultSurface();
}

physics::PolygonPtr Tool::MakePolygon(const math::Vec2List& outline) const {
    physics::PolygonPtr polygon;
    const auto make = [&] {
        const math::real wanted = m_settings.m_maxPointDist->Get() * m_view.GetCmToWorld();
        const math::Vec2List split = physics::AssertMaxDist(outline, EdgeLimit(outline, wanted));
        if (split.size() >= 3) polygon = new physics::Polygon(split, GetSurface());
    };
    util::Guarded(make, "", logging::Error);
    return polygon;
}

void Tool::Tell(const char* key, math::Vec2 world) const {
    if (m_tell) m_tell(key, world);
}

void Tool::AddToScene(const EntityPtr& entity, const SnapshotPtr& before, const char* undoName) {
    m_scene.AddEntity(entity);
    Undoer::Instance().AddRestorer(before, undoName);
}

bool Tool::SelectInside(const physics::Polygon& lasso) {
    EntitySet inside;
    for (const EntityPtr& entity : m_scene.GetEntities()) {
        if (entity->IsInsidePolygon(lasso)) inside.insert(entity);
    }
    if (inside.empty()) return false;
    m_scene.GetSelection().Set(inside);
    return true;
}

}  // namespace app

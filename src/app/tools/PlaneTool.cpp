#include "app/tools/PlaneTool.h"

#include "app/entities/PlaneEntity.h"
#include "app/history/Snapshot.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Key.h"
#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "rendering/Renderer.h"
#include "rendering/ShapePainter.h"
#include "rendering/TextureManager.h"

namespace app {

using math::Vec2;

namespace {

constexpr math::real ARROW_HALF_WIDTH = 0.5f;  // m
// A plane fills half the picture: grass, as in the scenes that ship, not a lively colour of the shapes.
constexpr math::Vec3 GROUND_COLOR(0.36f, 0.55f, 0.27f);

}  // namespace

PlaneTool::PlaneTool(const Workbench& bench)
    : Tool(bench), m_arrow(rendering::TextureManager::Instance().Get("arrow")) {}

PlaneTool::~PlaneTool() noexcept(false) = default;

void PlaneTool::OnDragStart(gui::DragEvent& event) {
    if (!TakesPress(event)) return;
    m_drawing = true;
    m_anchor = m_view.GUIToWorld(event.m_position);
}

void PlaneTool::OnDrag(gui::DragEvent& event) {
    if (!m_drawing) return;
    event.m_handled = true;
    const Vec2 mouse = m_view.GUIToWorld(event.m_position);
    const Vec2 normal = math::Normalized(mouse - m_anchor);
    if (!math::IsFinite(normal) || normal == Vec2()) return;
    m_tip = mouse;
    m_preview = new PlaneEntity(new physics::Plane(normal, -math::Dot(normal, m_anchor), GetSurface()));
    m_preview->SetColor(GROUND_COLOR);
}

void PlaneTool::OnDragEnd(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse || !m_drawing) return;
    event.m_handled = true;
    const PlaneEntityPtr plane = m_preview;
    Cancel();
    if (!plane) return;
    const SnapshotPtr before = new Snapshot(m_scene);
    physics::Simulation::Instance().GetWorldBody()->AddGeom(plane->GetGeom());
    AddToScene(plane, before, "UndoPlane");
}

void PlaneTool::Draw() {
    if (!m_preview) return;
    m_preview->Draw();
    rendering::ShapePainter::Instance().Flush();
    DrawArrow();
}

// The picture points to the right.
void PlaneTool::DrawArrow() {
    const rendering::ScopedTexture texture(m_arrow->Get());
    const rendering::ScopedColor white({1, 1, 1, 1});
    const Vec2 side = math::Perpendicular(math::Normalized(m_tip - m_anchor)) * ARROW_HALF_WIDTH;
    const Vec2 points[] = {m_anchor + side, m_anchor - side, m_tip - side, m_tip + side};
    const Vec2 texCoords[] = {{0, 1}, {0, 0}, {1, 0}, {1, 1}};
    rendering::Renderer::Instance().DrawPolygon(points, texCoords, 4);
}

bool PlaneTool::Cancel() {
    const bool wasDrawing = m_drawing;
    m_drawing = false;
    m_preview = nullptr;
    return wasDrawing;
}

}  // namespace app

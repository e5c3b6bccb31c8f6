#include "app/tools/SpringTool.h"

#include "app/entities/SpringEntity.h"
#include "app/history/Snapshot.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Key.h"
#include "physics/Geom.h"

namespace app {

constexpr float SPRING_WIDTH = 0.5f;  // cm on the screen

SpringTool::SpringTool(const Workbench& bench) : Tool(bench) {}
SpringTool::~SpringTool() noexcept(false) = default;

void SpringTool::OnDragStart(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse) return;
    event.m_handled = true;
    const math::Vec2 world = m_view.GUIToWorld(event.m_position);
    m_before = new Snapshot(m_scene);
    m_spring = new SpringEntity(SPRING_WIDTH * m_view.GetCmToWorld());
    m_spring->SetScene(&m_scene);
    const JointEntity::End pressed = JointEntity::EndAt(m_scene.GetGeomAt(world), world);
    m_spring->SetEnds(pressed, pressed);
}

// Over the very body that it starts from the spring has no second end yet; then it stays with the first.
void SpringTool::MoveFreeEnd(math::Vec2 world) {
    const physics::GeomPtr other = m_scene.GetGeomAt(world, m_spring->GetEndBody(0));
    const physics::GeomPtr& geom = other ? other : m_spring->GetEnd(0).geom;
    m_spring->SetEnds(m_spring->GetEnd(0), JointEntity::EndAt(geom, world));
    m_spring->SetLength(math::Length(m_spring->GetPos(1) - m_spring->GetPos(0)));
}

void SpringTool::Update() {
    if (m_spring) MoveFreeEnd(m_view.GetMousePos());
}

void SpringTool::OnDragEnd(gui::DragEvent& event) {
    if (!m_spring || event.m_key != gui::Key::LeftMouse) return;
    event.m_handled = true;
    const math::Vec2 world = m_view.GUIToWorld(event.m_position);
    MoveFreeEnd(world);
    const SpringEntityPtr spring = m_spring;
    const SnapshotPtr before = m_before;
    Cancel();
    if (!spring->IsInSimulation() || spring->GetPos(0) == spring->GetPos(1)) {
        return Tell("NothingToJoin", world);
    }
    spring->Rebuild();
    AddToScene(spring, before, "UndoSpring");
}

void SpringTool::Draw() {
    if (m_spring) m_spring->Draw();
}

bool SpringTool::Cancel() {
    const bool wasDrawing = static_cast<bool>(m_spring);
    m_spring = nullptr;
    m_before = nullptr;
    return wasDrawing;
}

}  // namespace app

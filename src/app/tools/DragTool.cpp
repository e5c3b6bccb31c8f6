#include "app/tools/DragTool.h"

#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Key.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "rendering/Renderer.h"

namespace app {

using math::Vec2;

namespace {

const math::Vec4 LINE_COLOR(1, 1, 1, 1);

}  // namespace

DragTool::DragTool(const Workbench& bench) : Tool(bench) {}
DragTool::~DragTool() noexcept(false) = default;

void DragTool::OnDragStart(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse) return;
    Cancel();
    const Vec2 mouse = m_view.GUIToWorld(event.m_position);
    const physics::GeomPtr geom = m_scene.GetGeomsAt(mouse).front();
    const physics::AbstractBody* const body = geom->GetBodyPtr();
    if (body == nullptr || body->m_massInv == 0) return;
    Grab(geom, mouse);
    event.m_handled = true;
}

// The mouse body consists of a geom that touches nothing and has no mass: nothing moves it but this tool.
void DragTool::Grab(const physics::GeomPtr& geom, Vec2 mouse) {
    m_before = new Snapshot(m_scene);
    m_hasRun = false;
    const physics::GeomPtr handle = new physics::WorldGeom;
    m_mouseBody = new physics::Body;
    m_mouseBody->SetGeom(handle);
    m_mouseBody->m_pos = mouse;
    m_mouseBody->UpdateGeoms();
    physics::Simulation& simulation = physics::Simulation::Instance();
    simulation.AddBody(m_mouseBody);
    m_hinge = new physics::Hinge(geom, handle, mouse);
    m_hinge->m_distFactor = m_hinge->m_warmFactor = m_settings.m_dragToolStrength->Get();
    simulation.AddConstraint(m_hinge);
}

void DragTool::OnDragEnd(gui::DragEvent& event) {
    if (!event.m_handled) event.m_handled = Cancel();
}

void DragTool::Update() {
    if (!m_hinge) return;
    m_mouseBody->m_pos = m_view.GetMousePos();
    m_mouseBody->UpdateGeoms();
    if (physics::Simulation::Instance().m_running->Get()) m_hasRun = true;
}

void DragTool::Draw() {
    if (!m_hinge) return;
    const rendering::ScopedColor color(LINE_COLOR);
    rendering::Renderer::Instance().DrawLines({m_hinge->GetWorldAnchor(0), m_hinge->GetWorldAnchor(1)},
                                              false);
}

bool DragTool::Cancel() {
    if (!m_hinge) return false;
    physics::Simulation& simulation = physics::Simulation::Instance();
    simulation.RemoveConstraint(m_hinge);
    simulation.RemoveBody(m_mouseBody);
    m_hinge = nullptr;
    m_mouseBody = nullptr;
    SnapshotPtr before;
    std::swap(before, m_before);
    if (m_hasRun) Undoer::Instance().AddRestorer(before, "UndoDrag");
    return true;
}

}  // namespace app

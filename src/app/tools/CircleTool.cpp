#include "app/tools/CircleTool.h"

#include "app/entities/CircleEntity.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "input/Key.h"

namespace app {

CircleTool::CircleTool(const Workbench& bench) : Tool(bench) {}
CircleTool::~CircleTool() noexcept(false) = default;

void CircleTool::OnDragStart(gui::DragEvent& event) {
    if (!TakesPress(event)) return;
    m_drawing = true;
    m_center = m_view.GUIToWorld(event.m_position);
    m_color = m_scene.GetNextColor();
}

void CircleTool::OnDrag(gui::DragEvent& event) {
    if (!m_drawing) return;
    event.m_handled = true;
    const math::real radius = math::Length(m_view.GUIToWorld(event.m_position) - m_center);
    if (!(radius > 0)) return;
    m_preview = new CircleEntity(new physics::Circle(radius, m_center, GetSurface()));
    m_preview->SetColor(m_color);
}

// A circle without a radius leaves a step of the history all the same, for its press was taken.
void CircleTool::OnDragEnd(gui::DragEvent& event) {
    if (event.m_handled || event.m_key != gui::Key::LeftMouse || !m_drawing) return;
    event.m_handled = true;
    const CircleEntityPtr circle = m_preview;
    Cancel();
    const SnapshotPtr before = new Snapshot(m_scene);
    if (circle) m_scene.AddEntity(circle);
    Undoer::Instance().AddRestorer(before, "UndoCircle");
}

void CircleTool::Draw() {
    if (m_preview) m_preview->Draw();
}

bool CircleTool::Cancel() {
    const bool hadPreview = static_cast<bool>(m_preview);
    m_drawing = false;
    m_preview = nullptr;
    return hadPreview;
}

}  // namespace app

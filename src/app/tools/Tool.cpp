#include "app/tools/Tool.h"

#include "app/entities/Entity.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "input/Key.h"

namespace app {

void Tool::OnKeyEvent(gui::KeyEvent& event) {
    InputListener::OnKeyEvent(event);
    if (event.m_handled || !event.m_pressed || event.m_key != gui::Key::Escape) return;
    event.m_handled = Cancel();
}

bool Tool::MayDrawAt(math::Vec2 world) const {
    return m_settings.m_drawInside->Get() || !m_scene.GetEntityAt(world);
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

#include "app/history/Actions.h"

#include "app/scene/Scene.h"
#include "physics/Simulation.h"

namespace app {

void EraseEntities::Do() {
    m_snapshot = new Snapshot(m_scene);
    for (const EntityPtr& entity : m_entities) m_scene.RemoveEntity(entity);
    m_scene.SettleJoints();
    m_after = new Snapshot(m_scene);
}

void EraseEntities::Redo() {
    m_snapshot = new Snapshot(m_scene);
    m_after->Restore();
}

bool SimStart::Absorbs(const Action& next) const {
    return dynamic_cast<const SimStart*>(&next) != nullptr;
}

void SimStart::Undo() {
    m_snapshot->Restore();
    physics::Simulation::Instance().m_running->Set(false);
}

}  // namespace app

#include "app/history/Actions.h"

#include "app/App.h"
#include "physics/Simulation.h"

namespace app {

void EraseEntities::Do() {
    m_snapshot = new Snapshot;
    App& app = App::Instance();
    for (const EntityPtr& entity : m_entities) app.RemoveEntity(entity);
}

void SimStart::Undo() {
    m_snapshot->Restore();
    physics::Simulation::Instance().m_running->Set(false);
}

}  // namespace app

#include "app/history/Actions.h"

#include "app/scene/Scene.h"
#include "physics/Simulation.h"

namespace app {

void SceneExchange::Do() {
    m_nameBefore = m_scene.GetName();
    m_before = new Snapshot(m_scene);
    Exchange();
}

void SceneExchange::Undo() {
    m_after = new Snapshot(m_scene);
    m_nameAfter = m_scene.GetName();
    m_before->Restore();
    m_scene.SetName(m_nameBefore);
}

void SceneExchange::Redo() {
    m_after->Restore();
    m_scene.SetName(m_nameAfter);
}

void ClearScene::Exchange() {
    m_scene.Clear();
    m_scene.GetSettings().Set({});
}

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

void ToggleSceneSettings::Do() {
    m_otherBundle = m_settings.GetBundle();
    m_otherUsers = m_settings.GetUsersOwn();
    if (m_settings.IsEmpty()) {
        m_settings.Adopt();
    } else {
        m_settings.Set({});
    }
}

void ToggleSceneSettings::Undo() {
    const SceneSettings::Bundle bundle = m_otherBundle;
    const SceneSettings::Values users = m_otherUsers;
    m_otherBundle = m_settings.GetBundle();
    m_otherUsers = m_settings.GetUsersOwn();
    m_settings.Switch(bundle);
    m_settings.SetUsersOwn(users);
}

bool SimStart::Absorbs(const Action& next) const {
    return dynamic_cast<const SimStart*>(&next) != nullptr;
}

void SimStart::Undo() {
    m_snapshot->Restore();
    physics::Simulation::Instance().m_running->Set(false);
}

}  // namespace app

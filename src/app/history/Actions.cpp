#include "app/history/Actions.h"

#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "physics/Simulation.h"

namespace app {

SceneExchange::Side SceneExchange::Take() const {
    return {new Snapshot(m_scene), m_scene.GetName(), m_view.GetTargetWorldToGUI()};
}

void SceneExchange::Restore(const Side& side) const {
    side.m_snapshot->Restore();
    m_scene.SetName(side.m_name);
    m_view.SetWorldToGUI(side.m_worldToGUI);
}

void SceneExchange::Do() {
    m_before = Take();
    Exchange();
}

void SceneExchange::Undo() {
    m_after = Take();
    Restore(m_before);
}

void SceneExchange::Redo() {
    Restore(m_after);
}

void ClearScene::Exchange() {
    m_scene.Clear();
    m_scene.GetSettings().Set({});
    m_view.ZoomToScene(m_scene);
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

#include "app/tools/SelectionDrag.h"

#include <set>

#include "app/entities/GeomEntity.h"
#include "app/history/Cloning.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "physics/Body.h"

namespace app {

SelectionDrag::SelectionDrag(Scene& scene) : m_scene(scene) {}
SelectionDrag::~SelectionDrag() = default;

bool SelectionDrag::IsTaken() const {
    return static_cast<bool>(m_before);
}

bool SelectionDrag::Take(math::Vec2 world) {
    const EntityPtr entity = m_scene.GetEntityAt(world);
    if (!entity) return false;
    Selection& selection = m_scene.GetSelection();
    if (!selection.Has(entity)) selection.ClickAt(world);
    selection.MoveToTop();
    m_before = new Snapshot(m_scene);
    return true;
}

void SelectionDrag::Clone() {
    m_scene.GetSelection().Set(CloneIntoScene(m_scene, m_scene.GetSelection().Get()));
}

void SelectionDrag::Hold() {
    m_entities = SceneOrder(m_scene, m_scene.GetSelection().Get());
    m_bodies = m_scene.GetSelection().GetBodies();
    m_scene.HoldBodies(m_bodies);
    m_holding = true;
    for (const EntityPtr& entity : m_entities) entity->BeginMove();
}

void SelectionDrag::Transform(const math::RigidTransform& transform) {
    std::set<physics::Body*> moved;
    for (const EntityPtr& entity : m_entities) {
        if (const auto shape = util::DynamicCast<GeomEntity>(entity)) {
            shape->UpdateBodyPtr();
            if (!moved.insert(shape->GetBody().Get()).second) continue;
        }
        entity->Transform(transform);
    }
}

void SelectionDrag::Finish(const char* undoName) {
    const SnapshotPtr before = m_before;
    Drop();
    Undoer::Instance().AddRestorer(before, undoName);
}

void SelectionDrag::Drop() {
    Release();
    m_before = nullptr;
}

void SelectionDrag::Revert() {
    const SnapshotPtr before = m_before;
    Drop();
    if (before) before->Restore();
}

// The lists are emptied before anything is called that could fail half-way: bodies held for ever would
// be dead to the simulation.
void SelectionDrag::Release() {
    if (!m_holding) return;
    m_holding = false;
    EntityList entities;
    entities.swap(m_entities);
    physics::BodyList bodies;
    bodies.swap(m_bodies);
    m_scene.ReleaseBodies(bodies);
    for (const EntityPtr& entity : entities) entity->EndMove();
}

}  // namespace app

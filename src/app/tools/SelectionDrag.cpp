#include "app/tools/SelectionDrag.h"

#include <set>

#include "app/App.h"
#include "app/entities/GeomEntity.h"
#include "app/history/Actions.h"
#include "app/history/Cloning.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "physics/Body.h"

namespace app {

SelectionDrag::SelectionDrag() = default;
SelectionDrag::~SelectionDrag() = default;

bool SelectionDrag::IsTaken() const {
    return static_cast<bool>(m_before);
}

bool SelectionDrag::Take(math::Vec2 world) {
    App& app = App::Instance();
    const EntityPtr entity = app.GetEntityAt(world);
    if (!entity) return false;
    Selection& selection = app.GetSelection();
    if (!selection.Has(entity)) selection.ClickAt(world);
    selection.MoveToTop();
    m_before = new Snapshot;
    return true;
}

void SelectionDrag::Clone() {
    App::Instance().GetSelection().Set(CloneIntoScene(App::Instance().GetSelection().Get()));
}

void SelectionDrag::Hold() {
    App& app = App::Instance();
    m_entities = SceneOrder(app.GetSelection().Get());
    m_bodies = app.GetSelection().GetBodies();
    app.HoldBodies(m_bodies);
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
    App::Instance().ReleaseBodies(bodies);
    for (const EntityPtr& entity : entities) entity->EndMove();
}

}  // namespace app

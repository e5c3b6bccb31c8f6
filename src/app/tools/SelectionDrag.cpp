#include "app/tools/SelectionDrag.h"

#include <algorithm>
#include <set>

#include "app/entities/GeomEntity.h"
#include "app/entities/HingeEntity.h"
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
    m_before = new Snapshot(m_scene);
    m_oldOrder = m_scene.GetEntities();
    Selection& selection = m_scene.GetSelection();
    m_oldSelection = selection.Get();
    m_moved = false;
    if (!selection.Has(entity)) selection.ClickAt(world);
    selection.MoveToTop();
    return true;
}

void SelectionDrag::Clone() {
    m_clones = CloneIntoScene(m_scene, m_scene.GetSelection().Get());
    m_scene.GetSelection().Set(m_clones);
}

void SelectionDrag::Hold() {
    m_entities = SceneOrder(m_scene, m_scene.GetSelection().Get());
    m_bodies = m_scene.GetSelection().GetBodies();
    for (const physics::BodyPtr& body : m_bodies) m_motions.push_back({body, body->m_vel, body->m_angVel});
    m_scene.HoldBodies(m_bodies);
    m_holding = true;
    for (const EntityPtr& entity : m_entities) entity->BeginMove();
    FindPins();
}

void SelectionDrag::FindPins() {
    m_pins.clear();
    for (const EntityPtr& entity : m_scene.GetEntities()) {
        const auto hinge = util::DynamicCast<HingeEntity>(entity);
        if (!hinge || m_scene.GetSelection().Has(entity)) continue;
        const physics::GeomPtr pinned = hinge->GetPinnedGeom();
        const auto isHeld = [&](const physics::BodyPtr& body) { return pinned->GetBody() == body; };
        if (pinned && std::any_of(m_bodies.begin(), m_bodies.end(), isHeld)) m_pins.push_back(hinge);
    }
}

// Shapes of one body move with it, but on the immovable one each stands for itself.
void SelectionDrag::Transform(const math::RigidTransform& transform) {
    if (transform.GetTranslation() == math::Vec2() && transform.GetAngle() == 0) return;
    m_moved = true;
    std::set<physics::Body*> moved;
    for (const EntityPtr& entity : m_entities) {
        if (const auto shape = util::DynamicCast<GeomEntity>(entity)) {
            shape->UpdateBodyPtr();
            physics::Body* const body = shape->GetBody().Get();
            if (body != nullptr && body->m_massInv != 0 && !moved.insert(body).second) continue;
        }
        entity->Transform(transform);
    }
    for (const HingeEntityPtr& pin : m_pins) pin->CarryPin(transform);
}

void SelectionDrag::Finish(const char* undoName) {
    if (!m_moved) return PutBack();
    const SnapshotPtr before = m_before;
    Release();
    Undoer::Instance().AddRestorer(before, undoName);
}

void SelectionDrag::Revert() {
    if (!m_moved) return PutBack();
    const SnapshotPtr before = m_before;
    Release();
    if (before) before->Restore();
}

// The world may have gone on meanwhile, so this is less than a snapshot brings back.
void SelectionDrag::PutBack() {
    if (!m_before) return;
    std::vector<Motion> motions;
    motions.swap(m_motions);
    EntitySet clones;
    clones.swap(m_clones);
    EntityList order;
    for (const EntityPtr& entity : m_oldOrder) {
        if (m_scene.HasEntity(entity)) order.push_back(entity);
    }
    const EntitySet known(order.begin(), order.end());
    const EntitySet selection = m_oldSelection;
    Release();
    for (const EntityPtr& clone : clones) m_scene.RemoveEntity(clone);
    for (const EntityPtr& entity : m_scene.GetEntities()) {
        if (!known.count(entity)) order.push_back(entity);
    }
    m_scene.SetEntityOrder(order);
    m_scene.GetSelection().Clear();
    for (const EntityPtr& entity : selection) {
        if (m_scene.HasEntity(entity)) m_scene.GetSelection().Add(entity);
    }
    for (const Motion& motion : motions) {
        motion.m_body->m_vel = motion.m_vel;
        motion.m_body->m_angVel = motion.m_angVel;
    }
}

// The lists are emptied before anything is called that could fail half-way: bodies held for ever would
// be dead to the simulation.
void SelectionDrag::Release() {
    m_before = nullptr;
    m_oldOrder.clear();
    m_oldSelection.clear();
    m_clones.clear();
    m_motions.clear();
    m_pins.clear();
    m_moved = false;
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

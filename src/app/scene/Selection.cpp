#include "app/scene/Selection.h"

#include <algorithm>
#include <set>

#include "app/entities/Chain.h"
#include "app/entities/GeomEntity.h"
#include "app/entities/JointEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/scene/Scene.h"
#include "input/Input.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "util/Assert.h"

namespace app {

void Selection::Add(const EntityPtr& entity) {
    CODE_ASSERTION(entity);
    m_entities.insert(entity);
}

bool Selection::SelectAt(math::Vec2 point, bool single) {
    m_entities.clear();
    const EntityPtr entity = m_scene.GetEntityAt(point);
    if (!entity) return false;
    Add(entity);
    if (!single) Widen(entity);
    return true;
}

bool Selection::ClickAt(math::Vec2 point) {
    return SelectAt(point, gui::Input::Instance().IsModifierDown(gui::Modifier::Alt));
}

void Selection::SelectNext(const math::BoundingBox2f& view, bool backward) {
    const auto getMiddle = [](const EntityPtr& entity) { return entity->GetBoundingBox().GetCenter(); };
    const auto isBounded = [](const EntityPtr& entity) { return entity->GetBoundingBox().IsFinite(); };
    EntityList all;
    for (const EntityPtr& entity : m_scene.GetEntities()) {
        if (!isBounded(entity) || view.Contains(getMiddle(entity))) all.push_back(entity);
    }
    if (all.empty()) return;
    const auto bounded = std::stable_partition(all.begin(), all.end(), isBounded);
    std::stable_sort(all.begin(), bounded,
                     [&](const EntityPtr& a, const EntityPtr& b) { return getMiddle(a).x < getMiddle(b).x; });
    const size_t count = all.size();
    const auto place = static_cast<size_t>(
        std::find_if(all.begin(), all.end(), [this](const EntityPtr& e) { return Has(e); }) - all.begin());
    size_t next = backward ? count - 1 : 0;
    if (place < count) next = (place + (backward ? count - 1 : 1)) % count;
    m_entities = {all[next]};
}

void Selection::Widen(const EntityPtr& entity) {
    if (entity->GetChain()) {
        for (const EntityPtr& link : entity->GetChain()->GetNeighbors(entity, true)) {
            // Undo and erasing leave links behind that only the history still holds.
            if (m_scene.HasEntity(link)) m_entities.insert(link);
        }
    }
    if (!entity->HasGroup()) return;
    for (const EntityPtr& other : m_scene.GetEntities()) {
        if (other->GetGroup() == entity->GetGroup()) m_entities.insert(other);
    }
}

physics::BodyList Selection::GetBodies() const {
    const physics::BodyPtr world = physics::Simulation::Instance().GetWorldBody();
    physics::BodyList bodies;
    for (const EntityPtr& entity : m_entities) {
        entity->UpdateBodyPtr();
        const auto shape = util::DynamicCast<GeomEntity>(entity);
        if (!shape || !shape->GetBody() || shape->GetBody() == world) continue;
        if (std::find(bodies.begin(), bodies.end(), shape->GetBody()) != bodies.end()) continue;
        bodies.push_back(shape->GetBody());
    }
    return bodies;
}

math::BoundingBox2f Selection::GetExtent() const {
    math::BoundingBox2f extent;
    for (const EntityPtr& entity : m_entities) {
        const math::BoundingBox2f box = entity->GetBoundingBox();
        if (box.IsFinite()) extent.Extend(box);
    }
    return extent;
}

math::Vec2 Selection::GetCenter(math::Vec2 fallback) const {
    const math::BoundingBox2f extent = GetExtent();
    return extent.IsFinite() ? extent.GetCenter() : fallback;
}

// Joints go with their shapes, or they would vanish behind them. Planes stay below: they would hide half of
// the scene.
void Selection::MoveToTop() const {
    std::set<const physics::Geom*> raised;
    const auto rises = [this, &raised](const EntityPtr& entity) {
        const auto* const joint = dynamic_cast<const JointEntity*>(entity.Get());
        if (joint != nullptr && (raised.count(joint->GetEnd(0).geom.Get()) != 0 ||
                                 raised.count(joint->GetEnd(1).geom.Get()) != 0)) {
            return true;
        }
        return Has(entity) && dynamic_cast<const PlaneEntity*>(entity.Get()) == nullptr;
    };
    for (const EntityPtr& entity : m_entities) {
        const auto* const shape = dynamic_cast<const GeomEntity*>(entity.Get());
        if (shape != nullptr && rises(entity)) raised.insert(shape->GetGeom().Get());
    }
    EntityList order = m_scene.GetEntities();
    std::stable_partition(order.begin(), order.end(),
                          [&](const EntityPtr& entity) { return !rises(entity); });
    m_scene.SetEntityOrder(order);
}

}  // namespace app

#include "app/scene/Scene.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "app/entities/Chain.h"
#include "app/entities/GeomEntity.h"
#include "app/entities/JointEntity.h"
#include "app/entities/PlaneEntity.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "util/Assert.h"
#include "util/Exception.h"

namespace app {

namespace {

// Of like strength and lightness, so that any two of them go together; red, green, blue.
constexpr math::Vec3 PALETTE[] = {
    {0.91f, 0.39f, 0.35f},  // coral
    {0.94f, 0.58f, 0.31f},  // tangerine
    {0.95f, 0.76f, 0.31f},  // sun
    {0.61f, 0.80f, 0.36f},  // lime
    {0.35f, 0.70f, 0.41f},  // leaf
    {0.25f, 0.72f, 0.69f},  // teal
    {0.29f, 0.56f, 0.85f},  // blue
    {0.42f, 0.48f, 0.85f},  // indigo
    {0.64f, 0.45f, 0.84f},  // violet
    {0.90f, 0.48f, 0.66f},  // pink
    {0.71f, 0.51f, 0.35f},  // wood
};
constexpr int PALETTE_SIZE = static_cast<int>(std::size(PALETTE));

// To the point of each plane that is nearest to the middle. A plane far away would make all else small.
void ExtendToPlanes(const EntityList& entities, math::BoundingBox2f& extent) {
    constexpr float FAR = 4;  // sides of the box
    const math::Vec2 size = extent.GetSize(), center = extent.GetCenter();
    const float farthest = FAR * std::max(size.x, size.y);
    for (const EntityPtr& entity : entities) {
        const auto plane = util::DynamicCast<PlaneEntity>(entity);
        if (!plane) continue;
        const math::Vec3& p = plane->GetPlane()->GetPlane();
        const float distance = p.x * center.x + p.y * center.y + p.z;
        if (std::fabs(distance) <= farthest) extent.Extend(center - math::Vec2(p.x, p.y) * distance);
    }
}

}  // namespace

Scene::Scene() : m_selection(*this) {}
Scene::~Scene() = default;

// ---- each frame

void Scene::Update(float dt) {
    UpdateEntities(dt);
    FlushBodies();
}

// An entity may die, or have others added and removed, while it is updated.
void Scene::UpdateEntities(float dt) {
    EntitySet dead;
    for (size_t i = 0; i < m_entities.size(); ++i) {
        const EntityPtr entity = m_entities[i];
        if (entity->IsAlive()) {
            entity->Update(dt);
        } else {
            dead.insert(entity);
        }
    }
    if (!dead.empty()) RetireDead(dead);
}

void Scene::RetireDead(const EntitySet& dead) {
    m_entities.erase(std::remove_if(m_entities.begin(), m_entities.end(),
                                    [&dead](const EntityPtr& entity) { return dead.count(entity) != 0; }),
                     m_entities.end());
    for (const EntityPtr& entity : dead) Forget(entity);
}

void Scene::Forget(const EntityPtr& entity) {
    m_selection.Remove(entity);
    if (entity == m_trackedEntity) m_trackedEntity = nullptr;
    entity->RemoveFromSimulation();
    entity->LeaveScene();
}

void Scene::FlushBodies() {
    try {
        physics::Simulation& simulation = physics::Simulation::Instance();
        std::vector<const physics::Body*> needed;
        for (const EntityPtr& entity : m_entities) {
            entity->UpdateBodyPtr();
            const auto* const shape = dynamic_cast<const GeomEntity*>(entity.Get());
            if (shape != nullptr) needed.push_back(shape->GetBody().Get());
        }
        std::sort(needed.begin(), needed.end());
        physics::BodyList unneeded;
        for (const physics::BodyPtr& body : simulation.GetBodies()) {
            if (!std::binary_search(needed.begin(), needed.end(), body.Get())) unneeded.push_back(body);
        }
        for (const physics::BodyPtr& body : unneeded) {
            if (IsPlaceholder(*body)) continue;
            simulation.RemoveBody(body);
        }
    }
    PASS_ON_EXCEPTIONS
}

// A body of nothing but a world geom is what tools pull at: it needs no entity. The world body without
// fixed shapes is one too, and otherwise the simulation refuses to remove it.
bool Scene::IsPlaceholder(const physics::Body& body) {
    if (body.GetGeoms().size() != 1) return false;
    return dynamic_cast<const physics::WorldGeom*>(body.GetGeoms().begin()->Get()) != nullptr;
}

// ---- entities

void Scene::AddEntity(const EntityPtr& entity) {
    CODE_ASSERTION(entity);
    if (!entity->HasColor()) entity->SetColor(GetNextColor());
    entity->EnterScene(this);
    m_entities.push_back(entity);
    entity->AddToSimulation();
    if (entity->IsTracked()) Track(entity);
}

void Scene::RemoveEntity(const EntityPtr& entity) {
    const EntityPtr kept = entity;  // which may be the list's own
    const auto found = std::find(m_entities.begin(), m_entities.end(), kept);
    if (found != m_entities.end()) m_entities.erase(found);
    Forget(kept);
}

// The bodies go first: taking shapes out of a body one by one would compute it anew each time.
void Scene::Clear() {
    physics::Simulation::Instance().Clear();
    EntityList entities;
    entities.swap(m_entities);
    m_selection.Clear();
    m_trackedEntity = nullptr;
    for (const EntityPtr& entity : entities) {
        entity->RemoveFromSimulation();
        entity->LeaveScene();
    }
}

void Scene::SetEntityOrder(const EntityList& entities) {
    CODE_ASSERTION(entities.size() == m_entities.size());
    m_entities = entities;
}

bool Scene::HasEntity(const EntityPtr& entity) const {
    return entity && entity->IsInScene() && entity->GetScene() == this;
}

EntityPtr Scene::GetEntityAt(math::Vec2 world) const {
    const auto found = std::find_if(m_entities.rbegin(), m_entities.rend(), [world](const EntityPtr& entity) {
        return entity->IsPointInside(world);
    });
    return found == m_entities.rend() ? nullptr : *found;
}

EntityList Scene::GetEntitiesAt(math::Vec2 world) const {
    EntityList found;
    std::copy_if(m_entities.rbegin(), m_entities.rend(), std::back_inserter(found),
                 [world](const EntityPtr& entity) { return entity->IsPointInside(world); });
    return found;
}

GeomList Scene::GetGeomsAt(math::Vec2 world) const {
    GeomList geoms;
    for (const EntityPtr& entity : GetEntitiesAt(world)) {
        if (const auto shape = util::DynamicCast<GeomEntity>(entity)) geoms.push_back(shape->GetGeom());
    }
    geoms.push_back(physics::Simulation::Instance().GetWorldGeom());
    return geoms;
}

physics::GeomPtr Scene::GetGeomAt(math::Vec2 world, const physics::BodyPtr& except) const {
    const physics::AbstractBodyPtr body = except;
    for (const physics::GeomPtr& geom : GetGeomsAt(world)) {
        if (!body || geom->GetBody() != body) return geom;
    }
    return nullptr;
}

math::BoundingBox2f Scene::GetExtent() const {
    math::BoundingBox2f extent;
    for (const EntityPtr& entity : m_entities) {
        const math::BoundingBox2f box = entity->GetBoundingBox();
        if (box.IsFinite()) extent.Extend(box);
    }
    if (extent.IsFinite()) ExtendToPlanes(m_entities, extent);
    return extent;
}

// ---- what belongs together

void Scene::Track(const EntityPtr& entity) {
    if (m_trackedEntity && m_trackedEntity != entity) m_trackedEntity->SetTracked(false);
    m_trackedEntity = entity;
    if (entity) entity->SetTracked(true);
}

std::set<int> Scene::GetGroups() const {
    std::set<int> groups;
    for (const EntityPtr& entity : m_entities) {
        if (entity->HasGroup()) groups.insert(entity->GetGroup());
    }
    return groups;
}

std::set<int> Scene::GetChains() const {
    std::set<int> chains;
    for (const EntityPtr& entity : m_entities) {
        if (entity->GetChain()) chains.insert(entity->GetChain()->GetID());
    }
    return chains;
}

int Scene::LowestFree(const std::set<int>& taken) {
    int free = 0;
    while (taken.count(free)) ++free;
    return free;
}

// Orphans go at once: a snapshot taken between here and the next update would bring them back to life.
void Scene::SettleJoints() {
    const EntityList entities = m_entities;
    EntitySet orphans;
    for (const EntityPtr& entity : entities) {
        const auto joint = util::DynamicCast<JointEntity>(entity);
        if (!joint) continue;
        joint->ReplaceLostPartners();
        if (joint->IsOrphaned()) orphans.insert(entity);
    }
    if (!orphans.empty()) RetireDead(orphans);
}

bool Scene::HidesJointIcons() const {
    return m_jointIcons && !m_jointIcons->Get() && physics::Simulation::Instance().m_running->Get();
}

// ---- bodies

void Scene::HoldBodies(const physics::BodyList& bodies) {
    for (const physics::BodyPtr& body : bodies) body->SetHeld(true);
}

void Scene::ReleaseBodies(const physics::BodyList& bodies) {
    for (const physics::BodyPtr& body : bodies) body->SetHeld(false);
}

math::Vec3 Scene::GetNextColor() {
    // Never one of the last two again: what is drawn in a row is told apart.
    int index = 0;
    do {
        index = m_random.GetUniformInt(0, PALETTE_SIZE);
    } while (index == m_lastColors[0] || index == m_lastColors[1]);
    m_lastColors = {index, m_lastColors[0]};
    return PALETTE[index];
}

// ---- the file

void Scene::SetLoadedPart(int percent) {
    m_loadedPart = percent;
    m_onLoading.CallAll();
}

void Scene::SetName(const String& name) {
    m_name = name;
    m_onNameChange.CallAll();
}

}  // namespace app

#include "app/tools/EntityOperations.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "app/entities/Chain.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/history/Actions.h"
#include "app/history/Cloning.h"
#include "app/history/Snapshot.h"
#include "app/history/Undoer.h"
#include "app/scene/Scene.h"
#include "app/scene/View.h"
#include "app/tools/JointTool.h"
#include "physics/Body.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "util/Assert.h"

namespace app {
namespace {

// Ends a change that began with the snapshot.
void Finish(const SnapshotPtr& before, const char* name) {
    Undoer::Instance().AddRestorer(before, name);
}

void AddDrop(math::Vec2 place) {
    physics::Simulation::Instance().AddParticle(new physics::Particle(place, {}));
}

// With the selected entities at one end of the drawing order, in their order.
void Reorder(Scene& scene, const EntitySet& entities, bool toFront) {
    const SnapshotPtr before = new Snapshot(scene);
    EntityList order = scene.GetEntities();
    std::stable_partition(order.begin(), order.end(),
                          [&](const EntityPtr& entity) { return (entities.count(entity) != 0) != toFront; });
    if (order == scene.GetEntities()) return;
    scene.SetEntityOrder(order);
    Finish(before, "UndoOrder");
}

// The next geom of another body below this one at that place; null for what belongs to the world itself.
physics::GeomPtr FindBelow(const Scene& scene, const physics::GeomPtr& geom, math::Vec2 place) {
    const GeomList geoms = scene.GetGeomsAt(place);
    const auto self = std::find(geoms.begin(), geoms.end(), geom);
    const auto below = std::find_if(self, geoms.end(), [&geom](const physics::GeomPtr& other) {
        return other->GetBody() != geom->GetBody();
    });
    return below == geoms.end() ? physics::GeomPtr() : *below;
}

}  // namespace

void EraseSet(Scene& scene, const EntitySet& entities) {
    if (!entities.empty()) Undoer::Instance().Do(new EraseEntities(scene, entities));
}

void CloneSet(Scene& scene, const View& view, const EntitySet& entities) {
    if (entities.empty()) return;
    const SnapshotPtr before = new Snapshot(scene);
    const EntitySet copies = CloneIntoScene(scene, entities);
    scene.GetSelection().Set(copies);
    const float step = view.GetCmToWorld();
    const physics::BodyList bodies = scene.GetSelection().GetBodies();
    for (const physics::BodyPtr& body : bodies) {
        if (body->m_massInv == 0) continue;
        body->m_pos += math::Vec2(step, -step);
        body->UpdateGeoms();
    }
    Finish(before, "UndoClone");
}

void MoveToBack(Scene& scene, const EntitySet& entities) {
    Reorder(scene, entities, false);
}

void MoveToFront(Scene& scene, const EntitySet& entities) {
    Reorder(scene, entities, true);
}

// The circle takes the polygon's place in its body and in the drawing order, with its colour and material.
void TransformIntoCircle(Scene& scene, const EntitySet& entities) {
    CODE_ASSERTION(entities.size() == 1);
    const auto polyEnt = util::DynamicCast<PolyEntity>(*entities.begin());
    CODE_ASSERTION(polyEnt);
    const SnapshotPtr before = new Snapshot(scene);
    const physics::GeomPtr& geom = polyEnt->GetGeom();
    const math::real radius = std::sqrt(geom->GetArea() / math::PI);
    const physics::CirclePtr circle = new physics::Circle(radius, geom->GetPos());
    const util::SharedPtr<CircleEntity> entity = new CircleEntity(circle);
    entity->SetColor(polyEnt->GetColor());
    entity->SetGroup(polyEnt->GetGroup());
    entity->m_friction->Set(polyEnt->m_friction->Get());
    entity->m_restitution->Set(polyEnt->m_restitution->Get());
    entity->m_density->Set(polyEnt->m_density->Get());
    entity->m_collideWater->Set(polyEnt->m_collideWater->Get());
    entity->m_collideSet->Set(polyEnt->m_collideSet->Get());

    EntityList order = scene.GetEntities();
    std::replace(order.begin(), order.end(), EntityPtr(polyEnt), EntityPtr(entity));
    polyEnt->UpdateBodyPtr();
    const physics::BodyPtr body = polyEnt->GetBody();
    if (body) body->AddGeom(circle);
    scene.AddEntity(entity);
    scene.RemoveEntity(polyEnt);
    scene.SetEntityOrder(order);
    scene.GetSelection().Set({entity});
    Finish(before, "UndoToCircle");
}

void CenterHinge(Scene& scene, const View& view, const EntitySet& entities) {
    const SnapshotPtr before = new Snapshot(scene);
    bool hasHinged = false;
    for (const EntityPtr& entity : entities) {
        const auto polygon = util::DynamicCast<PolyEntity>(entity);
        if (!polygon || !scene.HasEntity(entity)) continue;
        const physics::GeomPtr& geom = polygon->GetGeom();
        const math::Vec2 center = geom->GetPos();
        const physics::GeomPtr below = FindBelow(scene, geom, center);
        if (!below) continue;
        const HingeEntityPtr hinge = new HingeEntity(JointTool::ICON_SIZE * view.GetCmToWorld());
        hinge->SetEnds(JointEntity::EndAt(geom, center), JointEntity::EndAt(below, center));
        hinge->Rebuild();
        scene.AddEntity(hinge);
        hasHinged = true;
    }
    if (hasHinged) Finish(before, "UndoCenterHinge");
}

void DissolveChain(Scene& scene, const EntitySet& entities) {
    std::map<int, ChainPtr> chains;
    for (const EntityPtr& entity : entities) {
        if (const ChainPtr& chain = entity->GetChain()) chains[chain->GetID()] = chain;
    }
    if (chains.empty()) return;
    const SnapshotPtr before = new Snapshot(scene);
    for (const auto& [_, chain] : chains) chain->Dissolve();
    Finish(before, "UndoDissolveChain");
}

void Liquify(Scene& scene, const EntitySet& entities, int maxDrops) {
    const SnapshotPtr before = new Snapshot(scene);
    bool hasMelted = false;
    for (const EntityPtr& entity : entities) {
        const auto shape = util::DynamicCast<FiniteGeomEntity>(entity);
        if (!shape || !scene.HasEntity(entity)) continue;
        hasMelted = true;
        for (const math::Vec2 point : shape->GetWaterPoints(maxDrops)) AddDrop(point);
        scene.RemoveEntity(entity);
    }
    if (hasMelted) Finish(before, "UndoLiquify");
}

}  // namespace app

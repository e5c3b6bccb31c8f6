#include "app/history/Cloning.h"

#include <map>
#include <set>

#include "app/entities/Chain.h"
#include "app/entities/GeomEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/scene/Scene.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "physics/SolverBody.h"

namespace app {

namespace {

// Which copy stands for which original.
class Cloner {
  public:
    explicit Cloner(Scene& scene)
        : m_scene(scene), m_takenGroups(scene.GetGroups()), m_takenChains(scene.GetChains()) {}

    EntitySet Clone(const EntityList& originals);

  private:
    void CloneShape(const EntityPtr& original);
    void CloneJoint(const JointEntityPtr& original);
    void Note(const EntityPtr& original, const EntityPtr& clone);
    physics::GeomPtr FindCopy(const physics::GeomPtr& geom) const;
    void CopyGroup(const Entity& original, Entity& clone);
    void CopyChains();
    void MakeBodies();

    Scene& m_scene;
    std::map<EntityPtr, EntityPtr, physics::ByID<Entity>> m_copies;                      // by the original
    std::map<physics::GeomPtr, physics::GeomPtr, physics::ByID<physics::Geom>> m_geoms;  // by the original
    std::map<script::Int, script::Int> m_groups;                                         // by the original
    std::set<int> m_takenGroups, m_takenChains;
    std::map<physics::BodyPtr, physics::GeomSet, physics::ByID<physics::Body>>
        m_bodyGeoms;  // by the old body
};

// Shapes before joints, which need the copies of their partners, and bodies before entities, so that
// joining the simulation gives none of the copies a body of its own.
EntitySet Cloner::Clone(const EntityList& originals) {
    for (const EntityPtr& original : originals) {
        if (!util::DynamicCast<JointEntity>(original)) CloneShape(original);
    }
    MakeBodies();
    for (const EntityPtr& original : originals) {
        if (const auto joint = util::DynamicCast<JointEntity>(original)) CloneJoint(joint);
    }
    CopyChains();
    EntitySet clones;
    for (const EntityPtr& original : originals) {
        const auto found = m_copies.find(original);
        if (found == m_copies.end()) continue;
        m_scene.AddEntity(found->second);
        clones.insert(found->second);
    }
    return clones;
}

void Cloner::Note(const EntityPtr& original, const EntityPtr& clone) {
    CopyGroup(*original, *clone);
    m_copies[original] = clone;
}

void Cloner::CloneShape(const EntityPtr& original) {
    const EntityPtr clone = original->Clone();
    Note(original, clone);
    const auto from = util::DynamicCast<GeomEntity>(original);
    const auto to = util::DynamicCast<GeomEntity>(clone);
    if (!from || !to) return;
    m_geoms[from->GetGeom()] = to->GetGeom();
    from->UpdateBodyPtr();
    if (from->GetBody()) m_bodyGeoms[from->GetBody()].insert(to->GetGeom());
}

// A joint to something that stays behind stays with it.
void Cloner::CloneJoint(const JointEntityPtr& original) {
    JointEntity::End ends[2] = {original->GetEnd(0), original->GetEnd(1)};
    for (JointEntity::End& end : ends) {
        end.geom = FindCopy(end.geom);
        if (!end.geom) return;
    }
    const auto clone = util::DynamicCast<JointEntity>(original->Clone());
    clone->SetEnds(ends[0], ends[1]);
    clone->Rebuild();
    const auto from = util::DynamicCast<SpringEntity>(original);
    if (from) util::DynamicCast<SpringEntity>(clone)->SetLength(from->GetLength());
    Note(original, clone);
}

physics::GeomPtr Cloner::FindCopy(const physics::GeomPtr& geom) const {
    if (geom == physics::GeomPtr(physics::Simulation::Instance().GetWorldGeom())) return geom;
    const auto found = m_geoms.find(geom);
    return found == m_geoms.end() ? physics::GeomPtr() : found->second;
}

void Cloner::CopyGroup(const Entity& original, Entity& clone) {
    if (!original.HasGroup()) return;
    const auto known = m_groups.find(original.GetGroup());
    if (known != m_groups.end()) {
        clone.SetGroup(known->second);
        return;
    }
    const int fresh = Scene::LowestFree(m_takenGroups);
    m_takenGroups.insert(fresh);
    m_groups[original.GetGroup()] = fresh;
    clone.SetGroup(fresh);
}

// The copies follow each other as their originals do in their chain, wherever those stand in the scene.
void Cloner::CopyChains() {
    std::map<int, std::map<size_t, EntityPtr>> chains;
    for (const auto& [original, clone] : m_copies) {
        const ChainPtr& chain = original->GetChain();
        if (chain) chains[chain->GetID()][chain->IndexOf(*original)] = clone;
    }
    for (const auto& [_, members] : chains) {
        const int number = Scene::LowestFree(m_takenChains);
        m_takenChains.insert(number);
        const ChainPtr copy = new Chain(number);
        size_t place = 0;
        for (const auto& [index, member] : members) copy->AddEntity(place++, member);
    }
}

void Cloner::MakeBodies() {
    const physics::BodyPtr world = physics::Simulation::Instance().GetWorldBody();
    for (const auto& [original, geoms] : m_bodyGeoms) {
        if (original == world) {
            world->AddGeoms(geoms);
            continue;
        }
        const physics::BodyPtr copy = new physics::Body(*original);
        copy->SetGeoms(geoms);
        copy->m_vel = physics::VelocityAt(original->m_vel, original->m_angVel, copy->m_pos - original->m_pos);
        physics::Simulation::Instance().AddBody(copy);
    }
}

}  // namespace

EntityList SceneOrder(const Scene& scene, const EntitySet& entities) {
    EntityList ordered;
    for (const EntityPtr& entity : scene.GetEntities()) {
        if (entities.count(entity)) ordered.push_back(entity);
    }
    return ordered;
}

EntitySet CloneIntoScene(Scene& scene, const EntitySet& originals) {
    return Cloner(scene).Clone(SceneOrder(scene, originals));
}

}  // namespace app

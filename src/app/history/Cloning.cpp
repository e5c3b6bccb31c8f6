#include "app/history/Cloning.h"

#include <map>

#include "app/entities/Chain.h"
#include "app/entities/GeomEntity.h"
#include "app/scene/Scene.h"
#include "physics/Body.h"
#include "physics/Simulation.h"

namespace app {

namespace {

// Which copy stands for which original.
class Cloner {
  public:
    explicit Cloner(Scene& scene) : m_scene(scene) {}

    void Clone(const EntityPtr& original);
    void Finish();
    const EntityList& GetClones() const { return m_clones; }

  private:
    void CopyGroup(const Entity& original, Entity& clone);
    void CopyChain(const EntityPtr& original, const EntityPtr& clone);
    void NoteBody(const EntityPtr& original, const EntityPtr& clone);

    Scene& m_scene;
    EntityList m_clones;
    std::map<script::Int, script::Int> m_groups;
    std::map<Chain*, ChainPtr> m_chains;
    std::map<physics::BodyPtr, physics::GeomSet, physics::ByID<physics::Body>>
        m_bodyGeoms;  // by the old body
};

void Cloner::Clone(const EntityPtr& original) {
    const EntityPtr clone = original->Clone();
    CopyGroup(*original, *clone);
    CopyChain(original, clone);
    NoteBody(original, clone);
    m_clones.push_back(clone);
}

void Cloner::CopyGroup(const Entity& original, Entity& clone) {
    if (!original.HasGroup()) return;
    const script::Int firstFree = m_scene.GetFreeGroup();
    const auto next = firstFree + static_cast<script::Int>(m_groups.size());
    clone.SetGroup(m_groups.emplace(original.GetGroup(), next).first->second);
}

void Cloner::CopyChain(const EntityPtr& original, const EntityPtr& clone) {
    const ChainPtr& chain = original->GetChain();
    if (!chain) return;
    ChainPtr& copy = m_chains[chain.Get()];
    if (!copy) copy = new Chain(m_scene.GetFreeChain() + static_cast<int>(m_chains.size()) - 1);
    copy->AddEntity(copy->GetEntities().size(), clone);
}

void Cloner::NoteBody(const EntityPtr& original, const EntityPtr& clone) {
    const auto from = util::DynamicCast<GeomEntity>(original);
    const auto to = util::DynamicCast<GeomEntity>(clone);
    if (!from || !to) return;
    from->UpdateBodyPtr();
    if (from->GetBody()) m_bodyGeoms[from->GetBody()].insert(to->GetGeom());
}

// Bodies before entities, so that joining the simulation gives none of the copies a body of its own.
void Cloner::Finish() {
    const physics::BodyPtr world = physics::Simulation::Instance().GetWorldBody();
    for (const auto& [original, geoms] : m_bodyGeoms) {
        if (original == world) {
            world->AddGeoms(geoms);
        } else {
            const physics::BodyPtr copy = new physics::Body(*original);
            copy->SetGeoms(geoms);
        }
    }
    for (const EntityPtr& clone : m_clones) m_scene.AddEntity(clone);
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
    Cloner cloner(scene);
    for (const EntityPtr& original : SceneOrder(scene, originals)) cloner.Clone(original);
    cloner.Finish();
    return EntitySet(cloner.GetClones().begin(), cloner.GetClones().end());
}

}  // namespace app

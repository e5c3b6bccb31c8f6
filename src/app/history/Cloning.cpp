#include "app/history/Cloning.h"

#include <map>

#include "app/App.h"
#include "app/entities/Chain.h"
#include "app/entities/GeomEntity.h"
#include "physics/Body.h"
#include "physics/Simulation.h"

namespace app {

namespace {

// Which copy stands for which original.
class Cloner {
  public:
    void Clone(const EntityPtr& original);
    void Finish();
    const EntityList& GetClones() const { return m_clones; }

  private:
    void CopyGroup(const Entity& original, Entity& clone);
    void CopyChain(const EntityPtr& original, const EntityPtr& clone);
    void NoteBody(const EntityPtr& original, const EntityPtr& clone);

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
    const script::Int firstFree = App::Instance().GetFreeGroup();
    const auto next = firstFree + static_cast<script::Int>(m_groups.size());
    clone.SetGroup(m_groups.emplace(original.GetGroup(), next).first->second);
}

void Cloner::CopyChain(const EntityPtr& original, const EntityPtr& clone) {
    const ChainPtr& chain = original->GetChain();
    if (!chain) return;
    ChainPtr& copy = m_chains[chain.Get()];
    if (!copy) copy = new Chain(App::Instance().GetFreeChain() + static_cast<int>(m_chains.size()) - 1);
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
    for (const EntityPtr& clone : m_clones) App::Instance().AddEntity(clone);
}

}  // namespace

EntityList SceneOrder(const EntitySet& entities) {
    EntityList ordered;
    for (const EntityPtr& entity : App::Instance().GetEntities()) {
        if (entities.count(entity)) ordered.push_back(entity);
    }
    return ordered;
}

EntitySet CloneIntoScene(const EntitySet& originals) {
    Cloner cloner;
    for (const EntityPtr& original : SceneOrder(originals)) cloner.Clone(original);
    cloner.Finish();
    return EntitySet(cloner.GetClones().begin(), cloner.GetClones().end());
}

}  // namespace app

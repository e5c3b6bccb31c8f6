#include "app/entities/FixJointEntity.h"

#include <map>
#include <set>
#include <vector>

#include "app/scene/Scene.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/Simulation.h"
#include "rendering/JointPainter.h"
#include "util/ProfileTree.h"

namespace app {

using physics::BodyPtr;
using physics::GeomPtr;
using physics::GeomSet;

// What the fix joints of a scene hold together, all but one of them.
class FixJointEntity::Links {
  public:
    Links(const Scene* scene, const FixJointEntity* without) {
        if (scene == nullptr) return;
        for (const EntityPtr& entity : scene->GetEntities()) {
            const auto* const joint = dynamic_cast<const FixJointEntity*>(entity.Get());
            if (joint != nullptr) Add(*joint, joint != without);
        }
        Add(*without, false);
    }

    // Those of the body's geoms that are connected to the seeds, these included.
    GeomSet Flood(const physics::Body& body, const GeomSet& seeds) const {
        GeomSet reached;
        std::vector<GeomPtr> open(seeds.begin(), seeds.end());
        while (!open.empty()) {
            const GeomPtr geom = open.back();
            open.pop_back();
            if (!body.GetGeoms().count(geom) || !reached.insert(geom).second) continue;
            const auto found = m_neighbors.find(geom);
            if (found != m_neighbors.end())
                open.insert(open.end(), found->second.begin(), found->second.end());
        }
        return reached;
    }

    // Whether any fix joint has the geom as an end.
    bool Names(const GeomPtr& geom) const { return m_named.count(geom) != 0; }

  private:
    void Add(const FixJointEntity& joint, bool holds) {
        const GeomPtr &a = joint.m_fused[0], &b = joint.m_fused[1];
        if (!a || !b) return;
        m_named.insert({a, b});
        if (!holds) return;
        m_neighbors[a].push_back(b);
        m_neighbors[b].push_back(a);
    }

    std::map<GeomPtr, std::vector<GeomPtr>, physics::ByID<physics::Geom>> m_neighbors;
    GeomSet m_named;
};

FixJointEntity::FixJointEntity(math::real size) : JointEntity("FixJoint", size) {}

// The pair is noted even where the bodies are one already: after loading and undo they are.
void FixJointEntity::AddToSimulation() {
    m_fused[0] = GetEnd(0).geom;
    m_fused[1] = GetEnd(1).geom;
    BodyPtr winner = BodyOf(m_fused[0]), loser = BodyOf(m_fused[1]);
    if (!winner || !loser || winner == loser) return;
    // The world's body is the oldest of all, so it always stays.
    if (loser->GetID() < winner->GetID()) std::swap(winner, loser);
    winner->Absorb(*loser);
    physics::Simulation::Instance().RemoveBody(loser);
}

// When one of the two shapes has left the scene, what it held falls apart beside the one that is left.
void FixJointEntity::RemoveFromSimulation() {
    const GeomPtr fused[2] = {m_fused[0], m_fused[1]};
    const Links links(GetScene(), this);
    m_fused[0] = m_fused[1] = nullptr;
    const BodyPtr bodies[2] = {BodyOf(fused[0]), BodyOf(fused[1])};
    if (bodies[0] && bodies[1] && bodies[0] != bodies[1]) return;
    const int left = bodies[0] ? 0 : 1;
    if (!bodies[left]) return;
    if (bodies[left] == physics::Simulation::Instance().GetWorldBody()) {
        SplitWorld(*bodies[left], links, {fused[0], fused[1]});
    } else {
        SplitBody(*bodies[left], links, fused[left]);
    }
}

// What stays is the side of the first partner.
void FixJointEntity::SplitBody(physics::Body& body, const Links& links, const GeomPtr& from) {
    const GeomSet staying = links.Flood(body, {from});
    GeomSet leaving;
    for (const GeomPtr& geom : body.GetGeoms()) {
        if (!staying.count(geom)) leaving.insert(geom);
    }
    if (!leaving.empty()) physics::Simulation::Instance().AddBody(body.Split(leaving));
}

void FixJointEntity::SplitWorld(physics::Body& world, const Links& links, const GeomSet& partners) {
    GeomSet roots;
    for (const GeomPtr& geom : world.GetGeoms()) {
        const bool isPlane = geom->GetKind() == physics::Geom::Kind::PLANE;
        const bool isWorld = geom == GeomPtr(physics::Simulation::Instance().GetWorldGeom());
        if (isPlane || isWorld || !links.Names(geom)) roots.insert(geom);
    }
    const GeomSet staying = links.Flood(world, roots);
    for (const GeomPtr& partner : partners) {
        if (!world.GetGeoms().count(partner) || staying.count(partner)) continue;
        physics::Simulation::Instance().AddBody(world.Split(links.Flood(world, {partner})));
    }
}

void FixJointEntity::Update(float dt) {
    JointEntity::Update(dt);
    if (!IsMoving() && !IsOrphaned()) KeepTogether();
}

// The shapes of one body keep their distance, but for those that are fixed to the world: each of them goes
// where a hand puts it. The joint stays with the first, or with the one that has an extent.
void FixJointEntity::KeepTogether() {
    constexpr math::real APART = 0.001f;  // m, more than rounding
    if (math::Length(GetPos(0) - GetPos(1)) <= APART) return;
    const int leader = GetEnd(0).geom->GetBoundingBox().IsFinite() ? 0 : 1;
    End ends[2] = {GetEnd(0), GetEnd(1)};
    End& other = ends[1 - leader];
    other = EndAt(other.geom, GetPos(leader));
    SetEnds(ends[0], ends[1]);
}

void FixJointEntity::ResetForRestore() {
    JointEntity::ResetForRestore();
    m_fused[0] = m_fused[1] = nullptr;
}

void FixJointEntity::Draw() {
    PROFILE_SECTION("FixJoint::Draw");
    if (!IsHidden()) {
        rendering::JointPainter::Instance().DrawFixJoint(GetIconPlace(), GetSize(), GetDrawColor());
    }
}

void FixJointEntity::Serialize(EntitySerializer& out) const {
    JointEntity::Serialize(out);
    out["type"] = script::ValueToObject("fixjoint");
}

EntityPtr FixJointEntity::Clone() const {
    const FixJointEntityPtr clone = new FixJointEntity(GetSize());
    clone->CopyValuesFrom(*this);
    return clone;
}

}  // namespace app

// The greedy solver of ConstraintSolver: always the constraint with the greatest residual.

#include <algorithm>
#include <functional>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "physics/Body.h"
#include "physics/ConstraintSolver.h"
#include "physics/Contact.h"
#include "physics/Hinge.h"
#include "physics/StepSettings.h"
#include "util/Assert.h"
#include "util/ProfileTree.h"

namespace physics {

namespace {

// Constraints by residual, greatest first. A key that is not a number would break the order: it counts
// as 0. Entries that leave keep their memory for those that come.
class ResidualQueue {
  public:
    void Insert(Constraint* constraint) {
        const math::real key = KeyOf(*constraint);
        if (m_spare.empty()) {
            m_queue.emplace(key, constraint);
            return;
        }
        m_spare.back().key() = key;
        m_spare.back().mapped() = constraint;
        m_queue.insert(std::move(m_spare.back()));
        m_spare.pop_back();
    }
    // Takes out every constraint whose residual equals this one's, not only this one.
    void EraseTies(const Constraint& constraint) {
        const math::real key = KeyOf(constraint);
        for (auto it = m_queue.find(key); it != m_queue.end(); it = m_queue.find(key)) {
            m_spare.push_back(m_queue.extract(it));
        }
    }
    bool IsEmpty() const { return m_queue.empty(); }
    Constraint* GetGreatest() const { return m_queue.begin()->second; }

  private:
    using Queue = std::multimap<math::real, Constraint*, std::greater<>>;

    static math::real KeyOf(const Constraint& constraint) {
        const math::real residual = constraint.m_residual;
        return residual < std::numeric_limits<math::real>::infinity() ? residual : 0;
    }

    Queue m_queue;
    std::vector<Queue::node_type> m_spare;
};

// By place in the list, where addresses would differ from run to run. Bodies are given their constraints in
// that order.
using ConstraintList = util::VectorPOD<Constraint*>;

void GatherNeighbors(const Constraint& constraint, ConstraintList& neighbors) {
    const ConstraintList& a = constraint.m_bodies[0]->m_constraints;
    const ConstraintList& b = constraint.m_bodies[1]->m_constraints;
    neighbors.resize(a.size() + b.size());
    const auto byPlace = [](const Constraint* l, const Constraint* r) { return l->m_place < r->m_place; };
    Constraint** const end =
        std::set_union(a.begin(), a.end(), b.begin(), b.end(), neighbors.begin(), byPlace);
    neighbors.resize(static_cast<size_t>(end - neighbors.begin()));
}

void EnterInBodies(Constraint& constraint) {
    CODE_ASSERTION(constraint.m_bodies[0] && constraint.m_bodies[1]);
    for (AbstractBody* const body : constraint.m_bodies) {
        if (!body->IsImmovable()) body->m_constraints.push_back(&constraint);
    }
}

}  // namespace

void ConstraintSolver::SolvePrioritized(const AbstractBodyList& bodies, const StepSettings& settings) {
    PROFILE_SECTION("PrioritizedSolver");
    for (AbstractBody* const body : m_active) {
        body->m_deltaVel = math::Vec2();
        body->m_deltaAngVel = 0;
    }
    const SolveConstants constants(settings);
    DropRefused([&](uint32_t i) { return m_list[i].constraint->SolveInit(constants); });
    WorkOffQueue(bodies, settings.sweeps);
    for (AbstractBody* const body : m_active) {
        if (body->IsImmovable()) continue;
        body->m_vel += body->m_deltaVel;
        body->m_angVel += body->m_deltaAngVel;
    }
}

void ConstraintSolver::WorkOffQueue(const AbstractBodyList& bodies, int sweeps) {
    for (AbstractBody* const body : bodies) body->m_constraints.clear();
    ResidualQueue queue;
    ConstraintList neighbors;
    for (size_t i = 0; i < m_list.size(); ++i) {
        Constraint& constraint = *m_list[i].constraint;
        constraint.m_place = static_cast<uint32_t>(i);
        EnterInBodies(constraint);
        constraint.SolveCalc();
        queue.Insert(&constraint);
    }
    const uint64_t rounds = static_cast<uint64_t>(std::max(sweeps, 0)) * m_list.size();
    // Constraints that tie (typically at 0) may all leave the queue: the rest of this solve is then done.
    for (uint64_t round = 0; round < rounds && !queue.IsEmpty(); ++round) {
        Constraint* const greatest = queue.GetGreatest();
        greatest->SolveApply();
        GatherNeighbors(*greatest, neighbors);
        for (Constraint* const neighbor : neighbors) {
            queue.EraseTies(*neighbor);
            neighbor->SolveCalc();
            queue.Insert(neighbor);
        }
    }
}

}  // namespace physics

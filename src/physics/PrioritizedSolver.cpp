// The greedy solver of ConstraintSolver: always the constraint with the greatest residual.

#include <functional>
#include <limits>
#include <map>
#include <set>

#include "physics/Body.h"
#include "physics/ConstraintSolver.h"
#include "physics/Contact.h"
#include "physics/Hinge.h"
#include "util/Assert.h"
#include "util/ProfileTree.h"

namespace physics {

namespace {

// Constraints by residual, greatest first. A key that is not a number would break the order: it counts
// as 0.
class ResidualQueue {
  public:
    void Insert(Constraint* constraint) { m_queue.emplace(KeyOf(*constraint), constraint); }
    // Takes out every constraint whose residual equals this one's, not only this one.
    void EraseTies(const Constraint& constraint) { m_queue.erase(KeyOf(constraint)); }
    bool IsEmpty() const { return m_queue.empty(); }
    Constraint* GetGreatest() const { return m_queue.begin()->second; }

  private:
    static math::real KeyOf(const Constraint& constraint) {
        const math::real residual = constraint.m_residual;
        return residual < std::numeric_limits<math::real>::infinity() ? residual : 0;
    }

    std::multimap<math::real, Constraint*, std::greater<math::real>> m_queue;
};

// By place in the list, where addresses would differ from run to run.
struct ByPlace {
    bool operator()(const Constraint* a, const Constraint* b) const { return a->m_place < b->m_place; }
};
using ConstraintSet = std::set<Constraint*, ByPlace>;

ConstraintSet GatherNeighbors(const Constraint& constraint) {
    ConstraintSet neighbors;
    for (const AbstractBody* const body : constraint.m_bodies) {
        neighbors.insert(body->m_constraints.begin(), body->m_constraints.end());
    }
    return neighbors;
}

void EnterInBodies(Constraint& constraint) {
    CODE_ASSERTION(constraint.m_bodies[0] && constraint.m_bodies[1]);
    for (AbstractBody* const body : constraint.m_bodies) {
        if (!body->IsImmovable()) body->m_constraints.push_back(&constraint);
    }
}

}  // namespace

void ConstraintSolver::SolvePrioritized(const AbstractBodyList& bodies, int sweeps) {
    PROFILE_SECTION("PrioritizedSolver");
    for (AbstractBody* const body : bodies) body->m_constraints.clear();
    ResidualQueue queue;
    for (size_t i = 0; i < m_list.size(); ++i) {
        Constraint& constraint = *m_list[i].constraint;
        constraint.m_place = static_cast<uint32_t>(i);
        EnterInBodies(constraint);
        constraint.SolveCalc();
        queue.Insert(&constraint);
    }
    const uint64_t rounds = static_cast<uint64_t>(sweeps) * m_list.size();
    // Constraints that tie (typically at 0) may all leave the queue: the rest of this solve is then done.
    for (uint64_t round = 0; round < rounds && !queue.IsEmpty(); ++round) {
        Constraint* const greatest = queue.GetGreatest();
        greatest->SolveApply();
        for (Constraint* const neighbor : GatherNeighbors(*greatest)) {
            queue.EraseTies(*neighbor);
            neighbor->SolveCalc();
            queue.Insert(neighbor);
        }
    }
}

}  // namespace physics

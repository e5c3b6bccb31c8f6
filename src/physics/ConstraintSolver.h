#pragma once

#include <cstdint>

#include "physics/ContactRow.h"
#include "physics/Fwd.h"
#include "physics/PointMotion.h"
#include "physics/ResidualSort.h"
#include "util/VectorPOD.h"

namespace physics {

// Finds the velocity changes that satisfy all hinges and contacts of a step, by projected Gauss-Seidel over
// rows in impulse form: each sweep visits every constraint, computes the impulse still missing and applies
// it. The number of sweeps is fixed; there is no test of convergence.
//
// The sweeps run over packed copies: one cache line per contact, half a line per body, both in arrays, filled
// after SolveInit and stored back once. The alternative is a greedy solver that always works on the
// constraint with the greatest residual; it settles stacks better, at 60 to 90 times the cost.
//
// Equations and constants stand in ConstraintSolver.cpp. All arrays keep their memory between steps.
class ConstraintSolver {
  public:
    // Reads Simulation's settings. Constraints over bodies that are not in `bodies` are left out.
    void Run(const AbstractBodyList& bodies, const HingeSet& hinges, const ContactPool& contacts);

  private:
    struct Entry {
        Constraint* constraint;
        Hinge* hinge;  // null for a contact
    };
    // A stretch of the sorted order: contact rows up to an end, then a hinge (or none at the very end).
    struct Stretch {
        uint32_t contactsEnd;
        Hinge* hinge;
        uint32_t body0;
        uint32_t body1;
    };

    static void SetStepConstants();
    void InitBodies(const AbstractBodyList& bodies);
    void BuildList(const HingeSet& hinges, const ContactPool& contacts);
    void InitConstraints(const AbstractBodyList& bodies);
    static bool InitConstraint(const Entry& entry, const AbstractBodyList& bodies);
    void ExitConstraints();
    static void ApplyVelocityChanges(const AbstractBodyList& bodies);

    void SolveGaussSeidel(const AbstractBodyList& bodies, int sweeps, bool preSort);
    void PackBodies(const AbstractBodyList& bodies);
    void PackRows();
    void SortByResidual();
    void ArrangeRows();
    void Sweep();
    void SweepContacts(uint32_t begin, uint32_t end);
    void StoreRows();
    void StoreBodies(const AbstractBodyList& bodies) const;

    void SolvePrioritized(const AbstractBodyList& bodies, int sweeps);

    util::VectorPOD<Entry> m_list;  // hinges, then contacts
    util::VectorPOD<SolverBody> m_bodies;
    util::VectorPOD<ContactRow> m_rows;    // in the order of the list; unused entries for hinges
    util::VectorPOD<ContactRow> m_sorted;  // contacts only, in the order of the sweeps
    util::VectorPOD<Stretch> m_stretches;
    util::VectorPOD<uint32_t> m_order;  // list indices in the order of the sweeps
    ResidualSort m_sort;
};

}  // namespace physics

#pragma once

#include <cstdint>
#include <vector>

#include "physics/ContactRow.h"
#include "physics/Fwd.h"
#include "physics/ResidualSort.h"
#include "physics/RowGroups.h"
#include "physics/RowSweeps.h"
#include "physics/SolverBody.h"
#include "util/VectorPOD.h"

namespace physics {

// Finds the velocity changes that satisfy all hinges and contacts of a step, by projected Gauss-Seidel over
// rows in impulse form: each sweep visits every constraint, computes the impulse still missing and applies
// it. The number of sweeps is fixed; there is no test of convergence.
//
// The sweeps run over packed rows and bodies, filled straight from contacts, hinges and bodies and stored
// back once. The order of the sweeps is that of the list, or by residual; but all that it fixes is which of
// two constraints over the same movable body goes first. So each constraint is given the first level after
// those of its two bodies' earlier constraints, and the contacts or hinges of a level are solved eight at a
// time, with the very bits that one after the other would give.
//
// Between sweeps the solve goes on along the way it has been going (nonlinear conjugate gradients), which
// carries loads through tall stacks and long chains.
//
// The alternative is a greedy solver that always works on the constraint with the greatest residual; it
// settles stacks better, at 60 to 90 times the cost.
//
// The weights of the rows stand in StepSettings.cpp, their equations with each constraint. All arrays keep
// their memory between steps.
class ConstraintSolver {
  public:
    // Each of `bodies` knows its place in the list (m_index). Constraints over others are left out.
    void Run(const AbstractBodyList& bodies, const HingeSet& hinges, const ContactPool& contacts,
             const StepSettings& settings);

    // Which loops the sweeps use, all with the same bits. The fastest unless told otherwise.
    void SetRowSweeps(const RowSweeps& sweeps) { m_sweeps = &sweeps; }

  private:
    struct Entry {
        Constraint* constraint;
        Hinge* hinge;    // null for a contact
        uint32_t body0;  // places among the active bodies, or NOWHERE
        uint32_t body1;
    };
    static constexpr uint32_t NOWHERE = 0xFFFFFFFFu;

    // What the sweeps treat alike: contacts and hinges in groups, and hinges with motors one by one.
    enum RowKind : uint32_t { CONTACTS, HINGES, MOTORS, ROW_KINDS };

    // Constraints that share no movable body, up to these ends.
    struct Level {
        uint32_t ends[ROW_KINDS];  // in m_groups, m_hingeGroups and m_motors
    };
    struct MotorRow {
        Hinge* hinge;
        uint32_t body0;
        uint32_t body1;
    };

    void ListConstraints(const AbstractBodyList& bodies, const HingeSet& hinges, const ContactPool& contacts);
    void List(Constraint* constraint, Hinge* hinge, const AbstractBodyList& bodies);
    uint32_t Activate(AbstractBody* body, const AbstractBodyList& bodies);
    template <class Init>
    void DropRefused(Init init);

    void SolveGaussSeidel(const StepSettings& settings);
    bool InitRow(uint32_t i, const SolveConstants& constants);
    void SortByResidual();
    void AssignLevels();
    uint32_t RaiseLevel(uint32_t body0, uint32_t body1);
    static RowKind GetKind(const Entry& entry);
    void LayOutLevels();
    void JoinLevels();
    void ClearLastGroups();
    void ArrangeRows();
    void PutEnds(EndsRow8& group, uint32_t lane, const Entry& entry) const;
    static void PutContact(ContactRow8& group, uint32_t lane, const ContactRow& row);
    void PackMotions();
    void SweepAll(const StepSettings& settings);
    math::real Sweep(SweepKind kind, math::real trendShare);
    void SolveMotor(const MotorRow& row);
    void SweepWithTrend(int sweeps);
    void FollowTrend(math::real share);
    void StoreRows();
    void ApplyMotions() const;

    void SolvePrioritized(const AbstractBodyList& bodies, const StepSettings& settings);
    void WorkOffQueue(const AbstractBodyList& bodies, int sweeps);

    const RowSweeps* m_sweeps = &GetRowSweeps();
    util::VectorPOD<Entry> m_list;            // hinges, then contacts
    util::VectorPOD<ContactRow> m_rows;       // in the order of the list; those of hinges are unused
    util::VectorPOD<uint32_t> m_places;       // per body: its place in the two below, or NOWHERE
    AbstractBodyList m_active;                // bodies with constraints, in order of first mention
    util::VectorPOD<SolverBody> m_bodies;     // their copies, and one that never moves, for unused lanes
    util::VectorPOD<uint32_t> m_order;        // list indices, greatest residual first
    util::VectorPOD<uint32_t> m_bodyLevels;   // per body: levels in use so far; NOWHERE if it cannot move
    util::VectorPOD<uint32_t> m_entryLevels;  // per list entry
    util::VectorPOD<uint32_t> m_slots;        // per list entry: its place among the lanes of its kind
    util::VectorPOD<Level> m_levels;
    util::VectorPOD<Level> m_cursors;  // per level: the next free lanes
    util::VectorPOD<Level> m_stages;   // levels, and runs of levels of one kind joined to one
    // What the sweeps run over, aligned for wide registers.
    std::vector<ContactRow8> m_groups;
    std::vector<HingeRow8> m_hingeGroups;
    std::vector<ContactTrend8> m_trends;      // of m_groups
    std::vector<HingeTrend8> m_hingeTrends;   // of m_hingeGroups
    std::vector<BodyMotion> m_motions;        // of m_bodies, an even number
    std::vector<BodyMotion> m_motionTrends;   // the velocities that the rows' trends make
    std::vector<BodyMotion> m_motionsBefore;  // the last sweep
    util::VectorPOD<MotorRow> m_motors;
    ResidualSort m_sort;
};

// A constraint that refuses, or whose bodies are others, gives its place to the last one, which is then asked
// in turn.
template <class Init>
void ConstraintSolver::DropRefused(Init init) {
    const auto isWanted = [&](uint32_t i) {
        return m_list[i].body0 != NOWHERE && m_list[i].body1 != NOWHERE && init(i);
    };
    for (uint32_t i = 0; i < m_list.size(); ++i) {
        while (i < m_list.size() && !isWanted(i)) {
            m_list[i] = m_list.back();
            m_list.pop_back();
        }
    }
}

}  // namespace physics

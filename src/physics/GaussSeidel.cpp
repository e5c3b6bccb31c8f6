// The sweeps of ConstraintSolver: packed rows and bodies, see ConstraintSolver.h.

#include <algorithm>

#include "physics/Body.h"
#include "physics/ConstraintSolver.h"
#include "physics/Contact.h"
#include "physics/Float4.h"
#include "physics/HingeSolve.h"
#include "physics/StepSettings.h"
#include "util/ProfileTree.h"

namespace physics {

void ConstraintSolver::SolveGaussSeidel(const StepSettings& settings) {
    PROFILE_SECTION("GaussSeidelSolver");
    if (m_list.empty() || settings.sweeps <= 0) return;
    PackRows();
    PackBodies();
    if (settings.preSort) {
        SortByResidual();
    } else {
        m_order.resize(m_list.size());
        for (uint32_t i = 0; i < m_order.size(); ++i) m_order[i] = i;
    }
    AssignLevels();
    LayOutLevels();
    ArrangeRows();
    if (settings.conjugate) {
        SweepWithTrend(settings.sweeps);
    } else {
        m_trends.clear();
        for (int i = 0; i < settings.sweeps; ++i) Sweep(SweepKind::PLAIN, 0);
    }
    StoreRows();
    StoreBodies();
}

// ---- packing -------------------------------------------------------------------------------------------

static void PackRow(ContactRow& row, const Contact& contact) {
    row.m_normal = contact.m_normal;
    row.m_r[0] = contact.m_r[0];
    row.m_r[1] = contact.m_r[1];
    row.m_friction = contact.m_friction;
    row.m_useNormalMass = contact.m_useNormalMass;
    row.m_useTangentMass = contact.m_useTangentMass;
    row.m_normalTarget = contact.m_normalTarget;
    row.m_tangentTarget = contact.m_tangentTarget;
    row.m_normalImpulse = contact.m_normalImpulse;
    row.m_tangentImpulse = contact.m_tangentImpulse;
}

void ConstraintSolver::PackRows() {
    m_rows.resize(m_list.size());
    for (uint32_t i = 0; i < m_list.size(); ++i) {
        const Constraint& constraint = *m_list[i].constraint;
        m_rows[i].body0 = m_places[constraint.m_bodies[0]->m_index];
        m_rows[i].body1 = m_places[constraint.m_bodies[1]->m_index];
        if (!m_list[i].hinge) PackRow(m_rows[i], static_cast<const Contact&>(constraint));
    }
}

void ConstraintSolver::PackBodies() {
    m_bodies.resize(m_active.size() + 1);
    for (size_t i = 0; i < m_active.size(); ++i) {
        const AbstractBody& body = *m_active[i];
        SolverBody& packed = m_bodies[i];
        packed.m_deltaVel = body.m_deltaVel;
        packed.m_deltaAngVel = body.m_deltaAngVel;
        packed.m_massInv = body.GetMassInv();
        packed.m_inertiaInv = body.GetInertiaInv();
    }
    m_bodies.back() = SolverBody();
}

// The constraints furthest from being satisfied by the warm start go first.
void ConstraintSolver::SortByResidual() {
    m_sort.Clear(m_list.size());
    for (uint32_t i = 0; i < m_list.size(); ++i) {
        const ContactRow& row = m_rows[i];
        const SolverBody& b0 = m_bodies[row.body0];
        const SolverBody& b1 = m_bodies[row.body1];
        if (Hinge* const hinge = m_list[i].hinge) {
            hinge->Calc(b0, b1);
            m_sort.Add(hinge->m_residual);
        } else {
            const math::Vec2 c = DeltaVelocityAt(b1, row.m_r[1]) - DeltaVelocityAt(b0, row.m_r[0]);
            const ContactDelta delta = SolveContactRows(row, c);
            m_sort.Add(delta.tangent * delta.tangent + delta.normal * delta.normal);
        }
    }
    m_sort.Sort(m_order);
}

// ---- levels --------------------------------------------------------------------------------------------

// The first level after those of both bodies' earlier constraints. Bodies that cannot move are in nobody's
// way.
uint32_t ConstraintSolver::RaiseLevel(uint32_t body0, uint32_t body1) {
    const bool moves0 = !m_bodies[body0].IsImmovable();
    const bool moves1 = !m_bodies[body1].IsImmovable();
    const uint32_t level = std::max(moves0 ? m_bodyLevels[body0] : 0, moves1 ? m_bodyLevels[body1] : 0);
    if (moves0) m_bodyLevels[body0] = level + 1;
    if (moves1) m_bodyLevels[body1] = level + 1;
    return level;
}

void ConstraintSolver::AssignLevels() {
    m_bodyLevels.clear();
    m_bodyLevels.resize(m_bodies.size(), 0);
    m_entryLevels.resize(m_list.size());
    m_levels.clear();
    for (const uint32_t i : m_order) {
        const uint32_t level = RaiseLevel(m_rows[i].body0, m_rows[i].body1);
        if (level >= m_levels.size()) m_levels.resize(level + 1, {0, 0});
        ++(m_list[i].hinge ? m_levels[level].hingesEnd : m_levels[level].groupsEnd);
        m_entryLevels[i] = level;
    }
}

// Turns the levels' counts of constraints into places.
void ConstraintSolver::LayOutLevels() {
    m_cursors.resize(m_levels.size());
    uint32_t groups = 0;
    uint32_t hinges = 0;
    for (size_t i = 0; i < m_levels.size(); ++i) {
        m_cursors[i] = groups * ContactRow8::LANES;
        groups += (m_levels[i].groupsEnd + ContactRow8::LANES - 1) / ContactRow8::LANES;
        hinges += m_levels[i].hingesEnd;
        m_levels[i] = {groups, hinges};
    }
    m_groups.resize(groups);
    m_hinges.resize(hinges);
}

void ConstraintSolver::ArrangeRows() {
    const uint32_t lanes = static_cast<uint32_t>(m_groups.size()) * ContactRow8::LANES;
    ContactRow unused = {};
    unused.body0 = unused.body1 = static_cast<uint32_t>(m_bodies.size() - 1);
    m_slots.resize(m_list.size());
    m_hingeCursors.resize(m_levels.size());
    for (size_t i = 0; i < m_levels.size(); ++i) m_hingeCursors[i] = i == 0 ? 0 : m_levels[i - 1].hingesEnd;
    for (const uint32_t i : m_order) {
        const uint32_t level = m_entryLevels[i];
        if (Hinge* const hinge = m_list[i].hinge) {
            m_hinges[m_hingeCursors[level]++] = {hinge, m_rows[i].body0, m_rows[i].body1};
            continue;
        }
        m_slots[i] = m_cursors[level]++;
        PutInGroup(m_rows[i], m_slots[i]);
    }
    for (size_t i = 0; i < m_levels.size(); ++i) {
        const uint32_t end = std::min(m_levels[i].groupsEnd * ContactRow8::LANES, lanes);
        while (m_cursors[i] < end) PutInGroup(unused, m_cursors[i]++);
    }
}

void ConstraintSolver::PutInGroup(const ContactRow& row, uint32_t slot) {
    ContactRow8& group = m_groups[slot / ContactRow8::LANES];
    const uint32_t lane = slot % ContactRow8::LANES;
    group.body0[lane] = row.body0;
    group.body1[lane] = row.body1;
    group.normalX[lane] = row.m_normal.x;
    group.normalY[lane] = row.m_normal.y;
    group.r0x[lane] = row.m_r[0].x;
    group.r0y[lane] = row.m_r[0].y;
    group.r1x[lane] = row.m_r[1].x;
    group.r1y[lane] = row.m_r[1].y;
    group.inertiaInv0[lane] = m_bodies[row.body0].m_inertiaInv;
    group.inertiaInv1[lane] = m_bodies[row.body1].m_inertiaInv;
    group.friction[lane] = row.m_friction;
    group.normalMass[lane] = row.m_useNormalMass;
    group.tangentMass[lane] = row.m_useTangentMass;
    group.normalTarget[lane] = row.m_normalTarget;
    group.tangentTarget[lane] = row.m_tangentTarget;
    group.normalImpulse[lane] = row.m_normalImpulse;
    group.tangentImpulse[lane] = row.m_tangentImpulse;
}

// ---- sweeps --------------------------------------------------------------------------------------------

// Gives the sum of the squares of the contacts' changes, of a sweep with a trend.
math::real ConstraintSolver::Sweep(SweepKind kind, math::real trendShare) {
    const ContactSweeps& sweeps = *m_sweeps;
    const auto solve = kind == SweepKind::PLAIN  ? sweeps.plain
                       : kind == SweepKind::LAST ? sweeps.last
                                                 : sweeps.withTrend;
    alignas(32) math::real squares[ContactRow8::LANES] = {};
    const auto solveContacts = [&](uint32_t begin, uint32_t end) {
        if (begin == end) return;
        ContactTrend8* const trends = m_trends.empty() ? nullptr : m_trends.data() + begin;
        solve({m_groups.data() + begin, end - begin, trends, trendShare, squares, m_bodies.data()});
    };
    uint32_t group = 0, hinge = 0;
    for (const Level& level : m_levels) {
        if (hinge == level.hingesEnd) continue;  // its contacts can wait for those of the next
        solveContacts(group, level.groupsEnd);
        group = level.groupsEnd;
        for (; hinge < level.hingesEnd; ++hinge) SolveHinge(m_hinges[hinge]);
    }
    solveContacts(group, static_cast<uint32_t>(m_groups.size()));
    const math::real* const s = squares;
    return ((s[0] + s[1]) + (s[2] + s[3])) + ((s[4] + s[5]) + (s[6] + s[7]));
}

void ConstraintSolver::SolveHinge(const HingeRow& row) {
    SolverBody& b0 = m_bodies[row.body0];
    SolverBody& b1 = m_bodies[row.body1];
    row.hinge->Calc(b0, b1);
    row.hinge->Apply(b0, b1);
}

// The conjugate gradients of Silcowitz-Hansen, Niebe and Erleben ("A nonsmooth nonlinear conjugate gradient
// method for interactive contact force problems", 2010). A sweep changes the impulses x by d, which stands in
// for the gradient. With d', p the change and the trend of the sweep before:
//   beta = |d|^2 / |d'|^2
//   x += beta p,  p = d + beta p     if beta is below 1, else
//   p = 0                            and the next sweep begins anew.
// The fixed point is that of the sweeps alone. The last sweep stands as it is, so that all bounds hold. The
// bodies' velocities are linear in the impulses, and so have trends of their own: rows need not be applied,
// and the next sweep makes the step of each row when it comes by.
void ConstraintSolver::SweepWithTrend(int sweeps) {
    m_trends.clear();
    m_trends.resize(m_groups.size(), ContactTrend8{});
    for (const HingeRow& row : m_hinges) row.hinge->ForgetTrend();
    m_motionTrends.clear();
    m_motionTrends.resize(m_bodies.size(), BodyMotion{});
    m_motionsBefore.resize(m_bodies.size());
    for (size_t i = 0; i < m_bodies.size(); ++i)
        Store(m_motionsBefore[i].numbers, LoadFloat4(&m_bodies[i].m_deltaVel.x));
    math::real last = 0, share = 0;
    for (int i = 1; i < sweeps; ++i) {
        math::real size = Sweep(SweepKind::WITH_TREND, share);
        for (const HingeRow& row : m_hinges) size += row.hinge->GetSquaredDelta();
        share = size < last ? size / last : 0;
        last = size;
        FollowTrend(share);
    }
    Sweep(SweepKind::LAST, share);
}

// Of bodies and hinges; those of the contacts follow in the next sweep.
void ConstraintSolver::FollowTrend(math::real share) {
    const Float4 s = Fill4(share);
    for (const HingeRow& row : m_hinges) row.hinge->FollowTrend(share);
    for (size_t i = 0; i < m_bodies.size(); ++i) {
        math::real* const velocity = &m_bodies[i].m_deltaVel.x;
        math::real* const before = m_motionsBefore[i].numbers;
        math::real* const trend = m_motionTrends[i].numbers;
        const Float4 now = LoadFloat4(velocity);
        const Float4 step = LoadFloat4(trend) * s;
        const Float4 next = now + step;
        Store(trend, step + (now - LoadFloat4(before)));
        Store(velocity, next);
        Store(before, next);
    }
}

// ---- results -------------------------------------------------------------------------------------------

void ConstraintSolver::StoreRows() {
    for (uint32_t i = 0; i < m_list.size(); ++i) {
        if (m_list[i].hinge) continue;
        Contact& contact = *static_cast<Contact*>(m_list[i].constraint);
        const ContactRow8& group = m_groups[m_slots[i] / ContactRow8::LANES];
        contact.m_normalImpulse = group.normalImpulse[m_slots[i] % ContactRow8::LANES];
        contact.m_tangentImpulse = group.tangentImpulse[m_slots[i] % ContactRow8::LANES];
    }
}

void ConstraintSolver::StoreBodies() const {
    for (size_t i = 0; i < m_active.size(); ++i) {
        m_active[i]->m_deltaVel = m_bodies[i].m_deltaVel;
        m_active[i]->m_deltaAngVel = m_bodies[i].m_deltaAngVel;
    }
}

}  // namespace physics

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
        m_hingeTrends.clear();
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

ConstraintSolver::RowKind ConstraintSolver::GetKind(const Entry& entry) {
    if (entry.hinge == nullptr) return CONTACTS;
    return entry.hinge->GetMotor() ? MOTORS : HINGES;
}

void ConstraintSolver::AssignLevels() {
    m_bodyLevels.clear();
    m_bodyLevels.resize(m_bodies.size(), 0);
    m_entryLevels.resize(m_list.size());
    m_levels.clear();
    for (const uint32_t i : m_order) {
        const uint32_t level = RaiseLevel(m_rows[i].body0, m_rows[i].body1);
        if (level >= m_levels.size()) m_levels.resize(level + 1, Level{});
        ++m_levels[level].ends[GetKind(m_list[i])];
        m_entryLevels[i] = level;
    }
}

// Turns the levels' counts of constraints into places.
void ConstraintSolver::LayOutLevels() {
    constexpr uint32_t GROUP[ROW_KINDS] = {ContactRow8::LANES, HingeRow8::LANES, 1};
    m_cursors.resize(m_levels.size());
    Level total = {};
    for (size_t i = 0; i < m_levels.size(); ++i) {
        for (uint32_t kind = 0; kind < ROW_KINDS; ++kind) {
            m_cursors[i].ends[kind] = total.ends[kind] * GROUP[kind];
            total.ends[kind] += (m_levels[i].ends[kind] + GROUP[kind] - 1) / GROUP[kind];
            m_levels[i].ends[kind] = total.ends[kind];
        }
    }
    m_groups.resize(total.ends[CONTACTS]);
    m_hingeGroups.resize(total.ends[HINGES]);
    m_motors.resize(total.ends[MOTORS]);
    JoinLevels();
    ClearLastGroups();
}

// Levels of nothing but contacts, or of nothing but hinges, follow each other without a break.
void ConstraintSolver::JoinLevels() {
    m_stages.clear();
    Level begin = {};
    RowKind last = ROW_KINDS;
    for (const Level& level : m_levels) {
        RowKind kind = ROW_KINDS;
        uint32_t kinds = 0;
        for (const RowKind k : {CONTACTS, HINGES, MOTORS}) {
            if (level.ends[k] == begin.ends[k]) continue;
            kind = k;
            ++kinds;
        }
        if (kinds > 1) kind = ROW_KINDS;
        if (kind != ROW_KINDS && kind == last) {
            m_stages.back() = level;
        } else {
            m_stages.push_back(level);
        }
        last = kind;
        begin = level;
    }
}

// The lanes that stay free join the body that never moves to itself, and do nothing.
void ConstraintSolver::ClearLastGroups() {
    ContactRow8 unusedContacts = {};
    HingeRow8 unusedHinges = {};
    for (uint32_t lane = 0; lane < ContactRow8::LANES; ++lane) {
        const uint32_t fixed = static_cast<uint32_t>(m_bodies.size() - 1);
        unusedContacts.body0[lane] = unusedContacts.body1[lane] = fixed;
        unusedHinges.body0[lane] = unusedHinges.body1[lane] = fixed;
    }
    for (const Level& level : m_levels) {
        if (level.ends[CONTACTS] > 0) m_groups[level.ends[CONTACTS] - 1] = unusedContacts;
        if (level.ends[HINGES] > 0) m_hingeGroups[level.ends[HINGES] - 1] = unusedHinges;
    }
}

void ConstraintSolver::ArrangeRows() {
    m_slots.resize(m_list.size());
    for (const uint32_t i : m_order) {
        const RowKind kind = GetKind(m_list[i]);
        const uint32_t slot = m_slots[i] = m_cursors[m_entryLevels[i]].ends[kind]++;
        if (kind == CONTACTS) PutInGroup(m_rows[i], slot);
        if (kind == HINGES) PutHinge(m_rows[i], *m_list[i].hinge, slot);
        if (kind == MOTORS) m_motors[slot] = {m_list[i].hinge, m_rows[i].body0, m_rows[i].body1};
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

void ConstraintSolver::PutHinge(const ContactRow& row, const Hinge& hinge, uint32_t slot) {
    HingeRow8& group = m_hingeGroups[slot / HingeRow8::LANES];
    const uint32_t lane = slot % HingeRow8::LANES;
    group.body0[lane] = row.body0;
    group.body1[lane] = row.body1;
    group.inertiaInv0[lane] = m_bodies[row.body0].m_inertiaInv;
    group.inertiaInv1[lane] = m_bodies[row.body1].m_inertiaInv;
    hinge.Pack(group, lane);
}

// ---- sweeps --------------------------------------------------------------------------------------------

// Gives the sum of the squares of the groups' changes, of a sweep with a trend.
math::real ConstraintSolver::Sweep(SweepKind kind, math::real trendShare) {
    alignas(32) math::real squares[ContactRow8::LANES] = {};
    const auto solve = [&](auto function, auto& groups, auto& trends, uint32_t begin, uint32_t end) {
        if (begin == end) return;
        auto* const trend = trends.empty() ? nullptr : trends.data() + begin;
        function({groups.data() + begin, end - begin, trend, trendShare, squares, m_bodies.data()});
    };
    const auto k = static_cast<size_t>(kind);
    Level begin = {};
    for (const Level& end : m_stages) {
        solve(m_sweeps->contacts[k], m_groups, m_trends, begin.ends[CONTACTS], end.ends[CONTACTS]);
        solve(m_sweeps->hinges[k], m_hingeGroups, m_hingeTrends, begin.ends[HINGES], end.ends[HINGES]);
        for (uint32_t i = begin.ends[MOTORS]; i < end.ends[MOTORS]; ++i) SolveMotor(m_motors[i]);
        begin = end;
    }
    const math::real* const s = squares;
    return ((s[0] + s[1]) + (s[2] + s[3])) + ((s[4] + s[5]) + (s[6] + s[7]));
}

void ConstraintSolver::SolveMotor(const MotorRow& row) {
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
    m_hingeTrends.clear();
    m_hingeTrends.resize(m_hingeGroups.size(), HingeTrend8{});
    for (const MotorRow& row : m_motors) row.hinge->ForgetTrend();
    m_motionTrends.clear();
    m_motionTrends.resize(m_bodies.size(), BodyMotion{});
    m_motionsBefore.resize(m_bodies.size());
    for (size_t i = 0; i < m_bodies.size(); ++i)
        Store(m_motionsBefore[i].numbers, LoadFloat4(&m_bodies[i].m_deltaVel.x));
    math::real last = 0, share = 0;
    for (int i = 1; i < sweeps; ++i) {
        math::real size = Sweep(SweepKind::WITH_TREND, share);
        for (const MotorRow& row : m_motors) size += row.hinge->GetSquaredDelta();
        share = size < last ? size / last : 0;
        last = size;
        FollowTrend(share);
    }
    Sweep(SweepKind::LAST, share);
}

// Of bodies and motors; the groups follow in the next sweep.
void ConstraintSolver::FollowTrend(math::real share) {
    const Float4 s = Fill4(share);
    for (const MotorRow& row : m_motors) row.hinge->FollowTrend(share);
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
        const uint32_t place = m_slots[i] / ContactRow8::LANES, lane = m_slots[i] % ContactRow8::LANES;
        const RowKind kind = GetKind(m_list[i]);
        if (kind == HINGES) m_list[i].hinge->Unpack(m_hingeGroups[place], lane);
        if (kind != CONTACTS) continue;
        Contact& contact = *static_cast<Contact*>(m_list[i].constraint);
        contact.m_normalImpulse = m_groups[place].normalImpulse[lane];
        contact.m_tangentImpulse = m_groups[place].tangentImpulse[lane];
    }
}

void ConstraintSolver::StoreBodies() const {
    for (size_t i = 0; i < m_active.size(); ++i) {
        m_active[i]->m_deltaVel = m_bodies[i].m_deltaVel;
        m_active[i]->m_deltaAngVel = m_bodies[i].m_deltaAngVel;
    }
}

}  // namespace physics

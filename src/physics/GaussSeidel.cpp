// The sweeps of ConstraintSolver: packed rows and bodies, see ConstraintSolver.h.

#include <algorithm>

#include "physics/Body.h"
#include "physics/ConstraintSolver.h"
#include "physics/Contact.h"
#include "physics/ContactSolve.h"
#include "physics/HingeSolve.h"
#include "physics/StepSettings.h"
#include "util/ProfileTree.h"

namespace physics {

void ConstraintSolver::SolveGaussSeidel(const StepSettings& settings) {
    PROFILE_SECTION("GaussSeidelSolver");
    const SolveConstants constants(settings);
    m_rows.resize(m_list.size());
    DropRefused([&](uint32_t i) { return InitRow(i, constants); });
    if (m_list.empty()) return;
    m_bodies.push_back(SolverBody());
    if (settings.preSort) {
        SortByResidual();
    } else {
        m_order.resize(m_list.size());
        for (uint32_t i = 0; i < m_order.size(); ++i) m_order[i] = i;
    }
    AssignLevels();
    LayOutLevels();
    ArrangeRows();
    PackMotions();
    SweepAll(settings);
    StoreRows();
    ApplyMotions();
}

// ---- packing -------------------------------------------------------------------------------------------

bool ConstraintSolver::InitRow(uint32_t i, const SolveConstants& constants) {
    const Entry& entry = m_list[i];
    SolverBody& b0 = m_bodies[entry.body0];
    SolverBody& b1 = m_bodies[entry.body1];
    if (Hinge* const hinge = entry.hinge) {
        if (!hinge->Prepare(constants)) return false;
        hinge->WarmStart(constants, b0, b1);
        return true;
    }
    if (b0.IsImmovable() && b1.IsImmovable()) return false;
    ContactRow& row = m_rows[i];
    const Contact& contact = static_cast<const Contact&>(*entry.constraint);
    row.m_normal = contact.m_normal;
    row.m_r[0] = contact.m_r[0];
    row.m_r[1] = contact.m_r[1];
    row.m_friction = contact.m_friction;
    InitContactRows(row, contact, constants, b0, b1);
    return true;
}

// The constraints furthest from being satisfied by the warm start go first.
void ConstraintSolver::SortByResidual() {
    m_sort.Clear(m_list.size());
    for (uint32_t i = 0; i < m_list.size(); ++i) {
        const ContactRow& row = m_rows[i];
        const SolverBody& b0 = m_bodies[m_list[i].body0];
        const SolverBody& b1 = m_bodies[m_list[i].body1];
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
    uint32_t &level0 = m_bodyLevels[body0], &level1 = m_bodyLevels[body1];
    const bool moves0 = level0 != NOWHERE, moves1 = level1 != NOWHERE;
    const uint32_t level = std::max(moves0 ? level0 : 0, moves1 ? level1 : 0);
    if (moves0) level0 = level + 1;
    if (moves1) level1 = level + 1;
    return level;
}

ConstraintSolver::RowKind ConstraintSolver::GetKind(const Entry& entry) {
    if (entry.hinge == nullptr) return CONTACTS;
    return entry.hinge->GetMotor() ? MOTORS : HINGES;
}

void ConstraintSolver::AssignLevels() {
    m_bodyLevels.clear();
    m_bodyLevels.reserve(m_bodies.size());
    for (const SolverBody& body : m_bodies) m_bodyLevels.push_back(body.IsImmovable() ? NOWHERE : 0);
    m_entryLevels.resize(m_list.size());
    m_levels.clear();
    for (const uint32_t i : m_order) {
        const uint32_t level = RaiseLevel(m_list[i].body0, m_list[i].body1);
        if (level >= m_levels.size()) m_levels.resize(level + 1, Level{});
        ++m_levels[level].ends[GetKind(m_list[i])];
        m_entryLevels[i] = level;
    }
}

// Turns the levels' counts of constraints into places.
void ConstraintSolver::LayOutLevels() {
    constexpr uint32_t GROUP[ROW_KINDS] = {LANES, LANES, 1};
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
    for (uint32_t lane = 0; lane < LANES; ++lane) {
        const uint32_t fixed = static_cast<uint32_t>(m_bodies.size() - 1) * EndsRow8::STRIDE;
        unusedContacts.body0[lane] = unusedContacts.body1[lane] = fixed;
        unusedHinges.body0[lane] = unusedHinges.body1[lane] = fixed;
    }
    for (const Level& level : m_levels) {
        if (level.ends[CONTACTS] > 0) m_groups[level.ends[CONTACTS] - 1] = unusedContacts;
        if (level.ends[HINGES] > 0) m_hingeGroups[level.ends[HINGES] - 1] = unusedHinges;
    }
}

void ConstraintSolver::ArrangeRows() {
    constexpr size_t AHEAD = 8;  // the order is random: memory is asked for before it is needed
    m_slots.resize(m_list.size());
    for (size_t k = 0; k < m_order.size(); ++k) {
        const uint32_t i = m_order[k], next = m_order[std::min(k + AHEAD, m_order.size() - 1)];
        __builtin_prefetch(&m_list[next]);
        __builtin_prefetch(&m_rows[next]);
        const Entry& entry = m_list[i];
        const RowKind kind = GetKind(entry);
        const uint32_t slot = m_slots[i] = m_cursors[m_entryLevels[i]].ends[kind]++;
        if (kind == MOTORS) {
            m_motors[slot] = {entry.hinge, entry.body0, entry.body1};
            continue;
        }
        const uint32_t place = slot / LANES, lane = slot % LANES;
        if (kind == CONTACTS) {
            PutEnds(m_groups[place], lane, entry);
            PutContact(m_groups[place], lane, m_rows[i]);
        } else {
            PutEnds(m_hingeGroups[place], lane, entry);
            entry.hinge->Pack(m_hingeGroups[place], lane);
        }
    }
}

void ConstraintSolver::PutEnds(EndsRow8& group, uint32_t lane, const Entry& entry) const {
    group.body0[lane] = entry.body0 * EndsRow8::STRIDE;
    group.body1[lane] = entry.body1 * EndsRow8::STRIDE;
    group.inertiaInv0[lane] = m_bodies[entry.body0].m_inertiaInv;
    group.inertiaInv1[lane] = m_bodies[entry.body1].m_inertiaInv;
}

void ConstraintSolver::PutContact(ContactRow8& group, uint32_t lane, const ContactRow& row) {
    group.r0x[lane] = row.m_r[0].x;
    group.r0y[lane] = row.m_r[0].y;
    group.r1x[lane] = row.m_r[1].x;
    group.r1y[lane] = row.m_r[1].y;
    group.normalX[lane] = row.m_normal.x;
    group.normalY[lane] = row.m_normal.y;
    group.friction[lane] = row.m_friction;
    group.normalMass[lane] = row.m_useNormalMass;
    group.tangentMass[lane] = row.m_useTangentMass;
    group.normalTarget[lane] = row.m_normalTarget;
    group.tangentTarget[lane] = row.m_tangentTarget;
    group.normalImpulse[lane] = row.m_normalImpulse;
    group.tangentImpulse[lane] = row.m_tangentImpulse;
}

// The sweeps take two bodies at a time where they go over all.
void ConstraintSolver::PackMotions() {
    m_motions.clear();
    m_motions.insert(m_motions.end(), m_bodies.begin(), m_bodies.end());
    if (m_motions.size() % 2 != 0) m_motions.emplace_back();
}

// ---- sweeps --------------------------------------------------------------------------------------------

void ConstraintSolver::SweepAll(const StepSettings& settings) {
    if (settings.sweeps <= 0) return;
    if (settings.conjugate) {
        SweepWithTrend(settings.sweeps);
        return;
    }
    m_trends.clear();
    m_hingeTrends.clear();
    for (int i = 0; i < settings.sweeps; ++i) Sweep(SweepKind::PLAIN, 0);
}

// Gives the sum of the squares of the groups' changes, of a sweep with a trend.
math::real ConstraintSolver::Sweep(SweepKind kind, math::real trendShare) {
    alignas(32) math::real squares[LANES] = {};
    const auto solve = [&](auto function, auto& groups, auto& trends, uint32_t begin, uint32_t end) {
        if (begin == end) return;
        auto* const trend = trends.empty() ? nullptr : trends.data() + begin;
        function(
            {groups.data() + begin, end - begin, trend, trendShare, squares, &m_motions[0].m_deltaVel.x});
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
    static_cast<BodyMotion&>(b0) = m_motions[row.body0];
    static_cast<BodyMotion&>(b1) = m_motions[row.body1];
    row.hinge->Calc(b0, b1);
    row.hinge->Apply(b0, b1);
    m_motions[row.body0] = b0;
    m_motions[row.body1] = b1;
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
    m_trends.assign(m_groups.size(), ContactTrend8{});
    m_hingeTrends.assign(m_hingeGroups.size(), HingeTrend8{});
    for (const MotorRow& row : m_motors) row.hinge->ForgetTrend();
    m_motionTrends.assign(m_motions.size(), BodyMotion{});
    m_motionsBefore = m_motions;
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
    for (const MotorRow& row : m_motors) row.hinge->FollowTrend(share);
    m_sweeps->followTrend({&m_motions[0].m_deltaVel.x, &m_motionsBefore[0].m_deltaVel.x,
                           &m_motionTrends[0].m_deltaVel.x, m_motions.size() * EndsRow8::STRIDE, share});
}

// ---- results -------------------------------------------------------------------------------------------

void ConstraintSolver::StoreRows() {
    for (uint32_t i = 0; i < m_list.size(); ++i) {
        const uint32_t place = m_slots[i] / LANES, lane = m_slots[i] % LANES;
        const RowKind kind = GetKind(m_list[i]);
        if (kind == HINGES) m_list[i].hinge->Unpack(m_hingeGroups[place], lane);
        if (kind != CONTACTS) continue;
        Contact& contact = *static_cast<Contact*>(m_list[i].constraint);
        contact.m_normalImpulse = m_groups[place].normalImpulse[lane];
        contact.m_tangentImpulse = m_groups[place].tangentImpulse[lane];
    }
}

void ConstraintSolver::ApplyMotions() const {
    for (size_t i = 0; i < m_active.size(); ++i) {
        if (m_motions[i].m_massInv == 0) continue;
        m_active[i]->m_vel += m_motions[i].m_deltaVel;
        m_active[i]->m_angVel += m_motions[i].m_deltaAngVel;
    }
}

}  // namespace physics

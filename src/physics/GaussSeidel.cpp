// The sweeps of ConstraintSolver: packed rows and bodies, see ConstraintSolver.h.

#include "physics/Body.h"
#include "physics/ConstraintSolver.h"
#include "physics/Contact.h"
#include "physics/HingeSolve.h"
#include "util/ProfileTree.h"

namespace physics {

void ConstraintSolver::SolveGaussSeidel(const AbstractBodyList& bodies, int sweeps, bool preSort) {
    PROFILE_SECTION("GaussSeidelSolver");
    if (m_list.empty() || sweeps == 0) return;
    PackBodies(bodies);
    PackRows();
    if (preSort) {
        SortByResidual();
    } else {
        m_order.resize(m_list.size());
        for (uint32_t i = 0; i < m_order.size(); ++i) m_order[i] = i;
    }
    ArrangeRows();
    for (int i = 0; i < sweeps; ++i) Sweep();
    StoreRows();
    StoreBodies(bodies);
}

void ConstraintSolver::PackBodies(const AbstractBodyList& bodies) {
    m_bodies.resize(bodies.size());
    for (size_t i = 0; i < bodies.size(); ++i) {
        SolverBody& packed = m_bodies[i];
        packed.m_deltaVel = bodies[i]->m_deltaVel;
        packed.m_deltaAngVel = bodies[i]->m_deltaAngVel;
        packed.m_massInv = bodies[i]->GetMassInv();
        packed.m_inertiaInv = bodies[i]->GetInertiaInv();
    }
}

static void PackRow(ContactRow& row, const Contact& contact, uint32_t index) {
    row.body0 = contact.m_bodies[0]->m_index;
    row.body1 = contact.m_bodies[1]->m_index;
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
    row.contact = index;
}

void ConstraintSolver::PackRows() {
    m_rows.resize(m_list.size());
    for (uint32_t i = 0; i < m_list.size(); ++i) {
        if (!m_list[i].hinge) PackRow(m_rows[i], *static_cast<Contact*>(m_list[i].constraint), i);
    }
}

static ContactDelta SolveRow(const ContactRow& row, const SolverBody& b0, const SolverBody& b1) {
    return SolveContactRows(row, DeltaVelocityAt(b1, row.m_r[1]) - DeltaVelocityAt(b0, row.m_r[0]));
}

// The constraints furthest from being satisfied by the warm start go first.
void ConstraintSolver::SortByResidual() {
    m_sort.Clear(m_list.size());
    for (uint32_t i = 0; i < m_list.size(); ++i) {
        if (Hinge* const hinge = m_list[i].hinge) {
            hinge->Calc(m_bodies[hinge->m_bodies[0]->m_index], m_bodies[hinge->m_bodies[1]->m_index]);
            m_sort.Add(hinge->m_residual);
        } else {
            const ContactRow& row = m_rows[i];
            const ContactDelta delta = SolveRow(row, m_bodies[row.body0], m_bodies[row.body1]);
            m_sort.Add(delta.tangent * delta.tangent + delta.normal * delta.normal);
        }
    }
    m_sort.Sort(m_order);
}

void ConstraintSolver::ArrangeRows() {
    m_sorted.clear();
    m_sorted.reserve(m_list.size());
    m_stretches.clear();
    for (const uint32_t i : m_order) {
        Hinge* const hinge = m_list[i].hinge;
        if (!hinge) {
            m_sorted.push_back(m_rows[i]);
            continue;
        }
        m_stretches.push_back({static_cast<uint32_t>(m_sorted.size()), hinge, hinge->m_bodies[0]->m_index,
                               hinge->m_bodies[1]->m_index});
    }
    m_stretches.push_back({static_cast<uint32_t>(m_sorted.size()), nullptr, 0, 0});
}

void ConstraintSolver::Sweep() {
    uint32_t begin = 0;
    for (const Stretch& stretch : m_stretches) {
        SweepContacts(begin, stretch.contactsEnd);
        begin = stretch.contactsEnd;
        if (!stretch.hinge) continue;
        SolverBody& b0 = m_bodies[stretch.body0];
        SolverBody& b1 = m_bodies[stretch.body1];
        stretch.hinge->Calc(b0, b1);
        stretch.hinge->Apply(b0, b1);
    }
}

void ConstraintSolver::SweepContacts(uint32_t begin, uint32_t end) {
    SolverBody* const bodies = m_bodies.data();
    ContactRow* const last = m_sorted.data() + end;
    for (ContactRow* row = m_sorted.data() + begin; row != last; ++row) {
        // Copies: the compiler cannot know that the two bodies differ.
        SolverBody b0 = bodies[row->body0];
        SolverBody b1 = bodies[row->body1];
        const ContactDelta delta = SolveRow(*row, b0, b1);
        const math::Vec2 p =
            row->m_normal * delta.normal + math::Perpendicular(row->m_normal) * delta.tangent;
        ApplyImpulsePair(b0, b1, row->m_r[0], row->m_r[1], p);
        row->m_normalImpulse += delta.normal;
        row->m_tangentImpulse += delta.tangent;
        bodies[row->body0].m_deltaVel = b0.m_deltaVel;
        bodies[row->body0].m_deltaAngVel = b0.m_deltaAngVel;
        bodies[row->body1].m_deltaVel = b1.m_deltaVel;
        bodies[row->body1].m_deltaAngVel = b1.m_deltaAngVel;
    }
}

void ConstraintSolver::StoreRows() {
    for (const ContactRow& row : m_sorted) {
        Contact& contact = *static_cast<Contact*>(m_list[row.contact].constraint);
        contact.m_normalImpulse = row.m_normalImpulse;
        contact.m_tangentImpulse = row.m_tangentImpulse;
    }
}

void ConstraintSolver::StoreBodies(const AbstractBodyList& bodies) const {
    for (size_t i = 0; i < bodies.size(); ++i) {
        bodies[i]->m_deltaVel = m_bodies[i].m_deltaVel;
        bodies[i]->m_deltaAngVel = m_bodies[i].m_deltaAngVel;
    }
}

}  // namespace physics

#include "physics/ConstraintSolver.h"

#include "physics/Body.h"
#include "physics/Contact.h"
#include "physics/ContactPool.h"
#include "physics/Hinge.h"
#include "physics/StepSettings.h"
#include "util/ProfileTree.h"

namespace physics {

void ConstraintSolver::Run(const AbstractBodyList& bodies, const HingeSet& hinges,
                           const ContactPool& contacts, const StepSettings& settings) {
    PROFILE_SECTION("RunSolver");
    ListConstraints(bodies, hinges, contacts);
    if (settings.prioritized) {
        SolvePrioritized(bodies, settings);
    } else {
        SolveGaussSeidel(settings);
    }
}

// A world is mostly bodies that touch nothing; the solve looks at the others only.
void ConstraintSolver::ListConstraints(const AbstractBodyList& bodies, const HingeSet& hinges,
                                       const ContactPool& contacts) {
    PROFILE_SECTION("List constraints");
    m_list.clear();
    m_active.clear();
    m_bodies.clear();
    m_places.clear();
    if (hinges.empty() && contacts.empty()) return;
    m_places.resize(bodies.size(), NOWHERE);
    m_list.reserve(hinges.size() + contacts.size());
    for (const HingePtr& hinge : hinges) {
        hinge.Get()->FindBodies();
        List(hinge.Get(), hinge.Get(), bodies);
    }
    for (const ContactPtr& contact : contacts) {
        if (!contact.Get()->m_implied) List(contact.Get(), nullptr, bodies);
    }
}

void ConstraintSolver::List(Constraint* constraint, Hinge* hinge, const AbstractBodyList& bodies) {
    const uint32_t body0 = Activate(constraint->m_bodies[0], bodies);
    const uint32_t body1 = Activate(constraint->m_bodies[1], bodies);
    m_list.push_back({constraint, hinge, body0, body1});
}

uint32_t ConstraintSolver::Activate(AbstractBody* body, const AbstractBodyList& bodies) {
    const bool isListed = body != nullptr && body->m_index < bodies.size() && bodies[body->m_index] == body;
    if (!isListed) return NOWHERE;
    uint32_t& place = m_places[body->m_index];
    if (place != NOWHERE) return place;
    place = static_cast<uint32_t>(m_active.size());
    m_active.push_back(body);
    m_bodies.push_back(SolverBody());
    SolverBody& packed = m_bodies.back();  // written in place: a copy would wait for its own parts
    packed.m_massInv = body->GetMassInv();
    packed.m_inertiaInv = body->GetInertiaInv();
    packed.m_vel = body->m_vel;
    packed.m_angVel = body->m_angVel;
    packed.m_force = body->m_force;
    packed.m_torque = body->m_torque;
    return place;
}

}  // namespace physics

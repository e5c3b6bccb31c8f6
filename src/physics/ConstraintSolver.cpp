#include "physics/ConstraintSolver.h"

#include <algorithm>

#include "physics/Body.h"
#include "physics/Contact.h"
#include "physics/ContactPool.h"
#include "physics/Hinge.h"
#include "physics/HingeSolve.h"
#include "physics/StepSettings.h"
#include "util/Assert.h"
#include "util/ProfileTree.h"

namespace physics {

void ConstraintSolver::Run(const AbstractBodyList& bodies, const HingeSet& hinges,
                           const ContactPool& contacts, const StepSettings& settings) {
    PROFILE_SECTION("RunSolver");
    BuildList(hinges, contacts);
    ActivateBodies(bodies);
    InitConstraints(bodies, SolveConstants(settings));
    if (settings.prioritized) {
        SolvePrioritized(bodies, std::max(settings.sweeps, 0));
    } else {
        SolveGaussSeidel(settings);
    }
    ApplyVelocityChanges();
}

void ConstraintSolver::BuildList(const HingeSet& hinges, const ContactPool& contacts) {
    m_list.clear();
    m_list.reserve(hinges.size() + contacts.size());
    for (const HingePtr& hinge : hinges) {
        hinge.Get()->FindBodies();
        m_list.push_back({hinge.Get(), hinge.Get()});
    }
    for (const ContactPtr& contact : contacts) {
        if (!contact.Get()->m_implied) m_list.push_back({contact.Get(), nullptr});
    }
}

static bool IsListed(const AbstractBody* body, const AbstractBodyList& bodies) {
    return body->m_index < bodies.size() && bodies[body->m_index] == body;
}

// A world is mostly bodies that touch nothing; the solve looks at the others only.
void ConstraintSolver::ActivateBodies(const AbstractBodyList& bodies) {
    PROFILE_SECTION("Init bodies");
    m_active.clear();
    m_places.clear();
    m_places.resize(bodies.size(), INACTIVE);
    for (const Entry& entry : m_list) {
        for (AbstractBody* const body : entry.constraint->m_bodies) {
            if (body != nullptr && IsListed(body, bodies)) Activate(*body);
        }
    }
}

void ConstraintSolver::Activate(AbstractBody& body) {
    uint32_t& place = m_places[body.m_index];
    if (place != INACTIVE) return;
    place = static_cast<uint32_t>(m_active.size());
    m_active.push_back(&body);
    body.m_deltaVel = math::Vec2();
    body.m_deltaAngVel = 0;
}

// A constraint that refuses gives its place to the last one, which is then asked in turn.
void ConstraintSolver::InitConstraints(const AbstractBodyList& bodies, const SolveConstants& constants) {
    PROFILE_SECTION("SolveInit");
    for (size_t i = 0; i < m_list.size(); ++i) {
        while (i < m_list.size() && !InitConstraint(m_list[i], bodies, constants)) {
            CODE_ASSERTION(!m_list.empty());
            m_list[i] = m_list.back();
            m_list.pop_back();
        }
    }
}

bool ConstraintSolver::InitConstraint(const Entry& entry, const AbstractBodyList& bodies,
                                      const SolveConstants& constants) {
    Constraint* const constraint = entry.constraint;
    const bool isWanted = entry.hinge ? entry.hinge->SolveInit(constants)
                                      : static_cast<Contact*>(constraint)->SolveInit(constants);
    return isWanted && IsListed(constraint->m_bodies[0], bodies) && IsListed(constraint->m_bodies[1], bodies);
}

void ConstraintSolver::ApplyVelocityChanges() {
    PROFILE_SECTION("Applying velchanges");
    for (AbstractBody* const body : m_active) {
        if (body->m_held || body->m_massInv == 0) continue;
        body->m_vel += body->m_deltaVel;
        body->m_angVel += body->m_deltaAngVel;
    }
}

}  // namespace physics

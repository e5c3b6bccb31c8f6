// The step of Simulation: forces, contacts, solve, integration.

#include "logging/Log.h"
#include "physics/Body.h"
#include "physics/FlushToZero.h"
#include "physics/Geom.h"
#include "physics/Hinge.h"
#include "physics/Integration.h"
#include "physics/Joints.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "util/Exception.h"
#include "util/ProfileTree.h"

namespace physics {

constexpr float SHORTEST_STEP = 1e-6f;  // s; the weights of the rows are numbers down to here

void Simulation::Step(bool active) {
    const ScopedFlushToZero flushToZero;
    try {
        if (!VisitBodies(active)) RemoveBadBodies();
        RemoveBadParts();
        SPH::Instance().Sort(m_particles);
        SPH::Instance().FindTouches(m_bodies, GetEffectiveGravity());
        for (const ParticlePtr& particle : m_particles) List(*particle.Get());
        if (active) CalcForces();
        CalcContacts();
        // In a pause forces stay: what a tool leaves on a body is felt at the next active step.
        const Forces forces = m_running->Get() ? Forces::CLEAR : Forces::KEEP;
        if (active && m_timeDelta->Get() >= SHORTEST_STEP) {
            SolveAndMove(forces);
        } else if (forces == Forces::CLEAR) {
            ClearForces(m_allBodies);
        }
#ifdef VEXA_CHECKED
        Validate();
#endif
    }
    PASS_ON_EXCEPTIONS
}

// Once per scene, since what is wrong in one step is wrong in the next.
void Simulation::WarnOnce(bool& warned, const char* message) {
    if (!warned) Log(logging::Warning, message);
    warned = true;
}

void Simulation::CalcContacts() {
    PROFILE_SECTION("Sim::CalcContacts");
    m_contacts.Find(m_particles);
    if (m_contacts.IsOverBudget()) {
        WarnOnce(m_warnedOfContacts, "Too many contacts in one place: some of them are left out");
    }
}

void Simulation::SolveAndMove(Forces forces) {
    const StepSettings settings = GetStepSettings();
    const math::real h = settings.timeDelta;
    const auto solve = [&] { m_solver.Run(m_allBodies, m_hinges, m_contacts.Get(), settings); };
    const auto move = [&] {
        m_sweptMotion.Limit(m_bodies, h);
        if (IntegratePlaces(m_allBodies, h) != 0) {
            WarnOnce(m_warnedOfNaN, "A body went out of all numbers: it was put back and stopped");
        }
        m_sweptMotion.Release();
    };
    if (settings.leapFrog) {
        IntegrateVelocities(m_allBodies, h / 2, Forces::KEEP);
        solve();
        IntegrateVelocities(m_allBodies, h / 2, forces);
        move();
    } else {
        solve();
        move();
        IntegrateVelocities(m_allBodies, h, forces);
    }
}

}  // namespace physics

// The step of Simulation: forces, contacts, solve, integration.

#include <algorithm>
#include <cmath>

#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/CollisionDetection.h"
#include "physics/Geom.h"
#include "physics/Joints.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "util/ProfileTree.h"

namespace physics {

void Simulation::Step(bool active) {
    RemoveBadObjects();
    RebuildAllBodies();
    if (active) CalcForces();
    CalcContacts();
    const math::real h = m_timeDelta->Get();
    if (active && h > 0) Integrate(h);
    // In a pause forces stay: what a tool leaves on a body is felt at the next active step.
    if (m_running->Get()) ClearForces();
#ifdef VEXA_CHECKED
    Validate();
#endif
}

void Simulation::Integrate(math::real h) {
    if (m_leapFrog->Get()) {
        IntegrateVelocity(h / 2);
        RunSolver();
        IntegrateVelocityAndPosition(h / 2, h);
    } else {
        RunSolver();
        IntegratePosition(h);
        IntegrateVelocity(h);
    }
}

void Simulation::RebuildAllBodies() {
    m_allBodies.clear();
    m_allBodies.reserve(m_bodies.size() + m_particles.size());
    for (const BodyPtr& body : m_bodies) m_allBodies.push_back(body.Get());
    for (const ParticlePtr& particle : m_particles) m_allBodies.push_back(particle.Get());
}

// ---- contacts ------------------------------------------------------------------------------------------

void Simulation::CalcContacts() {
    PROFILE_SECTION("Sim::CalcContacts");
    m_lastContacts.swap(m_contacts);
    UpdateCache();
    FindContacts();
    MatchCache();
}

void Simulation::FindContacts() {
    PROFILE_SECTION("Finding contacts");
    m_contacts.Clear();
    m_collider.AssignBodies(m_bodies, m_particles);
    m_collider.Collide(m_contacts);
}

void Simulation::UpdateCache() {
    PROFILE_SECTION("Update cache");
    m_contactCache.Update(m_lastContacts);
}

// A contact that was there in the last step goes on with its impulses, and is no impact any more.
void Simulation::MatchCache() {
    PROFILE_SECTION("Matching cache");
    m_cacheHits = 0;
    for (const ContactPtr& contact : m_contacts) {
        const Contact* const old = m_contactCache.Find(contact.Get()->m_id);
        if (old == nullptr) continue;
        contact.Get()->m_normalImpulse = old->m_normalImpulse;
        contact.Get()->m_tangentImpulse = old->m_tangentImpulse;
        contact.Get()->m_new = false;
        ++m_cacheHits;
    }
}

void Simulation::RunSolver() {
    m_solver.Run(m_allBodies, m_hinges, m_contacts);
}

// ---- integration ---------------------------------------------------------------------------------------

static void MoveVelocity(AbstractBody& body, math::real dt) {
    body.m_vel += dt * body.m_force * body.m_massInv;
    body.m_angVel += dt * body.m_torque * body.m_inertiaInv;
}

static void MovePosition(AbstractBody& body, math::real dt) {
    body.m_pos += dt * body.m_vel;
    body.m_angle = math::WrapAngle(body.m_angle + dt * body.m_angVel);
    body.UpdateGeoms();
}

void Simulation::IntegrateVelocity(math::real dt) {
    for (AbstractBody* const body : m_allBodies) {
        if (!body->IsImmovable()) MoveVelocity(*body, dt);
    }
}

void Simulation::IntegratePosition(math::real dt) {
    for (AbstractBody* const body : m_allBodies) {
        if (!body->IsImmovable()) MovePosition(*body, dt);
    }
}

// The one after the other, in a single walk over the bodies.
void Simulation::IntegrateVelocityAndPosition(math::real velocityTime, math::real positionTime) {
    for (AbstractBody* const body : m_allBodies) {
        if (body->IsImmovable()) continue;
        MoveVelocity(*body, velocityTime);
        MovePosition(*body, positionTime);
    }
}

void Simulation::ClearForces() {
    for (AbstractBody* const body : m_allBodies) {
        body->m_force = math::Vec2();
        body->m_torque = 0;
    }
}

}  // namespace physics

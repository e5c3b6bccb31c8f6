// What must always hold in a Simulation, and the figure by which two runs are compared.

#include <cmath>
#include <cstring>
#include <set>

#include "physics/Body.h"
#include "physics/Contact.h"
#include "physics/Geom.h"
#include "physics/Hinge.h"
#include "physics/Joints.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "physics/SolverBody.h"
#include "util/Assert.h"

namespace physics {

namespace {

// FNV-1a (Fowler, Noll, Vo) in 64 bits, over the bytes of floats.
class StateHash {
  public:
    void Add(math::real value) {
        unsigned char bytes[sizeof(value)];
        std::memcpy(bytes, &value, sizeof(value));
        for (const unsigned char byte : bytes) m_hash = (m_hash ^ byte) * PRIME;
    }
    void Add(const AbstractBody& body) {
        Add(body.m_pos.x);
        Add(body.m_pos.y);
        Add(body.m_angle);
        Add(body.m_vel.x);
        Add(body.m_vel.y);
        Add(body.m_angVel);
    }
    uint64_t Get() const { return m_hash; }

  private:
    static constexpr uint64_t PRIME = 1099511628211u;
    uint64_t m_hash = 14695981039346656037u;
};

void ValidateBody(const Body& body) {
    // NaN states are let through: users can make them, and they harm nobody but the body.
    CODE_ASSERTION(!(body.m_massInv < 0) && !(body.m_inertiaInv < 0));
    CODE_ASSERTION(!(body.m_angle > math::PI) && !(body.m_angle <= -math::PI));
    CODE_ASSERTION(body.GetParts().size() == body.GetGeoms().size());
    for (const BodyPart& part : body.GetParts()) {
        CODE_ASSERTION(part.geom->GetBodyPtr() == &body);
        CODE_ASSERTION(body.GetGeoms().count(part.geom) == 1);
    }
}

void ValidateContact(const Contact& contact, const std::set<const AbstractBody*>& bodies) {
    CODE_ASSERTION(contact.m_bodies[0] != contact.m_bodies[1]);
    CODE_ASSERTION(bodies.count(contact.m_bodies[0]) == 1 && bodies.count(contact.m_bodies[1]) == 1);
    CODE_ASSERTION(contact.m_id.geom0 < contact.m_id.geom1);
    CODE_ASSERTION(!(contact.m_penetration <= 0));
    constexpr math::real TOLERANCE = 1e-4f;
    const math::real length = math::Length(contact.m_normal);
    CODE_ASSERTION(length == 0 || !(std::fabs(length - 1) > TOLERANCE));
    const math::real massInv = InverseEffectiveMass(*contact.m_bodies[0], *contact.m_bodies[1],
                                                    contact.m_r[0], contact.m_r[1], contact.m_normal);
    CODE_ASSERTION(!(contact.m_normalImpulse < -TOLERANCE / massInv));
}

}  // namespace

uint64_t Simulation::HashState() const {
    StateHash hash;
    for (const BodyPtr& body : m_bodies) hash.Add(*body);
    for (const ParticlePtr& particle : m_particles) hash.Add(*particle);
    return hash.Get();
}

void Simulation::Validate() const {
    CODE_ASSERTION(!m_bodies.empty() && m_bodies.front() == GetWorldBody());
    std::set<const AbstractBody*> bodies;
    for (const BodyPtr& body : m_bodies) {
        CODE_ASSERTION(body);
        CODE_ASSERTION(bodies.insert(body.Get()).second);
        CODE_ASSERTION(body->m_inWorld);
        ValidateBody(*body);
    }
    for (const ParticlePtr& particle : m_particles) {
        CODE_ASSERTION(particle);
        CODE_ASSERTION(bodies.insert(particle.Get()).second);
        CODE_ASSERTION(particle->m_geom->GetBodyPtr() == particle.Get());
    }
    for (const ContactPtr& contact : m_contacts.Get()) ValidateContact(*contact, bodies);
    for (const HingePtr& hinge : m_hinges) CODE_ASSERTION(hinge->GetGeom(0) && hinge->GetGeom(1));
    for (const JointPtr& joint : m_joints) CODE_ASSERTION(joint);
    CODE_ASSERTION(m_contacts.GetCacheHits() <= m_contacts.Get().size());
}

}  // namespace physics

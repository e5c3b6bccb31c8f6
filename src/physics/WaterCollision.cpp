// The water pass of the collider: the touches that the water has found, as far as they are contacts.
//
// Water asks for no collision layers, no barred partners and no mass, only for the geom's m_collideWater:
// a held or fixed shape takes water too. Particles do not touch each other here; they feel each other
// through the fluid forces.

#include "physics/CollisionDetection.h"
#include "physics/ContactPool.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "util/ProfileTree.h"

namespace physics {

void Collider::CollideWater(const ParticleList& particles, ContactPool& out) {
    if (particles.empty()) return;
    PROFILE_SECTION("Water");
    const SPH& sph = SPH::Instance();
    const math::real radius = sph.GetContactRadius();
    const util::VectorPOD<uint32_t>& order = sph.GetGrid().GetOrder();
    for (const WaterTouches::Found& touch : sph.GetTouches().GetAll()) {
        if (touch.isLet || !(touch.probe.distance < radius)) continue;
        Particle& particle = *particles[order[touch.drop]].Get();
        MakeContact(out, touch.geom, particle.m_geom.Get(), 0, particle.m_pos, touch.probe.normal,
                    radius - touch.probe.distance);
    }
}

}  // namespace physics

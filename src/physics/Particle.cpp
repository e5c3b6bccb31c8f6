#include "physics/Particle.h"

#include "physics/SPH.h"

namespace physics {

Particle::Particle(math::Vec2 pos, math::Vec2 vel) {
    const SPH& sph = SPH::Instance();
    m_pos = pos;
    m_vel = vel;
    m_geom = new ParticleGeom(sph.m_radius->Get());
    SetMaterial(sph.m_radius->Get(), sph.m_density->Get(), sph.m_friction->Get(), sph.m_restitution->Get());
}

void Particle::SetMaterial(math::real radius, math::real density, math::real friction,
                           math::real restitution) {
    m_area = math::PI * (radius * radius);
    m_mass = m_inertia = m_area * density;
    m_massInv = m_inertiaInv = 1 / m_mass;
    m_geom->m_friction = friction;
    m_geom->m_restitution = restitution;
}

}  // namespace physics

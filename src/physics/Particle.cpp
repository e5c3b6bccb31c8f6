#include "physics/Particle.h"

#include "physics/SPH.h"

namespace physics {

Particle::Particle(math::Vec2 pos, math::Vec2 vel) {
    m_pos = pos;
    m_vel = vel;
    const WaterMaterial& material = SPH::Instance().GetMaterial();
    m_geom = new ParticleGeom(material.radius);
    SetMaterial(material);
}

void Particle::SetMaterial(const WaterMaterial& material) {
    m_area = math::PI * (material.radius * material.radius);
    m_mass = m_inertia = m_area * material.density;
    m_massInv = m_inertiaInv = 1 / m_mass;
    m_geom->m_friction = material.friction;
    m_geom->m_restitution = material.restitution;
    m_materialVersion = material.version;
}

}  // namespace physics

#pragma once

#include <cstdint>

#include "math/Vector.h"
#include "physics/Body.h"
#include "physics/Geom.h"

namespace physics {

// What drops are made of, by the settings of the water.
struct WaterMaterial {
    math::real radius;   // m
    math::real density;  // kg/m^2
    math::real friction;
    math::real restitution;
    uint32_t version;  // counts up with each change of the others
};

// A drop of water: a point body that feels its neighbours through SPH and rigid shapes through contacts.
//
// Its geom supplies identity, friction and restitution only. Positions are not pushed into it: collision
// and drawing read m_pos. Particle and geom own each other; Simulation breaks the cycle when it drops the
// particle.
class Particle : public AbstractBody {
  public:
    class ParticleGeom : public Circular {
      public:
        explicit ParticleGeom(math::real radius) : Circular(radius, Kind::OTHER, {}) {}
    };

    Particle(math::Vec2 pos, math::Vec2 vel);

    // Area, mass and inertia of a disc, and the geom's surface. The geom's radius stays.
    void SetMaterial(const WaterMaterial& material);
    uint32_t GetMaterialVersion() const { return m_materialVersion; }

    // Results of the last fluid pass. The next one starts from the pressure.
    math::real m_density = 0;
    math::real m_pressure = 0;
    math::Vec2 m_surfaceNormal;    // surface tension, as a force per mass
    uint32_t m_neighborCount = 0;  // the particle itself among them

    math::real m_vaporTime = 0;  // s that it has been alone
    util::SharedPtr<ParticleGeom> m_geom;

  private:
    uint32_t m_materialVersion = 0;
};

}  // namespace physics

#pragma once

#include <cstddef>
#include <cstdint>

#include "math/Vector.h"
#include "physics/Body.h"
#include "physics/Geom.h"

namespace physics {

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

    struct Neighbor {
        Particle* particle;
        math::real dist;   // m
        math::Vec2 delta;  // m, the neighbour's position less this particle's
    };

    // The neighbours of one particle. The entries of all particles lie in one array of SPH, which the next
    // pass fills anew: a list is good until then, or until its particle or one in it leaves the world.
    class NeighborList {
      public:
        NeighborList() = default;
        NeighborList(const Neighbor* begin, uint32_t size) : m_begin(begin), m_size(size) {}

        size_t size() const { return m_size; }
        bool empty() const { return m_size == 0; }
        const Neighbor& operator[](size_t i) const { return m_begin[i]; }
        const Neighbor* begin() const { return m_begin; }
        const Neighbor* end() const { return m_begin + m_size; }

      private:
        const Neighbor* m_begin = nullptr;
        uint32_t m_size = 0;
    };

    Particle(math::Vec2 pos, math::Vec2 vel);

    // Area, mass and inertia of a disc of `radius`, and the geom's surface. The geom's radius stays.
    void SetMaterial(math::real radius, math::real density, math::real friction, math::real restitution);

    // Results of the last fluid pass.
    math::real m_density = 0;
    math::real m_pressure = 0;
    math::Vec2 m_surfaceNormal;  // surface tension, as a force per mass
    NeighborList m_neighbors;    // the particle itself comes first

    math::real m_vaporTime = 0;  // s that it has been alone
    util::SharedPtr<ParticleGeom> m_geom;
};

}  // namespace physics

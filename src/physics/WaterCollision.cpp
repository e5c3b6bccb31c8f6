// The water pass of the collider: particles against planes, circles and polygons.
//
// Water asks for no collision layers, no barred partners and no mass, only for the geom's m_collideWater:
// a held or fixed shape takes water too. Particles do not touch each other here; they feel each other
// through the fluid forces.

#include "physics/CollisionDetection.h"
#include "physics/ContactPool.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/WaterTouch.h"
#include "util/ProfileTree.h"

namespace physics {

using math::real;

void Collider::CollideWater(ContactPool& out) const {
    if (m_particles.empty()) return;
    PROFILE_SECTION("Water");
    for (const PlaneRec& rec : m_planes) CollideWaterWith(*rec.plane, out);
    for (const CircleRec& rec : m_circles) CollideWaterWith(*rec.circle, out);
    for (const PolygonRec& rec : m_polygons) CollideWaterWith(*rec.polygon, out);
}

template <class Shape>
void Collider::CollideWaterWith(Shape& shape, ContactPool& out) const {
    if (!shape.m_collideWater) return;
    const SPH& sph = SPH::Instance();
    const real radius = sph.GetContactRadius();
    const NeighborGrid& grid = sph.GetGrid();
    VisitNear(grid, shape, radius, [&](uint32_t place, const Probe& probe) {
        if (shape.GetBodyPtr() != nullptr && sph.LetsPass(place, *shape.GetBodyPtr())) return;
        Particle& particle = *m_particles[grid.GetOrder()[place]];
        MakeContact(out, &shape, particle.m_geom.Get(), 0, particle.m_pos, probe.normal,
                    radius - probe.distance);
    });
}

}  // namespace physics

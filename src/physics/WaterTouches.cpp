#include "physics/WaterTouches.h"

#include "math/Geometry.h"
#include "physics/Body.h"

namespace physics {

using math::real;
using math::Vec2;

void WaterTouches::Find(const NeighborGrid& grid, const BodyList& bodies, const Settings& settings) {
    m_found.clear();
    m_last.clear();
    m_last.resize(grid.GetSize(), NONE);
    m_begins.clear();
    m_begins.resize(bodies.size() + 1, 0);
    if (grid.GetSize() == 0) return;
    for (uint32_t b = 0; b < bodies.size(); ++b) {
        for (const BodyPart& part : bodies[b]->GetParts()) {
            Geom& geom = *part.geom.Get();
            if (!geom.m_collideWater) continue;
            VisitNearGeom(grid, geom, settings.reach, [&](uint32_t drop, const Probe& probe) {
                Add(settings, bodies, {drop, b, &geom, probe, false, m_last[drop]});
            });
        }
        m_begins[b + 1] = static_cast<uint32_t>(m_found.size());
    }
}

void WaterTouches::Add(const Settings& settings, const BodyList& bodies, const Found& found) {
    constexpr real UPRIGHT = 0.5f;  // cosine of the angle to gravity, up to which a shape lies above or below
    const auto getFall = [&](const Found& touch) { return math::Dot(touch.probe.normal, settings.down); };
    const real fall = getFall(found);
    const bool isAbove = fall > UPRIGHT, isBelow = fall < -UPRIGHT;
    m_last[found.drop] = static_cast<uint32_t>(m_found.size());
    m_found.push_back(found);
    if (!isAbove && !isBelow) return;
    for (uint32_t i = found.previous; i != NONE; i = m_found[i].previous) {
        Found& other = m_found[i];
        const bool isBetween = isAbove ? getFall(other) < -UPRIGHT : getFall(other) > UPRIGHT;
        if (!isBetween || other.body == found.body) continue;
        if (GetDropShare(other.probe.distance + found.probe.distance, settings.spacing) > 0) continue;
        Found& upper = isAbove ? m_found.back() : other;
        upper.isLet = !bodies[upper.body].Get()->IsImmovable();
    }
}

}  // namespace physics

#include "physics/WaterTouches.h"

#include "math/Geometry.h"
#include "physics/Body.h"

namespace physics {

using math::real;
using math::Vec2;

void WaterTouches::Find(const NeighborGrid& grid, const BodyList& bodies, const Settings& settings) {
    Forget();
    m_last.resize(grid.GetSize(), NONE);
    m_begins.clear();
    m_begins.push_back(0);
    for (uint32_t b = 0; b < bodies.size(); ++b) {
        for (const BodyPart& part : bodies[b]->GetParts()) {
            const Geom& geom = *part.geom.Get();
            if (!geom.m_collideWater) continue;
            VisitNearGeom(grid, geom, settings.reach, [&](uint32_t drop, const Probe& probe) {
                Add(settings, bodies, {drop, b, probe, false, m_last[drop]});
            });
        }
        m_begins.push_back(static_cast<uint32_t>(m_found.size()));
    }
}

void WaterTouches::Forget() {
    m_found.clear();
    m_last.clear();
    m_letBodies.clear();
}

void WaterTouches::Add(const Settings& settings, const BodyList& bodies, Found found) {
    constexpr real UPRIGHT = 0.5f;  // cosine of the angle to gravity, up to which a shape lies above or below
    const Vec2 down = settings.down;
    const auto isAbove = [down](const Found& touch) { return math::Dot(touch.probe.normal, down) > UPRIGHT; };
    const auto isBelow = [down](const Found& touch) {
        return math::Dot(touch.probe.normal, down) < -UPRIGHT;
    };
    const auto let = [&](Found& touch) {
        const AbstractBody& body = *bodies[touch.body].Get();
        if (body.IsImmovable()) return;
        touch.isLet = true;
        if (m_letBodies.empty()) m_letBodies.resize(m_last.size(), nullptr);
        m_letBodies[touch.drop] = &body;
    };
    for (uint32_t i = found.previous; i != NONE; i = m_found[i].previous) {
        Found& other = m_found[i];
        if (other.body == found.body) continue;
        if (GetDropShare(other.probe.distance + found.probe.distance, settings.spacing) > 0) continue;
        if (isAbove(found) && isBelow(other)) let(found);
        if (isBelow(found) && isAbove(other)) let(other);
    }
    m_last[found.drop] = static_cast<uint32_t>(m_found.size());
    m_found.push_back(found);
}

bool WaterTouches::LetsPass(uint32_t drop, const AbstractBody& body) const {
    return !m_letBodies.empty() && m_letBodies[drop] == &body;
}

}  // namespace physics

// The forces of Simulation: gravity, air, springs, water.

#include <algorithm>
#include <cmath>

#include "math/Geometry.h"
#include "physics/Body.h"
#include "physics/Geom.h"
#include "physics/Joints.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "physics/SolverBody.h"
#include "physics/StepSettings.h"
#include "util/ProfileTree.h"

namespace physics {

// The settings of the air and the step, read once per step.
struct Simulation::Air {
    explicit Air(const Simulation& simulation)
        : gravity(simulation.GetEffectiveGravity()),
          friction(simulation.m_airFrictionOn->Get()),
          linear(simulation.m_airFrictionLinear->Get()),
          quadratic(simulation.m_airFrictionQuadratic->Get()),
          rotation(simulation.m_rotFrictionLinear->Get()),
          buoyancy(simulation.m_airBuoyancy->Get()),
          density(buoyancy ? simulation.m_airDensity->Get() : 0),
          h(simulation.m_timeDelta->Get()) {}

    math::Vec2 gravity;
    bool friction;
    math::real linear;
    math::real quadratic;
    math::real rotation;
    bool buoyancy;
    math::real density;
    math::real h;
};

// Sums over a body's geoms of what the air can take hold of.
struct AirSurface {
    math::real width = 0;  // m, across the motion
    math::Vec2 widthPos;   // sum of width * centre
    math::Vec2 areaPos;    // sum of area * place
};

// Of the geom's box along the unit vector n.
static math::real MeasureWidth(const math::OBB2D& box, math::Vec2 n) {
    return 2 * (std::fabs(math::Dot(n, box.axis[1])) * box.halfSize.y +
                std::fabs(math::Dot(n, box.axis[0])) * box.halfSize.x);
}

// n is the unit vector across the motion; zero for a body at rest. The shapes that fill worlds are asked
// without a virtual call and a copy of their box.
static AirSurface MeasureSurface(const Body& body, math::Vec2 n) {
    AirSurface surface;
    const auto add = [&](math::real width, math::Vec2 center, math::real area, const Geom& geom) {
        surface.width += width;
        surface.widthPos += width * center;
        surface.areaPos += area * geom.GetPos();
    };
    for (const BodyPart& part : body.GetParts()) {
        const Geom& geom = *part.geom.Get();
        if (geom.GetKind() == Geom::Kind::CIRCLE) {
            const Circle& circle = static_cast<const Circle&>(geom);
            const math::real w = 2 * (std::fabs(n.y) * circle.m_radius + std::fabs(n.x) * circle.m_radius);
            add(w, circle.GetPos(), circle.Circular::GetArea(), circle);
        } else if (geom.GetKind() == Geom::Kind::POLYGON) {
            const Polygon& polygon = static_cast<const Polygon&>(geom);
            const math::OBB2D& box = polygon.GetWorldOBB();
            add(MeasureWidth(box, n), box.center, polygon.Polygon::GetArea(), polygon);
        } else {
            const math::OBB2D box = geom.GetOBB();
            add(MeasureWidth(box, n), box.center, geom.GetArea(), geom);
        }
    }
    return surface;
}

// Slows the spin, but never turns it round within a step of length h.
static void AddRotationalDrag(AbstractBody& body, math::real factor, math::real h) {
    const math::real spin = std::fabs(body.m_angVel);
    const math::real t = std::min(body.m_mass * factor * spin, body.m_inertia * spin / h);
    if (body.m_angVel != 0) body.m_torque -= std::copysign(t, body.m_angVel);
}

// Drag per speed on something of this width, capped so that it cannot reverse the motion within a step.
math::real Simulation::CalcDrag(const Air& air, math::real width, math::real speed, math::real mass) {
    return std::min(width * (air.linear + air.quadratic * speed), mass / air.h);
}

void Simulation::AddBodyForces(Body& body, const Air& air) {
    body.m_force += body.m_mass * air.gravity;
    if (!air.friction && !air.buoyancy) return;
    const math::Vec2 v = body.m_vel;
    const math::real s = math::Length(v);
    const math::Vec2 n = s == 0 ? math::Vec2() : math::Vec2(v.y / s, -v.x / s);
    const AirSurface surface = MeasureSurface(body, n);
    if (air.friction && !math::IsZero(s) && surface.width > 0) {
        const math::real f = CalcDrag(air, surface.width, s, body.m_mass);
        AddForceAt(body, -f * v, surface.widthPos / surface.width);
        // Only with linear motion: what spins on the spot keeps spinning, and scenes count on it.
        AddRotationalDrag(body, air.rotation, air.h);
    }
    if (air.buoyancy) {
        AddForceAt(body, -air.density * body.m_area * air.gravity, surface.areaPos / body.m_area);
    }
}

void Simulation::AddParticleForces(const Air& air) {
    const SPH& sph = SPH::Instance();
    const math::real r = sph.m_radius->Get();
    const math::real a = math::PI * (r * r);
    const math::real m = a * sph.m_density->Get();
    for (const ParticlePtr& pointer : m_particles) {
        Particle& particle = *pointer.Get();
        const bool isMovable = !particle.IsImmovable();
        if (isMovable) particle.m_force += m * air.gravity;
        if (air.friction) {
            const math::real f = CalcDrag(air, 2 * r, math::Length(particle.m_vel), particle.m_mass);
            particle.m_force -= f * particle.m_vel;
            AddRotationalDrag(particle, air.rotation, air.h);
        }
        if (air.buoyancy && isMovable) particle.m_force -= air.density * a * air.gravity;
    }
}

// The list of the step, the forces of the air and the contacts share one walk over bodies and their geoms: in
// a large world these come from far memory each time. False when there are bad bodies, which are passed over.
bool Simulation::VisitBodies(bool active) {
    PROFILE_SECTION("Body forces");
    const Air air(*this);
    const math::Vec2 down = GetDown();
    const float limit = m_fallLimit->Get();
    bool allGood = true;
    m_allBodies.clear();
    m_allBodies.reserve(m_bodies.size() + m_particles.size());
    m_contacts.Begin();
    for (const BodyPtr& pointer : m_bodies) {
        Body& body = *pointer.Get();
        if (IsBad(body, down, limit) && pointer != m_bodies.front()) {  // the world's stays
            allGood = false;
            continue;
        }
        List(body);
        if (active && !body.IsImmovable()) AddBodyForces(body, air);
        m_contacts.Enter(body);
    }
    return allGood;
}

void Simulation::CalcForces() {
    PROFILE_SECTION("Simulation::CalcForces");
    const Air air(*this);
    const StepSettings settings = GetStepSettings();
    if (!m_particles.empty()) {
        PROFILE_SECTION("Particle forces");
        AddParticleForces(air);
    }
    for (const JointPtr& joint : m_joints) joint->ApplyForce(settings);
    if (m_running->Get()) SPH::Instance().Update(m_particles, m_bodies, air.gravity, air.h);
}

}  // namespace physics

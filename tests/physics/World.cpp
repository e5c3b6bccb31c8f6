#include "physics/World.h"

#include <algorithm>
#include <cmath>

namespace test {

using math::Vec2;
using physics::BodyPtr;

static void ResetSettings(const script::ClassObject& owner) {
    for (const script::VariablePtr& variable : owner.GetVariables()) {
        const auto attrib = util::DynamicCast<script::AbstractAttrib>(variable);
        if (attrib) attrib->SetValue(attrib->MakeDefault());
    }
}

World::World() : sim(physics::Simulation::Instance()), sph(physics::SPH::Instance()) {
    sim.Clear();
    ResetSettings(sim);
    ResetSettings(sph);
    sim.m_timeDelta->Set(0.01f);  // in which most cases count; steadiness is tested at the default
}

World::~World() {
    sim.Clear();
}

BodyPtr World::Add(physics::Geom* geom) {
    const physics::Surface surface = sim.GetDefaultSurface();
    geom->m_density = surface.density;
    geom->m_friction = surface.friction;
    geom->m_restitution = surface.restitution;
    const BodyPtr body = new physics::Body(physics::GeomPtr(geom));
    sim.AddBody(body);
    return body;
}

BodyPtr World::AddCircle(Vec2 pos, float radius) {
    return Add(new physics::Circle(radius, pos));
}

BodyPtr World::AddBox(Vec2 pos, float width, float height) {
    const Vec2 half(width / 2, height / 2);
    const Vec2 min = pos - half;
    const Vec2 max = pos + half;
    const physics::PolygonPtr box = physics::MakeBoxPolygon(min.x, min.y, max.x, max.y);
    return Add(box.Get());
}

BodyPtr World::AddGround(Vec2 normal, float offset) {
    return Add(new physics::Plane(normal, offset));
}

physics::ParticlePtr World::AddParticle(Vec2 pos, Vec2 vel) {
    const physics::ParticlePtr particle = new physics::Particle(pos, vel);
    sim.AddParticle(particle);
    return particle;
}

physics::HingePtr World::AddHinge(const BodyPtr& body0, const BodyPtr& body1, Vec2 point) {
    const physics::HingePtr hinge = new physics::Hinge(GeomOf(body0), GeomOf(body1), point);
    sim.AddConstraint(hinge);
    return hinge;
}

constexpr float BOX_SIZE = 0.4f;

std::vector<BodyPtr> World::AddStack(int boxes) {
    std::vector<BodyPtr> bodies;
    for (int i = 0; i < boxes; ++i) {
        bodies.push_back(AddBox({0, (static_cast<float>(i) + 0.5f) * BOX_SIZE}, BOX_SIZE, BOX_SIZE));
    }
    return bodies;
}

std::vector<BodyPtr> World::AddPyramid(int rows) {
    std::vector<BodyPtr> bodies;
    for (int row = 0; row < rows; ++row) {
        const int count = rows - row;
        for (int i = 0; i < count; ++i) {
            const float x = (static_cast<float>(i) - 0.5f * static_cast<float>(count - 1)) * BOX_SIZE * 1.1f;
            bodies.push_back(AddBox({x, (static_cast<float>(row) + 0.5f) * BOX_SIZE}, BOX_SIZE, BOX_SIZE));
        }
    }
    return bodies;
}

void World::Run(float seconds) {
    const int steps = static_cast<int>(std::lround(seconds / sim.m_timeDelta->Get()));
    for (int i = 0; i < steps; ++i) sim.Step(true);
}

void World::ClearAir() {
    sim.m_airFrictionOn->Set(false);
    sim.m_airBuoyancy->Set(false);
}

void World::SetSurface(float friction, float restitution) {
    sim.m_defaultBodyFriction->Set(friction);
    sim.m_defaultBodyRestitution->Set(restitution);
}

float World::GetDeepestContact() const {
    float deepest = 0;
    for (const physics::ContactPtr& contact : sim.GetContacts()) {
        deepest = std::max(deepest, contact->m_penetration);
    }
    return deepest;
}

float World::GetFastestBody() const {
    float fastest = 0;
    for (const BodyPtr& body : sim.GetBodies()) fastest = std::max(fastest, math::Length(body->m_vel));
    return fastest;
}

float World::GetKineticEnergy() const {
    float energy = 0;
    for (const BodyPtr& body : sim.GetBodies()) {
        if (body->IsImmovable()) continue;
        energy += 0.5f * body->m_mass * math::LengthSquared(body->m_vel) +
                  0.5f * body->m_inertia * body->m_angVel * body->m_angVel;
    }
    return energy;
}

}  // namespace test

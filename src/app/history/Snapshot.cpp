#include "app/history/Snapshot.h"

#include <algorithm>

#include "app/entities/Chain.h"
#include "app/entities/SpringEntity.h"
#include "app/scene/Scene.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"

namespace app {

Snapshot::Snapshot(Scene& scene) : m_scene(scene) {
    TakeEntities();
    TakeBodies();
    TakeParticles();
    m_selection = m_scene.GetSelection().Get();
    m_settings = m_scene.GetSettings().GetBundle();
}

Snapshot::~Snapshot() noexcept(false) = default;

void Snapshot::TakeEntities() {
    const EntityList& entities = m_scene.GetEntities();
    m_entities.reserve(entities.size());
    for (const EntityPtr& entity : entities) {
        if (!entity->IsAlive()) continue;  // it waits to be retired
        m_entities.push_back({entity, entity->GetValues()});
        const auto joint = util::DynamicCast<JointEntity>(entity);
        if (!joint) continue;
        const auto* const spring = dynamic_cast<const SpringEntity*>(entity.Get());
        m_joints.push_back(
            {joint, {joint->GetEnd(0), joint->GetEnd(1)}, spring != nullptr ? spring->GetLength() : 0});
    }
}

// What a tool pulls at has no shape of the scene, and goes with the gesture.
static bool HasShape(const physics::Body& body) {
    const auto& parts = body.GetParts();
    return std::any_of(parts.begin(), parts.end(), [](const physics::BodyPart& part) {
        return dynamic_cast<const physics::WorldGeom*>(part.geom.Get()) == nullptr;
    });
}

void Snapshot::TakeBodies() {
    const physics::BodyPtr world = physics::Simulation::Instance().GetWorldBody();
    const physics::BodyList& bodies = physics::Simulation::Instance().GetBodies();
    m_bodies.reserve(bodies.size());
    for (const physics::BodyPtr& body : bodies) {
        if (body == world || HasShape(*body)) m_bodies.push_back({body, body->GetState()});
    }
}

void Snapshot::TakeParticles() {
    for (const physics::ParticlePtr& particle : physics::Simulation::Instance().GetParticles()) {
        m_particles.push_back(
            {particle, particle->m_pos, particle->m_vel, particle->m_pressure, particle->m_vaporTime});
    }
}

// Plain values come first, while no shape has a body yet: a density would have it computed anew. The bodies
// then take their shapes back with all that was computed, to the bit.
void Snapshot::Restore() const {
    m_scene.Clear();
    m_scene.GetSettings().Switch(m_settings);
    RestoreValues();
    RestoreBodies();
    RestoreJoints();
    RestoreScene();
    RestoreParticles();
    m_scene.GetSelection().Set(m_selection);
}

void Snapshot::RestoreValues() const {
    for (const EntityRecord& record : m_entities) record.m_entity->Restore(*record.m_values);
}

void Snapshot::RestoreBodies() const {
    for (const BodyRecord& record : m_bodies) {
        record.m_body->SetState(record.m_state);
        physics::Simulation::Instance().AddBody(record.m_body);
    }
}

// The length of a spring at rest comes after Rebuild, which takes the present one for it.
void Snapshot::RestoreJoints() const {
    for (const JointRecord& record : m_joints) {
        record.m_joint->SetEnds(record.m_ends[0], record.m_ends[1]);
        record.m_joint->Rebuild();
        const auto spring = util::DynamicCast<SpringEntity>(record.m_joint);
        if (spring) spring->SetLength(record.m_length);
    }
}

void Snapshot::RestoreScene() const {
    for (const EntityRecord& record : m_entities) m_scene.AddEntity(record.m_entity);
}

void Snapshot::RestoreParticles() const {
    physics::Simulation& simulation = physics::Simulation::Instance();
    for (const ParticleRecord& record : m_particles) {
        record.m_particle->m_pos = record.m_pos;
        simulation.AddParticle(record.m_particle);
        record.m_particle->m_vel = record.m_vel;
        record.m_particle->m_pressure = record.m_pressure;
        record.m_particle->m_vaporTime = record.m_vaporTime;
    }
}

}  // namespace app

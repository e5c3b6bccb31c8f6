#include "app/history/Snapshot.h"

#include "app/entities/Chain.h"
#include "app/entities/Entity.h"
#include "app/scene/Scene.h"
#include "physics/Body.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"

namespace app {

Snapshot::Snapshot(Scene& scene) : m_scene(scene) {
    TakeEntities();
    TakeBodies();
    TakeParticles();
    m_selection = m_scene.GetSelection().Get();
}

Snapshot::~Snapshot() noexcept(false) = default;

void Snapshot::TakeEntities() {
    const EntityList& entities = m_scene.GetEntities();
    m_entities.reserve(entities.size());
    for (const EntityPtr& entity : entities) {
        m_entities.push_back({entity, entity->GetChain(), {}});
        entity->Serialize(m_entities.back().m_values, Entity::Purpose::SNAPSHOT);
    }
}

void Snapshot::TakeBodies() {
    const physics::BodyList& bodies = physics::Simulation::Instance().GetBodies();
    m_bodies.reserve(bodies.size());
    for (const physics::BodyPtr& body : bodies) {
        m_bodies.push_back({body, body->GetGeoms(), body->m_vel, body->m_angVel});
    }
}

void Snapshot::TakeParticles() {
    for (const physics::ParticlePtr& particle : physics::Simulation::Instance().GetParticles()) {
        m_particles.push_back({particle, particle->m_pos, particle->m_vel});
    }
}

// Values are set twice. Places must stand before the bodies adopt the shapes; what works through a body or
// through a tie between shapes needs those.
void Snapshot::Restore() const {
    m_scene.Clear();
    ResetEntities();
    RestoreValues();
    RestoreBodies();
    RestoreValues();
    RestoreScene();
    RestoreParticles();
    m_scene.GetSelection().Set(m_selection);
}

void Snapshot::ResetEntities() const {
    for (const EntityRecord& record : m_entities) record.m_entity->ResetForRestore();
}

void Snapshot::RestoreValues() const {
    for (const EntityRecord& record : m_entities) record.m_entity->Deserialize(record.m_values);
}

void Snapshot::RestoreBodies() const {
    for (const BodyRecord& record : m_bodies) {
        record.m_body->SetGeoms(record.m_geoms);
        if (record.m_body->m_massInv == 0) continue;
        record.m_body->m_vel = record.m_vel;
        record.m_body->m_angVel = record.m_angVel;
    }
}

void Snapshot::RestoreScene() const {
    for (const EntityRecord& record : m_entities) {
        record.m_entity->SetChain(record.m_chain);
        m_scene.AddEntity(record.m_entity);
    }
}

void Snapshot::RestoreParticles() const {
    physics::Simulation& simulation = physics::Simulation::Instance();
    for (const ParticleRecord& record : m_particles) {
        record.m_particle->m_pos = record.m_pos;
        simulation.AddParticle(record.m_particle);
        record.m_particle->m_vel = record.m_vel;
    }
}

}  // namespace app

#pragma once

#include <vector>

#include "app/Fwd.h"
#include "app/entities/JointEntity.h"
#include "app/scene/SceneSettings.h"
#include "math/Vector.h"
#include "physics/Body.h"
#include "util/Pointee.h"

namespace app {

// The whole scene at one moment: what undo goes back to.
//
// It shares the entities, geoms and bodies with the scene and keeps them alive, so restoring brings back
// the very objects, erased ones included, and builds no shape anew. Besides it holds each entity's values,
// which successive snapshots share as long as they are the same, and the motion of every body and drop.
class Snapshot : public util::Pointee {
  public:
    explicit Snapshot(Scene& scene);
    ~Snapshot() noexcept(false) override;

    Scene& GetScene() const { return m_scene; }
    // Replaces the scene, its bodies and its water by the saved ones, velocities and selection included.
    void Restore() const;

  private:
    struct EntityRecord {
        EntityPtr m_entity;
        Entity::ValuesPtr m_values;
    };
    struct JointRecord {
        JointEntityPtr m_joint;
        JointEntity::End m_ends[2];
        math::real m_length;  // m, of a spring at rest
    };
    struct BodyRecord {
        physics::BodyPtr m_body;
        physics::Body::State m_state;
    };
    struct ParticleRecord {
        physics::ParticlePtr m_particle;
        math::Vec2 m_pos;
        math::Vec2 m_vel;
        math::real m_pressure;   // from which the next step starts
        math::real m_vaporTime;  // or a drop that had dried up would do so again at once
    };

    void TakeEntities();
    void TakeBodies();
    void TakeParticles();

    void RestoreValues() const;
    void RestoreBodies() const;
    void RestoreJoints() const;
    void RestoreScene() const;
    void RestoreParticles() const;

    Scene& m_scene;
    std::vector<EntityRecord> m_entities;  // in scene order
    std::vector<JointRecord> m_joints;     // in scene order
    std::vector<BodyRecord> m_bodies;      // in the simulation's order, the world body first
    std::vector<ParticleRecord> m_particles;
    EntitySet m_selection;
    SceneSettings::Bundle m_settings;
};

}  // namespace app

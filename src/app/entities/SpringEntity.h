#pragma once

#include "app/entities/JointEntity.h"
#include "script/Attributes.h"

namespace app {

// A damped spring between two points of shapes, drawn as a coil that stretches.
class SpringEntity : public JointEntity {
  public:
    explicit SpringEntity(math::real size);

    // At rest where its ends are.
    void Rebuild() override;
    void AddToSimulation() override;
    void RemoveFromSimulation() override;
    // A spring within one body does nothing.
    bool IsInSimulation() const override;
    bool IsAlive() const override { return JointEntity::IsAlive() && !IsWithinOneBody(); }

    bool IsPointInside(math::Vec2 point) const override;
    bool CrossesLines(const physics::LineList& lines) const override;
    bool IsInsidePolygon(const physics::Polygon& polygon) const override;
    math::BoundingBox2f GetBoundingBox() const override;

    void Draw() override;
    void Serialize(EntitySerializer& out) const override;
    void Deserialize(const EntitySerializer& in) override;
    EntityPtr Clone() const override;

    // m, at rest.
    math::real GetLength() const { return m_length; }
    void SetLength(math::real length);
    const physics::SpringJointPtr& GetJoint() const { return m_joint; }  // null until Rebuild

    const script::AttribPtr<float> m_strengthFactor;
    const script::AttribPtr<float> m_dampingFactor;  // fraction of critical damping

  private:
    bool IsWithinOneBody() const;
    void PushSettings();

    math::real m_length = 0;
    physics::SpringJointPtr m_joint;
};

}  // namespace app

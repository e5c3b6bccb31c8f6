#pragma once

#include "app/entities/JointEntity.h"
#include "script/Attributes.h"

namespace app {

// A pin through two shapes, with a motor. With `controller` "arrowkeys" the keys drive the motor: right and
// left turn it to either side, up doubles its speed meanwhile, down brakes, and without a key the hinge
// turns freely.
class HingeEntity : public JointEntity {
  public:
    explicit HingeEntity(math::real size);

    void Rebuild() override;
    void AddToSimulation() override;
    void RemoveFromSimulation() override;
    void Update(float dt) override;

    // The shape that it pins to the ground behind the scene; null for a hinge between two shapes. Such a pin
    // goes along when a hand moves the shape, which would otherwise jump back as soon as the world runs.
    physics::GeomPtr GetPinnedGeom() const;
    void CarryPin(const math::RigidTransform& transform);

    void Draw() override;
    void Serialize(EntitySerializer& out) const override;
    EntityPtr Clone() const override;

    const physics::HingePtr& GetHinge() const { return m_hinge; }  // null until Rebuild

    const script::AttribPtr<bool> m_motor;
    const script::AttribPtr<bool> m_ccw;          // the second geom turns counter-clockwise against the first
    const script::AttribPtr<float> m_motorSpeed;  // rad/s; a negative one turns into the other direction
    const script::AttribPtr<float> m_motorTorque;
    const script::AttribPtr<String> m_controller;  // "arrowkeys", or empty

  private:
    void OnSettingChange();
    void PushSettings();
    float GetSignedSpeed() const;
    void ObeyArrowKeys();

    physics::HingePtr m_hinge;
};

}  // namespace app

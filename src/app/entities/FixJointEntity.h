#pragma once

#include "app/entities/JointEntity.h"

namespace app {

// Makes one body of the bodies of two shapes. It is no constraint: while it holds, the shapes are one rigid
// thing, and one that is fixed to the world does not move.
//
// When it goes, the body falls apart into what the other fix joints still hold together. On the body of the
// world, what hangs on the world stays: the planes, and shapes that no fix joint ever held.
class FixJointEntity : public JointEntity {
  public:
    explicit FixJointEntity(math::real size);

    void Rebuild() override {}  // there is nothing but the fusion
    void AddToSimulation() override;
    void RemoveFromSimulation() override;
    void Update(float dt) override;

    void Draw() override;
    void Serialize(EntitySerializer& out) const override;
    EntityPtr Clone() const override;

  protected:
    void ResetForRestore() override;

  private:
    class Links;

    void KeepTogether();
    static void SplitBody(physics::Body& body, const Links& links, const physics::GeomPtr& from);
    static void SplitWorld(physics::Body& world, const Links& links, const physics::GeomSet& partners);

    physics::GeomPtr m_fused[2];
};

}  // namespace app

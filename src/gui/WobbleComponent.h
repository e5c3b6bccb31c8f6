#pragma once

#include "gui/Component.h"
#include "rendering/KeptPicture.h"

namespace gui {

// A component whose picture follows its place through a damped spring, so that it shears while it moves.
// The hit tests follow the picture. While nothing in it changes, it is shown instead of being drawn.
class WobbleComponent : public Component {
  public:
    explicit WobbleComponent(const String& name = "WobbleComponent", const LayoutPtr& layout = nullptr);

    void Draw() override;
    void Update(float dt) override;
    void SetPos(float x, float y) override;
    math::TMatrix3<float> GetFromParent() const override;

    bool IsWobbleEnabled() const { return m_wobbleEnabled; }
    void SetWobbleEnabled(bool enabled) { m_wobbleEnabled = enabled; }
    const math::TMatrix3<float>& GetWobbleMatrix() const { return m_wobbleMatrix; }
    math::Vec2 GetWobbleLag() const { return GetPos() - m_wobbleTarget; }  // of the picture behind the place

    // Ends the movement: the picture stands at the component's place.
    void StopWobble();

  protected:
    // Whether the user is moving the component now. Then a long lag is held, else it ends the movement.
    virtual bool IsHeld() const { return false; }

  private:
    math::TMatrix3<float> GetPictureTransform() const;
    void Step(float h);
    void LimitLag();
    void UpdateMatrix();

    math::Vec2 m_wobbleTarget;             // where the picture's lower edge is, in the parent's content
    math::Vec2 m_wobbleVelocity;           // units per second
    math::TMatrix3<float> m_wobbleMatrix;  // from the outer corner, still to wobbling
    bool m_wobbleStarted = false;          // has been placed for the first time
    bool m_wobbleEnabled = true;
    rendering::KeptPicture m_picture;
};

}  // namespace gui

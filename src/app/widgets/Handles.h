#pragma once

#include "app/Fwd.h"
#include "gui/Draggable.h"
#include "rendering/Texture.h"
#include "script/Attributes.h"

namespace app {

// A picture that takes a drag without end: what it moves follows the movement, not the place. With the focus
// the arrows move it.
class InfDraggable : public gui::Draggable {
  public:
    InfDraggable(const String& icon, const String& name);

    void OnDrag(gui::DragEvent& event) override;
    void OnKeyEvent(gui::KeyEvent& event) override;
    void DrawComp() override;
    bool CanFocus() const override { return true; }
    const char* GetKind() const override { return "Handle"; }

  private:
    virtual void Move(math::Vec2 delta) = 0;  // GUI units

    const rendering::TextureMentorPtr m_icon;
};

// Moves the view, twice as far as the mouse and against it, as a lever would.
class Panner : public InfDraggable {
  public:
    explicit Panner(View& view);

  private:
    void Move(math::Vec2 delta) override;

    View& m_view;
};

// Zooms about the middle: up is nearer.
class Zoomer : public InfDraggable {
  public:
    Zoomer(View& view, const script::AttribPtr<float>& zoomFactor);

  private:
    void Move(math::Vec2 delta) override;

    View& m_view;
    const script::AttribPtr<float> m_zoomFactor;  // exponent of 2 per notch of the wheel
};

}  // namespace app

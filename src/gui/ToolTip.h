#pragma once

#include "gui/components/Label.h"

namespace gui {

// The one text that explains what the mouse rests on, beside the mouse, or what the keyboard's focus rests
// on, below that. A child of the root, above all else; empty and invisible most of the time.
class ToolTip : public Label {
  public:
    ToolTip();

    void Update(float dt) override;
    void Draw() override;
    void DrawComp() override;
    bool IsVisible() const override { return m_visible; }
    const char* GetKind() const override { return "ToolTip"; }

  private:
    void ChooseLeader();
    const Component* FindTarget() const;
    void Show(const Component& target);

    ComponentWeakPtr m_focused;      // as of the last frame
    math::Vec2 m_mouse;              // likewise
    bool m_followsKeyboard = false;  // the focus has moved later than the mouse
    ComponentWeakPtr m_target;       // what the mouse is over, or what has the focus
    double m_since = 0;              // seconds; when it came there
    uint32_t m_presses = 0;          // of the mouse, as of the last frame
    bool m_isOver = false;           // it has been pressed: no tip until the mouse has been elsewhere
    bool m_visible = false;
};

}  // namespace gui

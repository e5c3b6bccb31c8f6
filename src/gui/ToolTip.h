#pragma once

#include "gui/components/Label.h"

namespace gui {

// The one text beside the mouse that explains what the mouse rests on. A child of the root, above all else;
// empty and invisible most of the time.
class ToolTip : public Label {
  public:
    ToolTip();

    void Update(float dt) override;
    void Draw() override;
    void DrawComp() override;
    bool IsVisible() const override { return m_visible; }
    const char* GetKind() const override { return "ToolTip"; }

  private:
    const Component* FindTarget() const;
    void Show(const String& text);

    ComponentWeakPtr m_target;  // what the mouse is over
    double m_since = 0;         // seconds; when it came there, or was last pressed there
    bool m_visible = false;
};

}  // namespace gui

#pragma once

#include "gui/components/Label.h"

namespace app {

// A few words beside the pointer that fade away by themselves.
class Hint : public gui::Label {
  public:
    Hint();

    void Show(const String& text, math::Vec2 place);  // GUI coordinates of what it is about
    bool IsShown() const;

    void Draw() override;

  private:
    float GetAlpha() const;

    double m_since;  // seconds, of util::Clock; when it was shown last
};

}  // namespace app

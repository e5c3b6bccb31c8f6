#pragma once

#include <functional>

#include "gui/components/Label.h"

namespace app {

// A text that a function gives, asked in each frame.
class InfoLabel : public gui::Label {
  public:
    using Source = std::function<String()>;

    // Never narrower than `minWidth`, so that changing figures do not move the window's edge.
    InfoLabel(const Source& source, float minWidth);

    void Update(float dt) override;

  private:
    void Show();

    const Source m_source;
    const float m_minWidth;  // GUI units
};

}  // namespace app

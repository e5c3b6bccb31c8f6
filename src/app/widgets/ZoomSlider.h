#pragma once

#include "app/Fwd.h"
#include "gui/components/Slider.h"

namespace app {

// The zoom of the view, about its middle.
class ZoomSlider : public gui::Slider {
  public:
    explicit ZoomSlider(View& view);

    void Update(float dt) override;
    void FireChange() override;

  private:
    View& m_view;
};

}  // namespace app

#pragma once

#include "gui/components/Checkbox.h"
#include "rendering/Texture.h"

namespace app {

// On while the world runs; shows what a press will do.
class SimPlayPauseButton : public gui::AbstractToggleButton {
  public:
    SimPlayPauseButton();

    void SetState(State state) override;  // runs or stops the simulation
    void Update(float dt) override;
    void DrawComp() override;

  private:
    void Follow();

    const rendering::TextureMentorPtr m_play;
    const rendering::TextureMentorPtr m_pause;
};

}  // namespace app

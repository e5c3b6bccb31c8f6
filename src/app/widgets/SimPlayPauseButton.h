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

    // Draws the user's eye to it for some seconds, until the world runs for the first time.
    void Pulse();

  private:
    float GetPulse() const;  // 0 to 1
    void Follow();

    const rendering::TextureMentorPtr m_play;
    const rendering::TextureMentorPtr m_pause;
    double m_pulseStart = -1;  // seconds; negative: does not pulse
};

}  // namespace app

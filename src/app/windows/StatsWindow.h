#pragma once

#include "app/Fwd.h"
#include "gui/Fwd.h"
#include "gui/Window.h"

namespace app {

// What there is in the world, whether it keeps pace with real time, the frame rate and the scene's name.
class StatsWindow : public gui::Window {
  public:
    explicit StatsWindow(const Scene& scene);
    ~StatsWindow() noexcept(false) override;

    void Update(float dt) override;

  private:
    void FollowFrameRate(float dt);
    void ShowText();

    const Scene& m_scene;
    gui::LabelPtr m_text;
    double m_frameRate = 0;    // smoothed; 0 before the first
    float m_sinceRefresh = 0;  // s
};

}  // namespace app

#pragma once

#include "app/Fwd.h"
#include "gui/Fwd.h"
#include "gui/Window.h"

namespace app {

// The frame rate without its jumps; one for each place that shows it.
class SmoothedFrameRate {
  public:
    void Follow();                         // to be called at each frame
    double Get() const { return m_rate; }  // frames per second; 0 before the first

  private:
    double m_rate = 0;
    double m_lastTime = 0;  // s
};

// How many bodies, drops, contacts and joints there are, and whether the world keeps pace with real time.
String DescribeWorld();

// What there is in the world, whether it keeps pace with real time, the frame rate and the scene's name.
class StatsWindow : public gui::Window {
  public:
    explicit StatsWindow(const Scene& scene);
    ~StatsWindow() noexcept(false) override;

    void Update(float dt) override;

  private:
    void ShowText();

    const Scene& m_scene;
    gui::LabelPtr m_text;
    SmoothedFrameRate m_frameRate;
    float m_sinceRefresh = 0;  // s
};

}  // namespace app

#pragma once

#include "app/Fwd.h"
#include "gui/Fwd.h"
#include "gui/Window.h"

namespace app {

// What the physics says of itself, the frame rate and the name of the scene.
class StatsWindow : public gui::Window {
  public:
    explicit StatsWindow(const Scene& scene);
    ~StatsWindow() noexcept(false) override;

    void Update(float dt) override;

  private:
    void ShowText();

    const Scene& m_scene;
    gui::LabelPtr m_text;
};

}  // namespace app

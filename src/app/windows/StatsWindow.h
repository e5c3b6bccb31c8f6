#pragma once

#include "app/Fwd.h"
#include "gui/Fwd.h"
#include "gui/Window.h"

namespace app {

// What the physics says of itself, the frame rate and the name of the scene. Docked in the upper right
// corner of its parent until the user drags it off, and then a child of the world view.
class StatsWindow : public gui::Window {
  public:
    // Torn off it becomes a child of the desktop.
    StatsWindow(const Scene& scene, gui::Component& desktop);
    ~StatsWindow() noexcept(false) override;

    void Update(float dt) override;

  private:
    bool IsDocked() const;
    void Dock();
    void ShowText();

    const Scene& m_scene;
    gui::Component& m_desktop;
    gui::LabelPtr m_text;
};

}  // namespace app

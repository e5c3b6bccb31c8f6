#pragma once

#include "app/windows/Desk.h"
#include "gui/Window.h"

namespace app {

class SimPlayPauseButton;

// Undo and redo, play and pause, and the handles of the view.
class ControlWindow : public gui::Window {
  public:
    explicit ControlWindow(const Desk& desk);
    ~ControlWindow() noexcept(false) override;

    SimPlayPauseButton& GetPlayButton() const { return *m_play; }

  private:
    const util::SharedPtr<SimPlayPauseButton> m_play;
};

}  // namespace app

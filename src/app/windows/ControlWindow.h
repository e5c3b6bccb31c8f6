#pragma once

#include "app/windows/Desk.h"
#include "gui/Window.h"

namespace app {

// Undo and redo, play and pause, and the handles of the view.
class ControlWindow : public gui::Window {
  public:
    explicit ControlWindow(const Desk& desk);
};

}  // namespace app

#pragma once

#include <vector>

#include "app/windows/Desk.h"
#include "gui/Window.h"

namespace app {

// The tools two to a row, the ways to the other windows, the zoom.
class Toolbar : public gui::Window {
  public:
    // `tools` are names of commands that select a tool, `isCurrent` tells whether that tool is in hand.
    Toolbar(const Desk& desk, const std::vector<const char*>& tools,
            const std::function<bool(const char*)>& isCurrent);

  private:
    void AddTools(const Desk& desk, const std::vector<const char*>& tools,
                  const std::function<bool(const char*)>& isCurrent);
    void AddZoom(const Desk& desk);
};

}  // namespace app

#pragma once

#include "app/tools/SelectionDrag.h"
#include "app/tools/Tool.h"

namespace app {

// A left drag on an entity carries the selection along; with ctrl down at the press a copy of it.
class MoveTool : public Tool {
  public:
    explicit MoveTool(const Workbench& bench) : Tool(bench), m_drag(bench.m_scene) {}

    void OnDragStart(gui::DragEvent& event) override;
    void OnDrag(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    // Puts the scene back. False all the same, so that escape also closes a popup.
    bool Cancel() override;

  private:
    SelectionDrag m_drag;
    bool m_cloning = false;  // valid during a drag
};

}  // namespace app

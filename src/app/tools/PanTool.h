#pragma once

#include "app/tools/Tool.h"

namespace app {

// A drag on empty ground carries the view along.
class PanTool : public Tool {
  public:
    using Tool::Tool;

    void OnDragStart(gui::DragEvent& event) override;
    void OnDrag(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    bool Cancel() override;

  private:
    bool m_grabbed = false;
};

}  // namespace app

#pragma once

#include "app/tools/Tool.h"
#include "math/Vector.h"

namespace app {

// A drag from one shape to another, or to or from the ground behind the scene, spans a spring that is at
// rest as it is drawn.
class SpringTool : public Tool {
  public:
    explicit SpringTool(const Workbench& bench);
    ~SpringTool() noexcept(false) override;

    void OnDragStart(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void Update() override;  // the free end follows the mouse, over moving shapes too
    void Draw() override;
    bool Cancel() override;

  private:
    void MoveFreeEnd(math::Vec2 world);

    SnapshotPtr m_before;      // of the press; null while idle
    SpringEntityPtr m_spring;  // the preview
};

}  // namespace app

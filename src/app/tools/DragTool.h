#pragma once

#include "app/tools/Tool.h"
#include "physics/Hinge.h"

namespace app {

// Pulls shapes about while the world runs: a soft hinge ties the grabbed place to a body of its own that
// stands where the mouse is.
class DragTool : public Tool {
  public:
    explicit DragTool(const Workbench& bench);
    ~DragTool() noexcept(false) override;

    void OnDragStart(gui::DragEvent& event) override;
    void OnDragEnd(gui::DragEvent& event) override;
    void Update() override;  // pulls on while the mouse rests and the view moves
    void Draw() override;
    // Lets go. What the pull has done to the world by then stays, as a step of the history.
    bool Cancel() override;

  private:
    void Grab(const physics::GeomPtr& geom, math::Vec2 mouse);

    physics::HingePtr m_hinge;     // null while idle
    physics::BodyPtr m_mouseBody;  // in the simulation, without an entity
    SnapshotPtr m_before;
    bool m_hasRun = false;  // whether the world ran during the drag
};

}  // namespace app

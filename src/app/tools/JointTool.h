#pragma once

#include "app/tools/Tool.h"

namespace app {

// A click on a shape pins or fixes it there to the shape below, or to the world where there is none.
class JointTool : public Tool {
  public:
    static constexpr math::real ICON_SIZE = 1;  // cm on the screen

    void OnClick(gui::ClickEvent& event) override;

  protected:
    JointTool(const Workbench& bench, const char* undoName) : Tool(bench), m_undoName(undoName) {}

    virtual JointEntityPtr Make(math::real size) const = 0;

  private:
    const char* m_undoName;
};

class HingeTool : public JointTool {
  public:
    explicit HingeTool(const Workbench& bench) : JointTool(bench, "UndoHinge") {}

  protected:
    JointEntityPtr Make(math::real size) const override;
};

class FixJointTool : public JointTool {
  public:
    explicit FixJointTool(const Workbench& bench) : JointTool(bench, "UndoFixate") {}

  protected:
    JointEntityPtr Make(math::real size) const override;
};

}  // namespace app

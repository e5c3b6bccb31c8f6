#pragma once

#include "gui/Fwd.h"
#include "gui/Window.h"

namespace app {

// What the physics says of itself, the frame rate and the name of the scene. Docked in the upper right
// corner of its parent until the user drags it off, and then a child of the world view.
class StatsWindow : public gui::Window {
  public:
    StatsWindow();
    ~StatsWindow() noexcept(false) override;

    void Update(float dt) override;

  private:
    bool IsDocked() const;
    void Dock();
    void ShowText();
    void FollowSceneName();

    gui::LabelPtr m_text;
    String m_sceneName;   // of the file that was loaded or saved last; empty for none
    String m_loadedName;  // the last of each that has been seen
    String m_savedName;
};

}  // namespace app

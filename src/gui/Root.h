#pragma once

#include "gui/Component.h"

namespace gui {

// The component that all others hang below: as large as the window, with the keys of the focus and the tool
// tip.
class Root : public Component {
  public:
    Root();

    void OnKeyEvent(KeyEvent& event) override;
};

}  // namespace gui

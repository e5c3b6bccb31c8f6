#pragma once

#include "app/windows/Commands.h"
#include "app/windows/Desk.h"
#include "gui/Window.h"

namespace app {

// All keys: those of the commands and those that the user has bound, from the live tables. Press a row, then
// the key that shall do it; escape leaves it as it was.
class KeysWindow : public gui::Window {
  public:
    KeysWindow(Commands& commands, const Desk& desk);
    ~KeysWindow() noexcept(false) override;

    void Update(float dt) override;
    void OnKeyEvent(gui::KeyEvent& event) override;

  private:
    void Fill();
    void AddBoundKeys();
    void Await(const char* command);
    void Take(const gui::KeyEvent& event);

    Commands& m_commands;
    const gui::ComponentPtr m_rows;
    gui::LabelPtr m_message;
    String m_awaited;  // the command whose key is to be pressed; empty for none
    bool m_isStale = false;
};

}  // namespace app

#pragma once

#include <functional>

#include "app/windows/Commands.h"
#include "app/windows/Desk.h"
#include "gui/Window.h"

namespace app {

// All keys: those of the commands and those that the user has bound, from the live tables. Press a row, then
// the key that shall do it; escape leaves it as it was, and delete takes the key from a binding of the
// user's.
class KeysWindow : public gui::Window {
  public:
    KeysWindow(Commands& commands, const Desk& desk);
    ~KeysWindow() noexcept(false) override;

    void Update(float dt) override;
    void OnKeyEvent(gui::KeyEvent& event) override;

  private:
    void Fill();
    void AddBoundKeys();
    // `take` gives the row's action another key, and answers whether that was free.
    gui::ComponentPtr MakeKeyRow(const String& name, const String& text, const String& key,
                                 const std::function<bool(const gui::KeyEvent&)>& take);
    void Take(const gui::KeyEvent& event);

    Commands& m_commands;
    const gui::ComponentPtr m_rows;
    gui::LabelPtr m_message;
    String m_awaited;                                  // the row whose key is to be pressed; empty for none
    std::function<bool(const gui::KeyEvent&)> m_take;  // of that row
    bool m_isStale = false;
};

}  // namespace app

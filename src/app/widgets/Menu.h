#pragma once

#include "app/widgets/MenuButton.h"
#include "gui/Window.h"

namespace app {

// A row that opens a window at its right, and closes it again. The window closes with the menu or when
// another one is opened beside it, unless the user has torn it off.
class Menu : public MenuButton {
  public:
    using Factory = std::function<gui::WindowPtr()>;

    // The window is made at each opening. Torn off it becomes a child of `tearOffTarget`.
    Menu(const char* key, const String& icon, gui::Component& tearOffTarget, const Factory& factory);
    ~Menu() noexcept(false) override;

    void OnPressed() override;
    void Update(float dt) override;
    void DrawComp() override;

  private:
    bool IsOpen() const;
    bool IsAttached() const;
    void Open();
    void Place(const gui::Window& own, gui::Window& window);
    void CloseOthers() const;
    void CloseIfAttached() const;
    gui::Window* FindOwnWindow() const;

    gui::Component& m_tearOffTarget;
    const Factory m_factory;
    util::WeakPtr<gui::Window> m_window;
    math::Vec2 m_ownPlace;  // of the window with the row, when the other was placed
};

}  // namespace app

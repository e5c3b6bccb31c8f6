#pragma once

#include <bitset>
#include <memory>

#include "math/Vector.h"

union SDL_Event;

// What the program knows of the user's hands. Positions are GUI coordinates: pixels of the window over the
// GUI's scale, the origin at the top left, y down. Each event has a flag by which a listener tells those
// behind it that the event has been dealt with.
namespace gui {

constexpr size_t NUM_MOUSE_BUTTONS = 256;
using MouseButtons = std::bitset<NUM_MOUSE_BUTTONS>;  // by SDL button number, 1 is the left one

// A key or a mouse button, which is a key with a code of its own (gui::Key::FromMouseButton).
struct KeyEvent {
    bool m_handled = false;
    int m_key = 0;         // key code
    char m_character = 0;  // the byte that it types, ISO 8859-1; 0 if none
    bool m_pressed = false;
    bool m_repeated = false;  // the key has been down before this press: the keyboard repeats it
    bool m_alt = false;       // also true while AltGr types a character
    bool m_ctrl = false;
    bool m_shift = false;
    math::Vec2 m_position;  // of the mouse
};

struct MouseMoveEvent {
    bool m_handled = false;
    math::Vec2 m_position;
    math::Vec2 m_delta;
    MouseButtons m_buttons;  // down at that moment
};

struct DragEvent {
    bool m_handled = false;
    math::Vec2 m_start;  // where the button went down
    math::Vec2 m_delta;  // since the last drag event; the first one measures from the press
    math::Vec2 m_position;
    int m_key = 0;  // the dragging button
};

struct ClickEvent {
    bool m_handled = false;
    math::Vec2 m_position;  // where the button went down, not where it came up
    int m_key = 0;
    int m_clicks = 1;
};

// Everything that the pump does not translate: quit, resize, focus. Has a copy of the library's event;
// include its header where you look inside.
class InputEvent {
  public:
    explicit InputEvent(const SDL_Event& event);
    virtual ~InputEvent();
    const SDL_Event& GetEvent() const { return *m_event; }

    bool m_handled = false;

  private:
    std::unique_ptr<SDL_Event> m_event;
};

}  // namespace gui

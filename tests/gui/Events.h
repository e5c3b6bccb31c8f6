#pragma once

#include "input/InputEvents.h"
#include "input/Key.h"

namespace test {

inline gui::KeyEvent Press(int key, math::Vec2 position) {
    gui::KeyEvent event;
    event.m_key = key;
    event.m_pressed = true;
    event.m_position = position;
    return event;
}
inline gui::KeyEvent Release(int key, math::Vec2 position) {
    gui::KeyEvent event = Press(key, position);
    event.m_pressed = false;
    return event;
}
inline gui::MouseMoveEvent Move(math::Vec2 position, math::Vec2 delta) {
    gui::MouseMoveEvent event;
    event.m_position = position;
    event.m_delta = delta;
    return event;
}

}  // namespace test

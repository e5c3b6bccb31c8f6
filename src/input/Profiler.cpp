#include "input/Profiler.h"

#include "input/Key.h"

namespace util {

void Profiler::OnKeyEvent(gui::KeyEvent& event) {
    InputListener::OnKeyEvent(event);
    if (event.m_handled || !event.m_pressed) return;
    if (Browse(event.m_key)) event.m_handled = true;
}

bool Profiler::Browse(int key) {
    ProfileTree& tree = ProfileTree::Get();
    if (key == gui::Key::KeypadMinus) {
        tree.ToggleEnabled();
        return true;
    }
    if (!tree.IsEnabled()) return false;
    if (key == gui::Key::KeypadPeriod) {
        tree.ViewParent();
    } else if (key == gui::Key::KeypadEnter) {
        tree.ViewSlowestChild();
    } else if (key >= gui::Key::Keypad0 && key <= gui::Key::Keypad9) {
        tree.ViewChild(key - gui::Key::Keypad0);
    } else {
        return false;
    }
    return true;
}

}  // namespace util

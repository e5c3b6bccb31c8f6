#include "input/TextInputer.h"

#include <algorithm>

#include "input/Clipboard.h"
#include "input/Input.h"
#include "input/Key.h"

namespace gui {

TextInputer::TextInputer(const String& name) : InputListener(name) {
    SetPriority(EDITOR_PRIORITY);
}

void TextInputer::SetText(const String& text) {
    m_text = text;
    m_cursor = m_text.size();
    m_isMarked = false;
}

void TextInputer::SetCursor(size_t cursor) {
    m_cursor = std::min(cursor, m_text.size());
    m_isMarked = false;
}

void TextInputer::MarkAll() {
    m_cursor = m_text.size();
    m_isMarked = !m_text.empty();
}

void TextInputer::Insert(const String& text) {
    if (m_isMarked) SetText(String());
    if (m_overwrite) m_text.erase(m_cursor, text.size());
    m_text.insert(m_cursor, text);
    m_cursor += text.size();
}

void TextInputer::OnKeyEvent(KeyEvent& event) {
    InputListener::OnKeyEvent(event);
    Edit(event);
}

void TextInputer::Edit(KeyEvent& event) {
    if (event.m_handled || !event.m_pressed || event.m_key == Key::Escape) return;
    if ((event.m_key == Key::Return || event.m_key == Key::KeypadEnter) && !m_text.empty()) {
        m_onEnter.CallAll();
    }
    event.m_handled = true;
    if ((event.m_key == 'v' && event.m_ctrl) || (event.m_key == Key::Insert && event.m_shift)) {
        Insert(GetClipboardText());
        return;
    }
    if (MoveCursor(event.m_key) || Erase(event.m_key)) return;
    // A letter with ctrl is a shortcut, though it carries its character. With AltGr it types (on some
    // keyboards AltGr counts as ctrl and alt).
    const bool isShortcut = event.m_ctrl && !Input::Instance().IsModifierDown(Modifier::RightAlt);
    if (event.m_character == 0 || isShortcut) {
        event.m_handled = false;
    } else if (static_cast<unsigned char>(event.m_character) >= ' ') {
        Insert(String(1, event.m_character));
    }
}

bool TextInputer::MoveCursor(int key) {
    switch (key) {
        case Key::Left:
            SetCursor(m_cursor > 0 ? m_cursor - 1 : 0);
            return true;
        case Key::Right:
            SetCursor(m_cursor + 1);
            return true;
        case Key::Home:
            SetCursor(0);
            return true;
        case Key::End:
            SetCursor(m_text.size());
            return true;
        case Key::Insert:
            m_overwrite = !m_overwrite;
            return true;
        default:
            return false;
    }
}

bool TextInputer::Erase(int key) {
    if (key != Key::Backspace && key != Key::Delete) return false;
    if (m_isMarked) {
        SetText(String());
        return true;
    }
    if (key == Key::Backspace) {
        if (m_cursor == 0) return true;
        --m_cursor;
    }
    if (m_cursor < m_text.size()) m_text.erase(m_cursor, 1);
    return true;
}

}  // namespace gui

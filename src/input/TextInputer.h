#pragma once

#include "input/InputListener.h"

namespace gui {

// A line editor: the text and cursor of a field or of the console. Who holds one adds it as a listener
// while it has the focus, and clears the text in the enter callback.
class TextInputer : public InputListener {
  public:
    explicit TextInputer(const String& name = "TextInputer");

    // Takes all presses but escape that edit or type something.
    void OnKeyEvent(KeyEvent& event) override;

    // What OnKeyEvent does, for a holder with keys of its own.
    void Edit(KeyEvent& event);

    const String& GetText() const { return m_text; }
    size_t GetCursor() const { return m_cursor; }
    bool IsOverwriting() const { return m_overwrite; }
    void SetText(const String& text);  // the cursor goes to the end
    void SetCursor(size_t cursor);     // at most the length
    void Insert(const String& text);   // at the cursor, which moves past it
    void MarkAll();                    // what is typed or erased next replaces it all
    bool IsMarked() const { return m_isMarked; }
    util::CallbackSet& GetOnEnter() { return m_onEnter; }  // return, with a text that is not empty

  private:
    bool MoveCursor(int key);
    bool Erase(int key);

    String m_text;        // ISO 8859-1
    size_t m_cursor = 0;  // index of the character behind it
    bool m_overwrite = false;
    bool m_isMarked = false;  // all of the text
    util::CallbackSet m_onEnter;
};
using TextInputerPtr = util::SharedPtr<TextInputer>;

}  // namespace gui

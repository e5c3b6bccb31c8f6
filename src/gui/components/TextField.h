#pragma once

#include "gui/Component.h"
#include "input/TextInputer.h"

namespace gui {

// A line of text to edit. It has the focus after a click or tab, and edits while it has it; a press anywhere
// else, tab and escape leave it. As wide as its text and at least as its minimum.
class TextField : public Component {
  public:
    explicit TextField(const String& text = String(), const String& name = "TextField");

    void OnKeyEvent(KeyEvent& event) override;
    void OnClick(ClickEvent& event) override;
    void OnFocus(bool focused) override;
    void Update(float dt) override;
    void DrawComp() override;
    void SetTextFormat(const TextFormat& format) override;
    bool TakesMouse() const override { return true; }
    bool CanFocus() const override { return true; }
    const char* GetKind() const override { return "TextField"; }
    String GetShownText() const override { return GetText(); }
    script::ObjectPtr GetState() const override;  // the text

    const String& GetText() const { return m_inputer->GetText(); }
    void SetText(const String& text);
    void MarkAll();                 // ctrl+a: what is typed next replaces the text
    void SetMinWidth(float width);  // GUI units
    void SetMaxWidth(float width);  // a longer text is cut, and moves with the cursor

    util::CallbackSet& GetOnEnter() { return m_inputer->GetOnEnter(); }  // return, with a text
    util::CallbackSet& GetOnLostFocus() { return m_onLostFocus; }

  private:
    void Format();
    float GetShift() const;  // of the text to the left, GUI units
    float GetCursorX(size_t cursor) const;
    size_t GetCursorAt(float x) const;
    bool IsCursorShown() const;
    bool HandleMarkKey(KeyEvent& event);
    void DrawMark(float x) const;
    void DrawCursor() const;

    const TextInputerPtr m_inputer;
    FormattedText m_text;
    float m_minWidth = 160;  // GUI units
    float m_maxWidth = 320;
    bool m_cursorShown = false;
    double m_lastInput = 0;  // seconds; the cursor blinks from here
    util::CallbackSet m_onLostFocus;
};

}  // namespace gui

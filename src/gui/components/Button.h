#pragma once

#include <set>

#include "gui/Component.h"

namespace gui {

// Press logic without a picture. Fires at the release of the left button, if press and release lie inside,
// or at the release of a shortcut key without modifiers.
class AbstractButton : public Component {
  public:
    explicit AbstractButton(const String& name = "AbstractButton") : Component(name) {}

    void OnKeyEvent(KeyEvent& event) override;

    virtual void OnPressed();  // fires the press callbacks, which may end the button's life

    bool IsPressed() const { return m_pressed; }  // held down now
    void SetFireOnPress(bool fireOnPress) { m_fireOnPress = fireOnPress; }
    util::CallbackSet& GetOnPress() { return m_onPress; }
    void AddShortcutKey(int key) { m_shortcutKeys.insert(key); }

  protected:
    // Lightens the renderer's colour under the mouse and darkens it while pressed. For DrawComp.
    void MultStateColor() const;

  private:
    void HandleLeftButton(KeyEvent& event);

    bool m_pressed = false;
    bool m_fireOnPress = false;  // at the press already
    util::CallbackSet m_onPress;
    std::set<int> m_shortcutKeys;  // key codes
};

// A button with a text.
class Button : public AbstractButton {
  public:
    explicit Button(const String& text, const String& name = "Button");

    void DrawComp() override;
    void SetTextFormat(const TextFormat& format) override;

    const String& GetText() const { return m_text.m_text; }
    void SetText(const String& text);  // takes the size of the text with its margins

  protected:
    void DrawLabel() const;  // in the middle of the content box

  private:
    FormattedText m_text;
};

}  // namespace gui

#pragma once

#include <functional>

#include "gui/Component.h"

namespace gui {

// Press logic without a picture. Fires at the release of the left button, if press and release lie inside,
// and with the focus at return and space.
class AbstractButton : public Component {
  public:
    explicit AbstractButton(const String& name = "AbstractButton") : Component(name) {}

    void OnKeyEvent(KeyEvent& event) override;
    void EndGesture() override;
    bool TakesMouse() const override { return true; }
    bool CanFocus() const override { return m_enabled; }
    const char* GetKind() const override { return "Button"; }

    virtual void OnPressed();  // fires the press callbacks, which may end the button's life

    bool IsPressed() const { return m_pressed; }  // held down now
    util::CallbackSet& GetOnPress() { return m_onPress; }
    void AddAction(const std::function<void()>& run);  // at each press, as long as the button lives
    bool IsEnabled() const { return m_enabled; }
    void SetEnabled(bool enabled);  // a button that is not is drawn dark and fires nothing

  protected:
    // Lightens the renderer's colour under the mouse and darkens it while pressed or not enabled. For
    // DrawComp.
    void MultStateColor() const;

  private:
    bool IsFocusPress(const KeyEvent& event) const;
    void HandleLeftButton(KeyEvent& event);

    bool m_pressed = false;
    bool m_enabled = true;
    util::CallbackSet m_onPress;
};

// A button with a text.
class Button : public AbstractButton {
  public:
    explicit Button(const String& text, const String& name = "Button");

    void DrawComp() override;
    void SetTextFormat(const TextFormat& format) override;
    String GetShownText() const override { return GetText(); }

    const String& GetText() const { return m_text.m_text; }
    void SetText(const String& text);                         // takes the size of the text with its margins
    void SetLeftAligned(bool left) { m_leftAligned = left; }  // for lists; else the text is centred

  protected:
    void DrawLabel() const;

  private:
    FormattedText m_text;
    bool m_leftAligned = false;
};

}  // namespace gui

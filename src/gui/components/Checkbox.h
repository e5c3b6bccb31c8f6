#pragma once

#include <array>

#include "gui/components/Button.h"
#include "rendering/Texture.h"

namespace gui {

// A button with a state that a press turns over. Unknown, of several things of which some are on, becomes
// On.
class AbstractToggleButton : public AbstractButton {
  public:
    enum State { Off = 0, On = 1, Unknown = 2 };

    explicit AbstractToggleButton(const String& name = "AbstractToggleButton") : AbstractButton(name) {}

    void OnPressed() override;  // asks for the other state
    const char* GetKind() const override { return "ToggleButton"; }
    script::ObjectPtr GetState() const override;  // true, false or "unknown"

    State GetToggleState() const { return m_state; }
    virtual void SetState(State state);  // fires the press callbacks
    void SetStateSilent(State state);

  private:
    State m_state = Off;
};

// A box to tick with a text at its right, which belongs to it.
class Checkbox : public AbstractToggleButton {
  public:
    explicit Checkbox(const String& text = String(), const String& name = "Checkbox");

    void DrawComp() override;
    void SetTextFormat(const TextFormat& format) override;
    const char* GetKind() const override { return "Checkbox"; }
    String GetShownText() const override { return m_text.m_text; }

    void SetText(const String& text);  // takes the size of box and text

  private:
    std::array<rendering::TextureMentorPtr, 3> m_images;  // by State
    FormattedText m_text;
};

}  // namespace gui

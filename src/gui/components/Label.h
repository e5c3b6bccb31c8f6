#pragma once

#include "gui/Component.h"

namespace gui {

// A text, as large as it is with its margins.
class Label : public Component {
  public:
    explicit Label(const String& text = String(), const String& name = "Label");

    void DrawComp() override;
    void SetTextFormat(const TextFormat& format) override;

    const String& GetText() const { return m_text.m_text; }
    void SetText(const String& text);
    void SetMaxWidth(float maxWidth);  // GUI units without the margins; the text wraps there

  private:
    FormattedText m_text;
};

}  // namespace gui

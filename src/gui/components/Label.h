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
    // As wide as this whatever the text, so that a changing one moves nothing. 0 ends it.
    void SetFixedWidth(float width);
    const char* GetKind() const override { return "Label"; }
    String GetShownText() const override { return GetText(); }

  private:
    FormattedText m_text;
    float m_fixedWidth = 0;  // GUI units; 0: that of the text
};

}  // namespace gui

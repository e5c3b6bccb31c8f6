#pragma once

#include "gui/Border.h"
#include "gui/Font.h"
#include "gui/TextFormat.h"

namespace gui {

// Sizes that give lists of controls their spacing; GUI units.
constexpr float ROW_HEIGHT = 22;
constexpr float TEXT_MARGIN = 4;  // on both sides of a text in a control

// The shared source of fonts, text formats and skins. What cannot be loaded is replaced, with a line at
// Error: a font by boxes, a skin by an empty border.
class LookAndFeel : public util::Pointee {
  public:
    // The one in use; made with the first component.
    static LookAndFeel& Get();
    static void Set(const util::SharedPtr<LookAndFeel>& lookAndFeel);  // for components made from now on

    LookAndFeel();

    virtual const FontMentorPtr& GetFont() const { return m_font; }
    virtual const TextFormat& GetTextFormat() const { return m_textFormat; }
    virtual const Border& GetButtonBorder() const { return m_buttonBorder; }
    virtual const Border& GetWindowBorder() const { return m_windowBorder; }
    virtual const Border& GetPanelBorder() const { return m_panelBorder; }
    virtual const Border& GetMenuBorder() const { return m_buttonBorder; }
    virtual const Border& GetToolTipBorder() const { return m_buttonBorder; }
    virtual const Border& GetTextFieldBorder() const { return m_buttonBorder; }

  private:
    FontMentorPtr m_font;
    TextFormat m_textFormat;  // white, a little transparent
    Border m_buttonBorder;
    Border m_windowBorder;
    Border m_panelBorder;  // empty
};

}  // namespace gui

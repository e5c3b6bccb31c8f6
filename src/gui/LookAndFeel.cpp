#include "gui/LookAndFeel.h"

#include "util/Exception.h"

namespace gui {
namespace {

util::SharedPtr<LookAndFeel>& Current() {
    static util::SharedPtr<LookAndFeel>& current = *new util::SharedPtr<LookAndFeel>;  // abandoned at exit
    return current;
}

Border LoadBorder(const String& skin) {
    try {
        return Border(skin);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Error, "No border \"" + skin + "\": " + e.what());
        return Border();
    }
}

}  // namespace

LookAndFeel& LookAndFeel::Get() {
    if (!Current()) Current() = new LookAndFeel;
    return *Current();
}

void LookAndFeel::Set(const util::SharedPtr<LookAndFeel>& lookAndFeel) {
    Current() = lookAndFeel;
}

LookAndFeel::LookAndFeel()
    : m_font(Font::Get("fixedsys")),
      m_buttonBorder(LoadBorder("button")),
      m_windowBorder(LoadBorder("window")) {
    m_textFormat.m_font = m_font;
    m_textFormat.m_size = m_font->Get()->GetCellSize();
    m_textFormat.m_lineHeight = m_textFormat.m_size;
    m_textFormat.m_color = {1, 1, 1, 0.9f};
}

}  // namespace gui

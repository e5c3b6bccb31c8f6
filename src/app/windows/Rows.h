#pragma once

#include <functional>

#include "app/windows/Desk.h"
#include "script/Attributes.h"
#include "util/String.h"

namespace app {

// Rows that windows are made of.

// A button that runs the command, with its picture and `suffix` behind its text.
gui::ComponentPtr MakeCommandRow(const Desk& desk, const char* command, const String& suffix = String());
// A button with a text of the language files.
gui::ComponentPtr MakeActionRow(const char* key, const String& icon, const std::function<void()>& run,
                                const String& suffix = String());
gui::ComponentPtr MakeCheckRow(const char* key, const script::TAttribPtr<bool>& attrib);

struct SliderFormat {
    int m_decimals = 2;
    String m_unit;
};
gui::ComponentPtr MakeSliderRow(const char* key, const gui::SliderPtr& slider, const SliderFormat& format);

// A text that takes up so much of its row whatever it says, GUI units.
gui::LabelPtr MakeCell(const String& text, float width);

// A pushbutton, as below a dialog.
gui::ButtonPtr MakeButton(const char* key, const std::function<void()>& run);
// Components beside each other.
gui::ComponentPtr MakeRow(const std::vector<gui::ComponentPtr>& components);

constexpr float FRAME_ROOM = 40;  // GUI units, of a window's title bar and edges
// With a bar, page keys and the wheel, as high as the content as far as the interface leaves `room` free.
gui::ScrollAreaPtr MakeScrolled(const gui::ComponentPtr& content, const Desk& desk, float room = 110);

// The list of rows of a window, all as wide as the widest.
gui::LayoutPtr MakeRowLayout();
// A window for rows, under the title of that language key.
gui::WindowPtr MakeRowWindow(const char* titleKey);

}  // namespace app

#pragma once

#include "util/String.h"

namespace gui {

// The text that the user has copied anywhere, in ISO 8859-1; empty when there is none or no clipboard.
String GetClipboardText();
void SetClipboardText(const String& text);  // ISO 8859-1

// Takes the place of the platform's clipboard, for tests; a null `read` brings it back. Texts are UTF-8.
struct ClipboardAccess {
    String (*m_read)() = nullptr;
    void (*m_write)(const String& text) = nullptr;
};
void SetClipboardAccess(const ClipboardAccess& access);

}  // namespace gui

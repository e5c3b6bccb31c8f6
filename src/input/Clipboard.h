#pragma once

#include "util/String.h"

namespace gui {

// The text that the user has copied anywhere, in ISO 8859-1; empty when there is none or no clipboard.
String GetClipboardText();

// UTF-8 to ISO 8859-1, which the font sheet and all texts use. What does not fit is dropped, and so are
// carriage returns.
String Latin1FromUtf8(const String& text);
String Utf8FromLatin1(const String& text);

// Replaces the platform's clipboard, for tests; null brings it back. The source gives UTF-8.
using ClipboardSource = String (*)();
void SetClipboardSource(ClipboardSource source);

}  // namespace gui

#pragma once

#include "util/String.h"

// The program's texts are ISO 8859-1, one byte a letter, as the font draws them; the file system, the
// clipboard and the window's title are UTF-8. These convert where the two meet.
namespace util {

// What ISO 8859-1 lacks, and bytes that are no UTF-8, become "?". Carriage returns and zero bytes go.
String Latin1FromUtf8(const String& text);

String Utf8FromLatin1(const String& text);

bool IsUtf8(const String& text);

// For a text of unknown origin, a log line that quotes a file name: converted if it is UTF-8 (plain ASCII is
// the same in both), else left as it is.
String ToShown(const String& text);

}  // namespace util

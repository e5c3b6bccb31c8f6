#pragma once

namespace util {

// The version as the window caption, the log banner and `Vexa -version` show it. The number comes from the
// build.
extern const char* const VERSION_TEXT;

}  // namespace util

#pragma once

namespace util {

// The version as the window caption, the log banner and `Vexa -version` show it.
constexpr const char* VERSION_TEXT = "Vexa beta 3.5";

}  // namespace util

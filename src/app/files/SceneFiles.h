#pragma once

#include "util/String.h"

namespace app {

// A file name in Scenes/ from what a user typed: without bytes below 32, slashes, backslashes and leading
// dots and blanks, with the extension ".vxa" once. Empty when nothing is left of it.
String CleanSceneName(const String& name);

// The path that a scene's name stands for: one without a slash or backslash lies in Scenes/.
String GetScenePath(const String& name);

// Writes the present scene to Scenes/ under the cleaned name, so that a failure keeps the old file. Gives
// that name. Throws std::exception when it cannot be written, BadDataException ("Bad scene name") for a name
// of which nothing is left.
String SaveScene(const String& name);

}  // namespace app

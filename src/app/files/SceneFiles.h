#pragma once

#include "app/Fwd.h"
#include "util/FileSystem.h"

namespace app {

// A file name in Scenes/ from what a user typed: without bytes below 32, slashes, backslashes and leading
// dots, blanks and underscores, with which the program's own names begin; with the extension ".vxa" once.
// Empty when nothing is left of it.
String CleanSceneName(const String& name);

// The name without the extension.
String StripSceneEnding(const String& name);

// What follows the last slash or backslash of a path.
String GetFileName(const String& path);

// The path to read a scene from by its name: one without a slash or backslash is looked for in Scenes/.
String GetScenePath(const String& name);

// The name of the scene that a file holds, from which GetScenePath leads back to it: without the folder if
// that is Scenes/, else the path. Empty for the files that the program keeps for itself and for the welcome
// scene: the user has not given them their names, and saving has to find a new one.
String GetSceneName(const String& path);

// The names of scenes that can be loaded, sorted: of more than `most` those that were changed last.
util::StringList ListNewestScenes(size_t most);

// The path to write the scene of that name to: one without a slash or backslash goes to Scenes/.
String GetPathToWrite(const String& name);

// Writes the scene to where its name says, Scenes/ for one without a slash, so that a failure keeps the old
// file. Throws std::exception when it cannot be written.
void WriteScene(const Scene& scene, const String& name);

// Writes the scene to Scenes/ under the cleaned name and gives that. Throws as WriteScene does, and
// BadDataException ("Bad scene name") for a name of which nothing is left.
String SaveScene(const Scene& scene, const String& name);

}  // namespace app

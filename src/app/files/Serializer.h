#pragma once

#include "app/Fwd.h"
#include "script/Fwd.h"

namespace app {

// Scene files: text in the script language that is read, but not run. A file is a list of statements: the
// assignment of `version`, and for each entity a function literal without parameters whose body assigns the
// entity's values by key. The reader calls each literal by itself and takes the variables that it leaves,
// so values may be expressions, a bad statement costs one key and a bad entity itself alone.
//
// Version 1 is written. A file without a version is of the older format, whose lengths are a tenth of
// version 1's.
class Serializer {
  public:
    // Entities that are about to be retired are left out.
    static script::CodeBlockPtr Serialize(const Scene& scene);

    // The statements of a scene's text. Null, and the reason told to the user, for a text that is not of
    // the language. Raises nothing.
    static script::CodeBlockPtr Parse(const String& text);

    // Adds the entities of a file to the scene. Raises nothing: what fails is logged and left out.
    static void Deserialize(Scene& scene, const script::CodeBlockPtr& code);
    static void Deserialize(Scene& scene, const String& text);
};

}  // namespace app

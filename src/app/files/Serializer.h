#pragma once

#include <functional>
#include <vector>

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

    // The same in two steps, of which only the first looks at the scene: what the statements behind the first
    // are to say, and a statement of that.
    static std::vector<EntitySerializer> TakeMoment(const Scene& scene);
    static script::ExpressionPtr MakeStatement(const EntitySerializer& values);
    static script::ExpressionPtr MakeFirstStatement();

    // The statements of a scene's text. Null, and the reason told to the user, for a text that is not of
    // the language. Raises nothing. A long text's progress goes from 0 to 1.
    static script::CodeBlockPtr Parse(const String& text,
                                      const std::function<void(double)>& onProgress = nullptr);

    // Adds the entities of a file to the scene. Raises nothing: what fails is logged and left out. The file's
    // settings of the world come to hold unless it is imported, that is, read besides what is there.
    static void Deserialize(Scene& scene, const script::CodeBlockPtr& code, bool import = false);
    static void Deserialize(Scene& scene, const String& text, bool import = false);
};

}  // namespace app

#pragma once

#include "app/history/Actions.h"
#include "script/Fwd.h"

namespace app {

// Loads a scene, or imports one into the present scene, as a step of the history. A load always stops the
// simulation. Undo brings back the previous scene with the same entities, and redo what the
// load had made: the file is read once.
class SceneLoader : public SceneExchange {
  public:
    // Does it. `filename` without a slash or backslash stands for one in Scenes/. False when the file is not
    // there, or cannot be read or parsed: that is logged, and scene and history stay as they are.
    static bool Load(Scene& scene, View& view, const String& filename, bool import = false);

    // For the start of the program, which has other scenes to fall back on: as Load, but no step of the
    // history, whose floor the first scene is.
    static bool LoadAtStart(Scene& scene, View& view, const String& filename);
    // As LoadAtStart, for a scene that this run will overwrite: one that is there but cannot be read is
    // copied to a name with ".bad" before.
    static bool LoadLast(Scene& scene, View& view, const String& filename);

    SceneLoader(Scene& scene, View& view, const String& filename, bool import);

    void Redo() override;

  private:
    bool Read();
    void Exchange() override;

    bool m_import;  // joins the present scene instead of replacing it
    String m_filename;
    script::CodeBlockPtr m_code;  // read and not yet used; null before and after
};

}  // namespace app

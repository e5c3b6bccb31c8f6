#pragma once

#include "util/String.h"

namespace app {

// The small picture of a scene that lies beside its file, made from what is on the screen when it is saved. A
// picture of another size is not one of these, and is left alone.
class SceneThumbnail {
  public:
    static constexpr unsigned int WIDTH = 160;  // pixels
    static constexpr unsigned int HEIGHT = 120;

    // Of the scene file of that path, whether it exists or not.
    static String GetPath(const String& scenePath);
    // Whether the picture there is one of these, and so no larger.
    static bool IsThumbnail(const String& path);

    // The next frame becomes the picture of that scene.
    void Request(const String& scenePath) { m_wanted = GetPath(scenePath); }
    // To be called when the scene has been drawn and nothing else over it. A failure is logged.
    void Take();

  private:
    String m_wanted;  // the file to write; empty for none
};

}  // namespace app

#pragma once

#include <vector>

#include "app/Fwd.h"
#include "util/String.h"

namespace app {

// Writes a scene as it is at one moment, and takes its time: the moment is noted at once, its text is made
// little by little, so that no frame of a great scene waits for all of it.
class SceneWriter {
  public:
    // Notes the moment. For WriteScene's names.
    SceneWriter(const Scene& scene, const String& name);
    ~SceneWriter();

    // Goes on for about so many seconds. Whether the file has been written. Throws std::exception when it
    // cannot be.
    bool Continue(double seconds);

  private:
    std::vector<EntitySerializer> m_moment;
    size_t m_next = 0;  // the first that is not in the text yet
    const String m_path;
    String m_text;
};

}  // namespace app

#pragma once

#include <memory>

#include "app/Fwd.h"
#include "util/String.h"

namespace app {

// Writes the scene and the settings every so often while the program runs, under the names that the slot of
// this run reserves (util::RunSlot): what a start finds after a crash. A great scene is written over many
// frames, one that has not changed not at all.
class Autosave {
  public:
    explicit Autosave(Scene& scene);  // which outlives this
    ~Autosave();

    // Once a frame. `interval` in seconds from one autosave to the next. Whatever fails ends in the log: a
    // disk that is full, say, once, and not again before it has gone well in between.
    void Update(float interval);

  private:
    // By which a scene that stands still is known to be the one that was written last.
    struct State {
        bool m_isKnown = false;
        uint64_t m_changes = 0;  // of the history
        uint64_t m_hash = 0;     // of the physics
        EntityPtr m_tracked;
        String m_settings;  // of the scene, as source text

        bool operator==(const State& other) const;
    };

    State GetState() const;
    void Begin();
    void Continue();
    void WriteConfig();
    template <class Operation>
    bool Guard(const Operation& operation);

    Scene& m_scene;
    double m_last;                          // seconds, of util::Clock
    State m_written;                        // the last that is on the disk
    State m_writing;                        // of m_writer
    std::unique_ptr<SceneWriter> m_writer;  // under way; null for none
    bool m_fails = false;                   // the last one did, and that has been told
};

}  // namespace app

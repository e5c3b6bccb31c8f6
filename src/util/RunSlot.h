#pragma once

#include "util/FileSystem.h"

namespace util {

// Keeps programs that run on one working folder at the same time out of each other's autosaves. Each takes
// the first free of some numbered slots, by a lock that the system lets go of however the program ends, and
// autosaves under the names of its slot. So an autosave in a slot that nobody holds was left by a crash, and
// one in a slot that is held belongs to a program that runs.
class RunSlot {
  public:
    RunSlot() = default;
    ~RunSlot();
    RunSlot(const RunSlot&) = delete;
    RunSlot& operator=(const RunSlot&) = delete;

    static RunSlot& Instance();  // this program's

    // Takes the first free slot of the working folder. Never throws: in a folder that cannot be written it is
    // the first one, for there is nothing to overwrite either.
    void Take();

    int GetNumber() const { return m_number; }  // from 1

    // In the Scenes/ folder and in the working folder.
    String GetAutosaveScene() const;
    String GetAutosaveConfig() const;

    // Renames autosaved scenes that crashed programs left in other slots, so that nothing overwrites them,
    // and returns their new names.
    StringList KeepOrphans() const;
    // Renames one scene to "recovered-" and the time at which it was saved, and returns that name; empty when
    // that failed. Of scenes that are still as they were kept, under the name that they were given, only the
    // newest MAX_RECOVERED stay.
    static String KeepAsRecovered(const String& scene);
    static constexpr size_t MAX_RECOVERED = 10;

    // Removes what killed programs left half written.
    static void SweepTemporaries();

  private:
    bool TakeSlot(int number);

    int m_number = 1;
    int m_lock = -1;  // the open lock file; -1 for none
};

}  // namespace util

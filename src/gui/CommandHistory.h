#pragma once

#include <vector>

#include "util/String.h"

namespace gui {

// The commands that the user has given, also in earlier runs, and where the up and down keys stand in them.
class CommandHistory {
  public:
    // Reads the file where there is one; Add writes it. Without a path nothing is kept.
    void SetFile(const String& path);

    void Add(const String& command);
    void StopWalking() { m_index = -1; }

    // What the up and down keys make of the line that the user is editing; false where there is nothing to
    // show. A line that was not given yet is kept.
    bool GoBack(String& line);
    bool GoForward(String& line);

    const std::vector<String>& GetCommands() const { return m_commands; }  // oldest first

  private:
    void Save() const;

    std::vector<String> m_commands;
    int m_index = -1;  // of the command that is shown; -1 when the user is not walking
    String m_path;
};

}  // namespace gui

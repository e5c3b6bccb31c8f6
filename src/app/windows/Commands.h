#pragma once

#include <functional>
#include <vector>

#include "input/InputEvents.h"
#include "util/String.h"

namespace app {

// Something that the interface does at the user's word. The name is the language key of its text.
struct Command {
    const char* m_name;
    const char* m_icon;  // below Data/Textures/
    int m_key;           // key code, 0 for none
    bool m_ctrl;         // the key together with ctrl
    std::function<void()> m_run;
};

// All commands in one table: windows offer them, keys run them, the list of keys shows them.
//
// A key runs its command at the press, but a plain letter at its release, if nobody took the press: letters
// typed into a field and shortcuts with ctrl let go first run nothing.
class Commands {
  public:
    void Add(const Command& command) { m_commands.push_back(command); }

    const Command& Find(const String& name) const;  // throws BadDataException for an unknown one
    void Run(const String& name) const { Find(name).m_run(); }
    const std::vector<Command>& GetAll() const { return m_commands; }

    // Whether the event was a key of a command, which has run then.
    bool HandleKey(const gui::KeyEvent& event);

  private:
    const Command* FindByKey(int key, bool ctrl) const;

    std::vector<Command> m_commands;
    int m_armedKey = 0;  // the plain letter that is down and was taken by nobody; 0 for none
};

// As the user reads it, "ctrl+z"; empty for a command without a key.
String GetKeyText(const Command& command);

// What a control of the command tells when the mouse rests on it: the name with the key, and below it the
// text `tip` if there is one.
String MakeToolTip(const Command& command, const String& tip);

}  // namespace app

#pragma once

#include <functional>
#include <set>
#include <vector>

#include "input/InputEvents.h"
#include "util/Callback.h"
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

    // Gives the command another key. False, and nothing changes, when another command has that one.
    bool SetKey(const String& name, int key, bool ctrl);
    // The keys that are not the built-in ones, as text and back: "SaveScene ctrl+k", one after the other.
    // What cannot be read is left out.
    String WriteKeys() const;
    void ReadKeys(const String& text);
    util::CallbackSet& GetOnKeyChange() { return m_onKeyChange; }

    // Whether the event was a key of a command, which has run then.
    bool HandleKey(const gui::KeyEvent& event);

  private:
    const Command* FindByKey(int key, bool ctrl) const;
    Command* FindByName(const String& name);

    std::vector<Command> m_commands;
    std::set<String> m_changed;  // names of commands with a key of the user's
    util::CallbackSet m_onKeyChange;
    int m_armedKey = 0;  // the plain letter that is down and was taken by nobody; 0 for none
};

// As the user reads it, "ctrl+z"; empty for a command without a key.
String GetKeyText(const Command& command);

// What a control of the command tells when the mouse rests on it: the name with the key, and below it the
// text `tip` if there is one.
String MakeToolTip(const Command& command, const String& tip);

}  // namespace app

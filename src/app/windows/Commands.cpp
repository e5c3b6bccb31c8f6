#include "app/windows/Commands.h"

#include <algorithm>
#include <sstream>

#include "app/Language.h"
#include "input/Key.h"
#include "util/Exception.h"
#include "util/Guarded.h"

namespace app {
namespace {

const String CTRL = "ctrl+";

}  // namespace

Command* Commands::FindByName(const String& name) {
    const auto found = std::find_if(m_commands.begin(), m_commands.end(),
                                    [&](const Command& command) { return name == command.m_name; });
    return found == m_commands.end() ? nullptr : &*found;
}

const Command& Commands::Find(const String& name) const {
    const Command* const found = const_cast<Commands*>(this)->FindByName(name);
    if (found == nullptr) THROW(BadDataException, "Unknown command \"" + name + "\"");
    return *found;
}

// ---- keys

bool Commands::SetKey(const String& name, int key, bool ctrl) {
    Command* const command = FindByName(name);
    const Command* const owner = FindByKey(key, ctrl);
    if (command == nullptr || (owner != nullptr && owner != command)) return false;
    command->m_key = key;
    command->m_ctrl = ctrl;
    m_changed.insert(name);
    m_onKeyChange.CallAll();
    return true;
}

String Commands::WriteKeys() const {
    String text;
    for (const String& name : m_changed)
        text += (text.empty() ? "" : " ") + name + " " + GetKeyText(Find(name));
    return text;
}

void Commands::ReadKeys(const String& text) {
    std::istringstream in(text);
    String name, key;
    while (in >> name >> key) {
        const bool ctrl = key.compare(0, CTRL.size(), CTRL) == 0;
        util::Guarded(
            [&] { SetKey(name, gui::Key::GetKeyFromName(ctrl ? key.substr(CTRL.size()) : key), ctrl); });
    }
}

// Of the keys that the library does not know, all of which are 0, none means a command without a key.
const Command* Commands::FindByKey(int key, bool ctrl) const {
    if (key == 0) return nullptr;
    for (const Command& command : m_commands) {
        if (command.m_key == key && command.m_ctrl == ctrl) return &command;
    }
    return nullptr;
}

bool Commands::HandleKey(const gui::KeyEvent& event) {
    if (event.m_repeated) return false;
    const bool isPlain = !event.m_ctrl && !event.m_shift && !event.m_alt;
    const bool isFree = !event.m_handled;
    const bool wasArmed = m_armedKey == event.m_key;
    const bool isLetter = event.m_key < gui::Key::Delete;
    m_armedKey = event.m_pressed && isPlain && isFree && isLetter ? event.m_key : 0;
    if (!isFree) return false;
    const bool isDue = isPlain && isLetter ? !event.m_pressed && wasArmed : event.m_pressed;
    if (!isDue || !(isPlain || event.m_ctrl)) return false;
    const Command* const command = FindByKey(event.m_key, event.m_ctrl);
    if (command == nullptr) return false;
    const std::function<void()> run = command->m_run;  // may end the table with the interface
    run();
    return true;
}

String GetKeyText(const Command& command) {
    if (command.m_key == 0) return String();
    return (command.m_ctrl ? CTRL : String()) + gui::Key::GetKeyName(command.m_key);
}

String MakeToolTip(const Command& command, const String& tip) {
    const String key = GetKeyText(command);
    String text = Translate(command.m_name);
    if (!key.empty()) text += " (" + key + ")";
    return tip.empty() ? text : text + "\n" + tip;
}

}  // namespace app

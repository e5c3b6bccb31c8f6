#include "input/Key.h"

#include <array>
#include <boost/algorithm/string/case_conv.hpp>
#include <map>

#include "util/Exception.h"

namespace gui {

namespace {

using Names = std::array<String, Key::NUM_CODES>;  // by key code; empty where a key has no name

struct NamedKey {
    int m_code;
    const char* m_name;
};

constexpr NamedKey NAMED_KEYS[] = {
    {Key::Backspace, "backspace"},
    {Key::Tab, "tab"},
    {12, "clear"},
    {Key::Return, "return"},
    {Key::Pause, "pause"},
    {Key::Escape, "escape"},
    {Key::Space, "space"},
    {Key::Delete, "delete"},
    {Key::KeypadPlus, "[+]"},
    {Key::KeypadEnter, "enter"},
    {272, "equals"},
    {Key::Up, "up"},
    {Key::Down, "down"},
    {Key::Right, "right"},
    {Key::Left, "left"},
    {Key::Insert, "insert"},
    {Key::Home, "home"},
    {Key::End, "end"},
    {Key::PageUp, "page up"},
    {Key::PageDown, "page down"},
    {Key::NumLock, "numlock"},
    {Key::CapsLock, "caps lock"},
    {302, "scroll lock"},
    {Key::RightShift, "right shift"},
    {Key::LeftShift, "left shift"},
    {Key::RightCtrl, "right ctrl"},
    {Key::LeftCtrl, "left ctrl"},
    {Key::RightAlt, "right alt"},
    {Key::LeftAlt, "left alt"},
    {Key::RightMeta, "right meta"},
    {Key::LeftMeta, "left meta"},
    {311, "left super"},
    {312, "right super"},
    {313, "alt graph"},
    {314, "compose"},
    {315, "help"},
    {316, "print screen"},
    {317, "sys req"},
    {318, "break"},
    {319, "menu"},
    {320, "power"},
    {321, "euro"},
    {322, "undo"},
    {Key::LeftMouse, "left mousebutton"},
    {Key::MiddleMouse, "middle mousebutton"},
    {Key::RightMouse, "right mousebutton"},
    {Key::ScrollUp, "scroll up"},
    {Key::ScrollDown, "scroll down"},
};

constexpr int FIRST_WORLD_KEY = 160;
constexpr int NUM_WORLD_KEYS = 26;        // higher ones have no name
constexpr int FIRST_NUMBERED_BUTTON = 6;  // lower buttons have names of their own
constexpr int LAST_NUMBERED_BUTTON = 9;

void NamePrintableKeys(Names& names) {
    for (int code = '!'; code <= 'z'; ++code) {
        const bool isCapital = code >= 'A' && code <= 'Z';  // the key has the code of the small letter
        if (!isCapital && code != '%') names[code] = String(1, static_cast<char>(code));
    }
}

Names MakeNames() {
    Names names;
    NamePrintableKeys(names);
    for (const NamedKey& key : NAMED_KEYS) names[key.m_code] = key.m_name;
    for (int i = 0; i < NUM_WORLD_KEYS; ++i) names[FIRST_WORLD_KEY + i] = "world " + std::to_string(i);
    for (int code = Key::F1; code <= Key::F15; ++code) {
        names[code] = "f" + std::to_string(code - Key::F1 + 1);
    }
    for (int button = FIRST_NUMBERED_BUTTON; button <= LAST_NUMBERED_BUTTON; ++button) {
        names[Key::FromMouseButton(button)] = "mousebutton " + std::to_string(button);
    }
    return names;
}

const Names& GetNames() {
    static const Names& s_names = *new Names(MakeNames());  // abandoned at exit
    return s_names;
}

std::map<String, int> MakeCodes() {
    std::map<String, int> codes;
    for (int code = 0; code < Key::NUM_CODES; ++code) {
        const String& name = GetNames()[code];
        if (!name.empty()) codes[boost::algorithm::to_lower_copy(name)] = code;
    }
    return codes;
}

}  // namespace

bool Key::HasName(int key) {
    return key >= 0 && key < NUM_CODES && !GetNames()[key].empty();
}

const String& Key::GetKeyName(int key) {
    if (!HasName(key)) THROW(BadDataException, WHERE + ": Unknown key");
    return GetNames()[key];
}

int Key::GetKeyFromName(const String& name) {
    static const std::map<String, int>& s_codes = *new std::map<String, int>(MakeCodes());
    const auto code = s_codes.find(boost::algorithm::to_lower_copy(name));
    if (code == s_codes.end()) {
        THROW(BadDataException, WHERE + ": Unknown name of key \"" + name + "\"");
    }
    return code->second;
}

}  // namespace gui

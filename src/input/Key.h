#pragma once

#include "util/String.h"

namespace gui {

// Key codes and their names. Printable ASCII keys have the code of their character, lower case.
class Key {
  public:
    enum Code : int {
        Backspace = 8,
        Tab = 9,
        Return = 13,
        Pause = 19,
        Escape = 27,
        Space = 32,
        Delete = 127,
        Keypad0 = 256,
        Keypad9 = 265,
        KeypadPeriod = 266,
        KeypadDivide = 267,
        KeypadMultiply = 268,
        KeypadMinus = 269,
        KeypadPlus = 270,
        KeypadEnter = 271,
        Up = 273,
        Down = 274,
        Right = 275,
        Left = 276,
        Insert = 277,
        Home = 278,
        End = 279,
        PageUp = 280,
        PageDown = 281,
        F1 = 282,
        F15 = 296,
        NumLock = 300,
        CapsLock = 301,
        RightShift = 303,
        LeftShift = 304,
        RightCtrl = 305,
        LeftCtrl = 306,
        RightAlt = 307,
        LeftAlt = 308,
        RightMeta = 309,
        LeftMeta = 310,
        LeftMouse = 324,
        MiddleMouse = 325,
        RightMouse = 326,
        ScrollUp = 327,
        ScrollDown = 328,
    };
    static constexpr int NUM_CODES = 333;

    // `button` is the number that the library gives it, from 1.
    static constexpr int FromMouseButton(int button) { return LeftMouse - 1 + button; }

    // The name by which scripts know the key. Throws BadDataException, "Unknown key", where it has none.
    static const String& GetKeyName(int key);
    static bool HasName(int key);  // by which it can be bound

    // Upper and lower case are the same. Throws BadDataException, "Unknown name of key ...".
    static int GetKeyFromName(const String& name);
};

}  // namespace gui

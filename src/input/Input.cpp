#include "input/Input.h"

#include <SDL/SDL_active.h>
#include <SDL/SDL_events.h>
#include <SDL/SDL_keyboard.h>
#include <SDL/SDL_mouse.h>
#include <SDL/SDL_video.h>

#include <cctype>

#include "input/EventQueue.h"
#include "input/Key.h"
#include "input/Sdl2.h"
#include "logging/Log.h"
#include "util/Clock.h"
#include "util/Guarded.h"
#include "util/ProfileTree.h"
#include "util/Redraw.h"

namespace gui {

namespace {

constexpr int KEY_REPEAT_DELAY = 500;    // milliseconds before a held key repeats
constexpr int KEY_REPEAT_INTERVAL = 30;  // milliseconds

void EnableCharacters() {
    SDL_EnableUNICODE(1);
    SDL_EnableKeyRepeat(KEY_REPEAT_DELAY, KEY_REPEAT_INTERVAL);
}

SDL_Cursor* s_emptyCursor = nullptr;  // in use; null while the window system's is

constexpr int HEARS_MOUSE = SDL_APPINPUTFOCUS | SDL_APPMOUSEFOCUS;

bool IsLosingWindow(const SDL_ActiveEvent& event) {
    return event.gain == 0 && (event.state & (SDL_APPINPUTFOCUS | SDL_APPACTIVE)) != 0;
}

// Of the mouse, as the window system tells it now, bits by SDL_BUTTON; 0 where it does not.
uint32_t AskHeldButtons() {
    static const auto s_ask = FindSdl2<uint32_t(int*, int*)>("SDL_GetGlobalMouseState");
    return s_ask == nullptr ? 0 : s_ask(nullptr, nullptr);
}

const char* GetJoystickEventName(int type) {
    switch (type) {
        case SDL_JOYAXISMOTION:
            return "SDL_JOYAXISMOTION";
        case SDL_JOYBALLMOTION:
            return "SDL_JOYBALLMOTION";
        case SDL_JOYHATMOTION:
            return "SDL_JOYHATMOTION";
        case SDL_JOYBUTTONDOWN:
            return "SDL_JOYBUTTONDOWN";
        case SDL_JOYBUTTONUP:
            return "SDL_JOYBUTTONUP";
        default:
            return nullptr;
    }
}

}  // namespace

Input::Input() : InputDelegator("Input"), m_queue(new EventQueue) {}

Input::~Input() noexcept(false) = default;

void Input::Pump() {
    PROFILE_SECTION("Event handling");
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) m_queue->Push(event);  // what passes by its filter
    while (m_queue->Pop(event)) HandleEvent(event);
    util::Guarded([&] { FindSwallowedPresses(); }, "", logging::Error);
    math::Vec2i mouse;
    SDL_GetMouseState(&mouse.x, &mouse.y);
    FinishPump(mouse);
}

bool Input::IsWaiting() {
    SDL_PumpEvents();
    return !m_queue->IsEmpty() || SDL_PollEvent(nullptr) != 0;
}

void Input::HandleEvent(const SDL_Event& event) {
    util::Redraw::Request();
    util::Guarded([&] { Translate(event); }, "", logging::Error);
}

void Input::FinishPump(math::Vec2i mousePixels) {
    m_mousePosition = ToGUI(math::Vec2(mousePixels.x, mousePixels.y));
    m_modifierState = SDL_GetModState();
    util::Guarded([&] { ApplyHoldRule(); }, "", logging::Error);
}

void Input::Translate(const SDL_Event& event) {
    switch (event.type) {
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            return HandleMouseButton(event);
        case SDL_MOUSEMOTION:
            return HandleMotion(event);
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            return HandleKey(event);
        case SDL_ACTIVEEVENT:
            if (IsLosingWindow(event.active)) ReleaseButtons();
            break;
        default:
            break;
    }
    if (const char* const joystickEvent = GetJoystickEventName(event.type)) {
        Log(logging::Info, joystickEvent);
        return;
    }
    InputEvent other(event);
    OnInputEvent(other);
}

void Input::HandleMouseButton(const SDL_Event& event) {
    const int button = event.button.button;
    const bool pressed = event.type == SDL_MOUSEBUTTONDOWN;
    if (pressed && button == SDL_BUTTON_WHEELUP) ++m_wheelPosition;
    if (pressed && button == SDL_BUTTON_WHEELDOWN) --m_wheelPosition;
    m_released.reset(button);
    SendMouseButton(button, pressed, ToGUI(math::Vec2(event.button.x, event.button.y)));
}

void Input::SendMouseButton(int button, bool pressed, math::Vec2 position) {
    m_buttons.set(button, pressed);
    m_mouseButtonDown = pressed;
    if (pressed) ++m_mousePresses;
    KeyEvent key = MakeKeyEvent(Key::FromMouseButton(button), 0, pressed);
    key.m_position = position;
    OnKeyEvent(key);
}

void Input::ReleaseButtons() {
    m_seenUp.reset();
    for (int button = SDL_BUTTON_LEFT; button <= SDL_BUTTON_RIGHT; ++button) {
        if (!m_buttons[button]) continue;
        m_released.set(button);
        SendMouseButton(button, false, m_mousePosition);
    }
}

void Input::FindSwallowedPresses() {
    if (m_released.none()) return;
    const uint32_t held = AskHeldButtons();
    const bool isOurs = (SDL_GetAppState() & HEARS_MOUSE) == HEARS_MOUSE;
    for (int button = SDL_BUTTON_LEFT; button <= SDL_BUTTON_RIGHT; ++button) {
        if (!m_released[button]) continue;
        if ((held & SDL_BUTTON(button)) == 0) {
            m_seenUp.set(button);
        } else if (m_seenUp[button] && isOurs && !m_buttons[button]) {
            util::Redraw::Request();
            SendMouseButton(button, true, m_mousePosition);
        }
    }
}

void Input::HandleMotion(const SDL_Event& event) {
    MouseMoveEvent move;
    move.m_position = ToGUI(math::Vec2(event.motion.x, event.motion.y));
    move.m_delta = ToGUI(math::Vec2(event.motion.xrel, event.motion.yrel));
    move.m_buttons = m_buttons;
    OnMouseMove(move);
}

// Keys without a name and a character exist on most keyboards (keypad, umlauts): their events are
// delivered all the same, so that no key stays down for ever.
void Input::HandleKey(const SDL_Event& event) {
    const int code = event.key.keysym.sym;
    const bool pressed = event.type == SDL_KEYDOWN;
    m_modifierState = event.key.keysym.mod;
    KeyEvent key = MakeKeyEvent(code, 0, pressed);
    const bool repeated = pressed && IsKeyDown(code);
    try {
        key = BuildKeyEvent(code, event.key.keysym.unicode, pressed);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
    }
    key.m_repeated = repeated;
    // The library sets the timer of a press last, also behind a release in the same breath: a short tap would
    // repeat for ever.
    if (!pressed) EnableCharacters();
    OnKeyEvent(key);
}

KeyEvent Input::MakeKeyEvent(int key, char character, bool pressed) const {
    KeyEvent event;
    event.m_key = key;
    event.m_character = character;
    event.m_pressed = pressed;
    event.m_alt = IsModifierDown(Modifier::Alt);
    event.m_ctrl = IsModifierDown(Modifier::Ctrl);
    event.m_shift = IsModifierDown(Modifier::Shift);
    event.m_position = m_mousePosition;
    return event;
}

KeyEvent Input::BuildKeyEvent(int key, int unicode, bool pressed) {
    // Only the first byte counts: texts are bytes in the order of the font sheet.
    const char character = static_cast<char>(unicode & 0xFF);
    if (character != 0) return MakeKeyEvent(key, character, pressed);
    const char workedOut = WorkOutCharacter(key);
    if (workedOut != 0) {
        static bool s_said = false;
        if (!s_said) Log(logging::Trace, "SDL unicode doesn't work");
        s_said = true;
        EnableCharacters();
    }
    return MakeKeyEvent(key, workedOut, pressed);
}

// The library translates presses only; a release is to carry the same character as its press.
char Input::WorkOutCharacter(int key) const {
    if (key == Key::Space) return ' ';
    if (key == Key::Return) return '\n';
    if (key == Key::Tab) return '\t';
    if (key >= Key::Keypad0 && key <= Key::Keypad9) return static_cast<char>('0' + key - Key::Keypad0);
    const String& name = Key::GetKeyName(key);
    if (name.size() != 1) return 0;
    const auto character = static_cast<unsigned char>(name[0]);
    return static_cast<char>(IsModifierDown(Modifier::Shift) ? std::toupper(character)
                                                             : std::tolower(character));
}

bool Input::IsKeyDown(int key) const {
    const auto found = m_keyDown.find(key);
    return found != m_keyDown.end() && found->second;
}

bool Input::IsModifierDown(Modifier modifier) const {
    struct Row {
        int m_mask;   // of the library's modifier state
        int m_key;    // one of these two must be down as far as this program has seen; 0 asks for none
        int m_other;  // likewise
    };
    // In the order of Modifier.
    static constexpr Row ROWS[] = {
        {KMOD_NONE, 0, 0},
        {KMOD_SHIFT, Key::LeftShift, Key::RightShift},
        {KMOD_LSHIFT, Key::LeftShift, Key::LeftShift},
        {KMOD_RSHIFT, Key::RightShift, Key::RightShift},
        {KMOD_CTRL, Key::LeftCtrl, Key::RightCtrl},
        {KMOD_LCTRL, Key::LeftCtrl, Key::LeftCtrl},
        {KMOD_RCTRL, Key::RightCtrl, Key::RightCtrl},
        {KMOD_ALT, Key::LeftAlt, Key::RightAlt},
        {KMOD_LALT, Key::LeftAlt, Key::LeftAlt},
        {KMOD_RALT, 0, 0},  // AltGr: some keyboards report it as another key, so the state alone decides
        {KMOD_META, Key::LeftMeta, Key::RightMeta},
        {KMOD_LMETA, Key::LeftMeta, Key::LeftMeta},
        {KMOD_RMETA, Key::RightMeta, Key::RightMeta},
        {KMOD_NUM, Key::NumLock, Key::NumLock},
        {KMOD_CAPS, Key::CapsLock, Key::CapsLock},
    };
    if (modifier == Modifier::None) return m_modifierState == 0;
    const Row& row = ROWS[static_cast<int>(modifier)];
    // The library may miss a release outside the window, which this program's own record does not.
    return (m_modifierState & row.m_mask) != 0 &&
           (row.m_key == 0 || IsKeyDown(row.m_key) || IsKeyDown(row.m_other));
}

// A full screen without a cursor makes the library ask for movements, which touch screens, tablets and the
// mice of virtual machines have none of: they tell places. So the cursor is not hidden, it is empty.
void Input::ShowCursor(bool show) {
    constexpr int SIDE = 8;  // pixels
    DropCursor();
    if (show) return;
    Uint8 clear[SIDE] = {};
    s_emptyCursor = SDL_CreateCursor(clear, clear, SIDE, SIDE, 0, 0);
    SDL_SetCursor(s_emptyCursor);
}

void Input::DropCursor() {
    if (s_emptyCursor != nullptr) SDL_FreeCursor(s_emptyCursor);  // the usual one takes its place
    s_emptyCursor = nullptr;
}

void Input::GrabInput(bool grab) {
    SDL_WM_GrabInput(grab ? SDL_GRAB_ON : SDL_GRAB_OFF);
}

// Twice, for letting go of the grab may change the keyboard's mode.
void Input::Reset() {
    m_queue->Install();
    EnableCharacters();
    GrabInput(false);
    EnableCharacters();
}

}  // namespace gui

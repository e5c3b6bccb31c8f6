#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "input/InputListener.h"
#include "util/Singleton.h"

namespace gui {

class EventQueue;

// Modifier keys to ask for; those without a side stand for either.
enum class Modifier {
    None,  // no modifier at all, locks included
    Shift,
    LeftShift,
    RightShift,
    Ctrl,
    LeftCtrl,
    RightCtrl,
    Alt,
    LeftAlt,
    RightAlt,
    Meta,
    LeftMeta,
    RightMeta,
    NumLock,
    CapsLock,
};

// What gui::GUI's attributes say about input; it writes them here at its construction and on each change.
struct InputSettings {
    float m_scale = 1;                            // pixels per GUI unit, above 0
    float m_clickTolerance = 3.5f;                // GUI units of movement that turn a press into a drag
    float m_clickTimeTolerance = 0.4f;            // seconds of holding that turn a press into a drag
    std::function<bool(math::Vec2)> m_isCovered;  // whether something takes the mouse there; GUI units
};

// The root of all input. Once a frame Pump() takes the window system's events, one after the other, turns
// them into those of InputEvents.h and hands them to the listeners; a mouse button that no listener handled
// then runs the gesture machine, which delivers a click or a drag:
//
//   Idle --press--> Pressed --release--> click, Idle
//                   Pressed --moved beyond the tolerance, or held beyond the time--> Dragging
//                   Dragging --release--> drag end, Idle
//
// A press that a listener handled opens no gesture, nor does the wheel; other buttons than the one that
// opened the gesture leave it alone. A failing listener costs the event, not the program.
//
// A window that loses the keyboard or is put away may never hear of the release: its buttons are released
// then, where the mouse is. The library goes on believing them down and swallows the next press, for which
// the window system itself is asked.
class Input : public InputDelegator, public util::Singleton<Input> {
  public:
    Input();
    ~Input() noexcept(false) override;

    void Pump();
    bool IsWaiting();  // whether there is input for the next Pump
    // Whether the interface lies over what the mouse means there, GUI units.
    bool IsCovered(math::Vec2 position) const {
        return m_settings.m_isCovered && m_settings.m_isCovered(position);
    }

    // The two halves of Pump, for callers with events of their own making.
    void HandleEvent(const SDL_Event& event);  // never throws a std::exception
    void FinishPump(math::Vec2i mousePixels);  // the mouse's place now, and the rule of holding

    void OnKeyEvent(KeyEvent& event) override;
    void OnMouseMove(MouseMoveEvent& event) override;

    bool IsKeyDown(int key) const;  // mouse buttons are keys too
    bool IsModifierDown(Modifier modifier) const;
    bool IsMouseButtonDown() const { return m_mouseButtonDown; }
    // How often any mouse button has been pressed: a tap may be over before anybody asks whether one is down.
    uint32_t GetMousePresses() const { return m_mousePresses; }
    int GetWheelPosition() const { return m_wheelPosition; }
    math::Vec2 GetMousePosition() const { return m_mousePosition; }

    void ShowCursor(bool show);  // the window system's
    void DropCursor();           // before the library's video part may stop, which takes its cursors along
    void GrabInput(bool grab);
    void Reset();  // to be called when the video mode has been set

    InputSettings& GetSettings() { return m_settings; }
    math::Vec2 ToGUI(math::Vec2 pixels) const { return pixels / m_settings.m_scale; }

    // The event of a key; `unicode` as the library reports it, 0 on every release. Throws for a key that
    // has neither a character nor a name.
    KeyEvent BuildKeyEvent(int key, int unicode, bool pressed);

  private:
    enum class Gesture { Idle, Pressed, Dragging };

    void Translate(const SDL_Event& event);
    void HandleMouseButton(const SDL_Event& event);
    void HandleMotion(const SDL_Event& event);
    void HandleKey(const SDL_Event& event);
    void SendMouseButton(int button, bool pressed, math::Vec2 position);
    void ReleaseButtons();
    void FindSwallowedPresses();
    KeyEvent MakeKeyEvent(int key, char character, bool pressed) const;
    char WorkOutCharacter(int key) const;

    void AdvanceGesture(KeyEvent& event);
    void OpenGesture(const KeyEvent& event);
    void DeliverClick(KeyEvent& event);
    bool StartDrag();  // whether a listener handled it
    bool EndDrag(math::Vec2 position);
    bool ContinueDrag(math::Vec2 delta, math::Vec2 position);
    void ApplyHoldRule();

    const std::unique_ptr<EventQueue> m_queue;
    InputSettings m_settings;
    bool m_mouseButtonDown = false;  // after a press of any button, until a release of any
    uint32_t m_mousePresses = 0;
    MouseButtons m_buttons;         // down now
    MouseButtons m_released;        // by ReleaseButtons, while the library believes them down
    MouseButtons m_seenUp;          // of these, by the window system since
    std::map<int, bool> m_keyDown;  // by key code, mouse buttons included
    // The library's, as of the event being handled: the library itself tells the state behind the last event
    // in its queue, in which a quick shortcut is over already.
    int m_modifierState = 0;
    int m_wheelPosition = 0;     // +1 for each notch up, -1 down; never reset
    math::Vec2 m_mousePosition;  // GUI coordinates, as of the last pump

    Gesture m_gesture = Gesture::Idle;
    double m_pressTime = 0;      // seconds; these three belong to the press that opened the gesture
    math::Vec2 m_pressPosition;  // GUI coordinates
    int m_pressKey = 0;
    double m_lastClickTime = 0;  // seconds, of its press
    math::Vec2 m_lastClickPosition;
    int m_lastClickKey = 0;  // 0 when the next click is a first one
};

}  // namespace gui

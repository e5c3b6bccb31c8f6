#pragma once

#include <SDL/SDL_active.h>
#include <SDL/SDL_events.h>
#include <SDL/SDL_keyboard.h>
#include <gtest/gtest.h>

#include <vector>

#include "input/Input.h"
#include "input/Key.h"
#include "util/Clock.h"

namespace test {

// Writes down every call as a short text: "move", "press 97 a", "release 324", "start (1,2) d(0,0)
// at (1,2) 324", "click (1,2) 324 x1", ... and can take events.
class RecordingListener : public gui::InputListener {
  public:
    explicit RecordingListener(std::vector<String>& calls, const String& prefix = "")
        : m_calls(calls), m_prefix(prefix) {}

    void OnMouseMove(gui::MouseMoveEvent& event) override { Note("move", event); }
    void OnKeyEvent(gui::KeyEvent& event) override;
    void OnInputEvent(gui::InputEvent& event) override { Note("other", event); }
    void OnDragStart(gui::DragEvent& event) override { Note("start " + Describe(event), event); }
    void OnDrag(gui::DragEvent& event) override { Note("drag " + Describe(event), event); }
    void OnDragEnd(gui::DragEvent& event) override { Note("end " + Describe(event), event); }
    void OnClick(gui::ClickEvent& event) override;

    bool m_takes = false;  // whether it marks what it gets as handled
    gui::KeyEvent m_lastKey;

  private:
    template <class Event>
    void Note(const String& text, Event& event) {
        m_calls.push_back(m_prefix + text + (event.m_handled ? " (handled)" : ""));
        if (m_takes) event.m_handled = true;
    }
    static String Describe(const gui::DragEvent& event);

    std::vector<String>& m_calls;
    String m_prefix;
};
using RecordingListenerPtr = util::SharedPtr<RecordingListener>;

// A listener at gui::Input, a clock that stands still, a mouse and a keyboard to play on.
class InputTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    void Mouse(bool pressed, int button, int x, int y);
    void MoveMouse(int x, int y, int dx = 0, int dy = 0);
    void Key(bool pressed, int key, int unicode = 0);
    void TellActive(bool gain, int state);  // SDL_APP...
    void SetModifiers(int state);           // as the library tells them
    void Tap(int key, int unicode = 0);
    // One empty frame `seconds` later, the mouse standing at x, y.
    void Wait(double seconds, int x, int y);
    std::vector<String> TakeCalls();

    gui::Input& m_input = gui::Input::Instance();
    std::vector<String> m_calls;
    RecordingListenerPtr m_listener;

  private:
    static double GetFakeTime() { return s_time; }
    static inline double s_time = 0;
};

using Calls = std::vector<String>;

}  // namespace test

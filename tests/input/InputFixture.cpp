#include "InputFixture.h"

#include <sstream>

namespace test {

namespace {

String Describe(math::Vec2 v) {
    std::ostringstream text;
    text << "(" << v.x << "," << v.y << ")";
    return text.str();
}

}  // namespace

String RecordingListener::Describe(const gui::DragEvent& event) {
    return test::Describe(event.m_start) + " d" + test::Describe(event.m_delta) + " at " +
           test::Describe(event.m_position) + " " + std::to_string(event.m_key);
}

void RecordingListener::OnKeyEvent(gui::KeyEvent& event) {
    InputListener::OnKeyEvent(event);
    m_lastKey = event;
    const String character = event.m_character != 0 ? String(" ") + event.m_character : "";
    Note((event.m_pressed ? "press " : "release ") + std::to_string(event.m_key) + character, event);
}

void RecordingListener::OnClick(gui::ClickEvent& event) {
    Note("click " + test::Describe(event.m_position) + " " + std::to_string(event.m_key) + " x" +
             std::to_string(event.m_clicks),
         event);
}

void InputTest::SetUp() {
    util::Clock::SetSource(&GetFakeTime);
    SetModifiers(KMOD_NONE);
    m_input.GetSettings() = gui::InputSettings();
    m_listener = new RecordingListener(m_calls);
    m_input.AddListener(m_listener);
}

void InputTest::TearDown() {
    m_listener = nullptr;
    for (const int button : {1, 2, 3}) Mouse(false, button, 0, 0);  // ends a gesture left open
    for (int key = 0; key < gui::Key::NUM_CODES; ++key) {
        if (m_input.IsKeyDown(key)) Key(false, key, 'x');
    }
    util::Clock::SetSource(nullptr);
}

void InputTest::Mouse(bool pressed, int button, int x, int y) {
    SDL_Event event{};
    event.type = pressed ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    event.button.button = static_cast<Uint8>(button);
    event.button.x = static_cast<Uint16>(x);
    event.button.y = static_cast<Uint16>(y);
    m_input.HandleEvent(event);
}

void InputTest::MoveMouse(int x, int y, int dx, int dy) {
    SDL_Event event{};
    event.type = SDL_MOUSEMOTION;
    event.motion.x = static_cast<Uint16>(x);
    event.motion.y = static_cast<Uint16>(y);
    event.motion.xrel = static_cast<Sint16>(dx);
    event.motion.yrel = static_cast<Sint16>(dy);
    m_input.HandleEvent(event);
}

void InputTest::Key(bool pressed, int key, int unicode) {
    SDL_Event event{};
    event.type = pressed ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.keysym.sym = static_cast<SDLKey>(key);
    event.key.keysym.mod = SDL_GetModState();
    event.key.keysym.unicode = static_cast<Uint16>(unicode);
    m_input.HandleEvent(event);
}

void InputTest::TellActive(bool gain, int state) {
    SDL_Event event{};
    event.type = SDL_ACTIVEEVENT;
    event.active.gain = gain ? 1 : 0;
    event.active.state = static_cast<Uint8>(state);
    m_input.HandleEvent(event);
}

void InputTest::SetModifiers(int state) {
    SDL_SetModState(static_cast<SDLMod>(state));
    const math::Vec2 pixels = m_input.GetMousePosition() * m_input.GetSettings().m_scale;
    m_input.FinishPump({static_cast<int>(pixels.x), static_cast<int>(pixels.y)});
}

void InputTest::Tap(int key, int unicode) {
    Key(true, key, unicode);
    Key(false, key);
}

void InputTest::Wait(double seconds, int x, int y) {
    s_time += seconds;
    m_input.FinishPump({x, y});
}

std::vector<String> InputTest::TakeCalls() {
    std::vector<String> calls;
    calls.swap(m_calls);
    return calls;
}

}  // namespace test

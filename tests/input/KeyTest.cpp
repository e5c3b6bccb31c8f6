#include <SDL/SDL_keysym.h>

#include <set>

#include "InputFixture.h"
#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "util/Exception.h"

namespace test {
namespace {

TEST(KeyTest, EveryNamedKeyComesBackFromItsName) {
    std::set<String> names;
    for (int code = 0; code < gui::Key::NUM_CODES; ++code) {
        try {
            names.insert(gui::Key::GetKeyName(code));
            EXPECT_EQ(gui::Key::GetKeyFromName(gui::Key::GetKeyName(code)), code);
        } catch (const BadDataException&) {
        }
    }
    // What bindings, tools and saved settings name; the library's own codes where it has a constant.
    const std::pair<int, const char*> known[] = {
        {SDLK_SPACE, "space"},   {SDLK_RETURN, "return"},   {SDLK_F11, "f11"},  {SDLK_PAGEUP, "page up"},
        {SDLK_DELETE, "delete"}, {SDLK_LCTRL, "left ctrl"}, {SDLK_a, "a"},      {SDLK_QUOTEDBL, "\""},
        {SDLK_BACKSLASH, "\\"},  {SDLK_KP_PLUS, "[+]"},     {327, "scroll up"}, {326, "right mousebutton"}};
    for (const auto& [code, name] : known) {
        EXPECT_EQ(gui::Key::GetKeyName(code), name);
        EXPECT_EQ(names.count(name), 1u);
    }
}

TEST(KeyTest, NamelessKeysAndUnknownNames) {
    for (const int code : {-1, 0, 37, 65, 90, 123, 186, 246, 256, 265, 266, 269, 297, 323, 333, 100000}) {
        const String failure = FailureOf<BadDataException>([&] { gui::Key::GetKeyName(code); });
        EXPECT_NE(failure.find("Unknown key"), String::npos) << code;
    }
    EXPECT_EQ(gui::Key::GetKeyFromName("Page UP"), 280);
    const String failure = FailureOf<BadDataException>([] { gui::Key::GetKeyFromName("Any"); });
    EXPECT_NE(failure.find("Unknown name of key \"Any\""), String::npos);
}

class KeyEventTest : public InputTest {
  protected:
    char GetCharacter(int key, int unicode, bool pressed = true) {
        return m_input.BuildKeyEvent(key, unicode, pressed).m_character;
    }
    // Both what the library says and what the program has seen.
    void HoldShift() {
        SetModifiers(KMOD_LSHIFT);
        Key(true, gui::Key::LeftShift);
    }
};

TEST_F(KeyEventTest, CharactersOfPresses) {
    EXPECT_EQ(GetCharacter('a', 'a'), 'a');
    EXPECT_EQ(GetCharacter('a', 'Q'), 'Q') << "the library's translation goes before the name";
    EXPECT_EQ(GetCharacter(246, 0xF6), static_cast<char>(0xF6));
    EXPECT_EQ(GetCharacter('w', 375), 'w') << "only the first byte counts";
    EXPECT_EQ(GetCharacter(13, 13), '\r');
}

TEST_F(KeyEventTest, CharactersOfReleasesAreWorkedOut) {
    EXPECT_EQ(GetCharacter(32, 0, false), ' ');
    EXPECT_EQ(GetCharacter(13, 0, false), '\n');
    EXPECT_EQ(GetCharacter(9, 0, false), '\t');
    EXPECT_EQ(GetCharacter(256, 0, false), '0');
    EXPECT_EQ(GetCharacter(265, 0, false), '9');
    EXPECT_EQ(GetCharacter('a', 0, false), 'a');
    EXPECT_EQ(GetCharacter('7', 0, false), '7');
    EXPECT_EQ(GetCharacter(304, 0, false), 0) << "a long name is no character";
    EXPECT_EQ(GetCharacter(282, 0, true), 0);
    HoldShift();
    EXPECT_EQ(GetCharacter('a', 0, false), 'A');
}

TEST_F(KeyEventTest, NamelessKeysFailButAreDelivered) {
    EXPECT_THROW(m_input.BuildKeyEvent(269, 0, false), BadDataException);
    LogCapture log(logging::Trace);
    Key(true, 246, 0xF6);
    EXPECT_TRUE(m_input.IsKeyDown(246));
    Key(false, 246);
    EXPECT_FALSE(m_input.IsKeyDown(246));
    Key(false, 400);
    EXPECT_EQ(m_listener->m_lastKey.m_key, 400);
    EXPECT_EQ(m_listener->m_lastKey.m_character, 0);
    EXPECT_TRUE(log.Contains("Unknown key"));
}

TEST_F(KeyEventTest, AFailingListenerCostsItsEventOnly) {
    class Failing : public gui::InputListener {
        void OnKeyEvent(gui::KeyEvent&) override { throw std::runtime_error("no such tool"); }
    };
    const util::SharedPtr<Failing> failing = new Failing;
    m_input.AddListener(failing);
    LogCapture log(logging::Error);
    Key(true, 'a', 'a');
    EXPECT_TRUE(log.Contains("no such tool"));
    EXPECT_TRUE(m_input.IsKeyDown('a'));
}

TEST_F(KeyEventTest, EventsCarryModifiersAndTheMouse) {
    Wait(0, 30, 40);
    HoldShift();
    Key(true, 'a', 'A');
    EXPECT_TRUE(m_listener->m_lastKey.m_shift);
    EXPECT_FALSE(m_listener->m_lastKey.m_ctrl || m_listener->m_lastKey.m_alt);
    EXPECT_EQ(m_listener->m_lastKey.m_position, math::Vec2(30, 40));
}

TEST_F(KeyEventTest, Modifiers) {
    using gui::Modifier;
    struct Case {
        Modifier m_modifier;
        int m_state;  // of the library
        int m_key;    // 0: none needs to be down
    };
    const Case cases[] = {
        {Modifier::Shift, 1, 304},        {Modifier::Shift, 2, 303},
        {Modifier::LeftShift, 1, 304},    {Modifier::RightShift, 2, 303},
        {Modifier::Ctrl, 0x40, 306},      {Modifier::Ctrl, 0x80, 305},
        {Modifier::LeftCtrl, 0x40, 306},  {Modifier::RightCtrl, 0x80, 305},
        {Modifier::Alt, 0x100, 308},      {Modifier::Alt, 0x200, 307},
        {Modifier::LeftAlt, 0x100, 308},  {Modifier::RightAlt, 0x200, 0},
        {Modifier::Meta, 0x400, 310},     {Modifier::Meta, 0x800, 309},
        {Modifier::LeftMeta, 0x400, 310}, {Modifier::RightMeta, 0x800, 309},
        {Modifier::NumLock, 0x1000, 300}, {Modifier::CapsLock, 0x2000, 301},
    };
    for (const Case& c : cases) {
        SetModifiers(c.m_state);
        EXPECT_EQ(m_input.IsModifierDown(c.m_modifier), c.m_key == 0) << "before the press, " << c.m_state;
        if (c.m_key != 0) Key(true, c.m_key);
        EXPECT_TRUE(m_input.IsModifierDown(c.m_modifier)) << c.m_state;
        EXPECT_FALSE(m_input.IsModifierDown(Modifier::None));
        SetModifiers(KMOD_NONE);
        EXPECT_FALSE(m_input.IsModifierDown(c.m_modifier)) << "only the record says so";
        EXPECT_TRUE(m_input.IsModifierDown(Modifier::None));
        if (c.m_key != 0) Key(false, c.m_key);
    }
}

TEST_F(KeyEventTest, AShortcutWithinOneFrameKeepsItsModifier) {
    SDL_SetModState(KMOD_LCTRL);
    Key(true, gui::Key::LeftCtrl);
    Key(true, 'z', 'z');
    SDL_SetModState(KMOD_NONE);  // by now the library has seen the release that waits in its queue
    Mouse(true, 1, 0, 0);
    EXPECT_TRUE(m_listener->m_lastKey.m_ctrl);
    Key(false, gui::Key::LeftCtrl);
    Mouse(false, 1, 0, 0);
    EXPECT_FALSE(m_listener->m_lastKey.m_ctrl);
}

TEST_F(KeyEventTest, OtherEventsArePassedOnWhole) {
    class Resized : public gui::InputListener {
      public:
        void OnInputEvent(gui::InputEvent& event) override { m_width = event.GetEvent().resize.w; }
        int m_width = 0;
    };
    const util::SharedPtr<Resized> listener = new Resized;
    m_input.AddListener(listener);
    SDL_Event event{};
    event.type = SDL_VIDEORESIZE;
    event.resize.w = 640;
    m_input.HandleEvent(event);
    EXPECT_EQ(listener->m_width, 640);
    LogCapture log(logging::Info);
    event.type = SDL_JOYHATMOTION;
    m_input.HandleEvent(event);
    EXPECT_TRUE(log.Contains("SDL_JOYHATMOTION"));
    EXPECT_EQ(TakeCalls(), Calls{"other"});
}

}  // namespace
}  // namespace test

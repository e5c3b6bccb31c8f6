#include "InputFixture.h"
#include "support/LogCapture.h"
#include "util/Exception.h"

namespace test {
namespace {

TEST(KeyTest, Names) {
    struct Case {
        int m_code;
        const char* m_name;
    };
    const Case cases[] = {
        {8, "backspace"},
        {9, "tab"},
        {12, "clear"},
        {13, "return"},
        {19, "pause"},
        {27, "escape"},
        {32, "space"},
        {33, "!"},
        {34, "\""},
        {36, "$"},
        {38, "&"},
        {48, "0"},
        {64, "@"},
        {91, "["},
        {92, "\\"},
        {96, "`"},
        {97, "a"},
        {122, "z"},
        {127, "delete"},
        {160, "world 0"},
        {185, "world 25"},
        {270, "[+]"},
        {271, "enter"},
        {272, "equals"},
        {273, "up"},
        {274, "down"},
        {275, "right"},
        {276, "left"},
        {277, "insert"},
        {278, "home"},
        {279, "end"},
        {280, "page up"},
        {281, "page down"},
        {282, "f1"},
        {296, "f15"},
        {300, "numlock"},
        {301, "caps lock"},
        {302, "scroll lock"},
        {303, "right shift"},
        {304, "left shift"},
        {305, "right ctrl"},
        {306, "left ctrl"},
        {307, "right alt"},
        {308, "left alt"},
        {309, "right meta"},
        {310, "left meta"},
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
        {327, "scroll up"},
        {328, "scroll down"},
        {324, "left mousebutton"},
        {325, "middle mousebutton"},
        {326, "right mousebutton"},
        {329, "mousebutton 6"},
        {332, "mousebutton 9"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(gui::Key::GetKeyName(c.m_code), c.m_name);
        EXPECT_EQ(gui::Key::GetKeyFromName(c.m_name), c.m_code) << c.m_name;
    }
}

TEST(KeyTest, EveryNamedKeyComesBackFromItsName) {
    int named = 0;
    for (int code = 0; code < gui::Key::NUM_CODES; ++code) {
        try {
            EXPECT_EQ(gui::Key::GetKeyFromName(gui::Key::GetKeyName(code)), code);
            ++named;
        } catch (const BadDataException&) {
        }
    }
    EXPECT_EQ(named, 8 + 31 + 32 + 26 + 12 + 15 + 23 + 9);
}

TEST(KeyTest, NamelessKeysAndUnknownNames) {
    for (const int code : {-1, 0, 37, 65, 90, 123, 186, 246, 256, 265, 266, 269, 297, 323, 333, 100000}) {
        try {
            gui::Key::GetKeyName(code);
            ADD_FAILURE() << code;
        } catch (const BadDataException& e) {
            EXPECT_NE(e.GetText().find("Unknown key"), String::npos);
        }
    }
    EXPECT_EQ(gui::Key::GetKeyFromName("Page UP"), 280);
    try {
        gui::Key::GetKeyFromName("Any");
        ADD_FAILURE();
    } catch (const BadDataException& e) {
        EXPECT_NE(e.GetText().find("Unknown name of key \"Any\""), String::npos);
    }
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

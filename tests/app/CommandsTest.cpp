#include "app/windows/Commands.h"

#include <gtest/gtest.h>

#include <memory>

#include "input/Key.h"
#include "util/Exception.h"

namespace {

class CommandsTest : public testing::Test {
  protected:
    CommandsTest() {
        m_commands->Add({"Plain", "blank", 'b', false, [this] { ++m_plain; }});
        m_commands->Add({"Ctrl", "blank", 'b', true, [this] { ++m_ctrl; }});
        m_commands->Add({"Home", "blank", gui::Key::Home, false, [this] { ++m_home; }});
    }

    bool Send(int key, bool pressed, bool ctrl = false, bool handled = false) {
        gui::KeyEvent event;
        event.m_key = key;
        event.m_pressed = pressed;
        event.m_ctrl = ctrl;
        event.m_handled = handled;
        return m_commands->HandleKey(event);
    }

    const std::unique_ptr<app::Commands> m_commands = std::make_unique<app::Commands>();
    int m_plain = 0;
    int m_ctrl = 0;
    int m_home = 0;
};

TEST_F(CommandsTest, LettersFireAtTheReleaseAndNothingElseDoes) {
    EXPECT_FALSE(Send('b', true));
    EXPECT_TRUE(Send('b', false));
    EXPECT_EQ(m_plain, 1);
    EXPECT_TRUE(Send(gui::Key::Home, true));
    EXPECT_FALSE(Send(gui::Key::Home, false));
    EXPECT_EQ(m_home, 1);
    EXPECT_TRUE(Send('b', true, true));
    EXPECT_FALSE(Send('b', false)) << "ctrl went up first";
    EXPECT_EQ(m_ctrl, 1);
    EXPECT_EQ(m_plain, 1);
}

// The menu key of many keyboards, for one, is none that the library knows.
TEST_F(CommandsTest, AnUnknownKeyFiresNothing) {
    int fired = 0;
    m_commands->Add({"WithoutKey", "blank", 0, false, [&fired] { ++fired; }});
    for (const bool pressed : {true, false, true, false}) EXPECT_FALSE(Send(0, pressed));
    EXPECT_EQ(fired, 0);
}

TEST_F(CommandsTest, WhatAFieldTookFiresNothing) {
    Send('b', true, false, true);
    EXPECT_FALSE(Send('b', false));
    EXPECT_FALSE(Send('b', true, true, true));
    EXPECT_EQ(m_plain + m_ctrl, 0);
}

TEST_F(CommandsTest, KeysAreChangedAndKept) {
    EXPECT_FALSE(m_commands->SetKey("Home", 'b', true)) << "taken";
    EXPECT_FALSE(m_commands->SetKey("Nothing", 'k', true));
    EXPECT_TRUE(m_commands->SetKey("Home", 'k', true));
    EXPECT_TRUE(Send('k', true, true));
    EXPECT_FALSE(Send(gui::Key::Home, true));
    EXPECT_EQ(app::GetKeyText(m_commands->Find("Home")), "ctrl+k");
    const String text = m_commands->WriteKeys();
    EXPECT_EQ(text, "Home ctrl+k");

    app::Commands other;
    other.Add({"Home", "blank", gui::Key::Home, false, [] {}});
    other.ReadKeys("Nothing ctrl+q Home nokey " + text + " Home");
    EXPECT_EQ(app::GetKeyText(other.Find("Home")), "ctrl+k");
    EXPECT_THROW(other.Find("Plain"), BadDataException);
}

}  // namespace

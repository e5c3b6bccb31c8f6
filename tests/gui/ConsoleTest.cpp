#include "gui/Console.h"

#include <gtest/gtest.h>

#include "Events.h"
#include "gui/Root.h"
#include "input/Clipboard.h"
#include "script/Parser.h"
#include "util/Clock.h"
#include "util/FileSystem.h"
#include "util/Redraw.h"

namespace {

using gui::Console;
using gui::ConsolePtr;
using gui::Key;
using Tone = gui::Console::Tone;

constexpr int F11 = 292;
String s_clipboard;

class ConsoleTest : public testing::Test {
  protected:
    ConsoleTest() : m_root(new gui::Root), m_console(new Console) {
        util::Clock::SetSource([] { return s_time; });
        m_root->SetSize(800, 600);
        m_root->AddChild(m_console);
    }
    ~ConsoleTest() override { util::Clock::SetSource(nullptr); }

    bool Press(int key, char character = 0, bool ctrl = false, math::Vec2 place = {}) {
        gui::KeyEvent event = test::Press(key, place);
        event.m_character = character;
        event.m_ctrl = ctrl;
        m_root->OnKeyEvent(event);
        return event.m_handled;
    }
    void Type(const String& text) {
        for (const char c : text) Press(c, c);
    }
    void Run(const String& text) {
        Type(text);
        Press(Key::Return, '\r');
    }
    void Open() {
        Press(F11);
        Wait(1);
    }
    void Wait(double seconds) {
        s_time += seconds;
        m_root->Update(static_cast<float>(seconds));
    }
    std::vector<String> GetTexts() const {
        std::vector<String> texts;
        for (const Console::Line& line : m_console->GetLines()) texts.push_back(line.text);
        return texts;
    }
    using Texts = std::vector<String>;

    static inline double s_time = 100;
    const gui::ComponentPtr m_root;
    const ConsolePtr m_console;
};

TEST_F(ConsoleTest, PrintsCommandAndAnswer) {
    Open();
    Run("2 + 3");
    EXPECT_EQ(GetTexts(), (Texts{"> 2 + 3", "5"}));
    EXPECT_EQ(m_console->GetLines()[0].tone, Tone::Command);
    EXPECT_EQ(m_console->GetLines()[1].tone, Tone::Answer);
    EXPECT_EQ(m_console->GetCommandLine(), "");
    Press(Key::Return, '\r');
    EXPECT_EQ(m_console->GetLines().size(), 2u) << "an empty line is no command";
    m_console->AddLine("a\nb", false);
    EXPECT_EQ(m_console->GetLines().size(), 4u);
    m_console->AddLine("x = 1;\ny = 2", true);
    EXPECT_EQ(m_console->GetHistory().GetCommands(), (Texts{"2 + 3", "x = 1;\ny = 2"}));
    m_console->Clear();
    EXPECT_TRUE(m_console->GetLines().empty());
}

TEST_F(ConsoleTest, MarksThePlaceOfAFailureUnderTheCommand) {
    Open();
    Run("1 + noSuchName");
    ASSERT_GE(m_console->GetLines().size(), 2u);
    const Console::Line& mark = m_console->GetLines()[1];
    EXPECT_EQ(mark.text, "^");
    EXPECT_EQ(mark.mark, 2 * 8) << "below the statement, behind the prompt";
    Run("1 + 1");
    EXPECT_EQ(m_console->GetLines()[m_console->GetLines().size() - 2].text, "> 1 + 1") << "nothing failed";
}

TEST_F(ConsoleTest, LogLinesHaveTheToneOfTheirLevel) {
    m_console->AddLogLine("!! ERROR: no caf\xC3\xA9");
    m_console->AddLogLine("-- Warning: hm");
    m_console->AddLogLine("news");
    EXPECT_EQ(m_console->GetLines()[0].text, "!! ERROR: no caf\xE9");
    EXPECT_EQ(m_console->GetLines()[0].tone, Tone::Error);
    EXPECT_EQ(m_console->GetLines()[1].tone, Tone::Warning);
    EXPECT_EQ(m_console->GetLines()[2].tone, Tone::Plain);
}

TEST_F(ConsoleTest, KeepsTheLatestTenThousandLines) {
    for (int i = 0; i < 10005; ++i) m_console->AddLine(std::to_string(i), false);
    EXPECT_EQ(m_console->GetLines().size(), 10000u);
    EXPECT_EQ(m_console->GetLines().front().text, "5");
}

TEST_F(ConsoleTest, TakesKeysOnlyWhileItIsOpen) {
    EXPECT_FALSE(Press('a', 'a'));
    EXPECT_FALSE(Press(Key::Escape));
    EXPECT_TRUE(Press(F11));
    EXPECT_TRUE(m_console->IsOpen());
    EXPECT_TRUE(Press('a', 'a'));
    EXPECT_TRUE(Press(Key::F1)) << "also what means nothing to it";
    EXPECT_TRUE(Press(Key::Escape));
    EXPECT_FALSE(m_console->IsOpen());
    EXPECT_EQ(m_console->GetHistory().GetCommands(), Texts{"a"}) << "the line begun is kept in the history";
    for (const int key : {F11, 167, 189, 96}) {
        Press(key);
        EXPECT_TRUE(m_console->IsOpen()) << key;
        Press(Key::Escape);
    }
    EXPECT_TRUE(Press('3', '\xA7'));
    EXPECT_TRUE(m_console->IsOpen());
    gui::KeyEvent held = test::Press(F11, {});
    held.m_repeated = true;
    m_root->OnKeyEvent(held);
    EXPECT_TRUE(m_console->IsOpen()) << "a held key does not flicker";
}

TEST_F(ConsoleTest, TheMouseIsItsOwnOverItsRectangleOnly) {
    Open();
    const float height = m_console->GetSize().y;
    EXPECT_EQ(height, 210) << "0.35 of 600";
    EXPECT_TRUE(Press(Key::LeftMouse, 0, false, {400, height - 5}));
    EXPECT_FALSE(Press(Key::LeftMouse, 0, false, {400, height + 5}));
    Press(Key::Escape);
    Wait(1);
    EXPECT_FALSE(Press(Key::LeftMouse, 0, false, {400, 5}));
}

TEST_F(ConsoleTest, TurnsRoundInTheMiddleWithoutAJump) {
    Press(F11);
    Wait(0.1);
    const float height = m_console->GetSize().y;
    EXPECT_NEAR(height, 70, 0.01f);
    Press(F11);
    Wait(0);
    EXPECT_NEAR(m_console->GetSize().y, height, 0.01f);
    Wait(0.05);
    EXPECT_NEAR(m_console->GetSize().y, 35, 0.01f);
}

TEST_F(ConsoleTest, WalksTheHistory) {
    Open();
    for (const char* command : {"1", "2", "3"}) Run(command);
    Type("new");
    Press(Key::Up);
    EXPECT_EQ(m_console->GetCommandLine(), "3");
    EXPECT_EQ(m_console->GetHistory().GetCommands().back(), "new");
    for (int i = 0; i < 5; ++i) Press(Key::Up);
    EXPECT_EQ(m_console->GetCommandLine(), "1");
    for (const char* expected : {"2", "3", "new", ""}) {
        Press(Key::Down);
        EXPECT_EQ(m_console->GetCommandLine(), expected);
    }
    Type("z");
    Press(Key::Down);
    EXPECT_EQ(m_console->GetCommandLine(), "");
    EXPECT_EQ(m_console->GetHistory().GetCommands().back(), "z");
}

TEST_F(ConsoleTest, HistorySurvivesARestart) {
    const String path = util::FileSystem::Instance().GetWorkDir() + "history.txt";
    m_console->GetHistory().SetFile(path);
    m_console->GetHistory().Add("first");
    m_console->GetHistory().Add("caf\xE9 {");
    gui::CommandHistory next;
    next.SetFile(path);
    EXPECT_EQ(next.GetCommands(), (Texts{"first", "caf\xE9 {"}));
    util::FileSystem::Instance().Remove(path);
}

TEST_F(ConsoleTest, TheCaretBlinksForTenSecondsAndThenAsksForNoPicture) {
    Press(F11);
    const auto countRequests = [this](double seconds) {
        int count = 0;
        for (const double end = s_time + seconds; s_time < end; s_time += 0.05) {
            m_root->Update(0.05f);
            count += util::Redraw::Take() ? 1 : 0;
        }
        return count;
    };
    countRequests(5);
    for (int i = 0; i < 2; ++i) {
        Press('a', 'a');
        EXPECT_NEAR(countRequests(9.5), 19, 1);
        countRequests(1);
        EXPECT_EQ(countRequests(30), 0);
    }
}

TEST_F(ConsoleTest, CompletesInFrontOfTheCursor) {
    script::Parser::Instance().Execute("completionAlpha = 1; completionAlpine = 2; completionBeta = 3");
    Open();
    Type("COMPLETIONb");
    Press(Key::Tab, '\t');
    EXPECT_EQ(m_console->GetCommandLine(), "completionBeta");
    Press(Key::Escape);
    Press(F11);
    Type("completiona)");
    Press(Key::Left);
    Press(Key::Tab, '\t');
    EXPECT_EQ(m_console->GetCommandLine(), "completionAlp)");
    EXPECT_EQ(GetTexts(), (Texts{"> completionAlp)", "completionAlpha   completionAlpine"}));
    Type("h");
    EXPECT_EQ(m_console->GetCommandLine(), "completionAlph)") << "the cursor stays behind what was completed";
}

TEST_F(ConsoleTest, CtrlCCopiesTheLastAnswer) {
    gui::SetClipboardAccess({[] { return s_clipboard; }, [](const String& text) { s_clipboard = text; }});
    Open();
    Run("\"caf\xE9\"");
    m_console->AddLine("something else", false);
    EXPECT_TRUE(Press('c', 3, true));
    EXPECT_NE(s_clipboard.find("caf\xC3\xA9"), String::npos);
    gui::SetClipboardAccess({});
}

}  // namespace

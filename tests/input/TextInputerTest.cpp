#include "input/TextInputer.h"

#include "InputFixture.h"
#include "input/Clipboard.h"

namespace test {
namespace {

class TextInputerTest : public InputTest {
  protected:
    // A press; whether the editor took it.
    bool Press(int key, char character = 0, bool ctrl = false, bool shift = false) {
        gui::KeyEvent event;
        event.m_key = key;
        event.m_character = character;
        event.m_pressed = true;
        event.m_ctrl = ctrl;
        event.m_shift = shift;
        m_editor->OnKeyEvent(event);
        return event.m_handled;
    }
    // The text with "|" at the cursor.
    String Show() const {
        String text = m_editor->GetText();
        return text.insert(m_editor->GetCursor(), "|");
    }

    gui::TextInputerPtr m_editor = new gui::TextInputer;
};

TEST_F(TextInputerTest, Editing) {
    struct Step {
        int m_key;
        char m_character;
        const char* m_result;
    };
    const Step steps[] = {
        {'a', 'a', "a|"},
        {'b', 'B', "aB|"},
        {gui::Key::Left, 0, "a|B"},
        {'x', 'x', "ax|B"},
        {gui::Key::Home, 0, "|axB"},
        {gui::Key::Left, 0, "|axB"},
        {gui::Key::Backspace, 8, "|axB"},
        {gui::Key::Delete, 127, "|xB"},
        {gui::Key::End, 0, "xB|"},
        {gui::Key::Right, 0, "xB|"},
        {gui::Key::Delete, 127, "xB|"},
        {gui::Key::Backspace, 8, "x|"},
        {gui::Key::Home, 0, "|x"},
        {gui::Key::Insert, 0, "|x"},
        {'q', 'q', "q|"},
        {'r', 'r', "qr|"},  // overwriting at the end appends
        {gui::Key::Insert, 0, "qr|"},
        {gui::Key::Left, 0, "q|r"},
        {'s', 's', "qs|r"},
    };
    for (const Step& step : steps) {
        EXPECT_TRUE(Press(step.m_key, step.m_character)) << step.m_result;
        EXPECT_EQ(Show(), step.m_result);
    }
}

TEST_F(TextInputerTest, WhatIsMarkedIsReplaced) {
    struct Step {
        int m_key;
        char m_character;
        const char* m_result;
    };
    const Step steps[] = {{'x', 'x', "x|"},
                          {gui::Key::Backspace, 8, "|"},
                          {gui::Key::Delete, 127, "|"},
                          {gui::Key::Home, 0, "|name"},
                          {gui::Key::Right, 0, "name|"},
                          {gui::Key::LeftShift, 0, "name|"}};
    for (const Step& step : steps) {
        m_editor->SetText("name");
        m_editor->MarkAll();
        Press(step.m_key, step.m_character);
        EXPECT_EQ(Show(), step.m_result) << step.m_key;
        EXPECT_EQ(m_editor->IsMarked(), step.m_key == gui::Key::LeftShift) << "a modifier alone does nothing";
    }
    Press('y', 'y');
    EXPECT_EQ(Show(), "y|");
}

TEST_F(TextInputerTest, WhatItLeavesToOthers) {
    EXPECT_FALSE(Press(gui::Key::Escape, 27));
    EXPECT_FALSE(Press(gui::Key::F1));
    EXPECT_FALSE(Press('s', 's', true)) << "ctrl makes a shortcut of a letter";
    gui::KeyEvent release;
    release.m_key = release.m_character = 'a';
    m_editor->OnKeyEvent(release);
    gui::KeyEvent taken = release;
    taken.m_pressed = taken.m_handled = true;
    m_editor->OnKeyEvent(taken);
    EXPECT_FALSE(release.m_handled);
    EXPECT_EQ(m_editor->GetText(), "");
}

TEST_F(TextInputerTest, AltGrTypes) {
    SetModifiers(KMOD_RALT | KMOD_LCTRL);
    EXPECT_TRUE(Press('q', '@', true));
    EXPECT_EQ(m_editor->GetText(), "@");
}

TEST_F(TextInputerTest, ReturnFiresWhenThereIsAText) {
    String entered = "nothing";
    const util::SharedPtr<util::Pointee> owner = new util::Pointee;
    m_editor->GetOnEnter().Add(new util::Callback(
        [&] {
            entered = m_editor->GetText();
            m_editor->SetText("");
        },
        owner));
    EXPECT_TRUE(Press(gui::Key::Return, 13));
    EXPECT_EQ(entered, "nothing");
    m_editor->SetText("run");
    EXPECT_TRUE(Press(gui::Key::KeypadEnter, 13));
    EXPECT_EQ(entered, "run");
    EXPECT_EQ(m_editor->GetText(), "") << "return types nothing";
}

String GetFakeClipboard() {
    return "gr\xC3\xBC\xC3\x9F\r\n\xE2\x82\xAC!";
}

TEST_F(TextInputerTest, Pasting) {
    gui::SetClipboardAccess({&GetFakeClipboard, nullptr});
    EXPECT_TRUE(Press('v', 'v', true));
    EXPECT_EQ(m_editor->GetText(), "gr\xFC\xDF\n?!");
    m_editor->SetText("abc");
    m_editor->SetCursor(1);
    EXPECT_TRUE(Press(gui::Key::Insert, 0, false, true));
    EXPECT_EQ(Show(), "agr\xFC\xDF\n?!|bc");
    EXPECT_FALSE(m_editor->IsOverwriting());
    gui::SetClipboardAccess({});
}

}  // namespace
}  // namespace test

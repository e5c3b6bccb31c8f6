#include "gui/components/Button.h"

#include <gtest/gtest.h>

#include "Events.h"
#include "Fixtures.h"
#include "gui/components/Icon.h"
#include "gui/components/Label.h"

namespace {

using gui::Button;
using gui::ButtonPtr;
using gui::Key;
using math::Vec2;

class ButtonTest : public testing::Test {
  protected:
    ButtonTest() : m_button(new Button("mm")) {
        m_button->SetPos(100, 100);
        m_button->GetOnPress().Add(new util::Callback([this] { ++m_fired; }, m_button));
    }

    bool Send(gui::KeyEvent event) {
        m_button->OnKeyEvent(event);
        return event.m_handled;
    }

    static constexpr Vec2 INSIDE{101, 101}, OUTSIDE{99, 101};
    ButtonPtr m_button;
    int m_fired = 0;
};

TEST_F(ButtonTest, IsARowHigh) {
    EXPECT_EQ(m_button->GetOuterSize(), Vec2(24 + 2 * 4 + 2 * 4, 22));
}

TEST_F(ButtonTest, FiresWhenPressAndReleaseLieInside) {
    EXPECT_TRUE(Send(test::Press(Key::LeftMouse, INSIDE)));
    EXPECT_TRUE(m_button->IsPressed());
    EXPECT_EQ(m_fired, 0);
    EXPECT_TRUE(Send(test::Release(Key::LeftMouse, INSIDE)));
    EXPECT_EQ(m_fired, 1);
    EXPECT_FALSE(m_button->IsPressed());
}

TEST_F(ButtonTest, DoesNotFireOtherwise) {
    Send(test::Press(Key::LeftMouse, INSIDE));
    EXPECT_FALSE(Send(test::Release(Key::LeftMouse, OUTSIDE)));
    EXPECT_FALSE(m_button->IsPressed());
    EXPECT_FALSE(Send(test::Release(Key::LeftMouse, INSIDE)));

    EXPECT_FALSE(Send(test::Press(Key::LeftMouse, OUTSIDE)));
    EXPECT_FALSE(Send(test::Release(Key::LeftMouse, INSIDE)));

    EXPECT_FALSE(Send(test::Press(Key::RightMouse, INSIDE)));
    EXPECT_FALSE(Send(test::Release(Key::RightMouse, INSIDE)));

    gui::KeyEvent handled = test::Press(Key::LeftMouse, INSIDE);
    handled.m_handled = true;
    Send(handled);
    Send(test::Release(Key::LeftMouse, INSIDE));
    EXPECT_EQ(m_fired, 0);
}

TEST(Label, IsAsLargeAsItsText) {
    const gui::LabelPtr label = new gui::Label("mi");
    EXPECT_EQ(label->GetSize(), Vec2(16 + 8, 22));
    label->SetText("mi\nmmm");
    EXPECT_EQ(label->GetSize(), Vec2(36 + 8, 38));
    label->SetMaxWidth(24);
    EXPECT_EQ(label->GetSize(), Vec2(24 + 8, 54));
}

TEST(Icon, IsAsLargeAsItsPicture) {
    const gui::IconPtr icon = new gui::Icon("gui/mouse");
    EXPECT_EQ(icon->GetSize(), Vec2(16, 32) / test::DENSITY);
    const gui::IconPtr missing = new gui::Icon("gui/no such picture");
    EXPECT_EQ(missing->GetSize(), Vec2(0, 0));
}

}  // namespace

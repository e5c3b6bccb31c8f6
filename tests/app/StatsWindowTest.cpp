#include "app/windows/StatsWindow.h"

#include <gtest/gtest.h>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "gui/components/Button.h"
#include "gui/components/Label.h"
#include "input/Key.h"
#include "physics/Simulation.h"

namespace {

using gui::ComponentPtr;
using math::Vec2;

class StatsWindowTest : public test::AppGUIFixture {
  protected:
    static app::StatsWindow* FindIn(const gui::Component& parent) {
        for (const ComponentPtr& child : parent.GetChildren()) {
            if (auto* const window = dynamic_cast<app::StatsWindow*>(child.Get())) return window;
        }
        return nullptr;
    }

    static String GetText(const app::StatsWindow& window) {
        for (const ComponentPtr& child : window.GetChildren()) {
            if (const auto* const label = dynamic_cast<const gui::Label*>(child.Get()))
                return label->GetText();
        }
        return "";
    }

    static void SendKey(bool pressed, Vec2 place) {
        gui::KeyEvent event;
        event.m_key = gui::Key::LeftMouse;
        event.m_pressed = pressed;
        event.m_position = place;
        App().OnKeyEvent(event);
    }
};

// One course: the window outlives the interfaces that other tests build.
TEST_F(StatsWindowTest, IsDockedUntilItIsTornOffAndStaysSo) {
    const util::SharedPtr<app::StatsWindow> window = FindIn(GUI());
    ASSERT_TRUE(window);
    AddBox({0, 0});
    physics::Simulation::Instance().Update(0);
    window->Update(0.02f);
    EXPECT_EQ(window->GetPos(), Vec2(1024 - window->GetOuterSize().x - 8, 8));
    EXPECT_EQ(window->GetWobbleLag(), Vec2(0, 0));
    EXPECT_NE(GetText(*window).find("1 bodies\n"), String::npos) << GetText(*window);

    App().CreateGUI();
    EXPECT_EQ(FindIn(GUI()), window.Get());

    // There are no skins in a scratch folder: the title bar is the upper edge.
    const Vec2 title = window->ToGUI({20, 0});
    SendKey(true, title);
    gui::MouseMoveEvent move;
    move.m_position = title;
    move.m_delta = {-30, 40};
    const Vec2 before = window->GetPos();
    App().OnMouseMove(move);
    SendKey(false, title);
    EXPECT_EQ(window->GetParent(), &App());
    EXPECT_EQ(window->GetPos(), before + Vec2(-30, 40));
    window->Update(0.02f);
    EXPECT_EQ(window->GetPos(), before + Vec2(-30, 40));
    App().CreateGUI();
    EXPECT_EQ(FindIn(App()), window.Get());
    EXPECT_EQ(FindIn(GUI()), nullptr);

    window->GetCloseButton()->OnPressed();
    App().CreateGUI();
    EXPECT_EQ(FindIn(App()), nullptr);
    EXPECT_EQ(FindIn(GUI()), nullptr);

    GUI().AddChild(window);  // as it was, for the other tests
}

}  // namespace

#include "gui/Window.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Events.h"
#include "Fixtures.h"
#include "gui/Draggable.h"
#include "gui/components/Button.h"

namespace {

using gui::Component;
using gui::ComponentPtr;
using gui::Key;
using gui::Window;
using gui::WindowPtr;
using math::Vec2;

class WindowTest : public testing::Test {
  protected:
    WindowTest() : m_root(new Component("root")), m_window(new Window("mmmm")) {
        m_root->SetSize(800, 600);
        m_root->AddChild(m_window);
        m_window->SetPos(100, 100);
        m_window->SetSize(200, 150);
    }

    bool PressKey(int key, Vec2 place) {
        gui::KeyEvent event = test::Press(key, place);
        m_root->OnKeyEvent(event);
        return event.m_handled;
    }
    bool ReleaseKey(int key, Vec2 place) {
        gui::KeyEvent event = test::Release(key, place);
        m_root->OnKeyEvent(event);
        return event.m_handled;
    }
    bool MoveMouse(Vec2 delta) {
        gui::MouseMoveEvent event = test::Move({}, delta);
        m_root->OnMouseMove(event);
        return event.m_handled;
    }

    static constexpr Vec2 TITLE{150, 110};  // on the title bar at the start
    ComponentPtr m_root;
    WindowPtr m_window;
};

TEST_F(WindowTest, IsAtLeastAsWideAsItsTitle) {
    m_window->SetSize(1, 50);
    EXPECT_EQ(m_window->GetSize(), Vec2(48 + 18, 50));
    m_window->AddCloseButton();
    EXPECT_EQ(m_window->GetSize().x, 48 + 18 + m_window->GetCloseButton()->GetOuterSize().x + 8);
}

TEST_F(WindowTest, CloseButtonSitsInTheTitleBar) {
    m_window->AddCloseButton();
    const gui::ButtonPtr button = m_window->GetCloseButton();
    EXPECT_EQ(button->GetPos(), Vec2(6 + 200 - button->GetOuterSize().x - 3, 3 - 26));
    m_window->SetSize(300, 20);
    EXPECT_EQ(button->GetPos().x, 6 + 300 - button->GetOuterSize().x - 3);

    const Vec2 place = button->ToGUI({1, 1});
    EXPECT_TRUE(PressKey(Key::LeftMouse, place));
    EXPECT_FALSE(m_window->IsDragged());
    EXPECT_TRUE(ReleaseKey(Key::LeftMouse, place));
    EXPECT_EQ(m_window->GetParent(), nullptr);
}

TEST_F(WindowTest, DiesOfItsOwnCloseButton) {
    m_window->AddCloseButton();
    const Vec2 place = m_window->GetCloseButton()->ToGUI({1, 1});
    const gui::ComponentWeakPtr watch = m_window;
    m_window = nullptr;
    PressKey(Key::LeftMouse, place);
    ReleaseKey(Key::LeftMouse, place);
    EXPECT_FALSE(watch.Get());
}

TEST_F(WindowTest, IsDraggedByTheTitleBarWithTheLeftButton) {
    EXPECT_FALSE(PressKey(Key::RightMouse, TITLE));
    EXPECT_FALSE(PressKey('a', TITLE));
    EXPECT_FALSE(PressKey(Key::LeftMouse, {150, 200}));  // below the title
    EXPECT_FALSE(PressKey(Key::LeftMouse, {150, 99}));
    EXPECT_FALSE(MoveMouse({5, 5}));

    EXPECT_TRUE(PressKey(Key::LeftMouse, TITLE));
    EXPECT_TRUE(MoveMouse({5, -7}));
    EXPECT_EQ(m_window->GetPos(), Vec2(105, 93));
    EXPECT_FALSE(ReleaseKey(Key::RightMouse, TITLE));
    EXPECT_TRUE(ReleaseKey(Key::LeftMouse, TITLE));
    EXPECT_FALSE(MoveMouse({5, 5}));
    EXPECT_FALSE(ReleaseKey(Key::LeftMouse, TITLE));
}

TEST_F(WindowTest, LetsNoClickAndNoDragThrough) {
    const struct {
        Vec2 place;
        bool handled;
    } cases[] = {
        {{100, 100}, true}, {{200, 200}, true}, {{312, 282}, true}, {{313, 200}, false}, {{99, 200}, false}};
    for (const auto& c : cases) {
        gui::ClickEvent click;
        click.m_position = c.place;
        m_root->OnClick(click);
        EXPECT_EQ(click.m_handled, c.handled) << c.place.x;
        gui::DragEvent drag;
        drag.m_start = c.place;
        m_root->OnDragStart(drag);
        EXPECT_EQ(drag.m_handled, c.handled) << c.place.x;
        EXPECT_FALSE(PressKey(Key::ScrollUp, c.place));
    }
}

TEST_F(WindowTest, TearsOffWithoutAJump) {
    int moved = 0;
    m_window->GetMovedCallbacks().Add(new util::Callback([&moved] { ++moved; }, m_root));
    for (const bool inList : {false, true}) {
        const ComponentPtr list =
            new Component("list", inList ? new gui::ListLayout(gui::ListLayout::Vertical) : nullptr);
        list->SetPos(40, 30);
        const ComponentPtr target = new Component("target");
        target->SetPos(7, 9);
        m_root->AddChild(list);
        m_root->AddChild(target);
        list->AddChild(m_window);
        m_window->SetPos(0, 0);
        m_window->SetTearOffTarget(target);
        m_window->Update(10);
        moved = 0;

        EXPECT_TRUE(PressKey(Key::LeftMouse, {60, 40}));
        EXPECT_EQ(m_window->GetParent(), list.Get());
        EXPECT_TRUE(MoveMouse({3, 2}));
        EXPECT_EQ(m_window->GetParent(), target.Get());
        EXPECT_EQ(m_window->ToGUI(-m_window->GetContentOffset()), Vec2(43, 32));
        EXPECT_EQ(m_window->GetWobbleLag(), Vec2(3, 2));  // of this move alone
        EXPECT_EQ(moved, 1);
        MoveMouse({1, 1});
        EXPECT_EQ(m_window->GetParent(), target.Get());
        EXPECT_TRUE(ReleaseKey(Key::LeftMouse, {60, 40}));
    }
}

// ---- wobbling ----------------------------------------------------------------------------------------

TEST_F(WindowTest, FirstPlaceIsTakenWithoutWobble) {
    EXPECT_EQ(m_window->GetWobbleLag(), Vec2(0, 0));
    m_window->SetPos(110, 100);
    EXPECT_EQ(m_window->GetWobbleLag(), Vec2(10, 0));
}

// v += h (300 d - 20 v), x += h v with h = dt / max(1, round(dt / 0.05))
TEST_F(WindowTest, SpringTakesStepsOfAboutAFrame) {
    const struct {
        float dt;
        int steps;
    } cases[] = {{0.2f, 4}, {0.001f, 1}, {0.05f, 1}, {0.1f, 2}, {0.02f, 1}};
    for (const auto& c : cases) {
        m_window->StopWobble();
        const float x = m_window->GetPos().x;
        m_window->SetPos(x + 10, 100);
        m_window->Update(c.dt);
        float lag = 10, velocity = 0;
        const float h = c.dt / c.steps;
        for (int i = 0; i < c.steps; ++i) {
            velocity += h * (300 * lag - 20 * velocity);
            lag -= h * velocity;
        }
        EXPECT_NEAR(m_window->GetWobbleLag().x, lag, 1e-3f) << c.dt;
        EXPECT_NEAR(m_window->GetWobbleMatrix().m[0][1], -lag / (150 + 26 + 6), 1e-5f) << c.dt;
    }
}

TEST_F(WindowTest, WobbleStaysBoundedAtAnyFrameTime) {
    const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    const float limit = 0.9f * m_window->GetOuterSize().y;
    for (const float dt :
         {0.0f, 1e-6f, 0.01f, 0.05f, 0.067f, 0.07f, 0.0749f, 0.12f, 0.3f, 3.0f, 1e30f, -1.0f, inf, nan}) {
        for (const bool dragged : {false, true}) {
            if (dragged) PressKey(Key::LeftMouse, m_window->ToGUI({10, -10}));
            for (int frame = 0; frame < 200; ++frame) {
                m_window->SetPos(m_window->GetPos().x + (frame % 7 - 3) * 40.0f, 100.0f + frame % 5 * 30);
                m_window->Update(dt);
                if (!(dt > 0)) continue;  // no time, no movement
                const Vec2 lag = m_window->GetWobbleLag();
                ASSERT_LE(std::fabs(lag.x), limit * 1.001f) << dt;
                ASSERT_LE(std::fabs(lag.y), limit * 1.001f) << dt;
                ASSERT_GT(m_window->GetWobbleMatrix().m[1][1], 0) << dt;
            }
            ReleaseKey(Key::LeftMouse, {});
            m_window->StopWobble();
            m_window->SetPos(100, 100);
        }
    }
    m_window->SetPos(nan, inf);
    m_window->Update(0.02f);
    m_window->SetPos(100, 100);
    m_window->Update(0.02f);
    EXPECT_EQ(m_window->GetWobbleLag(), Vec2(0, 0));
}

TEST_F(WindowTest, HitTestsFollowThePicture) {
    m_window->SetPos(130, 100);
    m_window->Update(0.001f);
    // The picture hangs behind by almost 30 at its lower edge, and not at all at its upper one.
    EXPECT_TRUE(m_window->IsInOuterBox({105, 280}));
    EXPECT_FALSE(m_window->IsInOuterBox({105, 102}));
    EXPECT_FALSE(m_window->IsInOuterBox({340, 280}));
    EXPECT_TRUE(m_window->IsInOuterBox({340, 102}));
    const Vec2 place(200, 250);
    const Vec2 back = m_window->ToGUI(m_window->ToContent(place));
    EXPECT_NEAR(back.x, place.x, 1e-3f);
    EXPECT_NEAR(back.y, place.y, 1e-3f);
}

// ---- draggable ---------------------------------------------------------------------------------------

TEST(Draggable, TakesLeftDragsInItsContent) {
    const util::SharedPtr<gui::Draggable> item = new gui::Draggable;
    item->SetPos(10, 10);
    item->SetSize(20, 20);
    const struct {
        Vec2 start;
        int key;
        bool handledBefore, dragged;
    } cases[] = {{{15, 15}, Key::LeftMouse, false, true},
                 {{15, 15}, Key::RightMouse, false, false},
                 {{15, 15}, Key::LeftMouse, true, false},
                 {{31, 15}, Key::LeftMouse, false, false}};
    for (const auto& c : cases) {
        gui::DragEvent event;
        event.m_start = c.start;
        event.m_key = c.key;
        event.m_handled = c.handledBefore;
        item->OnDragStart(event);
        EXPECT_EQ(item->IsDragged(), c.dragged);
        EXPECT_EQ(event.m_handled, c.dragged || c.handledBefore);
        item->OnDragEnd(event);
        EXPECT_FALSE(item->IsDragged());
    }
}

}  // namespace

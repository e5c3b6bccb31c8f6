#include "InputFixture.h"

namespace test {
namespace {

class GesturesTest : public InputTest {};

TEST_F(GesturesTest, QuickPressAndReleaseIsAClickWhereItWentDown) {
    Mouse(true, 1, 10, 20);
    MoveMouse(12, 21, 2, 1);  // within the tolerance
    Mouse(false, 1, 12, 21);
    EXPECT_EQ(TakeCalls(), (Calls{"press 324", "move", "release 324", "click (10,20) 324 x1"}));
}

TEST_F(GesturesTest, TwoQuickClicksOnOnePlaceAreADoubleClick) {
    const auto click = [this](int button, int x, double wait) {
        Wait(wait, x, 20);
        Mouse(true, button, x, 20);
        Mouse(false, button, x, 20);
        return TakeCalls().back();
    };
    click(1, 500, 10);
    EXPECT_EQ(click(1, 10, 0.1), "click (10,20) 324 x1") << "elsewhere";
    EXPECT_EQ(click(1, 12, 0.3), "click (12,20) 324 x2");
    EXPECT_EQ(click(1, 12, 0.3), "click (12,20) 324 x1") << "a third one begins anew";
    EXPECT_EQ(click(1, 12, 0.5), "click (12,20) 324 x1") << "too slow";
    EXPECT_EQ(click(3, 12, 0.1), "click (12,20) 326 x1") << "the other button";
}

TEST_F(GesturesTest, MovingBeyondTheToleranceDrags) {
    Mouse(true, 3, 10, 20);
    MoveMouse(13, 20, 3, 0);  // 3 units: still a click
    MoveMouse(14, 20, 1, 0);
    EXPECT_EQ(TakeCalls(), (Calls{"press 326", "move", "move", "start (10,20) d(0,0) at (10,20) 326",
                                  "drag (10,20) d(4,0) at (14,20) 326"}));
    MoveMouse(20, 25, 6, 5);
    Mouse(false, 3, 21, 26);
    EXPECT_EQ(TakeCalls(), (Calls{"move", "drag (10,20) d(6,5) at (20,25) 326", "release 326",
                                  "end (10,20) d(0,0) at (21,26) 326"}));
    MoveMouse(50, 50, 30, 30);
    EXPECT_EQ(TakeCalls(), Calls{"move"});
}

TEST_F(GesturesTest, TheToleranceIsStrict) {
    m_input.GetSettings().m_clickTolerance = 5;
    Mouse(true, 1, 0, 0);
    MoveMouse(3, 4, 3, 4);
    EXPECT_EQ(TakeCalls().back(), "move");
    m_input.GetSettings().m_clickTolerance = 4.9f;
    MoveMouse(3, 4, 0, 0);
    EXPECT_EQ(TakeCalls().back(), "drag (0,0) d(3,4) at (3,4) 324");
}

TEST_F(GesturesTest, HoldingStillStartsADragWithoutMovement) {
    Wait(0, 10, 20);
    Mouse(true, 1, 10, 20);
    Wait(0.25, 10, 20);
    EXPECT_EQ(TakeCalls(), Calls{"press 324"});
    Wait(0.25, 10, 20);
    EXPECT_EQ(TakeCalls(), Calls{"start (10,20) d(0,0) at (10,20) 324"});
    Wait(1, 10, 20);
    Mouse(false, 1, 10, 20);
    EXPECT_EQ(TakeCalls(), (Calls{"release 324", "end (10,20) d(0,0) at (10,20) 324"}));
}

TEST_F(GesturesTest, HoldingWithASmallMovementDragsAtOnce) {
    Mouse(true, 1, 10, 20);
    Wait(0.5, 12, 20);
    EXPECT_EQ(TakeCalls(), (Calls{"press 324", "start (10,20) d(0,0) at (10,20) 324",
                                  "drag (10,20) d(2,0) at (12,20) 324"}));
}

TEST_F(GesturesTest, OtherButtonsLeaveTheGestureAlone) {
    Mouse(true, 2, 10, 20);
    Mouse(true, 1, 30, 30);
    Mouse(false, 1, 30, 30);
    EXPECT_EQ(TakeCalls(), (Calls{"press 325", "press 324", "release 324"}));
    Mouse(false, 2, 10, 20);
    EXPECT_EQ(TakeCalls().back(), "click (10,20) 325 x1");
}

TEST_F(GesturesTest, AHandledPressOpensNoGesture) {
    m_listener->m_takes = true;
    Mouse(true, 1, 10, 20);
    m_listener->m_takes = false;
    Mouse(false, 1, 10, 20);
    EXPECT_EQ(TakeCalls(), (Calls{"press 324", "release 324"}));
}

TEST_F(GesturesTest, AHandledReleaseEndsTheWaitingGestureByTime) {
    Mouse(true, 1, 10, 20);
    m_listener->m_takes = true;
    Mouse(false, 1, 10, 20);
    m_listener->m_takes = false;
    MoveMouse(90, 20, 80, 0);  // the button is up: no drag
    EXPECT_EQ(TakeCalls(), (Calls{"press 324", "release 324", "move"}));
    Wait(0.5, 90, 20);
    Mouse(true, 1, 5, 5);
    Mouse(false, 1, 5, 5);
    EXPECT_EQ(TakeCalls().back(), "click (5,5) 324 x1");
}

TEST_F(GesturesTest, AHandledReleaseEndsTheDragAtTheNextFrame) {
    Mouse(true, 1, 0, 0);
    MoveMouse(9, 0, 9, 0);
    m_listener->m_takes = true;
    Mouse(false, 1, 9, 0);
    m_listener->m_takes = false;
    TakeCalls();
    Wait(0, 12, 0);
    EXPECT_EQ(TakeCalls(), Calls{"end (0,0) d(0,0) at (12,0) 324"});
    MoveMouse(50, 0, 38, 0);
    EXPECT_EQ(TakeCalls(), Calls{"move"});
}

// The release may happen over another program, which is never told here.
TEST_F(GesturesTest, AWindowThatLosesTheKeyboardOrIsPutAwayEndsWhatIsHeld) {
    for (const int state : {SDL_APPINPUTFOCUS, SDL_APPACTIVE, SDL_APPINPUTFOCUS | SDL_APPMOUSEFOCUS}) {
        Mouse(true, 1, 10, 20);
        MoveMouse(20, 20, 10, 0);
        Wait(0, 20, 20);
        TakeCalls();
        TellActive(false, state);
        EXPECT_EQ(TakeCalls(), (Calls{"release 324", "end (10,20) d(0,0) at (20,20) 324", "other"})) << state;
        MoveMouse(50, 50, 30, 30);
        Mouse(false, 1, 50, 50);  // comes late
        EXPECT_EQ(TakeCalls(), (Calls{"move", "release 324"})) << state;
    }
    Mouse(true, 3, 10, 20);
    MoveMouse(20, 20, 10, 0);
    TakeCalls();
    TellActive(false, SDL_APPMOUSEFOCUS);  // the mouse may well leave the window meanwhile
    TellActive(true, SDL_APPINPUTFOCUS);
    EXPECT_EQ(TakeCalls(), (Calls{"other", "other"}));
}

TEST_F(GesturesTest, AHandledMoveDoesNotDrag) {
    Mouse(true, 1, 0, 0);
    m_listener->m_takes = true;
    MoveMouse(50, 0, 50, 0);
    EXPECT_EQ(TakeCalls().back(), "move");
}

TEST_F(GesturesTest, TheWheelIsAKeyAndNeverAClick) {
    const int before = m_input.GetWheelPosition();
    Mouse(true, 4, 7, 8);
    Mouse(false, 4, 7, 8);
    EXPECT_EQ(m_listener->m_lastKey.m_position, math::Vec2(7, 8));
    Mouse(true, 5, 0, 0);
    Mouse(true, 5, 0, 0);
    Mouse(false, 5, 0, 0);
    EXPECT_EQ(TakeCalls(), (Calls{"press 327", "release 327", "press 328", "press 328", "release 328"}));
    EXPECT_EQ(m_input.GetWheelPosition() - before, -1);
}

TEST_F(GesturesTest, PositionsAreInUnitsOfTheScale) {
    m_input.GetSettings().m_scale = 2;
    Mouse(true, 1, 100, 100);
    MoveMouse(120, 100, 20, 0);
    EXPECT_EQ(TakeCalls().back(), "drag (50,50) d(10,0) at (60,50) 324");
    Wait(0, 30, 40);
    EXPECT_EQ(m_input.GetMousePosition(), math::Vec2(15, 20));
}

TEST_F(GesturesTest, ButtonsTravelWithTheMovement) {
    class MoveListener : public gui::InputListener {
      public:
        void OnMouseMove(gui::MouseMoveEvent& event) override { m_event = event; }
        gui::MouseMoveEvent m_event;
    };
    const util::SharedPtr<MoveListener> listener = new MoveListener;
    m_input.AddListener(listener);
    Mouse(true, 1, 0, 0);
    Mouse(true, 7, 0, 0);
    MoveMouse(1, 2, 1, 2);
    EXPECT_TRUE(listener->m_event.m_buttons.test(1) && listener->m_event.m_buttons.test(7));
    EXPECT_EQ(listener->m_event.m_delta, math::Vec2(1, 2));
    Mouse(false, 7, 0, 0);
    EXPECT_FALSE(m_input.IsMouseButtonDown());  // after the release of any button
    MoveMouse(1, 2);
    EXPECT_EQ(listener->m_event.m_buttons.count(), 1u);
}

}  // namespace
}  // namespace test

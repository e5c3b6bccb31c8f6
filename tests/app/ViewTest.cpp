#include <cmath>
#include <limits>

#include "SceneFixture.h"
#include "input/Input.h"
#include "input/Key.h"

namespace app {
namespace {

using math::Vec2;

class ViewTest : public test::SceneFixture {
  protected:
    static void ExpectNear(Vec2 a, Vec2 b, float tolerance = 1e-3f) {
        EXPECT_NEAR(a.x, b.x, tolerance);
        EXPECT_NEAR(a.y, b.y, tolerance);
    }
    static void Settle() {
        AdvanceClock(1);
        GetApp().Update(0);
    }
};

TEST_F(ViewTest, TheWorldStandsUprightAndBothMappingsAreInverse) {
    ExpectNear(GetApp().WorldToGUI({0, 0}), {400, 300});
    ExpectNear(GetApp().WorldToGUI({1, 0}), {400 + App::GetDefaultZoom(), 300});
    ExpectNear(GetApp().WorldToGUI({0, 1}), {400, 300 - App::GetDefaultZoom()});
    for (const Vec2 p : {Vec2(3, -2), Vec2(-100, 7.5f)}) {
        ExpectNear(GetApp().GUIToWorld(GetApp().WorldToGUI(p)), p, 1e-3f);
    }
}

TEST_F(ViewTest, AnUnsetViewBecomesTheDefaultOne) {
    GetApp().SetWorldToGUI(math::TMatrix3<float>(), false);
    GetApp().Update(0);
    EXPECT_EQ(GetView().GetZoom(), App::GetDefaultZoom());
    EXPECT_EQ(GetView().GetWorldToGUI().m[1][1], -App::GetDefaultZoom());
}

// From one end of the numbers to the other there is no way for a gliding view.
TEST_F(ViewTest, PlacesBeyondTheNumbersAreRefused) {
    const test::LogCapture log;
    const math::TMatrix3<float> near = GetView().GetTargetWorldToGUI();
    for (const float far : {3e38f, -3e38f}) {
        GetApp().SetWorldToGUI(math::TMatrix3<float>::Translation(far, 0) * near, true);
        for (int frame = 0; frame < 20; ++frame) {
            RunFor(1);
            EXPECT_TRUE(math::IsFinite(GetView().GetMousePos())) << far;
        }
    }
}

TEST_F(ViewTest, BadMatricesAreRefused) {
    const auto before = GetView().GetTargetWorldToGUI();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    for (const float bad : {0.0f, nan, inf, -inf}) {
        test::LogCapture log;
        auto matrix = before;
        matrix.m[0][0] = bad;
        GetApp().SetWorldToGUI(matrix);
        EXPECT_TRUE(log.Contains("-- Warning: Bad arg to SetWorldToGUI"));
        EXPECT_TRUE(GetView().GetTargetWorldToGUI() == before);
    }
}

TEST_F(ViewTest, GlidesToItsTargetWithinATenthOfASecond) {
    GetApp().SetZoom(300);
    EXPECT_EQ(GetView().GetZoom(), 150);
    AdvanceClock(0.05);
    GetApp().Update(0);
    EXPECT_GT(GetView().GetZoom(), 200);
    EXPECT_LT(GetView().GetZoom(), 300);
    AdvanceClock(0.051);
    GetApp().Update(0);
    EXPECT_EQ(GetView().GetZoom(), 300);
}

TEST_F(ViewTest, ZoomKeepsThePointItIsAbout) {
    GetApp().Pan(37, -12);
    Settle();
    const Vec2 middle = GetApp().GUIToWorld(GetView().GetMiddle());
    GetApp().SetZoom(77);
    Settle();
    EXPECT_EQ(GetView().GetZoom(), 77);
    ExpectNear(GetApp().GUIToWorld(GetView().GetMiddle()), middle);

    const Vec2 mouse(650, 130);
    const Vec2 under = GetApp().GUIToWorld(mouse);
    GetView().ZoomAbout(mouse, 2);
    Settle();
    EXPECT_EQ(GetView().GetZoom(), 154);
    ExpectNear(GetApp().GUIToWorld(mouse), under);
}

TEST_F(ViewTest, ZoomIsKeptInBounds) {
    GetApp().SetZoom(0.5f);
    Settle();
    Settle();
    EXPECT_EQ(GetView().GetZoom(), App::GetMinZoom());
    GetApp().SetZoom(9000);
    Settle();
    Settle();
    EXPECT_EQ(GetView().GetZoom(), App::GetMaxZoom());
}

TEST_F(ViewTest, ArrowsPanWhileTimePasses) {
    const Vec2 before = GetView().GetTargetWorldToGUI()(Vec2());
    gui::KeyEvent press;
    press.m_key = gui::Key::Right;
    press.m_pressed = true;
    gui::Input::Instance().OnKeyEvent(press);
    GetApp().OnKeyEvent(press);
    ASSERT_TRUE(GetApp().IsKeyDownHere(gui::Key::Right));

    GetApp().Update(0);
    ExpectNear(GetView().GetTargetWorldToGUI()(Vec2()), before);
    GetApp().Update(0.1f);
    ExpectNear(GetView().GetTargetWorldToGUI()(Vec2()), before - Vec2(40, 0));

    press.m_pressed = false;
    gui::Input::Instance().OnKeyEvent(press);
    GetApp().OnKeyEvent(press);
}

TEST_F(ViewTest, ZoomToSceneFitsWhatHasAnExtent) {
    AddCircle({10, 5}, 2);
    AddCircle({30, 5}, 2);
    AddPlane({0, 1}, 0);
    GetApp().ZoomToScene();
    Settle();
    const float zoom = GetView().GetZoom();
    EXPECT_NEAR(zoom, 800 / (24 * 1.1), 0.01);
    // In the middle, and low: what there is above a flat scene is sky, not ground under it.
    ExpectNear(GetView().WorldToGUI({20, 0}), {400, 600 * 0.78f});

    GetView().SetRooms(100, 60);
    GetApp().ZoomToScene();
    Settle();
    EXPECT_NEAR(GetView().GetZoom(), 700 / (24 * 1.1), 0.01);
    EXPECT_NEAR(GetView().WorldToGUI({20, 0}).x, 450, 0.01);
    AddCircle({20, 25}, 2);  // now its height decides
    AddPlane({0, 1}, 200);   // too far below to be in view
    GetView().SetRooms(100, 60);
    GetApp().ZoomToScene();
    Settle();
    EXPECT_NEAR(GetView().GetZoom(), 540 / (27 * 1.1), 0.01);
    ExpectNear(GetView().WorldToGUI({20, 13.5}), {450, 330}, 0.01f);
    GetView().SetRooms(0, 0);
}

TEST_F(ViewTest, AShapeAloneIsSeenWithRoomAroundIt) {
    AddCircle({10, 5}, 2);
    AddPlane({0, 1}, 200);
    GetApp().ZoomToScene();
    Settle();
    EXPECT_NEAR(GetView().GetZoom(), 600 / (4 * 3.0), 0.01);
}

TEST_F(ViewTest, ASceneWithoutExtentIsSeenInTheDefaultView) {
    for (const bool plane : {false, true}) {
        if (plane) AddPlane({0, 1}, 0);
        GetApp().SetZoom(20);
        GetApp().ZoomToScene();
        Settle();
        EXPECT_EQ(GetView().GetZoom(), App::GetDefaultZoom());
    }
}

TEST_F(ViewTest, CentimetresFollowZoomAndResolution) {
    GetApp().m_DPI->Set(254);
    // 100 pixels to the centimetre, 150 pixels to the metre.
    EXPECT_NEAR(GetView().GetCmToWorld(), 100.0 / 150, 1e-5);
    GetApp().m_DPI->Set(GetApp().m_DPI->GetDefault());
}

TEST_F(ViewTest, FollowsTheTrackedEntity) {
    const auto circle = AddCircle({3, 4});
    GetScene().Track(circle);
    GetApp().SetZoom(40);
    GetApp().Update(0.01f);
    ExpectNear(GetApp().GUIToWorld(GetView().GetMiddle()), {3, 4});
    EXPECT_EQ(GetView().GetZoom(), 40);

    const auto second = AddCircle({-5, 0});
    GetScene().Track(second);
    EXPECT_FALSE(circle->IsTracked());
    GetApp().Update(0.01f);
    ExpectNear(GetApp().GUIToWorld(GetView().GetMiddle()), {-5, 0});
}

TEST_F(ViewTest, AnEntityWithoutExtentIsNotFollowed) {
    const auto plane = AddPlane({0, 1}, 0);
    GetScene().Track(plane);
    GetApp().Update(0.01f);
    EXPECT_FALSE(GetScene().GetTrackedEntity());
    EXPECT_FALSE(plane->IsTracked());
}

}  // namespace
}  // namespace app

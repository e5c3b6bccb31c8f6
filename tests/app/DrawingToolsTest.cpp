#include <cmath>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"

#include "app/tools/Tool.h"
#include "input/Input.h"
#include "input/Key.h"
#include "physics/Body.h"
#include "physics/Simulation.h"
#include "support/LogCapture.h"

namespace app {
namespace {

using gui::Key;
using math::Vec2;

class DrawingToolsTest : public test::AppGUIFixture {
  protected:
    ~DrawingToolsTest() override {
        GUI().SelectTool("brush");
        physics::Simulation& simulation = physics::Simulation::Instance();
        simulation.m_running->Set(simulation.m_running->GetDefault());
    }

    static String Selected() { return GUI().GetSelectedTool().m_id; }
    static void Draw(const char* tool, Vec2 from, Vec2 to) {
        GUI().SelectTool(tool);
        Drag({from, (from + to) * 0.5f, to}, Key::LeftMouse);
    }
    template <class T>
    static util::SharedPtr<T> Newest() {
        return Entities().empty() ? nullptr : util::DynamicCast<T>(Entities().back());
    }
};

// ---- which tool

TEST_F(DrawingToolsTest, ALetterSelectsItsToolWhenItComesUp) {
    for (const ToolEntry& entry : GUI().GetTools()) {
        Key(entry.m_key);
        EXPECT_EQ(Selected(), entry.m_id);
        EXPECT_EQ(&GUI().GetTool(), entry.m_tool.Get());
        EXPECT_EQ(App().GetGUISettings().m_tool->Get(), entry.m_id);
    }
}

TEST_F(DrawingToolsTest, ALetterOfAShortcutSelectsNothing) {
    gui::KeyEvent event;
    event.m_key = 'x';
    event.m_pressed = event.m_ctrl = true;
    GUI().OnKeyEvent(event);
    event.m_pressed = event.m_ctrl = event.m_handled = false;  // ctrl came up first
    GUI().OnKeyEvent(event);
    EXPECT_EQ(Selected(), "brush");
}

TEST_F(DrawingToolsTest, TheAttributeSelectsAndRefusesWhatIsNoTool) {
    test::LogCapture log(logging::Warning);
    App().GetGUISettings().m_tool->SetValue(script::ValueToObject("plane"));
    EXPECT_EQ(Selected(), "plane");
    App().GetGUISettings().m_tool->SetValue(script::ValueToObject("hammer"));
    EXPECT_EQ(Selected(), "plane");
    EXPECT_EQ(App().GetGUISettings().m_tool->Get(), "plane");
    EXPECT_EQ(log.Count("There is no tool \"hammer\""), 1);
    App().CreateGUI();
    EXPECT_EQ(Selected(), "plane") << "a new interface forgot the tool";
}

TEST_F(DrawingToolsTest, ANewToolDropsWhatTheOldOneWasAbout) {
    GUI().SelectTool("circle");
    Press({0, 0}, Key::LeftMouse);
    DragTo({1, 0});
    GUI().SelectTool("box");
    Release();
    EXPECT_TRUE(Entities().empty());
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(DrawingToolsTest, ShapesAreMovedWithAnyDrawingTool) {
    const EntityPtr box = AddBox({0, 0});
    for (const char* const tool : {"circle", "box", "plane"}) {
        const Vec2 before = PlaceOf(box);
        Draw(tool, before, before + Vec2(0, 0.5f));
        EXPECT_NEAR(PlaceOf(box).y, before.y + 0.5f, 1e-4) << tool;
        EXPECT_EQ(Entities().size(), 1u) << tool;
    }
}

// ---- circle

TEST_F(DrawingToolsTest, CircleGrowsFromItsCentre) {
    Draw("circle", {1, 1}, {1, 2.5f});
    const auto circle = Newest<CircleEntity>();
    ASSERT_TRUE(circle);
    EXPECT_FLOAT_EQ(circle->GetCircle()->m_radius, 1.5f);
    EXPECT_EQ(PlaceOf(circle), Vec2(1, 1));
    EXPECT_TRUE(BodyOf(circle)->m_massInv > 0);
    EXPECT_EQ(UndoName(), "UndoCircle");
    Undoer::Instance().Undo();
    EXPECT_TRUE(Entities().empty());
}

// One colour is drawn from the sequence for each shape, however long the hand plays with its size: a colour
// takes some few random numbers, one for each preview would take twenty at least.
TEST_F(DrawingToolsTest, PreviewsKeepTheirColour) {
    constexpr int PREVIEWS = 20;
    for (const char* const tool : {"circle", "box"}) {
        util::Random before = Scene().GetRandom();
        GUI().SelectTool(tool);
        Press({0, 4}, Key::LeftMouse);
        for (int i = 1; i < PREVIEWS; ++i) DragTo({0.05f * static_cast<float>(i), 3});
        Release();
        util::Random after = Scene().GetRandom();
        const uint32_t next = after();
        int drawn = 0;
        while (drawn < PREVIEWS && before() != next) ++drawn;
        EXPECT_GT(drawn, 0) << tool;
        EXPECT_LT(drawn, PREVIEWS - 1) << tool;
        Scene().Clear();
    }
}

TEST_F(DrawingToolsTest, EscapeDropsThePreview) {
    const EntityPtr box = AddBox({0, 0});
    const std::pair<const char*, Vec2> starts[] = {
        {"circle", {1, 1}}, {"box", {1, 1}}, {"plane", {1, 1}}, {"spring", {0, 0}}, {"chain", {0, 0}}};
    for (const auto& [tool, start] : starts) {
        GUI().SelectTool(tool);
        Press(start, Key::LeftMouse);
        DragTo({2, 2});
        EXPECT_TRUE(Key(Key::Escape)) << tool;
        DragTo({3, 3});
        Release();
        EXPECT_EQ(Entities(), EntityList{box}) << tool;
        EXPECT_EQ(UndoCount(), 0u) << tool;
    }
}

// ---- box

TEST_F(DrawingToolsTest, BoxIsSquareUnlessShiftIsDown) {
    struct {
        bool shift;
        Vec2 to;
        Vec2 min, max;
    } const table[] = {
        {false, {2, 1}, {0, 0}, {2, 2}},    {false, {-1, -2}, {-2, -2}, {0, 0}},
        {false, {-2, 1}, {-2, 0}, {0, 2}},  {true, {2, 1}, {0, 0}, {2, 1}},
        {true, {-1, -2}, {-1, -2}, {0, 0}},
    };
    for (const auto& row : table) {
        if (row.shift) SetModifier(Key::LeftShift, true);
        Draw("box", {0, 0}, row.to);
        SetModifier(Key::LeftShift, false);
        const auto box = Newest<PolyEntity>();
        ASSERT_TRUE(box);
        const math::BoundingBox2f extent = box->GetBoundingBox();
        EXPECT_NEAR(math::Length(extent.min - row.min), 0, 1e-5) << row.to.x << " " << row.to.y;
        EXPECT_NEAR(math::Length(extent.max - row.max), 0, 1e-5) << row.to.x << " " << row.to.y;
        EXPECT_EQ(UndoName(), "UndoBox");
        Scene().Clear();
    }
}

TEST_F(DrawingToolsTest, BoxEdgesAreNoLongerThanTheSettingSays) {
    Draw("box", {-2, -2}, {2, 2});
    const float limit = App().GetToolSettings().m_maxPointDist->Get() * View().GetCmToWorld();
    const auto box = Newest<PolyEntity>();
    ASSERT_TRUE(box);
    const math::Vec2List& vertices = box->GetPolygon()->GetVertices();
    for (size_t i = 0; i < vertices.size(); ++i) {
        EXPECT_LE(math::Length(vertices[(i + 1) % vertices.size()] - vertices[i]), limit * 1.001f);
    }
}

TEST_F(DrawingToolsTest, BoxWithoutAnAreaMakesNothing) {
    Draw("box", {0, 0}, {0, 0});
    Draw("box", {0, 0}, {0, 2});
    SetModifier(Key::LeftShift, true);
    Draw("box", {0, 0}, {2, 0});
    EXPECT_TRUE(Entities().empty());
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(DrawingToolsTest, BoxRoundShapesSelectsThem) {
    const EntityPtr inside = AddCircle({0, 0}, 0.3f), outside = AddCircle({3, 0});
    Draw("box", {-1, -1}, {1, 1});
    EXPECT_EQ(Entities().size(), 2u);
    EXPECT_TRUE(App().GetSelection().Has(inside));
    EXPECT_FALSE(App().GetSelection().Has(outside));
    EXPECT_EQ(UndoCount(), 0u);
}

// ---- plane

TEST_F(DrawingToolsTest, PlaneFacesWhereTheDragGoes) {
    Draw("plane", {1, -1}, {1, 2});
    const auto plane = Newest<PlaneEntity>();
    ASSERT_TRUE(plane);
    const math::Vec3 place = plane->GetPlane()->GetPlane();
    EXPECT_EQ(Vec2(place.x, place.y), Vec2(0, 1));
    EXPECT_NEAR(place.z, 1, 1e-5);
    EXPECT_EQ(BodyOf(plane), physics::Simulation::Instance().GetWorldBody());
    EXPECT_EQ(UndoName(), "UndoPlane");
    Undoer::Instance().Undo();
    EXPECT_TRUE(Entities().empty());
    Undoer::Instance().Redo();
    EXPECT_EQ(BodyOf(plane), physics::Simulation::Instance().GetWorldBody());
}

TEST_F(DrawingToolsTest, PlaneWithoutADirectionMakesNothing) {
    Draw("plane", {1, 1}, {1, 1});
    EXPECT_TRUE(Entities().empty());
    EXPECT_EQ(UndoCount(), 0u);
}

// ---- drag

class DragToolTest : public DrawingToolsTest {
  protected:
    // The pull follows the mouse itself and not the events.
    static void MoveMouse(Vec2 world) {
        const Vec2 place = View().WorldToGUI(world);
        test::MoveMouse(place);
        DragTo(world);
    }
    static void Run(int frames) {
        for (int i = 0; i < frames; ++i) {
            GUI().GetTool().Update();
            physics::Simulation::Instance().Step(true);
        }
    }
};

TEST_F(DragToolTest, PullsAShapeToTheMouseAndBringsTheWorldBack) {
    physics::Simulation& simulation = physics::Simulation::Instance();
    const EntityPtr box = AddBox({0, 0});
    const size_t bodies = simulation.GetBodies().size();
    simulation.m_running->Set(true);
    Undoer::Instance().Clear();
    GUI().SelectTool("drag");
    MoveMouse({0, 0});
    EXPECT_TRUE(Press({0, 0}, Key::LeftMouse));
    MoveMouse({1, 1});
    Run(500);
    EXPECT_NEAR(math::Length(PlaceOf(box) - Vec2(1, 1)), 0, 0.1f) << PlaceOf(box).x << " " << PlaceOf(box).y;
    EXPECT_TRUE(Release());
    EXPECT_EQ(simulation.GetBodies().size(), bodies);
    EXPECT_TRUE(simulation.GetHinges().empty());
    EXPECT_EQ(UndoName(), "UndoDrag");
    Undoer::Instance().Undo();
    EXPECT_NEAR(PlaceOf(box).y, 0, 1e-5);
}

// The pull so far becomes a step, behind which there is nothing to redo.
TEST_F(DragToolTest, ARedoWhileItPullsOnlyEndsThePull) {
    AddBox({0, 0});
    physics::Simulation::Instance().m_running->Set(true);
    App().ClearScene();
    Undoer::Instance().Undo();
    ASSERT_EQ(Undoer::Instance().GetRedoCount(), 1u);
    GUI().SelectTool("drag");
    MoveMouse({0, 0});
    EXPECT_TRUE(Press({0, 0}, Key::LeftMouse));
    Run(5);
    Undoer::Instance().Redo();
    EXPECT_EQ(UndoName(), "UndoDrag");
    EXPECT_EQ(Entities().size(), 1u);
    EXPECT_TRUE(physics::Simulation::Instance().GetHinges().empty());
}

TEST_F(DragToolTest, LeavesNoStepWhenTheWorldStandsStill) {
    physics::Simulation::Instance().m_running->Set(false);
    AddBox({0, 0});
    GUI().SelectTool("drag");
    EXPECT_TRUE(Press({0, 0}, Key::LeftMouse));
    GUI().GetTool().Update();
    EXPECT_TRUE(Key(Key::Escape));
    EXPECT_FALSE(Release());
    EXPECT_EQ(UndoCount(), 0u);
    EXPECT_TRUE(physics::Simulation::Instance().GetHinges().empty());
}

TEST_F(DragToolTest, WhatCannotMoveIsNotItsBusiness) {
    Draw("plane", {0, -1}, {0, 1});
    Undoer::Instance().Clear();
    GUI().SelectTool("drag");
    for (const Vec2 place : {Vec2(0, -2), Vec2(0, 3)}) {
        Press(place, Key::LeftMouse);
        EXPECT_TRUE(physics::Simulation::Instance().GetHinges().empty());
        GUI().CancelTool();
        Release();
    }
}

}  // namespace
}  // namespace app

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/Language.h"
#include "app/entities/PolyEntity.h"
#include "app/tools/BrushTool.h"
#include "app/widgets/Hint.h"
#include "input/Key.h"
#include "physics/Body.h"
#include "physics/Polygon.h"
#include "support/LogCapture.h"
#include "util/Random.h"

namespace app {
namespace {

using gui::Key;
using math::Vec2;

class BrushTest : public test::AppGUIFixture {
  protected:
    static math::Vec2List Spiral(Vec2 center, float radius, float turns) {
        math::Vec2List points = Circle(center, radius, turns);
        const auto last = static_cast<float>(points.size() - 1);
        for (size_t i = 0; i < points.size(); ++i) {
            points[i] = center + (points[i] - center) * (static_cast<float>(i + 1) / last);
        }
        return points;
    }
    static const BrushTool& Brush() { return dynamic_cast<const BrushTool&>(GUI().GetTool()); }
};

TEST_F(BrushTest, LoopBecomesPolygon) {
    Drag(Circle({1, 0.5f}, 1), Key::LeftMouse);
    ASSERT_EQ(Entities().size(), 1u);
    const auto poly = util::DynamicCast<PolyEntity>(Entities()[0]);
    ASSERT_TRUE(poly);
    EXPECT_NEAR(poly->GetPolygon()->GetArea(), math::PI, 0.03);
    EXPECT_NEAR(PlaceOf(poly).x, 1, 0.01);
    EXPECT_NEAR(PlaceOf(poly).y, 0.5, 0.01);
    EXPECT_TRUE(poly->IsInSimulation());
    EXPECT_EQ(UndoName(), "UndoPolygon");
    EXPECT_TRUE(App().GetSelection().IsEmpty());

    Undoer::Instance().Undo();
    EXPECT_TRUE(Entities().empty());
    Undoer::Instance().Redo();
    ASSERT_EQ(Entities().size(), 1u);
    EXPECT_EQ(Entities()[0], EntityPtr(poly));
}

TEST_F(BrushTest, EdgesAreNoLongerThanAskedOnTheScreen) {
    Drag({{0, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 0.1f}}, Key::LeftMouse);
    ASSERT_EQ(Entities().size(), 1u);
    const auto& lines = util::DynamicCast<PolyEntity>(Entities()[0])->GetPolygon()->GetWorldLines();
    const float limit = 0.5f * 86 / 2.54f / 100;  // cm, by the dots per inch, at 100 pixels per metre
    EXPECT_GE(lines.size(), 8 / limit);
    for (const auto& line : lines) EXPECT_LE(math::Length(line.end - line.start), limit * 1.001f);
}

// Settings that would split an outline without end must not hang the program.
TEST_F(BrushTest, OutlandishEdgeLengthsAreBounded) {
    for (const float length : {0.0f, -1.0f, 1e-30f, NAN}) {
        App().GetToolSettings().m_maxPointDist->Set(length);
        Drag({{0, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 0.1f}}, Key::LeftMouse);
        ASSERT_EQ(Entities().size(), 1u) << length;
        Undoer::Instance().Undo();
    }
    App().GetToolSettings().m_maxPointDist->Set(0.5f);
}

TEST_F(BrushTest, StrokeHasTheSameGrainAtAnyZoom) {
    for (const float zoom : {20.0f, 100.0f, 1000.0f}) {
        App().SetWorldToGUI(math::TMatrix3<float>::Scale(zoom, -zoom), false);
        const float spacing = 0.2f * 86 / 2.54f / zoom;
        Press({0, 0}, Key::LeftMouse);
        DragTo({spacing * 0.9f, 0});
        EXPECT_EQ(Brush().GetPoints().size(), 1u) << zoom;
        DragTo({spacing * 1.01f, 0});
        EXPECT_EQ(Brush().GetPoints().size(), 2u) << zoom;
        DragTo({spacing * 1.01f, 0});
        EXPECT_EQ(Brush().GetPoints().size(), 2u) << zoom;
        Release();
    }
}

TEST_F(BrushTest, LoopRoundEntitiesSelectsThem) {
    const EntityPtr inside = AddBox({0, 0}), alsoInside = AddCircle({1.5f, 0}), half = AddBox({-3, 0});
    Drag(Circle({0, 0}, 3), Key::LeftMouse);
    EXPECT_EQ(Entities().size(), 3u);
    EXPECT_EQ(App().GetSelection().Get(), (EntitySet{inside, alsoInside}));
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(BrushTest, LineErasesWhatItCrosses) {
    const EntityPtr left = AddBox({-2, 0}), right = AddBox({2, 0}), plane = AddPlane();
    const struct {
        const char* name;
        math::Vec2List stroke;
        EntitySet erased;
    } cases[] = {
        {"one box", {{-3, 0}, {-1, 0.1f}}, {left}},
        {"both boxes", {{-3, 0}, {3, 0}}, {left, right}},
        {"into a box only", {{-3, 0.1f}, {-2, 0.1f}}, {}},
        {"empty ground", {{-3, 2}, {3, 2}}, {}},
        {"a box and the plane", {{-2, 1}, {-2, -4}}, {left}},
        {"the plane alone", {{0, 1}, {0, -4}}, {plane}},
        {"slightly bent", {{-3, 0.15f}, {-2, -0.15f}, {-1, 0.15f}}, {left}},
    };
    for (const auto& c : cases) {
        Drag(c.stroke, Key::LeftMouse);
        EntitySet left_over(Entities().begin(), Entities().end());
        EXPECT_EQ(left_over.size(), 3 - c.erased.size()) << c.name;
        for (const EntityPtr& entity : c.erased) EXPECT_EQ(left_over.count(entity), 0u) << c.name;
        EXPECT_EQ(UndoName(), c.erased.empty() ? "" : "UndoErase") << c.name;
        if (!c.erased.empty()) Undoer::Instance().Undo();
        ASSERT_EQ(Entities().size(), 3u) << c.name;
    }
}

// A hundred GUI units are a metre here, and a centimetre on the screen is 0.34 metres.
TEST_F(BrushTest, SlipsEraseNothing) {
    const EntityPtr box = AddBox({0, 0}), plane = AddPlane(), thin = AddBox({3, 0}, 0.04f);
    const struct {
        const char* name;
        math::Vec2List stroke;
        size_t erased;
    } cases[] = {
        {"across a corner", {{0.3f, 0.75f}, {0.75f, 0.3f}}, 0},
        {"through exactly one vertex", {{0, 1}, {1, 0}}, 0},
        {"out of it by a pixel only", {{-1, 0}, {0.51f, 0}}, 0},
        {"right through", {{-1, 0}, {1, 0}}, 1},
        {"deep through a corner", {{-0.2f, 1}, {1, -0.2f}}, 1},
        {"through something thin", {{3, -0.4f}, {3, 0.4f}}, 1},
        {"eight pixels over the ground line", {{-3, -2.9f}, {0, -3.08f}, {3, -2.9f}}, 0},
        {"a little into the ground", {{2, -2}, {2, -3.3f}}, 0},
        {"deep into the ground", {{2, -2}, {2, -4}}, 1},
    };
    for (const auto& c : cases) {
        Drag(c.stroke, Key::LeftMouse);
        EXPECT_EQ(3 - Entities().size(), c.erased) << c.name;
        if (Entities().size() < 3) Undoer::Instance().Undo();
    }
}

TEST_F(BrushTest, AShapeThatFillsTheViewAsksForADeepStroke) {
    AddBox({0, 0}, 6);
    Drag({{2.5f, 3.4f}, {3.4f, 2.5f}}, Key::LeftMouse);
    EXPECT_EQ(Entities().size(), 1u);
    Drag({{0, 3.5f}, {0, -3.5f}}, Key::LeftMouse);
    EXPECT_TRUE(Entities().empty());
}

TEST_F(BrushTest, StrokesThatMeanNothingSaySo) {
    const struct {
        math::Vec2List stroke;
        const char* key;
    } cases[] = {
        {Circle({0, 0}, 1, 0.5f), "StrokeNotClosed"},
        {Spiral({0, 0}, 1, 5), "StrokeNotClosed"},
        {{{0, 0}, {2, 0}}, "StrokeNotClosed"},
        {{{0, 0}, {1, 0}, {1, 1}}, "StrokeNotClosed"},
        {{{0, 0}, {1, 3}, {2, 0}, {-0.6f, 2}, {2.6f, 2}, {0, 0}}, "StrokeCrosses"},
    };
    for (const auto& c : cases) {
        App().CreateGUI();
        EXPECT_FALSE(GUI().GetHint().IsShown());
        Drag(c.stroke, Key::LeftMouse);
        EXPECT_TRUE(GUI().GetHint().IsShown()) << c.key;
        EXPECT_EQ(GUI().GetHint().GetText(), Language::Instance().Get(c.key));
        EXPECT_TRUE(Entities().empty());
        EXPECT_EQ(UndoCount(), 0u);
    }
    App().CreateGUI();
    Drag(Circle({0, 0}, 1), Key::LeftMouse);
    Drag({{2, 0}, {2.05f, 0}}, Key::LeftMouse);
    EXPECT_FALSE(GUI().GetHint().IsShown()) << "a circle, or a twitch";
}

TEST_F(BrushTest, ErasingOneSelectedErasesTheSelection) {
    const EntityPtr hit = AddBox({0, 0}), far = AddBox({4, 0}), spared = AddBox({-4, 0});
    App().GetSelection().Set({hit, far});
    Drag({{0, 2}, {0, -2}}, Key::LeftMouse);
    ASSERT_EQ(Entities().size(), 1u);
    EXPECT_EQ(Entities()[0], spared);
}

TEST_F(BrushTest, LoopWithoutAreaIsReportedOnce) {
    test::LogCapture log(logging::Error);
    Drag({{0, 0}, {2, 0}, {4, 0}, {3, 0}, {1, 0}, {0.1f, 0}}, Key::LeftMouse);
    EXPECT_TRUE(Entities().empty());
    EXPECT_EQ(UndoCount(), 0u);
    EXPECT_EQ(log.Count("ERROR"), 1) << testing::PrintToString(log.GetLines());
}

TEST_F(BrushTest, ShiftDrawsStraightEdges) {
    SetModifier(Key::LeftShift, true);
    Press({-2, -2}, Key::LeftMouse);
    for (const Vec2 corner : {Vec2(2, -2), Vec2(2, 2), Vec2(-2, 2)}) {
        EXPECT_TRUE(DragTo(corner * 0.5f));
        EXPECT_TRUE(DragTo(corner));
        const size_t numPoints = Brush().GetPoints().size();
        gui::KeyEvent release;
        release.m_key = Key::LeftShift;
        release.m_position = App().WorldToGUI(corner);
        GUI().OnKeyEvent(release);
        EXPECT_EQ(Brush().GetPoints().size(), numPoints + 1);
    }
    SetModifier(Key::LeftShift, false);
    DragTo({-2, -1.8f});
    Release();
    ASSERT_EQ(Entities().size(), 1u);
    EXPECT_NEAR(util::DynamicCast<PolyEntity>(Entities()[0])->GetPolygon()->GetArea(), 16, 0.1);
}

TEST_F(BrushTest, ShiftAllTheWayIsALine) {
    AddBox({0, 0});
    SetModifier(Key::LeftShift, true);
    Drag({{-2, 0}, {0, 2}, {2, 2}, {2, 0}}, Key::LeftMouse);
    EXPECT_TRUE(Entities().empty());
}

TEST_F(BrushTest, StartsOnEntitiesOnlyWhenAllowed) {
    const EntityPtr big = AddBox({0, 0}, 6);
    Press({1, 0}, Key::LeftMouse);
    EXPECT_FALSE(dynamic_cast<const BrushTool*>(&GUI().GetTool()));
    Release();

    App().GetGUISettings().m_drawInside->Set(true);
    Drag(Circle({0, 0}, 1), Key::LeftMouse);
    App().GetGUISettings().m_drawInside->Set(false);
    EXPECT_EQ(Entities().size(), 2u);
}

TEST_F(BrushTest, EscapeEndsTheStroke) {
    const auto circle = Circle({0, 0}, 1);
    Press(circle[0], Key::LeftMouse);
    for (const Vec2 p : circle) DragTo(p);
    EXPECT_TRUE(Key(Key::Escape));
    EXPECT_FALSE(Brush().IsDrawing());
    EXPECT_FALSE(DragTo({3, 3}));
    EXPECT_FALSE(Release());
    EXPECT_TRUE(Entities().empty());
    EXPECT_FALSE(Key(Key::Escape));
}

}  // namespace
}  // namespace app

#include <cmath>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/entities/Chain.h"
#include "app/entities/GeomEntity.h"
#include "input/Key.h"
#include "physics/Body.h"
#include "physics/Simulation.h"

namespace app {
namespace {

using gui::Key;
using math::Vec2;

class ToolsTest : public test::AppGUIFixture {
  protected:
    static void ExpectAt(const EntityPtr& entity, Vec2 place, const char* what) {
        EXPECT_NEAR(PlaceOf(entity).x, place.x, 1e-4) << what;
        EXPECT_NEAR(PlaceOf(entity).y, place.y, 1e-4) << what;
    }
    static float AngleOf(const EntityPtr& entity) {
        return util::DynamicCast<GeomEntity>(entity)->GetGeom()->GetTransform().GetAngle();
    }
    // Makes the shape's geom part of the other's body.
    static void Fuse(const EntityPtr& survivor, const EntityPtr& other) {
        const auto geom = util::DynamicCast<GeomEntity>(other)->GetGeom();
        const physics::BodyPtr freed = BodyOf(other);
        BodyOf(survivor)->AddGeom(geom);
        physics::Simulation::Instance().RemoveBody(freed);
    }
    static EntityPtr NewestEntity() { return Entities().back(); }
};

TEST_F(ToolsTest, MoveCarriesTheEntity) {
    const EntityPtr box = AddBox({0, 0}), other = AddBox({3, 0});
    EXPECT_TRUE(Press({0.2f, 0.1f}, Key::LeftMouse));
    EXPECT_TRUE(box->IsMoving());
    EXPECT_TRUE(DragTo({0.7f, 0.6f}));
    EXPECT_TRUE(DragTo({-0.8f, 2.1f}));
    EXPECT_TRUE(Release());
    EXPECT_FALSE(box->IsMoving());
    ExpectAt(box, {-1, 2}, "moved");
    ExpectAt(other, {3, 0}, "not selected");
    EXPECT_EQ(Entities().back(), box);
    EXPECT_EQ(UndoName(), "UndoMove");
    Undoer::Instance().Undo();
    ExpectAt(box, {0, 0}, "undone");
    Undoer::Instance().Redo();
    ExpectAt(box, {-1, 2}, "redone");
}

TEST_F(ToolsTest, MoveOfASelectedEntityCarriesTheSelection) {
    const EntityPtr a = AddBox({0, 0}), b = AddCircle({2, 0}), c = AddBox({4, 0});
    App().GetSelection().Set({a, b});
    Drag({{0, 0}, {0, 1}}, Key::LeftMouse);
    ExpectAt(a, {0, 1}, "pressed");
    ExpectAt(b, {2, 1}, "selected");
    ExpectAt(c, {4, 0}, "not selected");
    // In their order, on top.
    EXPECT_EQ(Entities(), (EntityList{c, a, b}));

    Drag({{4, 0}, {4, -1}}, Key::LeftMouse);
    EXPECT_EQ(App().GetSelection().Get(), EntitySet{c});
    ExpectAt(a, {0, 1}, "left alone");
}

TEST_F(ToolsTest, ShapesOfOneBodyMoveOnce) {
    const EntityPtr a = AddBox({0, 0}), b = AddBox({1, 0});
    Fuse(a, b);
    App().GetSelection().Set({a, b});
    Drag({{0, 0}, {0.5f, 1}}, Key::LeftMouse);
    ExpectAt(a, {0.5f, 1}, "first");
    ExpectAt(b, {1.5f, 1}, "second");
}

TEST_F(ToolsTest, HeldBodiesDoNotFall) {
    const EntityPtr held = AddBox({0, 0}), falling = AddBox({3, 0});
    BodyOf(held)->m_vel = {1, 2};
    Press({0, 0}, Key::LeftMouse);
    EXPECT_TRUE(BodyOf(held)->m_held);
    for (int i = 0; i < 20; ++i) physics::Simulation::Instance().Step(true);
    ExpectAt(held, {0, 0}, "held");
    EXPECT_LT(PlaceOf(falling).y, -0.05f);
    DragTo({1, 0});
    Release();
    EXPECT_FALSE(BodyOf(held)->m_held);
    EXPECT_EQ(BodyOf(held)->m_vel, Vec2());
}

TEST_F(ToolsTest, CancelPutsTheMoveBack) {
    const EntityPtr box = AddBox({0, 0}), above = AddBox({3, 0});
    BodyOf(box)->m_vel = {1, 2};
    Press({0, 0}, Key::LeftMouse);
    DragTo({2, 2});
    EXPECT_FALSE(Key(Key::Escape));
    ExpectAt(box, {0, 0}, "put back");
    EXPECT_FALSE(BodyOf(box)->m_held);
    EXPECT_EQ(BodyOf(box)->m_vel, Vec2(1, 2));
    EXPECT_FALSE(DragTo({3, 3}));
    EXPECT_FALSE(Release());
    ExpectAt(box, {0, 0}, "after the release");
    EXPECT_EQ(Entities(), EntityList({box, above})) << "in its former order";
    EXPECT_TRUE(App().GetSelection().IsEmpty());
    EXPECT_EQ(UndoCount(), 0u);
}

// A step of the history in the middle of a drag leaves nobody with bodies of the other scene.
TEST_F(ToolsTest, UndoInAMoveCancelsIt) {
    const EntityPtr box = AddBox({0, 0});
    Drag({{0, 0}, {0, 1}}, Key::LeftMouse);
    Press({0, 1}, Key::LeftMouse);
    DragTo({2, 1});
    Key('z', true);
    ExpectAt(box, {0, 0}, "undone");
    EXPECT_FALSE(BodyOf(box)->m_held);
    DragTo({3, 1});
    Release();
    ExpectAt(box, {0, 0}, "after the release");
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(ToolsTest, EntityErasedInAMoveIsGone) {
    const EntityPtr box = AddBox({0, 0});
    Press({0, 0}, Key::LeftMouse);
    DragTo({2, 1});
    EXPECT_TRUE(Key(Key::Delete));
    EXPECT_TRUE(Entities().empty());
    DragTo({3, 1});
    Release();
    EXPECT_EQ(UndoName(), "UndoErase");
    Undoer::Instance().Undo();
    ExpectAt(box, {0, 0}, "back where it was before the drag");
}

TEST_F(ToolsTest, CtrlAtThePressClones) {
    const EntityPtr box = AddBox({0, 0});
    BodyOf(box)->m_angVel = 3;
    SetModifier(Key::LeftCtrl, true);
    Press({0, 0}, Key::LeftMouse);
    SetModifier(Key::LeftCtrl, false);
    DragTo({0, 2});
    Release();
    ASSERT_EQ(Entities().size(), 2u);
    const EntityPtr clone = NewestEntity();
    EXPECT_NE(clone, box);
    ExpectAt(box, {0, 0}, "original");
    ExpectAt(clone, {0, 2}, "clone");
    EXPECT_EQ(BodyOf(box)->m_angVel, 3);
    EXPECT_EQ(App().GetSelection().Get(), EntitySet{clone});
    EXPECT_EQ(clone->GetColor(), box->GetColor());
    EXPECT_EQ(UndoName(), "UndoClone");
    Undoer::Instance().Undo();
    EXPECT_EQ(Entities(), EntityList{box});

    Press({0, 0}, Key::LeftMouse);
    SetModifier(Key::LeftCtrl, true);
    DragTo({0, 2});
    Release();
    EXPECT_EQ(Entities().size(), 1u) << "ctrl after the press";
}

TEST_F(ToolsTest, CloneKeepsBodiesGroupsChainsAndOrder) {
    const EntityPtr a = AddBox({0, 0}), b = AddBox({1, 0}), lone = AddCircle({3, 0});
    Fuse(a, b);
    a->SetGroup(4);
    lone->SetGroup(4);
    const ChainPtr chain = new Chain(1);
    chain->AddEntity(0, lone);
    chain->AddEntity(1, b);
    BodyOf(a)->m_vel = {0, 5};

    App().GetSelection().Set({a, b, lone});
    SetModifier(Key::LeftCtrl, true);
    Press({0, 0}, Key::LeftMouse);
    ASSERT_EQ(Entities().size(), 6u);
    const EntityPtr a2 = Entities()[3], b2 = Entities()[4], lone2 = Entities()[5];
    EXPECT_EQ(BodyOf(a2), BodyOf(b2));
    EXPECT_NE(BodyOf(a2), BodyOf(a));
    EXPECT_NE(BodyOf(a2), BodyOf(lone2));
    EXPECT_EQ(BodyOf(a2)->GetGeoms().size(), 2u);
    EXPECT_TRUE(a2->HasGroup());
    EXPECT_NE(a2->GetGroup(), 4);
    EXPECT_EQ(a2->GetGroup(), lone2->GetGroup());
    EXPECT_FALSE(b2->HasGroup());
    ASSERT_TRUE(b2->GetChain());
    EXPECT_NE(b2->GetChain(), chain);
    EXPECT_EQ(b2->GetChain(), lone2->GetChain());
    EXPECT_NE(b2->GetChain()->GetID(), chain->GetID());
    EXPECT_EQ(b2->GetChain()->GetEntities(), (EntityList{lone2, b2}));
    DragTo({0, 2});
    Release();
    ExpectAt(a, {0, 0}, "original");
    ExpectAt(a2, {0, 2}, "clone");
    ExpectAt(b2, {1, 2}, "clone on the same body");
}

TEST_F(ToolsTest, PlaneGoesWhereItIsPut) {
    const EntityPtr plane = AddPlane();
    Drag({{0, -4}, {0, -3}}, Key::LeftMouse);
    EXPECT_EQ(Scene().GetEntityAt({0, -2.1f}), plane);
    EXPECT_FALSE(Scene().GetEntityAt({0, -1.9f}));
    EXPECT_EQ(UndoName(), "UndoMove");
    // A quarter round: what was below is to the right.
    Drag({{0, -3}, {1, -3}, {1, -2}, {0, -2}}, Key::RightMouse);
    EXPECT_EQ(UndoName(), "UndoRotate");
    physics::Simulation::Instance().Step(true);
    EXPECT_FALSE(Scene().GetEntityAt({-1.5f, -3}));
    Undoer::Instance().Undo();
    EXPECT_EQ(Scene().GetEntityAt({-1.5f, -3}), plane);
    Undoer::Instance().Undo();
    EXPECT_FALSE(Scene().GetEntityAt({0, -2.9f}));
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(ToolsTest, FixedShapesMoveEachForItself) {
    const EntityPtr box = AddBox({0, 0}), other = AddBox({3, 0});
    for (const EntityPtr& entity : {box, other}) {
        const physics::BodyPtr freed = BodyOf(entity);
        const auto geom = util::DynamicCast<GeomEntity>(entity)->GetGeom();
        physics::Simulation::Instance().RemoveBody(freed);
        physics::Simulation::Instance().GetWorldBody()->AddGeom(geom);
    }
    Drag({{0, 0}, {0, 2}}, Key::LeftMouse);
    physics::Simulation::Instance().Step(true);
    ExpectAt(box, {0, 2}, "moved");
    ExpectAt(other, {3, 0}, "on the same body, but not selected");
    Undoer::Instance().Undo();
    ExpectAt(box, {0, 0}, "undone");
}

TEST_F(ToolsTest, WhatWasNotMovedIsAsItWas) {
    const EntityPtr below = AddBox({0, 0}), above = AddBox({3, 0});
    BodyOf(below)->m_vel = {1, 2};
    App().GetSelection().Set({above});
    Undoer::Instance().Clear();
    for (const int button : {Key::LeftMouse, Key::RightMouse}) {
        Press({0, 0}, button);
        Release();
        EXPECT_EQ(UndoCount(), 0u);
        EXPECT_EQ(App().GetSelection().Get(), EntitySet{above});
        EXPECT_EQ(Entities(), EntityList({below, above}));
        EXPECT_EQ(BodyOf(below)->m_vel, Vec2(1, 2));
    }
    SetModifier(Key::LeftCtrl, true);
    Press({0, 0}, Key::LeftMouse);
    Release();
    EXPECT_EQ(Entities(), EntityList({below, above})) << "a clone lay on its original";
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(ToolsTest, RotateTurnsAboutTheCentreOfTheSelection) {
    const EntityPtr a = AddBox({0, 0}), b = AddBox({2, 0});
    App().GetSelection().Set({a, b});
    // The middle is (1, 0). A quarter turn to the left, by way of 45 degrees.
    EXPECT_TRUE(Press({2, 0}, Key::RightMouse));
    EXPECT_TRUE(DragTo({2.5f, 0}));
    EXPECT_TRUE(DragTo({2.5f, 1.5f}));
    EXPECT_TRUE(DragTo({1, 1.5f}));
    EXPECT_TRUE(Release());
    ExpectAt(a, {1, -1}, "left one");
    ExpectAt(b, {1, 1}, "right one");
    EXPECT_NEAR(AngleOf(a), math::PI / 2, 1e-4);
    EXPECT_EQ(UndoName(), "UndoRotate");
    Undoer::Instance().Undo();
    ExpectAt(b, {2, 0}, "undone");
    EXPECT_NEAR(AngleOf(a), 0, 1e-4);
}

// Near the pivot the mouse has no steady angle: nothing turns until it is 2 cm away on the screen.
TEST_F(ToolsTest, RotateWaitsUntilTheMouseIsAwayFromThePivot) {
    const float dead = 2 * 86 / 2.54f / 100;
    const EntityPtr box = AddBox({0, 0});
    Press({0.1f, 0}, Key::RightMouse);
    for (float angle = 0; angle < 6; angle += 0.5f)
        DragTo(Vec2(std::cos(angle), std::sin(angle)) * dead * 0.99f);
    EXPECT_FALSE(box->IsMoving());
    EXPECT_TRUE(Release());
    EXPECT_EQ(AngleOf(box), 0);
    EXPECT_EQ(UndoCount(), 0u);

    // What was swept inside does not count.
    Press({0.1f, 0}, Key::RightMouse);
    DragTo({0, dead * 0.9f});
    DragTo({0, dead * 1.1f});
    DragTo(Vec2(-1, 1) * dead);
    Release();
    EXPECT_NEAR(AngleOf(box), math::PI / 4, 1e-4);
}

TEST_F(ToolsTest, RotateSnapsTheDragToFifteenDegreesWithShift) {
    const EntityPtr box = AddBox({0, 0});
    BodyOf(box)->m_angle = 0.1f;
    BodyOf(box)->UpdateGeoms();
    SetModifier(Key::LeftShift, true);
    Press({0, 0}, Key::RightMouse);
    DragTo({2, 0});
    DragTo(Vec2(std::cos(0.7f), std::sin(0.7f)) * 2);
    EXPECT_NEAR(AngleOf(box), 0.1 + 3 * math::PI / 12, 1e-4);
    DragTo(Vec2(std::cos(-0.4f), std::sin(-0.4f)) * 2);
    EXPECT_NEAR(AngleOf(box), 0.1 - 2 * math::PI / 12, 1e-4);
    SetModifier(Key::LeftShift, false);
    DragTo(Vec2(std::cos(-0.4f), std::sin(-0.4f)) * 2);
    Release();
    EXPECT_NEAR(AngleOf(box), 0.1 - 0.4, 1e-4);
}

TEST_F(ToolsTest, RotateRoundAndRound) {
    const EntityPtr box = AddBox({0, 0});
    Press({0, 0}, Key::RightMouse);
    DragTo({2, 0});
    const float end = 3 * math::TWO_PI + 1;
    for (float angle = 0; angle <= end; angle += end / 64) DragTo(Vec2(std::cos(angle), std::sin(angle)) * 2);
    DragTo(Vec2(std::cos(1.0f), std::sin(1.0f)) * 2);
    Release();
    EXPECT_NEAR(AngleOf(box), 1, 1e-3);
}

TEST_F(ToolsTest, CancelPutsTheRotationBack) {
    const EntityPtr box = AddBox({0, 0});
    Press({0, 0}, Key::RightMouse);
    DragTo({2, 0});
    DragTo({0, 2});
    EXPECT_TRUE(Key(Key::Escape));
    EXPECT_NEAR(AngleOf(box), 0, 1e-4);
    DragTo({-2, 0});
    Release();
    EXPECT_NEAR(AngleOf(box), 0, 1e-4);
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(ToolsTest, PanCarriesTheView) {
    AddBox({0, 0});
    const Vec2 grabbed = {3, 1};
    const Vec2 start = App().WorldToGUI(grabbed);
    gui::DragEvent event;
    event.m_position = event.m_start = start;
    event.m_key = Key::RightMouse;
    GUI().OnDragStart(event);
    EXPECT_TRUE(event.m_handled);
    event.m_delta = {-120, 45};
    event.m_position = start + event.m_delta;
    GUI().OnDrag(event);
    const Vec2 target = View().GetTargetWorldToGUI()(grabbed);
    EXPECT_NEAR(target.x, start.x - 120, 1e-2);
    EXPECT_NEAR(target.y, start.y + 45, 1e-2);
    GUI().OnDragEnd(event);
    GUI().OnDrag(event);
    EXPECT_NEAR(View().GetTargetWorldToGUI()(grabbed).x, start.x - 120, 1e-2) << "after the release";
    EXPECT_EQ(UndoCount(), 0u);
}

}  // namespace
}  // namespace app

#include "SceneFixture.h"
#include "app/entities/Chain.h"
#include "app/entities/HingeEntity.h"
#include "util/Exception.h"

namespace app {
namespace {

using math::Vec2;

class SceneTest : public test::SceneFixture {};

TEST_F(SceneTest, ABodyWithoutEntityIsRemoved) {
    const auto circle = AddCircle({0, 0});
    const physics::BodyPtr orphan = new physics::Body(physics::GeomPtr(new physics::Circle(1, {5, 0})));
    const physics::BodyPtr handle = new physics::Body(physics::GeomPtr(new physics::WorldGeom));
    GetSim().AddBody(orphan);
    GetSim().AddBody(handle);
    GetApp().FlushBodies();
    EXPECT_FALSE(GetSim().HasBody(orphan));
    EXPECT_TRUE(GetSim().HasBody(handle)) << "a tool pulls at it";
    EXPECT_TRUE(circle->IsInSimulation());
    EXPECT_TRUE(GetSim().HasBody(GetSim().GetWorldBody()));
}

TEST_F(SceneTest, DeadEntitiesLeaveInOrderAlsoWhileTimeStands) {
    const auto a = AddCircle({0, 0}), b = AddCircle({3, 0}), c = AddCircle({6, 0});
    GetApp().GetSelection().Add(b);
    GetScene().Track(b);
    GetSim().RemoveBody(b->GetBody());
    GetApp().Update(0);
    EXPECT_EQ(GetApp().GetEntities(), (EntityList{a, c}));
    EXPECT_TRUE(GetApp().GetSelection().IsEmpty());
    EXPECT_FALSE(GetScene().GetTrackedEntity());
}

TEST_F(SceneTest, WhatFallsOutOfTheWorldLeavesTheScene) {
    AddCircle({0, 0});
    const auto far = AddCircle({200000, 0});
    GetApp().Update(0.01f);
    EXPECT_FALSE(GetScene().HasEntity(far));
    EXPECT_EQ(GetApp().GetEntities().size(), 1u);
}

TEST_F(SceneTest, TheTopmostIsTheLastAndTheWorldComesLast) {
    const auto low = AddCircle({0, 0}, 1), high = AddCircle({0.5f, 0}, 1);
    EXPECT_EQ(GetScene().GetEntityAt({0.2f, 0}), high);
    EXPECT_EQ(GetScene().GetEntityAt({-0.9f, 0}), low);
    EXPECT_FALSE(GetScene().GetEntityAt({9, 9}));
    EXPECT_EQ(GetScene().GetGeomsAt({0.2f, 0}),
              (GeomList{high->GetGeom(), low->GetGeom(), GetSim().GetWorldGeom()}));
    EXPECT_EQ(GetScene().GetGeomsAt({9, 9}), (GeomList{GetSim().GetWorldGeom()}));
}

TEST_F(SceneTest, RemovingOneShapeOfABodyKeepsTheOther) {
    const auto a = AddCircle({-1, 0}), b = AddCircle({1, 0});
    Join(*a, *b);
    a->UpdateBodyPtr();
    const physics::BodyPtr body = a->GetBody();
    EXPECT_NEAR(body->m_pos.x, 0, 1e-6);
    GetApp().RemoveEntity(a);
    EXPECT_TRUE(GetSim().HasBody(body));
    EXPECT_NEAR(body->m_pos.x, 1, 1e-6);
    GetApp().RemoveEntity(b);
    EXPECT_FALSE(GetSim().HasBody(body));
}

TEST_F(SceneTest, ClearSceneCanBeUndone) {
    const auto circle = AddCircle({0, 0});
    GetApp().ClearScene();
    EXPECT_TRUE(GetApp().GetEntities().empty());
    EXPECT_STREQ(GetUndoer().GetUndoName(), "UndoClear");
    GetUndoer().Undo();
    EXPECT_EQ(GetApp().GetEntities(), (EntityList{circle}));
}

// ---- selection

TEST_F(SceneTest, AClickTakesTheGroupWithIt) {
    const auto a = AddCircle({0, 0}), b = AddCircle({3, 0}), c = AddCircle({6, 0});
    a->SetGroup(4);
    c->SetGroup(4);
    Selection& selection = GetApp().GetSelection();
    EXPECT_TRUE(selection.SelectAt({0, 0}, false));
    EXPECT_EQ(selection.Get(), (EntitySet{a, c}));
    EXPECT_TRUE(selection.SelectAt({0, 0}, true));
    EXPECT_EQ(selection.Get(), (EntitySet{a}));
    EXPECT_TRUE(selection.SelectAt({3, 0}, false));
    EXPECT_EQ(selection.Get(), (EntitySet{b}));
    EXPECT_FALSE(selection.SelectAt({3, 3}, false));
    EXPECT_TRUE(selection.IsEmpty());
    EXPECT_EQ(GetScene().GetFreeGroup(), 0) << "the lowest";
}

TEST_F(SceneTest, ShapesInViewFollowEachOtherFromLeftToRightAndPlanesComeLast) {
    const auto plane = AddPlane({0, 1}, -2);
    const auto right = AddCircle({4, 1}), left = AddCircle({-2, 0}), middle = AddCircle({1, 3});
    AddCircle({50, 0});  // out of view
    const math::BoundingBox2f view({-5, -5}, {5, 5});
    Selection& selection = GetApp().GetSelection();
    const EntityPtr order[] = {left, middle, right, plane};
    for (size_t i = 0; i < 8; ++i) {
        selection.SelectNext(view, false);
        EXPECT_EQ(selection.Get(), (EntitySet{order[i % 4]})) << i;
    }
    for (const size_t i : {2, 1, 0, 3}) {
        selection.SelectNext(view, true);
        EXPECT_EQ(selection.Get(), (EntitySet{order[i]})) << i;
    }
    selection.Clear();
    selection.SelectNext(view, true);
    EXPECT_TRUE(selection.Has(plane)) << "from the other end";
    GetScene().Clear();
    selection.SelectNext(view, false);
    EXPECT_TRUE(selection.IsEmpty());
}

TEST_F(SceneTest, AnInnerLinkTakesItsChainWithItAnEndOnlyItself) {
    const ChainPtr chain = new Chain(0);
    EntityList links;
    for (int i = 0; i < 4; ++i) {
        links.push_back(AddCircle({3.0f * static_cast<float>(i), 0}));
        chain->AddEntity(static_cast<size_t>(i), links.back());
    }
    Selection& selection = GetApp().GetSelection();
    selection.SelectAt({3, 0}, false);
    EXPECT_EQ(selection.GetSize(), 4u);
    selection.SelectAt({0, 0}, false);
    EXPECT_EQ(selection.GetSize(), 1u);
    EXPECT_EQ(chain->GetNeighbors(links[2], false), (EntitySet{links[1], links[3]}));
    EXPECT_TRUE(chain->GetNeighbors(links[3], true).empty());
    EXPECT_THROW(chain->AddEntity(100000, links[0]), BadDataException);
}

TEST_F(SceneTest, BodiesCentreAndOrderOfTheSelection) {
    const auto a = AddCircle({0, 0}), b = AddCircle({3, 0}), c = AddCircle({9, 4});
    const auto plane = AddPlane({0, 1}, 10);
    Join(*a, *b);
    Selection& selection = GetApp().GetSelection();
    for (const EntityPtr& entity : EntityList{a, b, plane}) selection.Add(entity);
    const physics::BodyList bodies = selection.GetBodies();
    ASSERT_EQ(bodies.size(), 1u) << "one body of two shapes, and not the world's";
    EXPECT_EQ(bodies[0], a->GetBody());
    EXPECT_NEAR(selection.GetCenter({7, 7}).x, 1.5f, 1e-5);
    selection.MoveToTop();
    EXPECT_EQ(GetApp().GetEntities(), (EntityList{c, plane, a, b})) << "a plane would hide the others";
    const EntityPtr hinge = AddHinge({9, 4});
    selection.Set({c});
    selection.MoveToTop();
    EXPECT_EQ(GetApp().GetEntities(), (EntityList{plane, a, b, c, hinge})) << "joints go with their shapes";
    selection.Clear();
    selection.Add(plane);
    EXPECT_EQ(selection.GetCenter({7, 7}), Vec2(7, 7));
    EXPECT_THROW(selection.Add(nullptr), BadCoderException);
}

}  // namespace
}  // namespace app

#include <cmath>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/Language.h"
#include "app/entities/Chain.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/tools/Tool.h"
#include "app/widgets/Hint.h"
#include "input/Key.h"
#include "physics/Hinge.h"
#include "physics/Joints.h"
#include "physics/Simulation.h"

namespace app {
namespace {

using gui::Key;
using math::Vec2;

class JointToolsTest : public test::AppGUIFixture {
  protected:
    ~JointToolsTest() override { GUI().SelectTool("brush"); }

    template <class T>
    static util::SharedPtr<T> Newest() {
        return Entities().empty() ? nullptr : util::DynamicCast<T>(Entities().back());
    }
    static physics::Simulation& Sim() { return physics::Simulation::Instance(); }
    static physics::GeomPtr GeomOf(const EntityPtr& entity) {
        return util::DynamicCast<GeomEntity>(entity)->GetGeom();
    }
};

TEST_F(JointToolsTest, AClickPinsAShapeAndOnNothingIsNone) {
    const EntityPtr box = AddBox({0, 0});
    GUI().SelectTool("hinge");
    Click({3, 3}, Key::LeftMouse);
    EXPECT_EQ(UndoCount(), 0u);
    EXPECT_TRUE(Click({0.2f, 0.1f}, Key::LeftMouse));
    const HingeEntityPtr hinge = Newest<HingeEntity>();
    ASSERT_TRUE(hinge);
    EXPECT_EQ(hinge->GetEnd(0).geom, GeomOf(box));
    EXPECT_NEAR(hinge->GetSize(), App().GetView().GetCmToWorld(), 1e-5f);
    EXPECT_EQ(UndoName(), "UndoHinge");
    Undoer::Instance().Undo();
    EXPECT_EQ(Entities().size(), 1u);
    EXPECT_TRUE(Sim().GetHinges().empty());
    Undoer::Instance().Redo();
    EXPECT_EQ(Sim().GetHinges().size(), 1u);
}

TEST_F(JointToolsTest, OnThePlaneAloneNothingIsMade) {
    const EntityPtr plane = AddPlane(0);
    const physics::BodyPtr own = BodyOf(plane);
    Sim().GetWorldBody()->AddGeom(GeomOf(plane));
    Sim().RemoveBody(own);
    GUI().SelectTool("hinge");
    Click({0, -1}, Key::LeftMouse);
    EXPECT_EQ(UndoCount(), 0u);
    EXPECT_EQ(Entities().size(), 1u);
    EXPECT_EQ(GUI().GetHint().GetText(), Translate("NothingToJoin"));
    GUI().ShowHint("StrokeNotClosed", {0, 0});
    GUI().SelectTool("spring");
    Drag({{0, -1}, {1, -2}}, Key::LeftMouse);
    EXPECT_EQ(GUI().GetHint().GetText(), Translate("NothingToJoin"));
}

TEST_F(JointToolsTest, AClickFixesTwoShapes) {
    const EntityPtr a = AddBox({0, 0}), b = AddBox({0.8f, 0});
    GUI().SelectTool("fixjoint");
    EXPECT_TRUE(Click({0.4f, 0}, Key::LeftMouse));
    EXPECT_EQ(BodyOf(a), BodyOf(b));
    EXPECT_EQ(UndoName(), "UndoFixate");
    Undoer::Instance().Undo();
    EXPECT_NE(BodyOf(a), BodyOf(b));
}

TEST_F(JointToolsTest, ASpringIsSpannedFromShapeToShapeOrGround) {
    const EntityPtr a = AddBox({0, 0}), b = AddBox({3, 0});
    GUI().SelectTool("spring");
    Drag({{0.1f, 0}, {1.5f, 0}, {3, 0}}, Key::LeftMouse);
    const SpringEntityPtr spring = Newest<SpringEntity>();
    ASSERT_TRUE(spring);
    EXPECT_EQ(spring->GetEnd(0).geom, GeomOf(a));
    EXPECT_EQ(spring->GetEnd(1).geom, GeomOf(b));
    EXPECT_NEAR(spring->GetJoint()->GetLength(), 2.9f, 1e-3f);
    EXPECT_EQ(UndoName(), "UndoSpring");
    Drag({{0, 0}, {0, 2}}, Key::LeftMouse);
    EXPECT_EQ(Newest<SpringEntity>()->GetEnd(1).geom, physics::GeomPtr(Sim().GetWorldGeom()));
    Drag({{-3, 2}, {-2, 2}}, Key::LeftMouse);
    EXPECT_EQ(UndoCount(), 2u) << "from nothing to nothing";
}

// n = L / (0.4 cm on the screen) links that touch, and a hinge more than links.
TEST_F(JointToolsTest, AChainHangsBetweenShapeAndGround) {
    const EntityPtr box = AddBox({0, 0});
    GUI().SelectTool("chain");
    const float length = 2, link = 0.4f * App().GetView().GetCmToWorld();
    Drag({{0.4f, 0}, {1, 0}, {2.4f, 0}}, Key::LeftMouse);
    const auto links = static_cast<size_t>(std::lround(length / link));
    const ChainPtr chain = Entities().back()->GetChain();
    ASSERT_TRUE(chain);
    const EntityList members = chain->GetEntities();
    ASSERT_EQ(members.size(), 2 * links + 1);
    for (size_t i = 0; i < members.size(); ++i) {
        const auto hinge = util::DynamicCast<HingeEntity>(members[i]);
        ASSERT_EQ(static_cast<bool>(hinge), i % 2 == 0);
        if (!hinge) continue;
        EXPECT_NEAR(hinge->GetMiddle().x, 0.4f + length * static_cast<float>(i) / (2.0f * links), 1e-4f);
        EXPECT_EQ(hinge->GetEnd(0).geom, i == 0 ? GeomOf(box) : GeomOf(members[i - 1]));
        const bool isLast = i + 1 == members.size();
        EXPECT_EQ(hinge->GetEnd(1).geom,
                  isLast ? physics::GeomPtr(Sim().GetWorldGeom()) : GeomOf(members[i + 1]));
    }
    const auto first = util::DynamicCast<CircleEntity>(members[1]);
    EXPECT_NEAR(first->GetCircle()->m_radius, length / (2.0f * links), 1e-5f);
    EXPECT_NEAR(first->m_density->Get(), 40, 1e-4f);
    EXPECT_EQ(UndoName(), "UndoChain");
    Undoer::Instance().Undo();
    EXPECT_EQ(Entities(), EntityList{box});
}

// A minimum of two links, and none for a drag that ends where it began.
TEST_F(JointToolsTest, ShortChainsHaveTwoLinks) {
    GUI().SelectTool("chain");
    Drag({{0, 0}, {0.05f, 0}}, Key::LeftMouse);
    EXPECT_EQ(Entities().size(), 5u);
    Drag({{2, 0}, {3, 0}, {2, 0}}, Key::LeftMouse);
    EXPECT_EQ(Entities().size(), 5u);
}

// From deep in one shape to deep in another: of either only the link that is tied to it lies in it.
TEST_F(JointToolsTest, ChainsBeginAtTheBorderOfAGreatShape) {
    const EntityPtr a = AddBox({0, 0}, 2), b = AddCircle({4, 0.5f}, 1);
    GUI().SelectTool("chain");
    Drag({{0, 0}, {2, 0}, {4, 0.5f}}, Key::LeftMouse);
    const EntityList members = Entities().back()->GetChain()->GetEntities();
    ASSERT_GT(members.size(), 10u);
    const auto ends = [&](size_t i) { return util::DynamicCast<HingeEntity>(members[i]); };
    EXPECT_EQ(ends(0)->GetEnd(0).geom, GeomOf(a));
    EXPECT_EQ(ends(members.size() - 1)->GetEnd(1).geom, GeomOf(b));
    for (size_t i = 3; i + 3 < members.size(); i += 2) {
        EXPECT_GT(GeomOf(a)->GetDistance(PlaceOf(members[i])), 0.05f) << i;
        EXPECT_GT(GeomOf(b)->GetDistance(PlaceOf(members[i])), 0.05f) << i;
    }
    const size_t count = Entities().size();
    Drag({{-0.8f, 0}, {0.5f, 0}}, Key::LeftMouse);
    EXPECT_EQ(Entities().size(), count) << "a chain that would lie inside one shape";
}

TEST_F(JointToolsTest, ADraggedJointTakesTheShapeUnderItsNewPlace) {
    const EntityPtr a = AddBox({0, 0}), b = AddBox({3, 0});
    GUI().SelectTool("hinge");
    Click({0, 0}, Key::LeftMouse);
    const HingeEntityPtr hinge = Newest<HingeEntity>();
    Drag({{0, 0}, {1, 0}, {3, 0}}, Key::LeftMouse);
    EXPECT_EQ(PlaceOf(a), Vec2(0, 0));
    EXPECT_EQ(hinge->GetEnd(0).geom, GeomOf(b));
    EXPECT_EQ(UndoName(), "UndoMove");
    Undoer::Instance().Undo();
    EXPECT_EQ(hinge->GetEnd(0).geom, GeomOf(a));
}

// What is pinned to the ground stays on its pin, moved as well as turned.
TEST_F(JointToolsTest, APinGoesWithItsShape) {
    const EntityPtr box = AddBox({0, 0});
    GUI().SelectTool("hinge");
    Click({0.4f, 0}, Key::LeftMouse);
    const HingeEntityPtr hinge = Newest<HingeEntity>();
    const auto gap = [&] {
        return math::Length(hinge->GetHinge()->GetWorldAnchor(0) - hinge->GetHinge()->GetWorldAnchor(1));
    };
    Drag({{0, 0}, {0, 2}}, Key::LeftMouse);
    Drag({{0, 2}, {1, 2}, {0, 3}}, Key::RightMouse);
    EXPECT_EQ(UndoName(), "UndoRotate");
    EXPECT_LT(gap(), 1e-5f);
    App().Update(0);
    EXPECT_LT(math::Length(hinge->GetMiddle() - Vec2(0, 2.4f)), 1e-3f);
    Undoer::Instance().Undo();
    EXPECT_LT(gap(), 1e-5f);
    EXPECT_LT(math::Length(hinge->GetMiddle() - Vec2(0.4f, 2)), 1e-3f);
    GUI().CancelTool();
    Press({0, 2}, Key::LeftMouse);
    DragTo({2, 2});
    Key(Key::Escape);
    Release();
    EXPECT_LT(gap(), 1e-5f);
    EXPECT_LT(math::Length(hinge->GetMiddle() - Vec2(0.4f, 2)), 1e-3f) << "escape";
}

// On the world's body each shape is moved for itself: the joint stays with the shape that it fixes.
TEST_F(JointToolsTest, AFixJointGoesWithTheShapeThatItFixes) {
    const EntityPtr plane = AddPlane(0), box = AddBox({0, 0.3f});
    const physics::BodyPtr own = BodyOf(plane);
    Sim().GetWorldBody()->AddGeom(GeomOf(plane));
    Sim().RemoveBody(own);
    GUI().SelectTool("fixjoint");
    Click({0.2f, -0.1f}, Key::LeftMouse);
    const auto joint = Newest<FixJointEntity>();
    ASSERT_TRUE(joint);
    ASSERT_EQ(BodyOf(box), Sim().GetWorldBody());
    GUI().SelectTool("brush");
    Drag({{0, 0.5f}, {1, 1.5f}}, Key::LeftMouse);
    App().Update(0);
    EXPECT_LT(math::Length(joint->GetMiddle() - Vec2(1.2f, 0.9f)), 1e-3f);
    Drag({{0, -1}, {0, -2}}, Key::LeftMouse);
    App().Update(0);
    EXPECT_LT(math::Length(joint->GetMiddle() - Vec2(1.2f, 0.9f)), 1e-3f) << "not with the plane";
    EXPECT_EQ(BodyOf(box), Sim().GetWorldBody());
    EXPECT_LT(math::Length(joint->GetPos(0) - joint->GetPos(1)), 1e-3f);
}

}  // namespace
}  // namespace app

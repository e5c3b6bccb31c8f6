#include <cmath>

#include "SceneFixture.h"
#include "app/entities/Chain.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/history/Actions.h"
#include "app/history/Cloning.h"
#include "input/Input.h"
#include "input/Key.h"
#include "physics/Hinge.h"
#include "physics/Joints.h"
#include "support/Length.h"
#include "util/Random.h"

namespace app {
namespace {

using math::Vec2;
using physics::BodyPtr;
using physics::GeomSet;

class JointEntityTest : public test::SceneFixture {
  protected:
    static BodyPtr BodyOf(const GeomEntityPtr& shape) {
        return util::DynamicCast<physics::Body>(shape->GetGeom()->GetBody());
    }
    static bool AreOne(const GeomEntityPtr& a, const GeomEntityPtr& b) { return BodyOf(a) == BodyOf(b); }
    static void Erase(const EntitySet& entities) {
        GetUndoer().Do(new EraseEntities(GetScene(), entities));
        GetApp().Update(0);
        GetApp().Update(0);
    }
    static void MoveBy(const EntitySet& entities, Vec2 shift) {
        for (const EntityPtr& entity : entities) entity->BeginMove();
        for (const EntityPtr& entity : entities) entity->Transform(math::RigidTransform(0, shift));
        for (const EntityPtr& entity : entities) entity->EndMove();
    }
    // Whether they are one already or not.
    static FixJointEntityPtr Fix(const GeomEntityPtr& a, const GeomEntityPtr& b) {
        const FixJointEntityPtr joint = new FixJointEntity(0.1f);
        joint->SetEnds({a->GetGeom(), {}}, {b->GetGeom(), {}});
        GetScene().AddEntity(joint);
        return joint;
    }
    static void ExpectConnectedBodies();
};

// ---- partners

TEST_F(JointEntityTest, TiesTheTwoTopmostShapesOrOneAndTheWorld) {
    const auto low = AddCircle({0, 0}, 1), top = AddCircle({0.5f, 0}, 1);
    const HingeEntityPtr both = AddHinge({0.2f, 0});
    EXPECT_EQ(both->GetEnd(0).geom, top->GetGeom());
    EXPECT_EQ(both->GetEnd(1).geom, low->GetGeom());
    const HingeEntityPtr single = AddHinge({-0.8f, 0});
    EXPECT_EQ(single->GetEnd(0).geom, low->GetGeom());
    EXPECT_EQ(single->GetEnd(1).geom, physics::GeomPtr(GetSim().GetWorldGeom()));
    EXPECT_EQ(GetSim().GetHinges().size(), 2u);
    EXPECT_LT(math::Length(both->GetMiddle() - Vec2(0.2f, 0)), 1e-6f);

    const HingeEntityPtr nowhere = new HingeEntity(0.2f);
    nowhere->SetScene(&GetScene());
    nowhere->Attach({9, 9}, {9, 9});
    EXPECT_TRUE(nowhere->IsOrphaned());
}

TEST_F(JointEntityTest, FollowsItsShapesAndTakesOthersWhenMovedItself) {
    const auto a = AddCircle({0, 0}, 1), b = AddCircle({5, 0}, 1);
    const HingeEntityPtr pin = AddHinge({0.5f, 0});
    BodyOf(a)->m_pos = {0, 3};
    BodyOf(a)->UpdateGeoms();
    GetApp().Update(0);
    EXPECT_LT(math::Length(pin->GetPos(0) - Vec2(0.5f, 3)), 1e-5f);
    EXPECT_LT(math::Length(pin->GetPos(1) - Vec2(0.5f, 0)), 1e-5f);

    const HingeEntityPtr other = AddHinge({0.2f, 3});
    MoveBy({other}, {5, -3});
    EXPECT_EQ(other->GetEnd(0).geom, b->GetGeom());
    MoveBy({other, b}, {0, 7});
    EXPECT_EQ(other->GetEnd(0).geom, b->GetGeom());
    EXPECT_TRUE(GetSim().HasConstraint(other->GetHinge()));
}

TEST_F(JointEntityTest, RetiresWithItsShapeAndComesBackByUndo) {
    const auto low = AddCircle({0, 0}, 1), top = AddCircle({0.5f, 0}, 1);
    const HingeEntityPtr pin = AddHinge({0.2f, 0});
    const String before = Describe();
    Erase({top});
    EXPECT_EQ(GetApp().GetEntities(), (EntityList{low})) << "not pinned to the sky instead";
    EXPECT_TRUE(GetSim().GetHinges().empty());
    GetUndoer().Undo();
    EXPECT_EQ(Describe(), before);
    EXPECT_TRUE(GetSim().HasConstraint(pin->GetHinge()));
    EXPECT_EQ(pin->GetEnd(0).geom, top->GetGeom());
}

TEST_F(JointEntityTest, TakesAnotherShapeInPlaceOfAnErasedOne) {
    const auto lowest = AddCircle({0, 0}, 1), low = AddCircle({0.1f, 0}, 1), top = AddCircle({0.2f, 0}, 1);
    const HingeEntityPtr pin = AddHinge({0, 0});
    Erase({low});
    EXPECT_TRUE(GetScene().HasEntity(pin));
    EXPECT_EQ(pin->GetEnd(0).geom, top->GetGeom());
    EXPECT_EQ(pin->GetEnd(1).geom, lowest->GetGeom());
}

// ---- picking

TEST_F(JointEntityTest, IconsArePickedCrossedAndLassoed) {
    AddCircle({0, 0}, 2);
    const HingeEntityPtr pin = AddHinge({1, 0});
    EXPECT_EQ(GetScene().GetEntityAt({1.08f, 0.08f}), EntityPtr(pin));
    EXPECT_NE(GetScene().GetEntityAt({1.12f, 0}), EntityPtr(pin));
    EXPECT_TRUE(pin->CrossesLines({{{0.5f, 0.02f}, {1.5f, 0.02f}}}));
    EXPECT_FALSE(pin->CrossesLines({{{0.5f, 0.2f}, {1.5f, 0.2f}}}));
    const physics::PolygonPtr lasso = physics::MakeBoxPolygon(0.9f, -0.2f, 1.2f, 0.2f);
    EXPECT_TRUE(pin->IsInsidePolygon(*lasso));

    script::AttribPtr<bool> drawn = GetApp().GetGUISettings().m_drawHingesWhenRunning;
    drawn->Set(false);
    EXPECT_EQ(GetScene().GetEntityAt({1, 0}), EntityPtr(pin)) << "the world stands";
    GetSim().m_running->Set(true);
    EXPECT_NE(GetScene().GetEntityAt({1, 0}), EntityPtr(pin));
    drawn->Set(true);
}

TEST_F(JointEntityTest, SpringsArePickedAlongTheirLine) {
    AddCircle({0, 0}), AddCircle({4, 0});
    const SpringEntityPtr spring = AddSpring({0, 0}, {4, 0});
    EXPECT_TRUE(spring->IsPointInside({2, 0.09f}));
    EXPECT_FALSE(spring->IsPointInside({2, 0.11f}));
    EXPECT_TRUE(spring->CrossesLines({{{2, -1}, {2, 1}}}));
    EXPECT_FALSE(spring->IsInsidePolygon(*physics::MakeBoxPolygon(-1, -1, 3, 1)));
    EXPECT_TRUE(spring->IsInsidePolygon(*physics::MakeBoxPolygon(-1, -1, 5, 1)));
    EXPECT_NEAR(spring->GetBoundingBox().max.x, 4.1f, 1e-5f);
}

// ---- motors

TEST_F(JointEntityTest, SettingsReachTheHingeAndNegativeSpeedsTurnRound) {
    AddCircle({0, 0}, 1);
    const HingeEntityPtr pin = AddHinge({0, 0});
    EXPECT_FALSE(pin->GetHinge()->GetMotor());
    pin->m_motor->SetValue(script::ValueToObject(true));
    pin->m_motorTorque->SetValue(script::ValueToObject(7.0));
    pin->m_motorSpeed->SetValue(script::ValueToObject(-3.0));
    EXPECT_TRUE(pin->GetHinge()->GetMotor());
    EXPECT_EQ(pin->GetHinge()->GetMotorTorque(), 7);
    EXPECT_EQ(pin->GetHinge()->GetMotorSpeed(), -3);
    EXPECT_EQ(pin->m_motorSpeed->Get(), 3);
    EXPECT_TRUE(pin->m_ccw->Get());
    // What is saved is what it reads as: loading does not turn it once more.
    Load(Save());
    const auto loaded = util::DynamicCast<HingeEntity>(GetApp().GetEntities().back());
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->m_motorSpeed->Get(), 3);
    EXPECT_TRUE(loaded->m_ccw->Get());
    EXPECT_EQ(loaded->GetHinge()->GetMotorSpeed(), -3);
}

TEST_F(JointEntityTest, ArrowKeysWithoutAKeyLetTheHingeTurnFreely) {
    AddCircle({0, 0}, 1);
    const HingeEntityPtr pin = AddHinge({0, 0});
    pin->m_motor->SetValue(script::ValueToObject(true));
    pin->m_controller->SetValue(script::ValueToObject("arrowkeys"));
    GetApp().Update(0.01f);
    EXPECT_FALSE(pin->GetHinge()->GetMotor());
    EXPECT_TRUE(pin->m_motor->Get());
}

// As a field that is typed into, or a menu that the arrows walk through.
class KeyTaker : public gui::InputListener {
  public:
    void OnKeyEvent(gui::KeyEvent& event) override { event.m_handled = true; }
};

TEST_F(JointEntityTest, ArrowKeysThatSomebodyElseTookDriveNothing) {
    AddCircle({0, 0}, 1);
    const HingeEntityPtr pin = AddHinge({0, 0});
    pin->m_controller->SetValue(script::ValueToObject("arrowkeys"));
    gui::Input& input = gui::Input::Instance();
    const auto isDrivenByPress = [&] {
        gui::KeyEvent event;
        event.m_key = gui::Key::Right;
        event.m_pressed = true;
        input.OnKeyEvent(event);
        GetApp().Update(0.01f);
        event.m_pressed = event.m_handled = false;
        input.OnKeyEvent(event);
        return pin->GetHinge()->GetMotor();
    };
    EXPECT_TRUE(isDrivenByPress());
    const util::SharedPtr<KeyTaker> taker = new KeyTaker;
    input.AddListener(taker);
    EXPECT_FALSE(isDrivenByPress());
    input.RemoveListener(*taker);
}

// Rolling without slipping, v = w r.
TEST_F(JointEntityTest, TwoDrivenWheelsDriveACar) {
    AddPlane({0, 1}, 0);
    const auto chassis = AddBox({-1, 0.3f}, {1, 0.7f});
    for (const float x : {-0.7f, 0.7f}) {
        AddCircle({x, 0.35f}, 0.35f)->m_friction->Set(1);
        const HingeEntityPtr axle = AddHinge({x, 0.35f});
        axle->m_motor->Set(true);
        axle->m_motorSpeed->Set(6);
    }
    GetSim().m_running->Set(true);
    RunFor(500);
    const float before = BodyOf(chassis)->m_pos.x;
    RunFor(100);
    EXPECT_NEAR(std::fabs(BodyOf(chassis)->m_pos.x - before), 2.10f, 0.021f);
}

// ---- fusion

TEST_F(JointEntityTest, FixingMakesOneBodyAndRemovingSplitsIt) {
    const auto a = AddCircle({0, 0}), b = AddCircle({0.8f, 0}), c = AddCircle({1.6f, 0});
    const FixJointEntityPtr ab = AddFixJoint({0.4f, 0}), bc = AddFixJoint({1.2f, 0});
    EXPECT_TRUE(AreOne(a, b) && AreOne(b, c));
    EXPECT_EQ(GetSim().GetBodies().size(), 2u);
    const String fused = Describe();
    Erase({ab});
    EXPECT_FALSE(AreOne(a, b));
    EXPECT_TRUE(AreOne(b, c));
    GetUndoer().Undo();
    EXPECT_EQ(Describe(), fused);
    Erase({bc});
    EXPECT_TRUE(AreOne(a, b));
    EXPECT_FALSE(AreOne(b, c));
}

TEST_F(JointEntityTest, OtherFixJointsHoldWhatOneLetsGo) {
    const auto a = AddCircle({0, 0}), b = AddCircle({0.8f, 0}), c = AddCircle({0.4f, 0.7f});
    const FixJointEntityPtr ab = Fix(a, b), second = Fix(a, b);
    Erase({ab});
    EXPECT_TRUE(AreOne(a, b)) << "two joints between one pair";
    Fix(a, c), Fix(b, c);
    Erase({second});
    EXPECT_TRUE(AreOne(a, b) && AreOne(b, c)) << "round the ring";
}

TEST_F(JointEntityTest, ErasingTheMiddleOfARowSplitsItsEnds) {
    const auto a = AddCircle({0, 0}), b = AddCircle({0.8f, 0}), c = AddCircle({1.6f, 0});
    AddFixJoint({0.4f, 0}), AddFixJoint({1.2f, 0});
    BodyOf(a)->m_angVel = 2;
    Erase({b});
    EXPECT_FALSE(AreOne(a, c));
    EXPECT_EQ(GetApp().GetEntities().size(), 2u);
    // Each goes on as it moved: the centre was that of b.
    EXPECT_NEAR(BodyOf(a)->m_vel.y, -1.6f, 1e-4f);
    EXPECT_NEAR(BodyOf(c)->m_vel.y, 1.6f, 1e-4f);
}

TEST_F(JointEntityTest, FixedToTheWorldAndFreedAgain) {
    const auto plane = AddPlane({0, 1}, 5);
    const auto fixed = AddCircle({-5, 0}, 0.3f);  // as shapes loaded with body 0, held by no joint
    GetSim().RemoveBody(BodyOf(fixed));
    GetSim().GetWorldBody()->AddGeom(fixed->GetGeom());
    const auto a = AddCircle({0, 0}), b = AddCircle({0.8f, 0}), c = AddCircle({3, -5});
    AddFixJoint({0.4f, 0});
    const FixJointEntityPtr toWorld = AddFixJoint({-0.3f, 0}), toPlane = AddFixJoint({3, -5.2f});
    const BodyPtr world = GetSim().GetWorldBody();
    for (const GeomEntityPtr& shape : {GeomEntityPtr(a), GeomEntityPtr(b), GeomEntityPtr(c)}) {
        EXPECT_EQ(BodyOf(shape), world);
    }
    Erase({toWorld});
    EXPECT_NE(BodyOf(a), world);
    EXPECT_TRUE(AreOne(a, b));
    Erase({toPlane});
    EXPECT_NE(BodyOf(c), world);
    EXPECT_EQ(BodyOf(plane), world);
    EXPECT_EQ(BodyOf(fixed), world);
}

TEST_F(JointEntityTest, FusedToSeparateShapesEndsASpring) {
    const auto a = AddCircle({0, 0}), b = AddCircle({0.8f, 0});
    const SpringEntityPtr spring = AddSpring({-0.3f, 0}, {1.1f, 0});
    EXPECT_TRUE(spring->IsInSimulation());
    AddFixJoint({0.4f, 0});
    EXPECT_FALSE(spring->IsInSimulation());
    RunFor(2);
    EXPECT_FALSE(GetScene().HasEntity(spring));
    EXPECT_TRUE(GetSim().GetJoints().empty());
}

// Every body of fused shapes is one connected set, by a flood over the joints.
void JointEntityTest::ExpectConnectedBodies() {
    std::map<physics::Geom*, std::vector<physics::Geom*>> links;
    for (const EntityPtr& entity : GetApp().GetEntities()) {
        const auto joint = util::DynamicCast<FixJointEntity>(entity);
        if (!joint) continue;
        physics::Geom *const g0 = joint->GetEnd(0).geom.Get(), *const g1 = joint->GetEnd(1).geom.Get();
        ASSERT_EQ(g0->GetBodyPtr(), g1->GetBodyPtr());
        links[g0].push_back(g1);
        links[g1].push_back(g0);
    }
    for (const BodyPtr& body : GetSim().GetBodies()) {
        if (body == GetSim().GetWorldBody()) continue;
        std::set<physics::Geom*> reached;
        std::vector<physics::Geom*> open = {body->GetGeoms().begin()->Get()};
        while (!open.empty()) {
            physics::Geom* const geom = open.back();
            open.pop_back();
            if (!reached.insert(geom).second) continue;
            open.insert(open.end(), links[geom].begin(), links[geom].end());
        }
        ASSERT_EQ(reached.size(), body->GetGeoms().size());
    }
}

// Random fix joints between random shapes come and go; the seed is the generator's first.
TEST_F(JointEntityTest, FusingAndSplittingKeepsMassAndMomentum) {
    const int steps = test::GetLength(400);
    const int count = steps > 1000 ? 200 : 40;
    util::Random random;
    std::vector<CircleEntityPtr> shapes;
    for (int i = 0; i < count; ++i) {
        shapes.push_back(AddCircle({static_cast<float>(i % 8), static_cast<float>(i / 8)}, 0.4f));
        BodyOf(shapes.back())->m_vel = {random.GetUniform(-1, 1), random.GetUniform(-1, 1)};
        BodyOf(shapes.back())->m_angVel = random.GetUniform(-1, 1);
    }
    const auto sum = [] {
        std::array<double, 4> all{};
        for (const BodyPtr& body : GetSim().GetBodies()) {
            if (body->IsImmovable()) continue;
            all[0] += body->m_mass;
            all[1] += body->m_mass * body->m_vel.x;
            all[2] += body->m_mass * body->m_vel.y;
            all[3] += body->m_inertia * body->m_angVel + body->m_mass * math::Cross(body->m_pos, body->m_vel);
        }
        return all;
    };
    const auto before = sum();
    std::vector<FixJointEntityPtr> joints;
    for (int step = 0; step < steps && !HasFatalFailure(); ++step) {
        if (joints.size() < 2 || random.GetUniform(0, 1) < 0.55f) {
            const auto& a = shapes[static_cast<size_t>(random.GetUniformInt(0, count))];
            const auto& b = shapes[static_cast<size_t>(random.GetUniformInt(0, count))];
            if (a == b) continue;
            joints.push_back(Fix(a, b));
        } else {
            const auto at = random.GetUniformInt(0, static_cast<int>(joints.size()));
            GetScene().RemoveEntity(joints[static_cast<size_t>(at)]);
            joints.erase(joints.begin() + at);
        }
        ExpectConnectedBodies();
    }
    const auto after = sum();
    for (size_t i = 0; i < before.size(); ++i) EXPECT_NEAR(after[i], before[i], 1e-4 * before[0]) << i;
}

// ---- copies

TEST_F(JointEntityTest, CopiesAreTiedAmongThemselves) {
    const auto low = AddCircle({0, 0}, 1), top = AddCircle({0.5f, 0}, 1), left = AddCircle({9, 0}, 1);
    const HingeEntityPtr pin = AddHinge({0.2f, 0}), toWorld = AddHinge({-0.8f, 0});
    const SpringEntityPtr away = AddSpring({0, 0.5f}, {9, 0});
    pin->m_motorSpeed->Set(4);
    const EntitySet clones = CloneIntoScene(GetScene(), {low, top, pin, toWorld, away});
    EXPECT_EQ(clones.size(), 4u) << "the spring's other end stays behind, and so does the spring";
    const auto& entities = GetApp().GetEntities();
    const auto copy = util::DynamicCast<HingeEntity>(entities[8]);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->GetEnd(0).geom, util::DynamicCast<GeomEntity>(entities[7])->GetGeom());
    EXPECT_EQ(copy->GetEnd(1).geom, util::DynamicCast<GeomEntity>(entities[6])->GetGeom());
    EXPECT_EQ(copy->m_motorSpeed->Get(), 4);
    EXPECT_EQ(GetSim().GetHinges().size(), 4u);
}

TEST_F(JointEntityTest, FusedCopiesShareABodyAndFixedOnesAreFixed) {
    const auto a = AddCircle({0, 0}), b = AddCircle({0.8f, 0});
    const FixJointEntityPtr ab = AddFixJoint({0.4f, 0});
    const auto c = AddCircle({5, 0});
    const FixJointEntityPtr fixed = AddFixJoint({5, 0});
    CloneIntoScene(GetScene(), {a, b, ab, c, fixed});
    const auto shape = [](size_t i) { return util::DynamicCast<GeomEntity>(GetApp().GetEntities()[i]); };
    EXPECT_TRUE(AreOne(shape(5), shape(6)));
    EXPECT_FALSE(AreOne(shape(5), a));
    EXPECT_EQ(BodyOf(shape(8)), GetSim().GetWorldBody());
    Erase({GetApp().GetEntities()[7]});
    EXPECT_FALSE(AreOne(shape(5), shape(6)));
}

}  // namespace
}  // namespace app

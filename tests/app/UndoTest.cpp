#include "SceneFixture.h"
#include "app/entities/Chain.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/history/Actions.h"
#include "app/history/Cloning.h"
#include "physics/Particle.h"
#include "support/Length.h"
#include "util/Random.h"

namespace app {
namespace {

using math::Vec2;

// Counts what is done to it.
class Probe : public Action {
  public:
    explicit Probe(const char* name) : Action(name) {}
    void Do() override { ++m_done; }
    void Undo() override { ++m_undone; }

    int m_done = 0;
    int m_undone = 0;
};
using ProbePtr = util::SharedPtr<Probe>;

class UndoTest : public test::SceneFixture {
  protected:
    static ProbePtr Do(const char* name) {
        const ProbePtr probe = new Probe(name);
        GetUndoer().Do(probe);
        return probe;
    }
};

TEST_F(UndoTest, StepsGoBackAndForth) {
    const ProbePtr a = Do("a"), b = Do("b");
    EXPECT_EQ(a->m_done, 1);
    GetUndoer().Undo();
    EXPECT_EQ(b->m_undone, 1);
    EXPECT_STREQ(GetUndoer().GetUndoName(), "a");
    EXPECT_STREQ(GetUndoer().GetRedoName(), "b");
    GetUndoer().Redo();
    EXPECT_EQ(b->m_done, 2);
    EXPECT_EQ(GetUndoer().GetRedoName(), nullptr);
}

TEST_F(UndoTest, ANewActionForgetsWhatWasUndone) {
    Do("a");
    GetUndoer().Undo();
    Do("b");
    EXPECT_EQ(GetUndoer().GetRedoCount(), 0u);
    GetUndoer().Undo();
    GetUndoer().AddRestorer(new Snapshot(GetScene()), "c");
    EXPECT_EQ(GetUndoer().GetRedoCount(), 0u);
}

TEST_F(UndoTest, AnEmptyStackDoesAndFiresNothing) {
    int changes = 0;
    const ProbePtr owner = new Probe("owner");
    GetUndoer().GetOnChange().Add(new util::Callback([&changes] { ++changes; }, owner));
    GetUndoer().Undo();
    GetUndoer().Redo();
    EXPECT_EQ(changes, 0);
    Do("a");
    GetUndoer().Undo();
    GetUndoer().Redo();
    GetUndoer().Clear();
    EXPECT_EQ(changes, 4);
}

TEST_F(UndoTest, TheOldestAreDropped) {
    for (int i = 0; i < 11; ++i) Do("x");
    EXPECT_EQ(GetUndoer().GetUndoCount(), 10u);

    GetUndoer().AddRestorer(new Snapshot(GetScene()), "y");
    EXPECT_EQ(GetUndoer().GetUndoCount(), 11u) << "trimmed by the next update only";
    GetApp().Update(0);
    EXPECT_EQ(GetUndoer().GetUndoCount(), 10u);

    GetApp().m_maxUndo->Set(0);
    Do("z");
    EXPECT_EQ(GetUndoer().GetUndoCount(), 0u);
}

TEST_F(UndoTest, StepsInterruptGesturesThoughNotTheStartOfTheWorld) {
    int interrupts = 0;
    const util::SharedPtr<util::Pointee> owner = new Probe("owner");
    GetUndoer().GetOnInterrupt().Add(new util::Callback([&interrupts] { ++interrupts; }, owner));
    Do("a");
    GetUndoer().Undo();
    GetUndoer().Redo();
    EXPECT_EQ(interrupts, 3);
    GetApp().RunSimulation();
    GetApp().TakeSnapshot();
    EXPECT_EQ(interrupts, 3);
}

TEST_F(UndoTest, ErasedEntitiesComeBackAsTheSameObjects) {
    const auto a = AddCircle({0, 0}), b = AddCircle({3, 0});
    const physics::BodyPtr body = b->GetBody();
    body->m_vel = {1, 2};
    body->m_angVel = 3;
    GetApp().GetSelection().Add(b);
    const String before = Describe();
    GetUndoer().Do(new EraseEntities(GetScene(), {b}));
    EXPECT_EQ(GetApp().GetEntities(), (EntityList{a}));
    EXPECT_FALSE(GetSim().HasBody(body));

    GetUndoer().Undo();
    EXPECT_EQ(Describe(), before);
    EXPECT_TRUE(GetSim().HasBody(body));
    EXPECT_EQ(body->m_vel, Vec2(1, 2));
    EXPECT_EQ(body->m_angVel, 3);
}

TEST_F(UndoTest, RedoOfErasingRemembersTheSceneOfThatMoment) {
    const auto a = AddCircle({0, 0}), b = AddCircle({3, 0});
    GetUndoer().Do(new EraseEntities(GetScene(), {b}));
    GetUndoer().Undo();
    a->Transform(math::RigidTransform(0, {0, 7}));
    GetUndoer().Redo();
    GetUndoer().Undo();
    EXPECT_NEAR(a->GetGeom()->GetPos().y, 7, 1e-6);
}

TEST_F(UndoTest, ASnapshotIsAMarkInBothDirections) {
    const auto a = AddCircle({0, 0});
    GetApp().TakeSnapshot();
    EXPECT_STREQ(GetUndoer().GetUndoName(), "UndoSnapshot");
    for (int i = 0; i < 2; ++i) {
        a->Transform(math::RigidTransform(0, {5, 0}));
        i == 0 ? GetUndoer().Undo() : GetUndoer().Redo();
        EXPECT_NEAR(a->GetGeom()->GetPos().x, 0, 1e-6);
    }
}

TEST_F(UndoTest, StartsWithNothingBetweenThemAreOneStep) {
    const auto ball = AddCircle({0, 10});
    for (int i = 0; i < 5; ++i) {
        GetApp().RunSimulation();
        RunFor(20);
        GetApp().StopSimulation();
    }
    EXPECT_EQ(GetUndoer().GetUndoCount(), 1u);
    Do("an edit");
    GetApp().RunSimulation();
    EXPECT_EQ(GetUndoer().GetUndoCount(), 3u);
    for (int i = 0; i < 3; ++i) GetUndoer().Undo();
    EXPECT_EQ(ball->GetGeom()->GetPos(), Vec2(0, 10));
}

TEST_F(UndoTest, UndoOfTheStartStopsTheWorldWhereItStood) {
    const auto ball = AddCircle({0, 10});
    GetApp().RunSimulation();
    EXPECT_STREQ(GetUndoer().GetUndoName(), "UndoSimStart");
    EXPECT_EQ(GetUndoer().GetUndoCount(), 1u);
    RunFor(20);
    EXPECT_LT(ball->GetGeom()->GetPos().y, 9.99f);
    GetUndoer().Undo();
    EXPECT_FALSE(GetSim().m_running->Get());
    EXPECT_EQ(ball->GetGeom()->GetPos(), Vec2(0, 10));
    EXPECT_EQ(ball->GetBody()->m_vel, Vec2());
    GetUndoer().Redo();
    EXPECT_FALSE(GetSim().m_running->Get()) << "redo leaves that as it is";
    GetApp().StopSimulation();
    EXPECT_EQ(GetUndoer().GetUndoCount(), 1u) << "stopping is no step";
}

TEST_F(UndoTest, DropsComeBackAsTheyWere) {
    const physics::ParticlePtr drop = new physics::Particle({1, 1}, {2, 0});
    drop->m_vaporTime = 1;
    drop->m_pressure = 2;
    GetSim().AddParticle(drop);
    const SnapshotPtr snapshot = new Snapshot(GetScene());
    drop->m_vaporTime = 100;  // it has dried up meanwhile
    drop->m_pressure = 0;
    GetSim().ClearParticles();
    snapshot->Restore();
    EXPECT_EQ(drop->m_vaporTime, 1);
    EXPECT_EQ(drop->m_pressure, 2);
}

// Random edits, each with its step of the history: undoing all gives the first state, redoing all the last.
class RandomEdits : public UndoTest {
  protected:
    EntityPtr Pick() {
        const EntityList& entities = GetApp().GetEntities();
        return entities[static_cast<size_t>(m_random.GetUniformInt(0, static_cast<int>(entities.size())))];
    }
    Vec2 Place() { return {m_random.GetUniform(-9, 9), m_random.GetUniform(-9, 9)}; }

    void EditOnce() {
        const int kind = m_random.GetUniformInt(0, 17);
        if (kind == 0 && GetApp().GetEntities().size() > 2) {
            GetUndoer().Do(new EraseEntities(GetScene(), {Pick()}));
            return;
        }
        const SnapshotPtr before = new Snapshot(GetScene());
        switch (kind) {
            case 1:
                AddCircle(Place());
                break;
            case 2:
                AddTriangle(Place());
                break;
            case 3:
                AddPlane({0, 1}, 20);
                break;
            case 4:
                Pick()->Transform(math::RigidTransform(m_random.GetUniform(-3, 3), Place()));
                break;
            case 5:
                Pick()->SetGroup(m_random.GetUniformInt(-1, 3));
                break;
            case 6:
                if (const auto variable = Pick()->FindLocal("friction")) {
                    variable->SetValue(script::ValueToObject(m_random.GetUniform(0, 1)));
                }
                break;
            case 7:
                GetScene().Track(Pick());
                break;
            case 8:
                AddJoint(new HingeEntity(0.2f));
                break;
            case 9:
            case 10:
                AddJoint(new FixJointEntity(0.2f));
                break;
            case 11:
                AddJoint(new SpringEntity(0.2f));
                break;
            case 12:
                GetSim().AddParticle(new physics::Particle(Place(), Place()));
                break;
            case 13:
                CloneIntoScene(GetScene(), {Pick(), Pick(), Pick()});
                break;
            case 14:
                MoveOne(Pick());
                break;
            case 15:
                RunForAWhile();
                break;
            case 16:
                MakeChain(Pick(), Pick());
                break;
            default:
                GetApp().GetSelection().Add(Pick());
                break;
        }
        GetUndoer().AddRestorer(before, "UndoMove");
    }

    // Between two points of the scene that are near shapes.
    void AddJoint(const JointEntityPtr& joint) {
        const auto point = [this] { return Pick()->GetBoundingBox(); };
        const math::BoundingBox2f a = point(), b = point();
        if (!a.IsFinite() || !b.IsFinite()) return;
        joint->SetScene(&GetScene());
        joint->Attach(a.GetCenter(), b.GetCenter());
        if (joint->IsOrphaned()) return;
        joint->Rebuild();
        GetScene().AddEntity(joint);
    }
    static void MakeChain(const EntityPtr& a, const EntityPtr& b) {
        const ChainPtr chain = new Chain(GetScene().GetFreeChain());
        chain->AddEntity(0, a);
        if (a != b) chain->AddEntity(1, b);
    }
    void MoveOne(const EntityPtr& entity) {
        entity->BeginMove();
        entity->Transform(math::RigidTransform(m_random.GetUniform(-3, 3), Place()));
        entity->EndMove();
        GetScene().SettleJoints();
    }
    // Without a step of the history of its own.
    void RunForAWhile() {
        for (int i = 0; i < 3; ++i) GetSim().Step(true);
        GetScene().Update(0);
        GetScene().Update(0);
    }

    void WalkOnce();

    util::Random m_random;
};

void RandomEdits::WalkOnce() {
    constexpr int EDITS = 25;
    AddCircle({0, 0});
    AddTriangle({2, 0});
    AddPlane({0, 1}, 30);
    const String first = Describe();
    for (int i = 0; i < EDITS; ++i) EditOnce();
    const String last = Describe();
    while (GetUndoer().GetUndoCount() > 0) GetUndoer().Undo();
    ASSERT_EQ(Describe(), first);
    while (GetUndoer().GetRedoCount() > 0) GetUndoer().Redo();
    ASSERT_EQ(Describe(), last);
}

TEST_F(RandomEdits, UndoAllThenRedoAll) {
    GetApp().m_maxUndo->Set(1000);
    for (int walk = 0; walk < test::GetLength(8) && !HasFatalFailure(); ++walk) {
        SCOPED_TRACE(walk);
        m_random = util::Random();
        GetApp().Clear();
        GetUndoer().Clear();
        WalkOnce();
    }
}

}  // namespace
}  // namespace app

#include <sys/time.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <limits>

#include "SceneFixture.h"
#include "app/entities/Chain.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/files/SceneFiles.h"
#include "app/files/SceneLoader.h"
#include "app/files/SceneWriter.h"
#include "app/files/Serializer.h"
#include "physics/Joints.h"
#include "physics/Particle.h"
#include "script/Expressions.h"
#include "util/Clock.h"
#include "util/Exception.h"
#include "util/FileSystem.h"

namespace app {
namespace {

using math::Vec2;

class SceneFileTest : public test::SceneFixture {
  protected:
    static EntityPtr Only() {
        EXPECT_EQ(GetApp().GetEntities().size(), 1u);
        return GetApp().GetEntities().empty() ? nullptr : GetApp().GetEntities()[0];
    }
    // A circle's block, with more or other keys behind.
    static String Circle(const String& more) {
        return "{ type = \"circle\"; radius = 0.5; id = 5; color = [0.5, 0.5, 0.5]; pos = [1.0, 2.0]; "
               "angle = 0.0; " +
               more + " };\n";
    }
    static void WriteScene(const String& name, const String& text) {
        const util::FileSystem& files = util::FileSystem::Instance();
        files.MakeDir(files.GetScenesDir());
        files.WriteFileAtomically(files.GetScenesDir() + name, text);
    }
};

// ---- round trips

TEST_F(SceneFileTest, TheFormsOfTheFormat) {
    const auto circle = AddCircle({1.5f, 2}, 0.5f);
    circle->SetColor({0.5f, 0.5f, 0.5f});
    circle->SetGroup(3);
    EXPECT_EQ(Save(),
              "version = 1;\n{\nangle = 0.0;\n    body = 1;\n    collideSet = 1;\n    collideWater = true;\n"
              "    color = [0.5, 0.5, 0.5];\n    density = 2.0;\n    friction = 0.5;\n    group = 3;\n"
              "    id = 1;\n    pos = [1.5, 2.0];\n    radius = 0.5;\n    restitution = 0.5;\n"
              "    type = \"circle\"\n}");
}

TEST_F(SceneFileTest, WhatIsSavedLoadsAndSavesAlike) {
    const auto a = AddCircle({1.1f, 2.2f}, 0.7f), b = AddCircle({-3.3f, 0.1f}, 0.2f);
    const auto box = AddBox({4, 4}, {5.5f, 4.75f}), triangle = AddTriangle({-7.7f, 3});
    const auto plane = AddPlane({0.6f, 0.8f}, 3.5f), fixed = AddPlane({0, 1}, 10);
    Join(*a, *triangle);
    triangle->UpdateBodyPtr();
    triangle->Transform(math::RigidTransform(0.4f, {0.3f, 0.2f}));
    box->Transform(math::RigidTransform(2.5f, {1, 1}));
    b->m_density->Set(7.25f);
    b->m_collideSet->Set(5);
    fixed->SetGroup(2);
    GetScene().Track(b);
    const ChainPtr chain = new Chain(4);
    chain->AddEntity(0, b);
    chain->AddEntity(1, box);

    const String saved = Save();
    Load(Save());
    EXPECT_EQ(Save(), saved);
    ASSERT_EQ(GetApp().GetEntities().size(), 6u);
    EXPECT_EQ(GetScene().GetTrackedEntity(), GetApp().GetEntities()[1]);
    const auto reloaded = util::DynamicCast<GeomEntity>(GetApp().GetEntities()[4]);
    EXPECT_EQ(reloaded->GetGeom()->GetBody(), GetSim().GetWorldBody());
}

static uint64_t RunToHash(physics::Simulation& sim) {
    for (int i = 0; i < 100; ++i) sim.Step(true);
    return sim.HashState();
}

// From rest, the scene that comes back runs as the one that was saved, whatever hands did to it before.
TEST_F(SceneFileTest, ALoadedSceneRunsAsTheSavedOneDid) {
    AddPlane({0.1f, 0.99498744f}, 2);
    const auto low = AddBox({-1, 0}, {1.3f, 0.7f}), top = AddTriangle({0.2f, 0.6f});
    const auto ball = AddCircle({3.3f, 2.1f}, 0.37f), other = AddCircle({3.9f, 2.2f}, 0.41f);
    AddHinge({0.4f, 0.65f});
    AddFixJoint({3.61f, 2.13f});
    AddSpring({0.9f, 0.1f}, {3.2f, 2.0f});
    for (const EntityPtr& entity : EntityList{ball, top}) {
        entity->BeginMove();
        entity->Transform(math::RigidTransform(0.7f, {0.1f, 1.5f}));
        entity->EndMove();
    }
    const String text = Save();
    const uint64_t saved = RunToHash(GetSim());
    Load(text);
    EXPECT_EQ(Save(), text);
    EXPECT_EQ(RunToHash(GetSim()), saved);
}

TEST_F(SceneFileTest, JointsComeBackWithAllTheirSettings) {
    AddCircle({0, 0}, 1), AddCircle({0.5f, 0}, 1), AddCircle({5, 0}, 1);
    const HingeEntityPtr hinge = AddHinge({0.2f, 0});
    hinge->m_motor->Set(true);
    hinge->m_controller->Set("arrowkeys");
    const SpringEntityPtr spring = AddSpring({0.9f, 0}, {5, 0});
    spring->SetLength(2.5f);
    spring->m_strengthFactor->Set(0.25f);
    const String saved = Save();
    Load(Save());
    EXPECT_EQ(Save(), saved);
    const auto loaded = util::DynamicCast<SpringEntity>(GetApp().GetEntities().back());
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetJoint()->GetLength(), 2.5f);
    EXPECT_EQ(loaded->GetJoint()->GetStrength(), 0.25f);
    EXPECT_EQ(GetSim().GetHinges().size(), 1u);
}

TEST_F(SceneFileTest, ImportedGroupsAndChainsStayApartFromTheScenes) {
    const String text = "version = 1; " + Circle("group = 3; chain = 2; chainNr = 0;") +
                        Circle("id = 6; group = 3; chain = 2; chainNr = 1;") + Circle("id = 7; group = 0;");
    Load(text);
    Serializer::Deserialize(GetScene(), text);
    const EntityList& entities = GetApp().GetEntities();
    ASSERT_EQ(entities.size(), 6u);
    EXPECT_EQ(entities[0]->GetGroup(), 3);
    EXPECT_EQ(entities[2]->GetGroup(), 0);
    EXPECT_EQ(entities[3]->GetGroup(), 1) << "the lowest that is free";
    EXPECT_EQ(entities[4]->GetGroup(), 1);
    EXPECT_EQ(entities[5]->GetGroup(), 2);
    EXPECT_EQ(entities[3]->GetChain()->GetEntities(), (EntityList{entities[3], entities[4]}));
    EXPECT_EQ(entities[3]->GetChain()->GetID(), 0);
}

TEST_F(SceneFileTest, WaterIsSavedWithItsPlaces) {
    Load("version = 1; { type = \"water\"; vecs = [[0.0, 1.0], [0.5, 1.25]] }");
    EXPECT_EQ(GetSim().GetParticles().size(), 2u);
    EXPECT_EQ(Save(), "version = 1;\n{\ntype = \"water\";\n    vecs = [[0.0, 1.0], [0.5, 1.25]]\n}");
}

TEST_F(SceneFileTest, ABoundFunctionStaysOne) {
    Load("version = 1; " + Circle("friction = { 0.25 + 0.5 };"));
    const auto circle = util::DynamicCast<GeomEntity>(Only());
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->m_friction->Get(), 0.75f);
    EXPECT_NE(Save().find("friction = {0.25 + 0.5}"), String::npos);
}

TEST_F(SceneFileTest, DyingEntitiesAreNotSaved) {
    const auto a = AddCircle({0, 0});
    AddCircle({3, 0});
    GetSim().RemoveBody(a->GetBody());
    Load(Save());
    EXPECT_EQ(GetApp().GetEntities().size(), 1u);
}

// ---- versions and defaults

TEST_F(SceneFileTest, WithoutAVersionLengthsAreTenfold) {
    const String shapes =
        Circle("") +
        "{ type = \"polygon\"; vecs = [[0, 0], [1, 0], [0, 1]]; pos = [1, 1]; angle = 0.5; id = 6; "
        "color = [1, 1, 1] };"
        "{ type = \"plane\"; normal = [0, 1]; dist = 3; pos = [0, 0]; angle = 0; id = 7; color = [1, 1, 1] };"
        "{ type = \"water\"; vecs = [[1, 2]] };";
    for (const bool old : {true, false}) {
        Load(old ? shapes : shapes + "version = 1");
        const float factor = old ? 10 : 1;
        ASSERT_EQ(GetApp().GetEntities().size(), 3u);
        const auto circle = util::DynamicCast<CircleEntity>(GetApp().GetEntities()[0]);
        EXPECT_EQ(circle->GetCircle()->m_radius, 0.5f * factor);
        EXPECT_EQ(circle->GetGeom()->GetPos(), Vec2(1, 2) * factor);
        const auto polygon = util::DynamicCast<PolyEntity>(GetApp().GetEntities()[1]);
        EXPECT_NEAR(polygon->GetPolygon()->GetArea(), 0.5f * factor * factor, 1e-3);
        EXPECT_EQ(polygon->GetGeom()->GetPos(), Vec2(1, 1) * factor);
        EXPECT_NEAR(polygon->GetGeom()->GetTransform().GetAngle(), 0.5f, 1e-6);
        const auto plane = util::DynamicCast<PlaneEntity>(GetApp().GetEntities()[2]);
        EXPECT_EQ(plane->GetPlane()->GetLocalPlane().z, 3 * factor);
        EXPECT_EQ(GetSim().GetParticles()[0]->m_pos, Vec2(1, 2) * factor);
    }
}

TEST_F(SceneFileTest, BodiesByNumber) {
    Load("version = 1; " + Circle("") + Circle("id = 6; body = 9;") + Circle("id = 7; body = 9;") +
         Circle("id = 8; body = 0;"));
    ASSERT_EQ(GetApp().GetEntities().size(), 4u);
    const auto body = [](size_t i) {
        return util::DynamicCast<GeomEntity>(GetApp().GetEntities()[i])->GetGeom()->GetBody();
    };
    EXPECT_NE(body(0), body(1)) << "without a body it has its own";
    EXPECT_EQ(body(1), body(2));
    EXPECT_EQ(body(3), GetSim().GetWorldBody());
}

TEST_F(SceneFileTest, ValuesAreComputedAndFailingOnesAreMissing) {
    Load("version = 1; " + Circle("radius = 1 + 1;"));
    EXPECT_EQ(util::DynamicCast<CircleEntity>(Only())->GetCircle()->m_radius, 2);
    test::LogCapture log;
    Load("version = 1; " + Circle("friction = nothing; restitution = 0.125;"));
    EXPECT_EQ(util::DynamicCast<GeomEntity>(Only())->m_restitution->Get(), 0.125f);
    EXPECT_TRUE(log.Contains("Failed to evaluate: friction = nothing"));
}

TEST_F(SceneFileTest, TheOldCollideKey) {
    Load("version = 1; " + Circle("collide = false;"));
    EXPECT_EQ(util::DynamicCast<GeomEntity>(Only())->m_collideSet->Get(), 0);
    Load("version = 1; " + Circle("collide = true; collideSet = 3;"));
    EXPECT_EQ(util::DynamicCast<GeomEntity>(Only())->m_collideSet->Get(), 3);
}

TEST_F(SceneFileTest, GroupsOfMinusOneAndUntrackedEntitiesAreAccepted) {
    test::LogCapture log;
    Load("version = 1; " + Circle("group = -1; tracked = false;"));
    EXPECT_FALSE(Only()->HasGroup());
    EXPECT_FALSE(GetScene().GetTrackedEntity());
    EXPECT_FALSE(log.Contains("Couldn't find attribute"));
}

TEST_F(SceneFileTest, ChainsAreLinkedAndBadOnesCostOnlyTheChain) {
    Load("version = 1; " + Circle("chain = 3; chainNr = 1;") + Circle("id = 6; chain = 3; chainNr = 0;") +
         Circle("id = 7; chain = 3;"));
    const EntityList& entities = GetApp().GetEntities();
    ASSERT_EQ(entities.size(), 3u);
    ASSERT_TRUE(entities[0]->GetChain());
    EXPECT_EQ(entities[0]->GetChain()->GetEntities(), (EntityList{entities[1], entities[0]}));
    EXPECT_FALSE(entities[2]->GetChain());

    Load("version = 1; " + Circle("chain = 3; chainNr = 99999;") + Circle("id = 6; chain = 3; chainNr = 7;"));
    EXPECT_EQ(entities[0]->GetChain()->IndexOf(*entities[0]), 1u) << "gaps are closed";

    for (const char* const place : {"100000", "-1"}) {
        const test::LogCapture log;
        Load(String("version = 1; ") + Circle(String("chain = 3; chainNr = ") + place + ";"));
        EXPECT_TRUE(log.Contains("-- Warning: Bad chain")) << place;
        EXPECT_FALSE(Only()->GetChain()) << place;
    }
}

// ---- damage

struct Damage {
    const char* text;       // one statement
    const char* complaint;  // a line of the log
};

class DamagedScene : public SceneFileTest, public testing::WithParamInterface<Damage> {};

TEST_P(DamagedScene, CostsNoMoreThanItself) {
    test::LogCapture log;
    Load("version = 1; " + Circle("") + GetParam().text + ";\n" + Circle("id = 77;"));
    EXPECT_EQ(GetApp().GetEntities().size(), 2u);
    EXPECT_TRUE(log.Contains(GetParam().complaint)) << testing::PrintToString(log.GetLines());
}

const char* const OUT_OF_RANGE = "An error occured while deserializing: Number out of range in scene file";

INSTANTIATE_TEST_SUITE_P(
    Table, DamagedScene,
    testing::Values(
        Damage{"{ type = \"hinge\"; geom0 = 5; geom1 = 78; size = 1 }",
               "An error occured while deserializing: geom1 is no shape of the scene: 78"},
        Damage{"{ type = \"fixjoint\"; size = 1 }", "-- Warning: Couldn't find attribute geom0"},
        Damage{"{ type = \"spring\"; geom0 = 5; geom1 = 0; size = -inf }", OUT_OF_RANGE},
        Damage{"{ type = \"blob\" }", "-- Warning: Unknown entity: blob"},
        Damage{"{ radius = 1.0 }", "-- Warning: Couldn't find attribute type"},
        Damage{"{ }", "-- Warning: Couldn't find attribute type"},
        Damage{"gravity = 3", "-- Warning: Unknown constant declared in scene file: gravity = 3"},
        Damage{"math.sin(1)", "-- Warning: Unknown garbage found in scene file: math.sin(1)"},
        Damage{"version = \"x\"", "An error occured while deserializing: Not an integer"},
        Damage{"{ type = 5 }", "An error occured while deserializing: Not a string"},
        Damage{"{ type = \"circle\"; id = 9 }", "-- Warning: Couldn't find attribute radius"},
        Damage{"{ type = \"circle\"; id = 9; radius = \"big\" }",
               "An error occured while deserializing: Not a float"},
        Damage{"{ type = \"circle\"; id = 9; radius = 0.0 }", "An error occured while deserializing: "},
        Damage{"{ type = \"circle\"; id = 9; radius = 2000000.0 }", OUT_OF_RANGE},
        Damage{"{ type = \"circle\"; id = 9; radius = 1.0; pos = [+inf, 0.0] }", OUT_OF_RANGE},
        Damage{"{ type = \"circle\"; id = 9; radius = 1.0; pos = [0.0, 1000001] }", OUT_OF_RANGE},
        Damage{"{ type = \"circle\"; id = 9; radius = 1.0; angle = +inf - +inf }", OUT_OF_RANGE},
        Damage{"{ type = \"plane\"; id = 9; normal = [0.0, 0.0]; dist = 1.0 }",
               "An error occured while deserializing: "},
        Damage{"{ type = \"plane\"; id = 9; normal = [0.0, 1.0]; dist = -inf }", OUT_OF_RANGE},
        Damage{"{ type = \"polygon\"; id = 9; vecs = [[0, 0], [1, 0]] }",
               "An error occured while deserializing: Bad polygon"},
        Damage{"{ type = \"polygon\"; id = 9; vecs = [[0, 0], [4, 4], [4, 0], [0, 4]] }",
               "An error occured while deserializing: Self-intersecting polygon"},
        Damage{"{ type = \"polygon\"; id = 9; vecs = [[0, 0], [3000000, 0], [0, 1]] }", OUT_OF_RANGE},
        Damage{"{ type = \"polygon\"; id = 9 }", "-- Warning: Couldn't find attribute vecs"}));

TEST_F(SceneFileTest, MissingKeysAreNamed) {
    test::LogCapture log;
    Load("version = 1; { type = \"circle\"; radius = 0.5 }");
    for (const char* const key : {"color", "id", "pos", "angle"}) {
        EXPECT_TRUE(log.Contains(String("-- Warning: Couldn't find attribute ") + key)) << key;
    }
    const auto circle = util::DynamicCast<GeomEntity>(Only());
    ASSERT_TRUE(circle);
    EXPECT_EQ(circle->GetGeom()->GetPos(), Vec2());
    EXPECT_NE(circle->GetGeom()->GetBody(), GetSim().GetWorldBody());
}

TEST_F(SceneFileTest, TheNumberZeroIsTheWorlds) {
    test::LogCapture log;
    Load("version = 1; " + Circle("id = 0; body = 12;") + Circle("id = 6;"));
    EXPECT_TRUE(log.Contains("Couldn't find attribute id"));
    EXPECT_EQ(GetApp().GetEntities().size(), 2u);
    EXPECT_EQ(GetSim().GetWorldBody()->GetGeoms().size(), 1u);
}

TEST_F(SceneFileTest, TextThatIsNoSceneRaisesNothing) {
    for (const char* const text : {"", "\n", "version = 1", "{", "\"", "( ( (", "x = [1, 2", "\x01\xff;;;"}) {
        EXPECT_NO_THROW(Load(text)) << text;
        EXPECT_TRUE(GetApp().GetEntities().empty()) << text;
    }
}

TEST_F(SceneFileTest, AnEndlessFunctionIsStopped) {
    test::LogCapture log;
    Load("version = 1; " + Circle("") + "{ f = (x)=>{ f(x); f(x) }; f(1) };");
    EXPECT_EQ(GetApp().GetEntities().size(), 1u);
}

// ---- files

TEST_F(SceneFileTest, NamesAreCleaned) {
    const std::pair<const char*, const char*> table[] = {
        {"a", "a.vxa"},
        {"a.vxa", "a.vxa"},
        {"my scene", "my scene.vxa"},
        {"../../x", "x.vxa"},
        {"a/b\\c", "abc.vxa"},
        {"  .hidden", "hidden.vxa"},
        {"x\r\n", "x.vxa"},
        {"caf\xe9", "caf\xe9.vxa"},
        {"_AUTOSAVE.vxa", "AUTOSAVE.vxa"},
        {"...", ""},
        {"", ""},
        {" / ", ""},
    };
    for (const auto& [name, clean] : table) EXPECT_EQ(CleanSceneName(name), clean) << name;
    EXPECT_THROW(SaveScene(GetScene(), "///"), BadDataException);
}

TEST_F(SceneFileTest, ALongListKeepsWhatWasChangedLast) {
    const util::StringList before = ListNewestScenes(1000);
    const String folder = util::FileSystem::Instance().GetScenesDir();
    const std::time_t year = 365 * 86400, now = std::time(nullptr) + year;
    for (const auto& [name, at] : {std::pair<const char*, std::time_t>{"zz.vxa", now},
                                   {"yy.vxa", now - year * 9},
                                   {"ww.vxa", now + 5}}) {
        WriteScene(name, "version = 1");
        const timeval times[] = {{at, 0}, {at, 0}};
        utimes((folder + name).c_str(), times);
    }
    EXPECT_EQ(ListNewestScenes(2), (util::StringList{"ww.vxa", "zz.vxa"}));
    EXPECT_EQ(ListNewestScenes(1000).size(), before.size() + 3);
}

TEST_F(SceneFileTest, SavedScenesAreLoadedByNameAndPath) {
    AddCircle({1, 2});
    EXPECT_EQ(SaveScene(GetScene(), "mine"), "mine.vxa");
    GetApp().Clear();
    GetSim().m_running->Set(true);
    test::LogCapture log;
    EXPECT_TRUE(SceneLoader::Load(GetScene(), GetView(), "mine.vxa"));
    EXPECT_TRUE(log.Contains("Loaded scene mine.vxa"));
    EXPECT_EQ(GetApp().GetEntities().size(), 1u);
    EXPECT_FALSE(GetSim().m_running->Get());

    const String path = util::FileSystem::Instance().GetScenesDir() + "mine.vxa";
    EXPECT_TRUE(SceneLoader::Load(GetScene(), GetView(), path, true));
    EXPECT_TRUE(log.Contains("Imported scene " + path));
    EXPECT_EQ(GetApp().GetEntities().size(), 2u);
    EXPECT_STREQ(GetUndoer().GetUndoName(), "UndoImportScene");
}

// Slices of no time at all: the moment stays the one at which it was begun.
TEST_F(SceneFileTest, WrittenInSlicesItIsTheSceneOfOneMoment) {
    for (int i = 0; i < 5; ++i) AddTriangle({static_cast<float>(2 * i), 0});
    GetSim().AddParticle(new physics::Particle({1.25f, 1}, {}));
    const String moment = Save();
    SceneWriter writer(GetScene(), "slices.vxa");
    int slices = 1;
    for (; !writer.Continue(0); ++slices) {
        if (GetApp().GetEntities().size() < 2) continue;
        GetApp().GetEntities()[0]->Transform(math::RigidTransform(0, {0.1f, 0}));
        GetApp().RemoveEntity(GetApp().GetEntities().back());
        GetSim().ClearParticles();
    }
    EXPECT_EQ(slices, 6) << "five shapes and the water";
    EXPECT_EQ(util::FileSystem::Instance().ReadFile(GetPathToWrite("slices.vxa")), moment);
}

// By a clock that goes on by 20 ms at each look.
TEST_F(SceneFileTest, ALongReadingTellsHowFarItIs) {
    String text = "version = 1;\n";
    for (int i = 0; i < 40; ++i) text += Circle("");
    std::vector<int> told;
    const util::SharedPtr<util::Pointee> owner = new CircleEntity(new physics::Circle(1, {}));
    GetScene().GetOnLoading().Add(
        new util::Callback([&] { told.push_back(GetScene().GetLoadedPart()); }, owner));
    static double s_now = 0;  // s
    util::Clock::SetSource([] { return s_now += 0.02; });
    Load(text);
    ASSERT_GT(told.size(), 5u);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_GT(told.front(), 10) << "not at once";
    EXPECT_EQ(told.back(), 100);
    told.clear();
    Load(Circle(""));
    EXPECT_TRUE(told.empty()) << "a short one";
}

TEST_F(SceneFileTest, UndoOfALoadBringsBackTheSameObjects) {
    WriteScene("other.vxa", "version = 1; " + Circle(""));
    const auto triangle = AddTriangle({0, 0});
    const String before = Describe();
    ASSERT_TRUE(SceneLoader::Load(GetScene(), GetView(), "other.vxa"));
    EXPECT_FALSE(GetScene().HasEntity(triangle));
    const String loaded = Describe();
    GetUndoer().Undo();
    EXPECT_EQ(Describe(), before);

    const String name = GetScene().GetName();
    util::FileSystem::Instance().Remove(util::FileSystem::Instance().GetScenesDir() + "other.vxa");
    GetUndoer().Redo();
    EXPECT_EQ(Describe(), loaded) << "the file has gone, what was loaded comes back";
    EXPECT_EQ(GetScene().GetName(), "other.vxa");
    GetUndoer().Undo();
    EXPECT_EQ(Describe(), before);
    EXPECT_EQ(GetScene().GetName(), name);
}

// One ctrl+z too many never empties the world.
TEST_F(SceneFileTest, TheFirstSceneIsTheFloorOfTheHistory) {
    WriteScene("start.vxa", "version = 1; " + Circle(""));
    ASSERT_TRUE(SceneLoader::LoadAtStart(GetScene(), GetView(), "start.vxa"));
    GetUndoer().Undo();
    EXPECT_EQ(GetScene().GetEntities().size(), 1u);
    EXPECT_EQ(GetScene().GetName(), "start.vxa");
}

// Step by step backwards and forwards over a load, erasing and drawing.
TEST_F(SceneFileTest, RedoAfterALoadFindsItsEntities) {
    WriteScene("other.vxa", "version = 1; " + Circle(""));
    ASSERT_TRUE(SceneLoader::Load(GetScene(), GetView(), "other.vxa"));
    GetUndoer().Do(new EraseEntities(GetScene(), {GetScene().GetEntities().front()}));
    GetUndoer().Undo();
    GetUndoer().Undo();
    GetUndoer().Redo();
    EXPECT_EQ(GetScene().GetEntities().size(), 1u);
    GetUndoer().Redo();
    EXPECT_TRUE(GetScene().GetEntities().empty());
}

TEST_F(SceneFileTest, WhatCannotBeReadChangesNothing) {
    AddCircle({1, 2});
    const String before = Describe();
    GetSim().m_running->Set(true);
    GetUndoer().Clear();
    test::LogCapture log;
    EXPECT_FALSE(SceneLoader::Load(GetScene(), GetView(), "missing.vxa"));
    EXPECT_TRUE(log.Contains("-- Warning: Tried to load non-existing file: " +
                             util::FileSystem::Instance().GetScenesDir() + "missing.vxa"));
    for (const char* const text : {"x = \"open", "{ type = [", "a + b * c"}) {
        WriteScene("broken.vxa", text);
        EXPECT_FALSE(SceneLoader::Load(GetScene(), GetView(), "broken.vxa")) << text;
    }
    EXPECT_EQ(Describe(), before);
    EXPECT_TRUE(GetSim().m_running->Get());
    EXPECT_EQ(GetUndoer().GetUndoCount(), 0u);
}

TEST_F(SceneFileTest, ALastSceneThatCannotBeReadIsKept) {
    const util::FileSystem& files = util::FileSystem::Instance();
    WriteScene("start.vxa", "x = \"open");
    test::LogCapture log;
    EXPECT_FALSE(SceneLoader::LoadAtStart(GetScene(), GetView(), "start.vxa"));
    EXPECT_FALSE(files.Exists(files.GetScenesDir() + "start.vxa.bad"));
    EXPECT_FALSE(SceneLoader::LoadLast(GetScene(), GetView(), "start.vxa"));
    EXPECT_EQ(files.ReadFile(files.GetScenesDir() + "start.vxa.bad"), "x = \"open");
    EXPECT_TRUE(log.Contains("start.vxa.bad"));
    EXPECT_FALSE(SceneLoader::LoadLast(GetScene(), GetView(), "nowhere.vxa"));
    EXPECT_FALSE(files.Exists(files.GetScenesDir() + "nowhere.vxa.bad"));
}

}  // namespace
}  // namespace app

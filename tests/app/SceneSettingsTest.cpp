#include "SceneFixture.h"
#include "app/files/SceneFiles.h"
#include "app/files/SceneLoader.h"
#include "app/history/Actions.h"
#include "physics/SPH.h"
#include "script/Expressions.h"
#include "script/Parser.h"
#include "util/FileSystem.h"

namespace app {
namespace {

using math::Vec2;

const String CIRCLE =
    "{ type = \"circle\"; id = 1; radius = 0.5; pos = [0.0, 1.0]; angle = 0.0; color = [1.0, 1.0, 1.0] }";

String SceneWith(const String& settings) {
    return "version = 1;\n{ type = \"settings\"; " + settings + " };\n" + CIRCLE;
}

class SceneSettingsTest : public test::SceneFixture {
  protected:
    void TearDown() override {
        GetScene().GetSettings().Set({});
        GetSim().m_gravity->Set(GetSim().m_gravity->GetDefault());
        SceneFixture::TearDown();
    }
    static Vec2 Gravity() { return GetSim().m_gravity->Get(); }
    static void LoadFile(const String& name, const String& text, bool import = false) {
        const util::FileSystem& files = util::FileSystem::Instance();
        files.MakeDir(files.GetScenesDir());
        files.WriteFileAtomically(files.GetScenesDir() + name, text);
        EXPECT_TRUE(SceneLoader::Load(GetScene(), GetView(), name, import));
    }
};

TEST_F(SceneSettingsTest, HoldUntilTheNextSceneAndComeBackByUndo) {
    GetSim().m_gravity->Set({0, -5});
    physics::SPH& water = physics::SPH::Instance();
    const float usersDensity = water.m_density->Get();
    LoadFile("moon.vxa", SceneWith("gravity = [0.0, 0 - 1.6]; density = 2"));
    EXPECT_EQ(Gravity(), Vec2(0, -1.6f));
    EXPECT_EQ(water.m_density->Get(), 2);
    LoadFile("earth.vxa", "version = 1;\n" + CIRCLE);
    EXPECT_EQ(Gravity(), Vec2(0, -5)) << "the user's own";
    EXPECT_EQ(water.m_density->Get(), usersDensity);
    GetUndoer().Undo();
    EXPECT_EQ(Gravity(), Vec2(0, -1.6f));
    GetSim().m_gravity->Set({0, -3});  // the scene's, for it is open
    GetUndoer().Undo();
    EXPECT_EQ(Gravity(), Vec2(0, -5));
    GetUndoer().Redo();
    EXPECT_EQ(Gravity(), Vec2(0, -3));
    GetApp().ClearScene();
    EXPECT_EQ(Gravity(), Vec2(0, -5));
}

TEST_F(SceneSettingsTest, AreSavedWithTheSceneWhereTheyDifferFromTheUsers) {
    Load(SceneWith("gravity = [0.0, -1.6]; airDensity = 0.5"));
    const String saved = Save();
    EXPECT_NE(saved.find("airDensity = 0.5;\n    gravity = [0.0, -1.6];\n    type = \"settings\""),
              String::npos)
        << saved;
    Load(saved);
    EXPECT_EQ(Save(), saved);
    GetSim().m_gravity->Set(GetSim().m_gravity->GetDefault());
    EXPECT_EQ(Save().find("gravity"), String::npos) << "that is the user's own again";
    Load(CIRCLE);
    EXPECT_EQ(Save().find("settings"), String::npos);
}

TEST_F(SceneSettingsTest, TheUsersOwnAreSavedAsHis) {
    Load(SceneWith("gravity = [0.0, -1.6]"));
    EXPECT_EQ(Gravity(), Vec2(0, -1.6f));
    {
        const SceneSettings::UsersTurn usersOwn(GetScene().GetSettings());
        EXPECT_EQ(Gravity(), GetSim().m_gravity->GetDefault());
    }
    EXPECT_EQ(Gravity(), Vec2(0, -1.6f));
}

TEST_F(SceneSettingsTest, TheUserMakesHisOwnTheScenesAndBack) {
    SceneSettings& settings = GetScene().GetSettings();
    GetSim().m_gravity->Set({0, -1.6f});
    GetUndoer().Do(new ToggleSceneSettings(settings));
    EXPECT_EQ(Gravity(), Vec2(0, -1.6f));
    GetSim().m_airDensity->Set(0.5f);  // the scene's from now on
    const String saved = Save();
    EXPECT_NE(saved.find("airDensity = 0.5;\n    gravity = [0.0, -1.6"), String::npos) << saved;
    GetUndoer().Do(new ToggleSceneSettings(settings));
    EXPECT_EQ(Gravity(), GetSim().m_gravity->GetDefault()) << "the moon has gone to the scene";
    GetUndoer().Undo();
    EXPECT_EQ(Gravity(), Vec2(0, -1.6f));
    EXPECT_EQ(Save(), saved);
    GetUndoer().Undo();
    EXPECT_EQ(Gravity(), Vec2(0, -1.6f)) << "as it was the user's own";
    EXPECT_TRUE(settings.IsEmpty());
    EXPECT_EQ(GetSim().m_airDensity->Get(), GetSim().m_airDensity->GetDefault());
    GetUndoer().Redo();
    EXPECT_EQ(Save(), saved);
    LoadFile("earth.vxa", "version = 1;\n" + CIRCLE);
    EXPECT_EQ(Gravity(), GetSim().m_gravity->GetDefault());
    while (GetUndoer().GetUndoCount() > 0) GetUndoer().Undo();
    EXPECT_EQ(Gravity(), Vec2(0, -1.6f));
    EXPECT_EQ(Save().find("settings"), String::npos);
}

TEST_F(SceneSettingsTest, AFormulaStaysTheUsers) {
    GetSim().m_airDensity->SetValue(script::Parser::Instance().Execute("{ 0.25 }"));
    ASSERT_TRUE(GetSim().m_airDensity->IsBound());
    GetScene().GetSettings().Adopt();
    EXPECT_EQ(GetScene().GetSettings().GetBundle()->count("airDensity"), 0u);
    EXPECT_TRUE(GetSim().m_airDensity->IsBound());
    GetSim().m_airDensity->Set(GetSim().m_airDensity->GetDefault());
}

TEST_F(SceneSettingsTest, ImportsBringNone) {
    LoadFile("moon.vxa", SceneWith("gravity = [0.0, -1.6]"), true);
    EXPECT_EQ(Gravity(), GetSim().m_gravity->GetDefault());
    EXPECT_EQ(GetApp().GetEntities().size(), 1u);
}

// Work, switches, formulas and what is no number stay out of a stranger's reach.
TEST_F(SceneSettingsTest, OnlyHarmlessNumbersAreTaken) {
    const char* const bad[] = {"solveIter = 10000",      "timeDelta = 0.00001",      "running = true",
                               "radius = 0.001",         "gravity = { [0.0, 1.0] }", "gravity = 3",
                               "airDensity = \"thick\"", "airDensity = 1.0 / 0.0"};
    for (const char* const setting : bad) {
        test::LogCapture log(logging::Warning);
        const String before =
            GetSim().ToExpression()->ToCode() + physics::SPH::Instance().ToExpression()->ToCode();
        Load(SceneWith(setting));
        EXPECT_EQ(GetSim().ToExpression()->ToCode() + physics::SPH::Instance().ToExpression()->ToCode(),
                  before)
            << setting;
        EXPECT_GE(log.Count("setting"), 1) << setting;
        EXPECT_EQ(GetApp().GetEntities().size(), 1u) << setting;
    }
}

}  // namespace
}  // namespace app

#include <algorithm>

#include "SceneFixture.h"
#include "input/KeyBinder.h"
#include "physics/SPH.h"
#include "script/Parser.h"

namespace app {
namespace {

// Stands for the parts of the program that lie above: what they would do is counted.
class Stub : public script::Reflected {
  public:
    Stub(const char* name, std::initializer_list<const char*> commands) : Reflected(name) {
        for (const char* const command : commands) AddCmd(command, [this] { ++m_effects; });
        script::DeclareAttrib(*this, "maxFPS", 60.0f);
        script::DeclareAttrib(*this, "scale", 1.0f);
        script::DeclareAttrib(*this, "fullscreen", false);
        script::DeclareAttrib(*this, "resolution", math::Vec2(1024, 768));
        AddCmd1("press", [this](const String&) { ++m_effects; });
    }
    int m_effects = 0;
};
using StubPtr = util::SharedPtr<Stub>;

// A stranger's scene, in the program as it stands.
class GuestSceneTest : public test::SceneFixture {
  protected:
    void SetUp() override {
        script::Parser::SetKeyBinderFactory([] { return script::ReflectedPtr(new script::KeyBinder); });
        SceneFixture::SetUp();
        m_system = new Stub("System", {"exit", "screenshot", "recreateWindow"});
        m_gui = new Stub("GUI", {"Clear"});
        m_resources = new Stub("Resources", {"unloadAll", "reloadAll", "reloadTextures"});
        for (const script::ReflectedPtr& part : GetParts()) script::Reflected::AddToRoot(part);
        m_parser.Execute(
            "helper = { Sim.running = true; System.exit }; setter = (o)=>{ o.maxFPS = 1 }; mine = 5;"
            "Keys.bind(\"space\", { Sim.running = ! Sim.running })");
    }
    void TearDown() override {
        m_parser.Execute("Keys.unbind(\"space\")");
        for (const char* const name : {"helper", "setter", "mine"})
            m_parser.GetRootClosure()->RemoveVariable(name);
        for (const script::ReflectedPtr& part : GetParts()) {
            m_parser.GetRootClosure()->RemoveVariable(part->GetReflectedName());
        }
        SceneFixture::TearDown();
    }

    std::vector<script::ReflectedPtr> GetParts() {
        return {m_system, m_gui, m_resources, &GetSim(), &physics::SPH::Instance(), &GetApp()};
    }

    static String Circle(const String& before, const String& friction) {
        return "{ " + before + "; type = \"circle\"; id = 5; radius = 0.5; color = [0.5, 0.5, 0.5]; " +
               "pos = [1.0, 2.0]; friction = " + friction + " }";
    }
    static String FindDifference(const String& before, const String& after) {
        const auto place = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
        const size_t at = static_cast<size_t>(place.first - before.begin());
        const size_t line = before.rfind('\n', at) == String::npos ? 0 : before.rfind('\n', at) + 1;
        return before.substr(line, 200) + " is now " + after.substr(line, 200);
    }
    void LiveIn(const String& scene) {
        Load("version = 1;\n" + scene + Circle("", "0.5"));
        for (int frame = 0; frame < 3; ++frame) {
            m_parser.Update();
            RunFor(1);
        }
    }
    // Reads the scene and lets it live for some frames, and tells what is different from before.
    String FindDamage(const String& scene) {
        // What any scene changes, as windows note their places, is no damage.
        LiveIn("");
        const String before = m_parser.GetRootCode();
        LiveIn(scene + ";\n");
        String damage;
        for (const StubPtr& part : {m_system, m_gui, m_resources}) {
            if (part->m_effects != 0) damage += "command of " + part->GetReflectedName() + "; ";
            part->m_effects = 0;
        }
        const String after = m_parser.GetRootCode();
        if (after != before) damage += "settings: " + FindDifference(before, after);
        if (m_parser.ExecuteToString("(1 + 1) * 2") != "4") damage += "operators";
        // The good circle behind is there whatever the rest has done.
        if (GetScene().GetEntities().empty()) damage += "scene";
        if (!damage.empty()) m_parser.Execute(before);
        return damage;
    }

    script::Parser& m_parser = script::Parser::Instance();
    StubPtr m_system, m_gui, m_resources;
};

const char* const ATTEMPTS[] = {
    "System.exit",
    "System.screenshot",
    "System.recreateWindow",
    "System.resolution = [64, 48]",
    "System.fullscreen = true",
    "System.maxFPS = 1",
    "GUI.scale = 9",
    "GUI.Clear",
    "GUI.press \"Exit\"",
    "Resources.unloadAll",
    "Resources.reloadAll",
    "Resources.reloadTextures",
    "Sim.running = true",
    "Sim.gravity = [0, 9]",
    "Sim.gravity = { [0, 9] }",
    "Sim.timeDelta = 10",
    "SPH.viscosity = 100",
    "SPH.radius = 0",
    "App.language = \"Swedish\"",
    "App.maxUndo = 0",
    "App.autosaveTime = 1000000",
    "App.undo",
    "App.redo",
    "App.snapshot",
    "App.Background.opacity = 0",
    "App.invented = 1",
    "Keys.bind(\"space\", { System.exit })",
    "Keys.bind(\"a\", { 1 })",
    "Keys.unbind(\"space\")",
    "Keys.autoexec(\"space\", { 1 })",
    "k = Keys; k.bind(\"space\", { 1 })",
    "b = [Keys.bind]; b 0 (\"space\", { 1 })",
    "s = Sim; s.running = true",
    "s = [Sim]; (s 0).running = true",
    "s = { Sim }; s.running = true",
    "a = b = Sim; b.running = true",
    "a = App; g = a.Background; g.opacity = 0",
    "(o)=>{ o.running = true } Sim",
    "f = (o)=>{ p = o; p.running = true }; f Sim",
    "f = (o)=>{ (v)=>{ o.running = v } }; f Sim true",
    "f = { { Sim.running = true } }; f()",
    "[{ System.exit }, { 0 }](0)()",
    "e = [{ System.exit }]; e(0)()",
    "helper",
    "h = { helper }; h",
    "x = [helper, helper]",
    "setter System",
    "setter(System)",
    "math.add = 5",
    "math = 5; math.pi = 3",
    "m = math; m.add = { 0 }",
    "mine.x = 1",
    "f = (n)=>{ [{ System.exit }, { f(n - 1) }](n / 3)() }; f 3",
    "x = \"a\" + System.screenshot",
    "x = math.sin(Sim.running = true)",
    "Sim.timeFactor = Sim.timeFactor * 2",
    "infix 0 left: _ + _ => nothing; infix 0 left: _ * _ => nothing",
    "infix 1 left: go _ => helper; go 1",
    "infix 1 left: _ to _ => (a, b)=>{ a.running = b }; Sim to true",
    "f = { f }; f; System.exit",
    "s = \"xxxxxxxxxxxxxxxx\"; d = { s + s }; System.exit",
};

// As a statement of an entity, behind a formula, as a formula, at the top, in a function of the top.
TEST_F(GuestSceneTest, NoAttemptGetsThrough) {
    for (const String attempt : ATTEMPTS) {
        const String scenes[] = {
            Circle(attempt, "0.5"),
            Circle("", "{ " + attempt + "; 0.5 }"),
            Circle("late = { " + attempt + "; 0.25 }", "{ late }"),
            Circle("", "{ x = [{ " + attempt + " }]; x(0)(); 0.5 }"),
            attempt,
            "version = { " + attempt + "; 1 }()",
        };
        for (const String& scene : scenes) EXPECT_EQ(FindDamage(scene), "") << scene;
    }
}

TEST_F(GuestSceneTest, FormulasFollowTheWorld) {
    Load("version = 1; " + Circle("base = Sim.timeFactor", "{ 0.25 + (Sim.timeFactor / 4) }"));
    const auto circle = util::DynamicCast<GeomEntity>(GetScene().GetEntities().at(0));
    EXPECT_EQ(circle->m_friction->Get(), 0.5f);
    m_parser.Execute("Sim.timeFactor = 3.0");
    EXPECT_EQ(circle->m_friction->Get(), 1);
    m_parser.Execute("Sim.timeFactor = 1");
    EXPECT_NE(Save().find("friction = {0.25 + (Sim.timeFactor / 4)}"), String::npos) << Save();
}

// One bad entity costs itself: the good circle beside it lives, and the world goes on.
TEST_F(GuestSceneTest, ABadEntityCostsItself) {
    const char* const bad[] = {
        "{ type = \"circle\"; id = 2147483647147483647; radius = 1.0; pos = [0.0, 0.0] }",
        "{ type = \"circle\"; id = 7; radius = 1.0e999; pos = [0.0, 0.0] }",
        "{ type = \"circle\"; id = 7; radius = 1000000.0; pos = [0.0, 0.0] }",
        "{ type = \"circle\"; id = 7; radius = 1.0; pos = [0.0, 1000000.0] }",
        "{ type = \"polygon\"; id = 7; vecs = [[-1000000.0, 0.0], [1000000.0, 0.0], [0.0, 900000.0]] }",
        "{ f = { f }; f; type = \"circle\"; id = 7; radius = { f } }",
        "{ f = (n)=>{ f2 n }; f2 = (n)=>{ [{ 0 }, { f2(n - 1) + f2(n - 1) }]((n + 99) / 100)() }; f2 60 }",
        "{ s = \"0123456789abcdef\"; d = (x)=>{ x + x }; e = (x)=>{ d(d(d(d(x)))) }; t = e(e(e(e(e(s)))))}",
    };
    for (const char* const entity : bad) {
        Load(String("version = 1;\n") + entity + ";\n" + Circle("", "0.5"));
        ASSERT_FALSE(GetScene().GetEntities().empty()) << entity;
        const auto good = util::DynamicCast<GeomEntity>(GetScene().GetEntities().back());
        GetSim().m_running->Set(true);
        RunFor(20);
        GetSim().m_running->Set(false);
        ASSERT_TRUE(GetScene().HasEntity(good)) << entity;
        const math::Vec2 pos = good->GetGeom()->GetPos();
        EXPECT_TRUE(std::isfinite(pos.x) && std::isfinite(pos.y)) << entity;
    }
}

}  // namespace
}  // namespace app

#include "app/AppGUI.h"

#include <boost/filesystem.hpp>
#include <cmath>
#include <stdexcept>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/Language.h"
#include "app/entities/GeomEntity.h"
#include "app/files/SceneFiles.h"
#include "app/tools/BrushTool.h"
#include "app/tools/MoveTool.h"
#include "app/tools/PanTool.h"
#include "app/tools/RotateTool.h"
#include "app/widgets/Hint.h"
#include "gui/components/TextField.h"
#include "input/Key.h"
#include "physics/Simulation.h"
#include "script/Parser.h"
#include "support/LogCapture.h"
#include "util/Clock.h"
#include "util/FileNames.h"
#include "util/FileSystem.h"

namespace app {
namespace {

using gui::Key;
using math::Vec2;
namespace fs = boost::filesystem;

class AppGUITest : public test::AppGUIFixture {
  protected:
    template <class T>
    static bool IsToolA() {
        return dynamic_cast<T*>(&GUI().GetTool()) != nullptr;
    }
};

TEST_F(AppGUITest, GesturesReachTheirTools) {
    AddBox({0, 0}, 2);
    const struct {
        const char* name;
        int button;
        bool onEntity;
        bool (*isExpected)();
        bool handled;
    } cases[] = {
        {"left on ground draws", Key::LeftMouse, false, IsToolA<BrushTool>, true},
        {"left on an entity moves", Key::LeftMouse, true, IsToolA<MoveTool>, true},
        {"right on ground pans", Key::RightMouse, false, IsToolA<PanTool>, true},
        {"right on an entity rotates", Key::RightMouse, true, IsToolA<RotateTool>, true},
        {"middle does nothing", Key::MiddleMouse, false, IsToolA<BrushTool>, false},
    };
    for (const auto& c : cases) {
        const Vec2 place = c.onEntity ? Vec2(0, 0) : Vec2(3, 3);
        EXPECT_EQ(Press(place, c.button), c.handled) << c.name;
        EXPECT_TRUE(c.isExpected()) << c.name;
        Release();
        EXPECT_TRUE(IsToolA<BrushTool>()) << c.name;
    }
}

// A widget above the world that takes or fails what it gets.
class Widget : public gui::Component {
  public:
    void OnDragStart(gui::DragEvent& event) override {
        if (m_fails) throw std::runtime_error("The widget broke");
        event.m_handled = m_takes;
    }
    void OnDrag(gui::DragEvent& event) override { OnDragStart(event); }
    void OnKeyEvent(gui::KeyEvent& event) override { event.m_handled = m_takes; }

    bool m_takes = false;
    bool m_fails = false;
};

TEST_F(AppGUITest, WidgetsComeFirst) {
    const util::SharedPtr<Widget> widget = new Widget;
    GUI().AddChild(widget);
    const EntityPtr box = AddBox({0, 0});
    widget->m_takes = true;
    EXPECT_TRUE(Press({0, 0}, Key::LeftMouse));
    EXPECT_FALSE(box->IsMoving());
    DragTo({1, 1});
    Release();
    EXPECT_EQ(PlaceOf(box), Vec2(0, 0));
    App().GetSelection().Set({box});
    Key(Key::Delete);
    EXPECT_EQ(Entities().size(), 1u);
}

TEST_F(AppGUITest, FailuresOfUserActionsEndInTheLog) {
    const util::SharedPtr<Widget> widget = new Widget;
    GUI().AddChild(widget);
    const EntityPtr box = AddBox({0, 0});
    Press({0, 0}, Key::LeftMouse);
    DragTo({1, 1});
    widget->m_fails = true;
    test::LogCapture log(logging::Error);
    EXPECT_NO_THROW(DragTo({2, 2}));
    EXPECT_EQ(log.Count("The widget broke"), 1);
    EXPECT_FALSE(box->IsMoving()) << "the tool was not cancelled";
    EXPECT_EQ(PlaceOf(box), Vec2(0, 0));
    widget->m_fails = false;
    Release();
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(AppGUITest, ClicksSelect) {
    const EntityPtr a = AddBox({0, 0}), b = AddBox({3, 0});
    const EntitySet both{a, b};
    const struct {
        const char* name;
        Vec2 place;
        int button;
        EntitySet before;
        EntitySet after;
    } cases[] = {
        {"left on one", {0, 0}, Key::LeftMouse, {}, {a}},
        {"left on one of two", {0, 0}, Key::LeftMouse, both, {a}},
        {"left on ground", {0, 3}, Key::LeftMouse, both, {}},
        {"right on one", {3, 0}, Key::RightMouse, {a}, {b}},
        {"right on one of two keeps both", {3, 0}, Key::RightMouse, both, both},
        {"right on ground", {0, 3}, Key::RightMouse, both, {}},
    };
    for (const auto& c : cases) {
        App().GetSelection().Set(c.before);
        EXPECT_TRUE(Click(c.place, c.button)) << c.name;
        EXPECT_EQ(App().GetSelection().Get(), c.after) << c.name;
    }
    EXPECT_FALSE(Click({0, 0}, Key::MiddleMouse));
}

TEST_F(AppGUITest, WheelZoomsAboutTheMouseWithinBounds) {
    const Vec2 mouse = {2, 1};
    const Vec2 screen = App().WorldToGUI(mouse);
    EXPECT_TRUE(Key(Key::ScrollUp, false, mouse));
    EXPECT_TRUE(Key(Key::ScrollUp, false, mouse));
    // The second notch starts from where the first one is going.
    EXPECT_NEAR(View().GetTargetWorldToGUI().m[0][0], 100 * std::exp2(0.4), 1e-2);
    EXPECT_NEAR(View().GetTargetWorldToGUI()(mouse).x, screen.x, 1e-2);
    EXPECT_NEAR(View().GetTargetWorldToGUI()(mouse).y, screen.y, 1e-2);
    EXPECT_TRUE(Key(Key::ScrollDown, false, mouse));
    EXPECT_NEAR(View().GetTargetWorldToGUI().m[0][0], 100 * std::exp2(0.2), 1e-2);
    for (int i = 0; i < 200; ++i) Key(Key::ScrollUp, false, mouse);
    EXPECT_NEAR(View().GetTargetWorldToGUI().m[0][0], App::GetMaxZoom(), 1);
    for (int i = 0; i < 400; ++i) Key(Key::ScrollDown, false, mouse);
    EXPECT_NEAR(View().GetTargetWorldToGUI().m[0][0], App::GetMinZoom(), 1e-3);
}

TEST_F(AppGUITest, CtrlWheelStepsTheHistoryOncePerFrame) {
    for (int i = 0; i < 3; ++i) Drag(Circle({-4 + 4.0f * i, 0}, 1), Key::LeftMouse);
    ASSERT_EQ(Entities().size(), 3u);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(Key(Key::ScrollDown, true));
    EXPECT_EQ(Entities().size(), 2u);
    GUI().Update(0.01f);
    for (int i = 0; i < 5; ++i) Key(Key::ScrollDown, true);
    EXPECT_EQ(Entities().size(), 1u);
    GUI().Update(0.01f);
    Key(Key::ScrollUp, true);
    EXPECT_EQ(Entities().size(), 2u);
}

TEST_F(AppGUITest, Shortcuts) {
    const EntityPtr a = AddBox({0, 0}), b = AddBox({3, 0});
    EXPECT_TRUE(Key('a', true));
    EXPECT_EQ(App().GetSelection().GetSize(), 2u);

    EXPECT_TRUE(Key('g', true));
    EXPECT_TRUE(a->HasGroup());
    EXPECT_EQ(a->GetGroup(), b->GetGroup());
    EXPECT_EQ(UndoName(), "UndoGroupAssignment");
    Click({3, 0}, Key::LeftMouse);
    EXPECT_EQ(App().GetSelection().GetSize(), 2u) << "a click selects the group";
    EXPECT_TRUE(Key('u', true));
    EXPECT_FALSE(a->HasGroup());
    EXPECT_EQ(UndoName(), "UndoGroupRemoval");
    EXPECT_TRUE(Key('z', true));
    EXPECT_TRUE(a->HasGroup() && b->HasGroup());
    EXPECT_TRUE(Key('y', true));
    EXPECT_FALSE(a->HasGroup() || b->HasGroup());

    const size_t before = UndoCount();
    for (const int key : {'u', 'g', 'g', 'g'}) Key(key, true);
    EXPECT_EQ(UndoCount(), before + 1) << "what changes nothing is no step";
    Undoer::Instance().Undo();

    App().GetSelection().Set({b});
    EXPECT_TRUE(Key(Key::Delete));
    EXPECT_EQ(Entities(), EntityList{a});
    EXPECT_EQ(UndoName(), "UndoErase");

    const size_t steps = UndoCount();
    Key(Key::Delete);
    Key('g', true);
    Key('u', true);
    EXPECT_EQ(UndoCount(), steps) << "with nothing selected";
    for (const int key : {'a', 'z', 'g', 's'}) EXPECT_FALSE(Key(key)) << "without ctrl";
    GUI().SelectTool("brush");  // "s" is a tool's letter
    EXPECT_FALSE(Key(Key::Escape)) << "nothing to cancel";
}

// ---- saving

double s_now = 1000;

class AppGUISaveTest : public AppGUITest {
  protected:
    AppGUISaveTest() : m_folder(fs::temp_directory_path() / fs::unique_path("vexa-%%%%%%")) {
        fs::create_directories(m_folder / "Scenes");
        m_oldWorkDir = util::FileSystem::Instance().GetWorkDir();
        util::FileSystem::Instance().SetWorkDir(m_folder.string() + "/");
        util::Clock::SetSource([] { return s_now; });
        StartAutosaveClock();
        Scene().SetName("");
    }
    ~AppGUISaveTest() override {
        util::Clock::SetSource(nullptr);
        util::FileSystem::Instance().SetWorkDir(m_oldWorkDir);
        fs::remove_all(m_folder);
    }
    // By an autosave, whose files are taken away.
    void StartAutosaveClock() {
        s_now += 1000;
        App().Update(0.01f);
        fs::remove(m_folder / "Scenes" / AUTOSAVE_SCENE);
        fs::remove(m_folder / AUTOSAVE_CONFIG_FILE);
    }
    bool Exists(const String& name) const { return fs::exists(m_folder / name); }
    String Read(const String& name) const {
        return util::FileSystem::Instance().ReadFile((m_folder / name).string());
    }

    static util::SharedPtr<gui::TextField> FindNameField() {
        return util::DynamicCast<gui::TextField>(FindWidget("EnterName"));
    }
    static void EnterName(const String& name) {
        FindNameField()->SetText(name);
        FindNameField()->GetOnEnter().CallAll();
    }

    fs::path m_folder;
    String m_oldWorkDir;
};

TEST_F(AppGUISaveTest, SavesUnderACleanName) {
    AddCircle({0, 0});
    test::LogCapture log(logging::Info);
    EXPECT_TRUE(GUI().SaveSceneAs("my scene", false));
    EXPECT_NE(Read("Scenes/my scene.vxa").find("circle"), String::npos);
    EXPECT_EQ(log.Count("Scene saved to my scene.vxa"), 1);
    EXPECT_EQ(Scene().GetName(), "my scene.vxa");

    EXPECT_TRUE(GUI().SaveSceneAs(AUTOSAVE_SCENE, true));
    EXPECT_EQ(Scene().GetName(), "my scene.vxa") << "an autosave renamed the scene";
    EXPECT_EQ(log.Count("Scene saved"), 1);
}

TEST_F(AppGUISaveTest, TheDialogNeverWritesOverASceneThatTheUserDidNotName) {
    EXPECT_TRUE(GUI().SaveSceneAs("scene-1.vxa", true));
    const String old = Read("Scenes/scene-1.vxa");
    AddCircle({0, 0});
    EXPECT_TRUE(Key('s', true));
    PressButton("Save");
    EXPECT_EQ(Read("Scenes/scene-1.vxa"), old);
    EXPECT_NE(Read("Scenes/scene-2.vxa").find("circle"), String::npos);
    AddBox({0, 2});
    EXPECT_TRUE(Key('s', true));
    PressButton("Save");
    EXPECT_NE(Read("Scenes/scene-2.vxa").find("polygon"), String::npos);
    EXPECT_FALSE(Exists("Scenes/scene-3.vxa"));
}

TEST_F(AppGUISaveTest, AnotherSceneIsReplacedAtTheSecondPressOnly) {
    EXPECT_TRUE(GUI().SaveSceneAs("mine.vxa", true));
    const String old = Read("Scenes/mine.vxa");
    AddCircle({0, 0});
    Key('s', true);
    ASSERT_TRUE(FindNameField());
    FindNameField()->SetText("mine.vxa");
    PressButton("Save");
    EXPECT_EQ(Read("Scenes/mine.vxa"), old);
    PressButton("Save");
    EXPECT_NE(Read("Scenes/mine.vxa").find("circle"), String::npos);
    EXPECT_FALSE(FindNameField()) << "the dialog has gone";
}

TEST_F(AppGUISaveTest, FailureToSaveIsTold) {
    test::LogCapture log(logging::Error);
    EXPECT_FALSE(GUI().SaveSceneAs("..", false));
    util::FileSystem::Instance().SetWorkDir("/proc/");
    EXPECT_FALSE(GUI().SaveSceneAs("x", false));
    EXPECT_EQ(log.Count("Error: "), 2);
    EXPECT_EQ(Scene().GetName(), "");
}

TEST_F(AppGUISaveTest, WhatBecameOfADialogIsTold) {
    AddCircle({0, 0});
    Key('s', true);
    EnterName("my car");
    const Language& language = Language::Instance();
    EXPECT_EQ(GUI().GetHint().GetText(), language.Get("SavedAs") + " my car");
    EXPECT_TRUE(Exists("Scenes/my car.vxa"));
    test::LogCapture log;
    GUI().LoadScene("nothing.vxa", false);
    EXPECT_EQ(GUI().GetHint().GetText(), language.Get("LoadFailed"));
}

TEST_F(AppGUISaveTest, ADialogThatCannotSaveKeepsTheName) {
    AddCircle({0, 0});
    test::LogCapture log;
    Key('s', true);
    const String name(300, 'x');
    EnterName(name);
    ASSERT_TRUE(FindNameField()) << "the dialog has gone";
    EXPECT_EQ(FindNameField()->GetText(), name);
    const auto told = util::DynamicCast<gui::Label>(FindWidget("SaveAsWhat"));
    ASSERT_TRUE(told);
    EXPECT_EQ(told->GetText(), Language::Instance().Get("SaveFailed"));
    EnterName("shorter");
    EXPECT_TRUE(Exists("Scenes/shorter.vxa"));
    EXPECT_FALSE(FindNameField());
}

TEST_F(AppGUISaveTest, AutosavesInTime) {
    script::Parser::Instance().Execute("autosaved = 1");
    AddCircle({0, 0});
    App().Update(0.01f);
    EXPECT_FALSE(Exists("Scenes/" + AUTOSAVE_SCENE));
    s_now += App().m_autosaveTime->Get();
    App().Update(0.01f);
    EXPECT_FALSE(Exists("Scenes/" + AUTOSAVE_SCENE));
    s_now += 1;
    App().Update(0.01f);
    EXPECT_NE(Read("Scenes/" + AUTOSAVE_SCENE).find("circle"), String::npos);
    EXPECT_NE(Read(AUTOSAVE_CONFIG_FILE).find("autosaved = 1"), String::npos);
    EXPECT_EQ(Scene().GetName(), "");

    // The clock starts anew, and goes on in an interface that is built anew.
    fs::remove(m_folder / "Scenes" / AUTOSAVE_SCENE);
    s_now += App().m_autosaveTime->Get() - 1;
    App().Update(0.01f);
    App().CreateGUI();
    s_now += 2;
    App().Update(0.01f);
    EXPECT_TRUE(Exists("Scenes/" + AUTOSAVE_SCENE));
}

TEST_F(AppGUISaveTest, AutosavesOnlyWhatHasChanged) {
    const String path = (m_folder / "Scenes" / AUTOSAVE_SCENE).string();
    const auto wasWritten = [&] {
        util::FileSystem::Instance().WriteFileAtomically(path, "marked");
        s_now += 1000;
        App().Update(0.01f);
        return Read("Scenes/" + AUTOSAVE_SCENE) != "marked";
    };
    App().StopSimulation();
    AddCircle({0, 0});
    wasWritten();
    EXPECT_FALSE(wasWritten());
    AddBox({0, 2});
    EXPECT_TRUE(wasWritten());
    EXPECT_FALSE(wasWritten());
    Key('a', true);
    Key('g', true);
    EXPECT_TRUE(wasWritten()) << "a group";
    BodyOf(Entities().front())->m_vel = {1, 0};
    physics::Simulation::Instance().Step(true);
    EXPECT_TRUE(wasWritten()) << "the world ran";
    const auto gravity = physics::Simulation::Instance().m_gravity;
    Scene().GetSettings().Adopt();
    wasWritten();
    gravity->Set({0, -1});
    EXPECT_TRUE(wasWritten()) << "the scene's gravity";
    Scene().GetSettings().Set({});
    wasWritten();
    fs::remove(path);
    s_now += 1000;
    App().Update(0.01f);
    EXPECT_TRUE(fs::exists(path)) << "the file had gone";
}

TEST_F(AppGUISaveTest, ASceneIsSavedBackToItsFile) {
    AddCircle({0, 0});
    EXPECT_TRUE(GUI().SaveSceneAs("mine.vxa", true));
    Scene().Clear();
    const String elsewhere = (m_folder / "far.vxa").string();
    fs::copy_file(m_folder / "Scenes" / "mine.vxa", elsewhere);
    for (const String& name : {String("mine.vxa"), elsewhere}) {
        Scene().SetName(GetSceneName(GetScenePath(name)));
        EXPECT_EQ(Scene().GetName(), name);
        AddBox({0, 2});
        EXPECT_TRUE(GUI().SaveSceneNamed(Scene().GetName()));
        EXPECT_NE(util::FileSystem::Instance().ReadFile(GetScenePath(name)).find("polygon"), String::npos)
            << name;
    }
    for (const String& own : {AUTOSAVE_SCENE, ONEXIT_SCENE, WELCOME_SCENE}) {
        EXPECT_EQ(GetSceneName(GetScenePath(own)), "") << own;
    }
}

TEST_F(AppGUISaveTest, UndoGivesNameAndViewOfTheSceneBackThatANewOneReplaced) {
    AddCircle({0, 0});
    EXPECT_TRUE(GUI().SaveSceneAs("mine.vxa", false));
    View().Pan(300, 0, false);
    const float place = View().GetTargetWorldToGUI()({0, 0}).x;
    EXPECT_TRUE(Key('n', true));
    EXPECT_EQ(Scene().GetName(), "");
    EXPECT_NE(View().GetTargetWorldToGUI()({0, 0}).x, place);
    EXPECT_TRUE(GUI().SaveSceneAs("second.vxa", false));
    Key('z', true);
    EXPECT_EQ(Scene().GetName(), "mine.vxa");
    EXPECT_EQ(Entities().size(), 1u);
    EXPECT_EQ(View().GetTargetWorldToGUI()({0, 0}).x, place);
    Key('y', true);
    EXPECT_EQ(Scene().GetName(), "second.vxa");
    EXPECT_TRUE(Entities().empty());
}

TEST_F(AppGUISaveTest, FailingAutosaveDoesNotStopTheProgram) {
    test::LogCapture log(logging::Error);
    util::FileSystem::Instance().SetWorkDir("/proc/");
    s_now += 1000;
    EXPECT_NO_THROW(App().Update(0.01f));
    EXPECT_GE(log.Count("Error: "), 1);
    log.Clear();
    s_now += 1000;
    App().Update(0.01f);
    EXPECT_EQ(log.Count(""), 0) << "told once";
}

}  // namespace
}  // namespace app

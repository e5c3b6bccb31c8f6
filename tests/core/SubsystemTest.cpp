#include "core/Subsystem.h"
#include "support/SourceDir.h"

#include <SDL/SDL.h>
#include <gtest/gtest.h>

#include "core/Platform.h"
#include "core/ResourceManager.h"
#include "gui/GUI.h"
#include "input/Input.h"
#include "input/Sdl2.h"
#include "rendering/Context.h"
#include "script/Parser.h"
#include "support/LogCapture.h"
#include "support/Settings.h"
#include "util/Exception.h"
#include "util/FileSystem.h"

namespace test {
namespace {

constexpr int RECREATIONS = 20;

// The program's window, made once; skipped where there is no display.
class SubsystemTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        try {
            core::Subsystem::Create();
        } catch (const std::exception&) {
            return;
        }
        util::FileSystem::Instance().SetWorkDir(test::GetSourceDir() + "/");
        script::Reflected::AddToRoot(&core::Subsystem::Instance());
        core::Subsystem::Instance().CreateWindow(MakeParams({320, 200}));
    }
    void SetUp() override {
        if (!core::Subsystem::IsCreated()) GTEST_SKIP() << "No display";
    }
    void TearDown() override {
        if (core::Subsystem::IsCreated()) GetSystem().CreateWindow(MakeParams({320, 200}));
    }

    static core::WindowParams MakeParams(math::Vec2i resolution) {
        core::WindowParams params;
        params.m_resolution = resolution;
        return params;
    }
    static core::Subsystem& GetSystem() { return core::Subsystem::Instance(); }
    static String Run(const String& text) { return script::Parser::Instance().ExecuteToString(text); }
};

TEST_F(SubsystemTest, SettingsAsScriptsSeeThem) {
    EXPECT_EQ(Run("System.resolution"), "[320, 200]");
    EXPECT_EQ(Run("System.objectTotal"), "0");
    EXPECT_GT(std::stoi(Run("System.objectCurrent")), 0);
    EXPECT_GT(std::stoi(Run("System.objectHandleCurrent")), 0);
    const String code = R"([0.1, "a, \"b\"", [true, 7]])";
    EXPECT_EQ(Run("System.code " + code), code) << "it reads back";
    EXPECT_EQ(Run("System.code (System.code 1.0)"), "\"1.0\"");
    EXPECT_TRUE(GetSystem().HasVariable("screenshot"));
    test::CheckSettings(GetSystem(), "vSync");  // which the display may refuse
}

TEST_F(SubsystemTest, TheResolutionIsClamped) {
    Run("System.resolution = [400, -5]; System.recreateWindow");
    EXPECT_EQ(Run("System.resolution"), "[400, 1]");
    EXPECT_EQ(rendering::Context::GetSize(), math::Vec2i(400, 1));
    Run("System.resolution = [0, 1000000]");
    EXPECT_EQ(Run("System.resolution"), "[0, 1000000]") << "a wish, until the window is made";
}

// Fails once, at the window's next change of size.
class FailingComponent : public gui::Component {
  public:
    void FitToParent() override {
        if (m_armed) {
            m_armed = false;
            throw std::runtime_error("no room");
        }
    }
    bool m_armed = false;
};

TEST_F(SubsystemTest, AFailedCreationBringsBackTheFormerWindow) {
    const util::SharedPtr<FailingComponent> failing = new FailingComponent;
    gui::GUI::Instance().GetRoot()->AddChild(failing);
    failing->m_armed = true;
    EXPECT_THROW(GetSystem().CreateWindow(MakeParams({400, 300})), std::runtime_error);
    EXPECT_EQ(rendering::Context::GetSize(), math::Vec2i(320, 200));
    EXPECT_EQ(gui::GUI::Instance().GetSize(), math::Vec2(320, 200));

    failing->m_armed = true;
    LogCapture log(logging::Warning | logging::Error);
    Run("System.resolution = [400, 300]; System.recreateWindow");
    EXPECT_TRUE(log.Contains("no room")) << "the caller is told";
    EXPECT_EQ(Run("System.resolution"), "[320, 200]");
    gui::GUI::Instance().GetRoot()->RemoveChild(failing);
}

// What SDL 2 sends for a drop, in the layout of its SDL_DropEvent.
TEST_F(SubsystemTest, FilesDroppedOnTheWindowAreTaken) {
    struct {
        uint32_t m_type = 0x1000, m_time = 0;
        char* m_file = nullptr;
        uint32_t m_rest[12] = {};
    } drop;
    const auto push = gui::FindSdl2<int(void*)>("SDL_PushEvent");
    const auto copy = gui::FindSdl2<char*(const char*)>("SDL_strdup");
    if (push == nullptr || copy == nullptr) GTEST_SKIP() << "No SDL 2";
    for (const char* const path : {"/home/a child/one.vxa", "/two.vxa"}) {
        drop.m_file = copy(path);
        push(&drop);
    }
    EXPECT_EQ(core::TakeDroppedFiles(), (util::StringList{"/home/a child/one.vxa", "/two.vxa"}));
    EXPECT_TRUE(core::TakeDroppedFiles().empty());
    SDL_Event key{};
    key.type = SDL_KEYDOWN;
    SDL_PushEvent(&key);
    EXPECT_EQ(SDL_PollEvent(&key), 1) << "other events go their way";
}

TEST_F(SubsystemTest, TheUsersResizingMakesTheWindowAnew) {
    SDL_Event event{};
    event.type = SDL_VIDEORESIZE;
    event.resize.w = 350;
    event.resize.h = 250;
    gui::Input::Instance().HandleEvent(event);
    EXPECT_EQ(Run("System.resolution"), "[350, 250]");
    EXPECT_EQ(gui::GUI::Instance().GetSize(), math::Vec2(350, 250));
    LogCapture log(logging::Info);
    gui::Input::Instance().HandleEvent(event);
    EXPECT_FALSE(log.Contains("Creating window...")) << "the size is the present one";
}

TEST_F(SubsystemTest, MakingItAnewKeepsWhatWasLoaded) {
    script::Reflected::AddToRoot(&core::ResourceManager::Instance());
    const String usage = Run("Resources.vramUsage");
    EXPECT_NE(usage, "0");
    for (int i = 0; i < RECREATIONS; ++i) {
        core::WindowParams params = MakeParams({320 + i % 3, 200});
        params.m_frame = i % 2 == 0;  // a context of its own
        GetSystem().CreateWindow(params);
    }
    EXPECT_EQ(Run("Resources.vramUsage"), usage);
}

// Lives in the tree for some frames.
class FrameCounter : public gui::Component {
  public:
    void Update(float dt) override {
        m_time += dt;
        if (++m_updates == LAST_UPDATE) script::Parser::Instance().Execute("System.exit");
    }
    void DrawComp() override { ++m_drawings; }

    static constexpr int LAST_UPDATE = 30;
    int m_updates = 0;
    int m_drawings = 0;
    float m_time = 0;
};

TEST_F(SubsystemTest, TheLoopRunsUntilAskedToEnd) {
    const util::SharedPtr<FrameCounter> counter = new FrameCounter;
    gui::GUI::Instance().GetRoot()->AddChild(counter);
    Run("System.maxFPS = 500.0");
    GetSystem().Run();
    EXPECT_EQ(counter->m_updates, FrameCounter::LAST_UPDATE);
    EXPECT_EQ(counter->m_drawings, FrameCounter::LAST_UPDATE - 1) << "the frame that quits is not drawn";
    EXPECT_GT(counter->m_time, 0);
    EXPECT_GT(GetSystem().GetFPS(), 0);
    gui::GUI::Instance().GetRoot()->RemoveChild(counter);
}

}  // namespace
}  // namespace test

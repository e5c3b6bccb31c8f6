#include "input/Profiler.h"

#include "InputFixture.h"

namespace test {
namespace {

class ProfilerTest : public InputTest {
  protected:
    void SetUp() override {
        InputTest::SetUp();
        util::Profiler::Instance().Reset();
        m_input.AddListener(&util::Profiler::Instance());
    }
    void TearDown() override {
        m_input.RemoveListener(util::Profiler::Instance());
        util::Profiler::Instance().Reset();
        InputTest::TearDown();
    }

    // A frame of 10 ms in which "inner" takes 1 ms and "deep" below it another 2.
    void RunFrame() {
        {
            PROFILE_SECTION("outer");
            Wait(0.004, 0, 0);
            PROFILE_SECTION("inner");
            Wait(0.001, 0, 0);
            PROFILE_SECTION("deep");
            Wait(0.002, 0, 0);
        }
        {
            PROFILE_SECTION("flat");
            Wait(0.003, 0, 0);
        }
        util::Profiler::Instance().Update();
    }
    String GetViewed() {
        RunFrame();
        const String& report = util::Profiler::Instance().GetReport();
        const String before = "Profile data for ";
        const size_t start = report.find(before) + before.size();
        return report.substr(start, report.find('\n', start) - start);
    }
};

TEST_F(ProfilerTest, KeysBrowseTheTree) {
    RunFrame();
    Tap(gui::Key::Keypad0, '0');
    EXPECT_EQ(m_listener->m_lastKey.m_handled, false) << "while off only one key is its own";
    EXPECT_FALSE(util::Profiler::Instance().IsEnabled());
    Tap(gui::Key::KeypadMinus, '-');
    EXPECT_TRUE(util::Profiler::Instance().IsEnabled());
    EXPECT_EQ(GetViewed(), "Main");
    Tap(gui::Key::Keypad0 + 1, '1');
    EXPECT_EQ(GetViewed(), "Main") << "a child without children is not entered";
    Tap(gui::Key::Keypad0 + 7, '7');
    EXPECT_EQ(GetViewed(), "Main");
    Tap(gui::Key::Keypad0, '0');
    EXPECT_EQ(GetViewed(), "outer");
    Tap(gui::Key::KeypadEnter, 13);
    EXPECT_EQ(GetViewed(), "inner");
    Tap(gui::Key::KeypadPeriod, '.');
    EXPECT_EQ(GetViewed(), "outer");
    Tap(gui::Key::KeypadPeriod, '.');
    Tap(gui::Key::KeypadPeriod, '.');
    EXPECT_EQ(GetViewed(), "Main");
}

TEST_F(ProfilerTest, TakesItsPressesOnly) {
    gui::KeyEvent event;
    event.m_key = gui::Key::KeypadMinus;
    util::Profiler::Instance().OnKeyEvent(event);  // a release
    EXPECT_FALSE(event.m_handled);
    event.m_pressed = event.m_handled = true;
    util::Profiler::Instance().OnKeyEvent(event);
    EXPECT_FALSE(util::Profiler::Instance().IsEnabled());
    event.m_handled = false;
    util::Profiler::Instance().OnKeyEvent(event);
    EXPECT_TRUE(event.m_handled && util::Profiler::Instance().IsEnabled());
    event.m_handled = false;
    event.m_key = 'a';
    util::Profiler::Instance().OnKeyEvent(event);
    EXPECT_FALSE(event.m_handled);
}

}  // namespace
}  // namespace test

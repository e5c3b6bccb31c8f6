#include "app/windows/WindowSet.h"

#include <gtest/gtest.h>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/scene/AppGUISettings.h"

namespace {

using math::Vec2;

class WindowSetTest : public test::AppGUIFixture {
  protected:
    static app::WindowSet& Windows() { return GUI().GetWindows(); }

    static void SetState(const String& text) {
        App().GetGUISettings().m_windows->Set(text);
        App().CreateGUI();
        GUI().Update(0.01f);
    }
};

TEST_F(WindowSetTest, KeepsWhatIsOpenOverARebuild) {
    SetState("");
    EXPECT_TRUE(Windows().IsOpen("Tools"));
    EXPECT_FALSE(Windows().IsOpen("File"));
    GUI().GetCommands().Run("FileButton");
    Windows().Close("Tools");
    GUI().Update(0.01f);
    App().CreateGUI();
    EXPECT_FALSE(Windows().IsOpen("Tools"));
    EXPECT_TRUE(Windows().IsOpen("File"));
}

TEST_F(WindowSetTest, DocksWhatNobodyMoved) {
    SetState("Tools open - - Control open - - Statistics open - -");
    const gui::Window &tools = *Windows().Get("Tools"), &control = *Windows().Get("Control");
    EXPECT_EQ(tools.GetPos(), Vec2(8, 8));
    EXPECT_NEAR(control.GetPos().x + control.GetOuterSize().x / 2, 512, 1);
    const gui::Window& stats = *Windows().Get("Statistics");
    EXPECT_EQ(stats.GetPos(), Vec2(1024 - stats.GetOuterSize().x - 8, 8));
    App().SetSize(640, 480);
    GUI().Update(0.01f);
    EXPECT_NEAR(control.GetPos().x + control.GetOuterSize().x / 2, 320, 1);
    App().SetSize(1024, 768);
}

TEST_F(WindowSetTest, TilesFollowTheWidthOfTheInterface) {
    const std::function<size_t(const gui::Component&)> countColumns = [&](const gui::Component& parent) {
        for (const gui::ComponentPtr& child : parent.GetChildren()) {
            const bool isGrid = child->GetReflectedName().find("Grid") == 0;
            const size_t columns =
                isGrid ? child->GetChildren().front()->GetChildren().size() : countColumns(*child);
            if (columns > 0) return columns;
        }
        return size_t(0);
    };
    App().SetSize(300, 480);
    GUI().GetCommands().Run("ShowHelp");
    const size_t few = countColumns(GUI());
    EXPECT_GT(few, 0u);
    App().SetSize(1024, 768);
    GUI().Update(0.01f);
    EXPECT_GT(countColumns(GUI()), few);
    GUI().CloseDialog();
}

TEST_F(WindowSetTest, ReadsPlacesAndSurvivesDamage) {
    SetState("Tools open 300 200 File clo 1");
    EXPECT_EQ(Windows().Get("Tools")->GetPos(), Vec2(300, 200));
    SetState("Nothing open 1 1 Tools open x y");
    EXPECT_EQ(Windows().Get("Tools")->GetPos(), Vec2(8, 8));
    SetState("Tools open 5000 -70");
    const gui::Window& tools = *Windows().Get("Tools");
    EXPECT_LE(tools.GetPos().x + tools.GetOuterSize().x, 1024);
    EXPECT_GE(tools.GetPos().y, 0);
}

}  // namespace

#include <gtest/gtest.h>

#include <set>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "gui/Focus.h"
#include "gui/Window.h"
#include "gui/components/Button.h"
#include "gui/components/Slider.h"
#include "input/Key.h"
#include "script/Conversions.h"

namespace {

using gui::Component;
using gui::Focus;
using Controls = std::set<const Component*>;

constexpr int ARROWS[] = {gui::Key::Left, gui::Key::Right, gui::Key::Up, gui::Key::Down};

// The interface without a mouse.
class KeyboardTest : public test::AppGUIFixture {
  protected:
    ~KeyboardTest() override { Focus::Set(nullptr); }

    static void SendKey(int key) {
        gui::KeyEvent event;
        event.m_key = key;
        event.m_pressed = true;
        App().OnKeyEvent(event);
    }

    // What a mouse could press, drag or type into.
    static void CollectControls(const Component& parent, Controls& controls) {
        for (const gui::ComponentPtr& child : parent.GetChildren()) {
            const auto* const button = dynamic_cast<const gui::AbstractButton*>(child.Get());
            const bool isDisabled = button != nullptr && !button->IsEnabled();
            const bool isList = String(child->GetKind()) == "ScrollArea" && !child->CanFocus();
            if (child->TakesMouse() && !isDisabled && !isList) controls.insert(child.Get());
            CollectControls(*child, controls);
        }
    }

    static Controls GetReachedByTab(gui::Window& window, size_t count) {
        Controls reached;
        Focus::Set(nullptr);
        for (size_t i = 0; i < count; ++i) {
            Focus::Move(window, false);
            reached.insert(Focus::Get());
        }
        return reached;
    }

    // From wherever the focus is, over any number of steps.
    static void CollectReachedByArrows(gui::Window& window, Controls& reached) {
        Component* const from = Focus::Get();
        if (!reached.insert(from).second) return;
        for (const int arrow : ARROWS) {
            Focus::Set(from);
            if (Focus::Step(window, arrow)) CollectReachedByArrows(window, reached);
        }
    }

    static void ExpectAllReached(gui::Window& window) {
        Controls controls, reached;
        CollectControls(window, controls);
        ASSERT_FALSE(controls.empty());
        EXPECT_EQ(GetReachedByTab(window, controls.size()), controls) << window.GetTitle();
        CollectReachedByArrows(window, reached);
        for (const Component* control : controls)
            EXPECT_TRUE(reached.count(control)) << control->GetKey() << " of " << window.GetTitle();
    }

    static void ExpectAllReachedInOpenWindows() {
        const std::vector<gui::Window*> open = GetOpenWindows();
        ASSERT_FALSE(open.empty());
        for (gui::Window* const window : open) ExpectAllReached(*window);
    }
};

TEST_F(KeyboardTest, ReachesEveryControlOfWindowsAndDialogs) {
    for (const String& name : GUI().GetWindows().GetNames()) {
        GUI().GetWindows().Open(name);
        ExpectAllReachedInOpenWindows();
        GUI().GetWindows().Close(name);
    }
    for (const char* dialog :
         {"SaveScene", "LoadScene", "ImportScene", "ShowHelp", "ShowAbout", "ShowInfo"}) {
        GUI().GetCommands().Run(dialog);
        ExpectAllReachedInOpenWindows();
    }
}

TEST_F(KeyboardTest, ReachesEveryRowOfTheMenusOnShapes) {
    AddBox({0, 0});
    GUI().SelectTool("hinge");
    Click({0, 0}, gui::Key::LeftMouse);
    GUI().SelectTool("spring");
    Drag({{0.3f, 0}, {2, 1}}, gui::Key::LeftMouse);
    ASSERT_EQ(Entities().size(), 3u);
    Key('a', true);
    ASSERT_TRUE(Key('e', true));
    for (const char* menu : {"ChooseColor", "EntInfoButton", "CollisionMenuButton", "SelectMenuButton",
                             "GeomMenuButton", "HingeMenuButton", "SpringMenuButton"}) {
        const gui::ComponentPtr row = FindWidget(menu);
        ASSERT_TRUE(row) << menu;
        Focus::Set(row);
        SendKey(gui::Key::Return);
        ASSERT_EQ(GetOpenWindows().size(), 2u) << menu;
        EXPECT_TRUE(Focus::Get()->IsInside(*GetOpenWindows().back())) << "the menu has the keyboard";
        ExpectAllReachedInOpenWindows();
        Focus::Move(*GetOpenWindows().back(), false);
        SendKey(gui::Key::Escape);
        EXPECT_EQ(GetOpenWindows().size(), 1u) << menu;
        EXPECT_EQ(Focus::Get(), row.Get()) << "escape goes back to the row";
    }
    SendKey(gui::Key::Escape);
    EXPECT_TRUE(GetOpenWindows().empty());
}

TEST_F(KeyboardTest, ChoosesAShapeAndOpensItsMenu) {
    const app::EntityPtr left = AddBox({-2, 0}), right = AddBox({2, 0});
    ASSERT_TRUE(Key(gui::Key::PageDown));
    EXPECT_EQ(Scene().GetSelection().Get(), (app::EntitySet{left}));
    ASSERT_TRUE(Key(gui::Key::PageUp));
    EXPECT_EQ(Scene().GetSelection().Get(), (app::EntitySet{right}));
    ASSERT_TRUE(Key('e', true));
    EXPECT_TRUE(FindWidget("GeomMenuButton"));
    SendKey(gui::Key::Escape);
}

TEST_F(KeyboardTest, TheFocusStaysWhenTheLanguageChanges) {
    GUI().GetWindows().Open("File");
    const auto changeLanguage = [](const char* language) {
        App().m_language->SetValue(script::ValueToObject(language));
        App().Update(0);
    };
    for (const char* key : {"SaveScene", "ChangeLanguage"}) {
        Focus::Set(FindWidget(key));
        changeLanguage("German");
        ASSERT_NE(Focus::Get(), nullptr) << key;
        EXPECT_EQ(Focus::Get()->GetKey(), key);
        EXPECT_TRUE(Focus::Get()->IsInside(GUI()));
        changeLanguage("English");
        EXPECT_EQ(Focus::Get(), FindWidget(key).Get());
    }
    GUI().GetCommands().Run("ChangeLanguage");
    ASSERT_NE(Focus::Get()->GetKey(), "ChangeLanguage") << "the dialog has it";
    changeLanguage("German");
    EXPECT_EQ(Focus::Get(), FindWidget("ChangeLanguage").Get()) << "the dialog has given it back";
    Focus::Set(nullptr);
    changeLanguage("English");
    EXPECT_EQ(Focus::Get(), nullptr);
    GUI().GetWindows().Close("File");
}

}  // namespace

#include <gtest/gtest.h>

#include <filesystem>

#include "AppGUIFixture.h"
#include "app/App.h"
#include "app/Language.h"
#include "app/scene/AppGUISettings.h"
#include "gui/LookAndFeel.h"
#include "gui/Window.h"
#include "input/Key.h"
#include "support/SourceDir.h"
#include "util/FileSystem.h"

namespace {

using gui::Component;
using gui::ComponentPtr;
using math::Vec2;

constexpr Vec2 SMALL_SCREEN(640, 480);

// With the real font of each scale and all languages: no text is wider than what shows it, no window larger
// than a small screen.
class InterfaceTextTest : public test::AppGUIFixture, public testing::WithParamInterface<float> {
  protected:
    void SetUp() override {
        namespace fs = std::filesystem;
        const util::FileSystem& files = util::FileSystem::Instance();
        files.MakeDir(files.GetDataDir());
        for (const String folder : {"Fonts", "Language"}) {
            fs::copy(test::GetSourceDir() + "/Data/" + folder, files.GetDataDir() + folder,
                     fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        }
        ReloadFont();
        gui::Font::SetPixelsPerUnit(GetParam());
        App().SetSize(SMALL_SCREEN.x, SMALL_SCREEN.y);
    }

    void TearDown() override {
        gui::Font::SetPixelsPerUnit(1);
        App().m_language->Set("English");
        App().SetSize(1024, 768);
        App().CreateGUI();
    }

    static void ReloadFont() {
        gui::LookAndFeel::Get().GetFont()->Unload();
        gui::LookAndFeel::Get().GetFont()->Load();
    }

    static void UseLanguage(const String& name) {
        App().GetGUISettings().m_windows->Set("Tools closed - - Control closed - -");
        App().m_language->Set(name);
        App().CreateGUI();
    }

    static void ExpectTextFits(const Component& parent, const String& where) {
        for (const ComponentPtr& child : parent.GetChildren()) {
            const String text = child->GetShownText();
            const String kind = child->GetKind();
            if (kind == "Label" || kind == "Button" || kind == "Checkbox") {
                const float width = gui::FormatText(child->GetTextFormat(), text).m_width;
                EXPECT_LE(width, child->GetSize().x) << kind << " \"" << text << "\" in " << where;
            }
            ExpectTextFits(*child, where);
        }
    }

    static void ExpectFits(const gui::Window& window, const String& language) {
        const String where = window.GetTitle() + ", " + language;
        EXPECT_LE(window.GetOuterSize().x, SMALL_SCREEN.x) << where;
        EXPECT_LE(window.GetOuterSize().y, SMALL_SCREEN.y) << where;
        ExpectTextFits(window, where);
    }

    // Whatever is open now.
    static void ExpectAllFit(const String& language) {
        for (const gui::Window* const window : GetOpenWindows()) ExpectFits(*window, language);
    }
};

TEST_P(InterfaceTextTest, WindowsAndDialogs) {
    ASSERT_GE(app::Language::List().size(), 5u);
    for (const String& language : app::Language::List()) {
        UseLanguage(language);
        for (const String& name : GUI().GetWindows().GetNames()) {
            GUI().GetWindows().Open(name);
            ExpectAllFit(language);
            GUI().GetWindows().Close(name);
        }
        for (const char* dialog : {"SaveScene", "LoadScene", "ImportScene", "ChangeLanguage", "ShowHelp",
                                   "ShowAbout", "ShowInfo"}) {
            GUI().GetCommands().Run(dialog);
            ExpectAllFit(language);
        }
    }
}

TEST_P(InterfaceTextTest, MenusOnShapes) {
    AddBox({0, 0});
    GUI().SelectTool("hinge");
    Click({0, 0}, gui::Key::LeftMouse);
    GUI().SelectTool("spring");
    Drag({{0.3f, 0}, {2, 1}}, gui::Key::LeftMouse);
    GUI().SelectTool("brush");
    for (const String& language : app::Language::List()) {
        UseLanguage(language);
        Key('a', true);
        Key('e', true);
        for (const char* menu : {"ChooseColor", "EntInfoButton", "CollisionMenuButton", "SelectMenuButton",
                                 "GeomMenuButton", "HingeMenuButton", "SpringMenuButton"}) {
            PressButton(menu);
            ExpectAllFit(language);
            PressButton(menu);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Scales, InterfaceTextTest, testing::Values(1.0f, 1.5f, 2.0f, 3.0f));

}  // namespace

#include "gui/GUI.h"

#include <gtest/gtest.h>

#include <limits>

#include "Fixtures.h"
#include "gui/LookAndFeel.h"
#include "input/Input.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/Renderer.h"
#include "script/Conversions.h"
#include "support/LogCapture.h"
#include "support/gl/GlWindow.h"

namespace {

using gui::Component;
using gui::ComponentPtr;
using gui::GUI;
using math::Vec2;

void SetAttribute(const String& name, float value) {
    GUI::Instance().FindLocal(name)->SetValue(script::ValueToObject(value));
}

TEST(GUI, ScaleRulesCoordinatesAndSize) {
    GUI& root = GUI::Instance();
    root.Resize(800, 600);
    SetAttribute("scale", 2);
    EXPECT_EQ(root.GetSize(), Vec2(400, 300));
    EXPECT_EQ(root.GetRoot()->GetSize(), Vec2(400, 300));
    EXPECT_EQ(root.ToGUI({100, 100}), Vec2(50, 50));
    EXPECT_EQ(gui::Input::Instance().ToGUI({100, 100}), Vec2(50, 50));
    SetAttribute("scale", 1);
    EXPECT_EQ(root.GetRoot()->GetSize(), Vec2(800, 600));
}

TEST(GUI, RefusesAbsurdScales) {
    for (const float odd : {0.0f, -3.0f, 0.1f, std::numeric_limits<float>::quiet_NaN()}) {
        SetAttribute("scale", odd);
        EXPECT_EQ(GUI::Instance().GetScale(), 0.25f);
    }
    SetAttribute("scale", std::numeric_limits<float>::infinity());
    EXPECT_EQ(GUI::Instance().GetScale(), 32);
    SetAttribute("scale", 1);
}

TEST(GUI, TellsInputItsTolerances) {
    SetAttribute("clickTolerance", 9);
    SetAttribute("clickTimeTolerance", 0.75f);
    EXPECT_EQ(gui::Input::Instance().GetSettings().m_clickTolerance, 9);
    EXPECT_EQ(gui::Input::Instance().GetSettings().m_clickTimeTolerance, 0.75f);
    SetAttribute("clickTolerance", 3.5f);
    SetAttribute("clickTimeTolerance", 0.4f);
}

TEST(GUI, TheConsoleShowsWhatIsLogged) {
    const gui::ConsolePtr& console = GUI::Instance().GetConsole();
    console->Clear();
    Log(logging::Error, "seen");
    Log(logging::Info, "news");
    Log(logging::Trace, "only in the file");
    ASSERT_EQ(console->GetLines().size(), 2u);
    EXPECT_EQ(console->GetLines()[0].text, "!! ERROR: seen");
    EXPECT_EQ(console->GetLines()[1].text, "news");
}

// ---- drawing -----------------------------------------------------------------------------------------

// A quad in one colour over the content box.
class Patch : public Component {
  public:
    Patch(Vec2 pos, Vec2 size, const math::Vec4& color) : Component("Patch") {
        SetPos(pos.x, pos.y);
        SetSize(size.x, size.y);
        SetColor(color);
    }
    void DrawComp() override {
        Component::DrawComp();
        const rendering::ScopedCapability texture(GL_TEXTURE_2D, false);
        rendering::Renderer::Instance().DrawQuad({0, 0}, GetSize());
    }
};

class GUIDrawing : public test::GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        if (IsSkipped()) return;
        GUI::Instance().Resize(SIZE, SIZE);
        SetAttribute("opaqueness", 1);
        gui::Input::Instance().FinishPump({0, SIZE - 40});
    }
    void TearDown() override {
        GUI::Instance().GetRoot()->RemoveAllChildren();
        SetAttribute("opaqueness", 0.9f);
        SetAttribute("scale", 1);
    }

    // The colour at x, y pixels from the upper left.
    static rendering::RGBA32 At(const rendering::ImageRGBA32& frame, int x, int y) {
        return frame(x, SIZE - 1 - y);
    }
};

TEST_F(GUIDrawing, PlacesAndMixesColoursDownTheTree) {
    const ComponentPtr outer = new Patch({10, 20}, {40, 30}, {1, 0.5f, 1, 1});
    const ComponentPtr inner = new Patch({5, 5}, {10, 10}, {1, 1, 0, 1});
    const ComponentPtr after = new Patch({60, 20}, {10, 10}, {1, 1, 1, 1});
    outer->AddChild(inner);
    GUI::Instance().GetRoot()->AddChild(outer);
    GUI::Instance().GetRoot()->AddChild(after);
    for (const int scale : {1, 2}) {
        SetAttribute("scale", static_cast<float>(scale));
        glClear(GL_COLOR_BUFFER_BIT);
        GUI::Instance().Draw();
        const rendering::ImageRGBA32Ptr frame = ReadFrame();
        const auto at = [&](int x, int y) { return At(*frame, x * scale, y * scale); };
        EXPECT_EQ(at(9, 30).x, 0);
        EXPECT_EQ(at(11, 21), rendering::RGBA32(255, 128, 255, at(11, 21).w));
        EXPECT_EQ(at(16, 26), rendering::RGBA32(255, 128, 0, at(16, 26).w));
        EXPECT_EQ(at(26, 36).z, 255);
        // On the second round it lies beyond the frame.
        if (scale == 1) {
            EXPECT_EQ(at(65, 25), rendering::RGBA32(255, 255, 255, at(65, 25).w));
        }
    }
}

TEST_F(GUIDrawing, OpaquenessIsTheAlphaOfTheWhole) {
    GUI::Instance().GetRoot()->AddChild(new Patch({10, 20}, {40, 30}, {1, 1, 1, 1}));
    SetAttribute("opaqueness", 0.5f);
    GUI::Instance().Draw();
    EXPECT_NEAR(At(*ReadFrame(), 20, 30).x, 128, 2);
}

TEST_F(GUIDrawing, ShowsTheCursorAtTheMouse) {
    EXPECT_TRUE(GUI::Instance().HasCursor());
    GUI::Instance().Draw();
    const rendering::ImageRGBA32Ptr frame = ReadFrame();
    EXPECT_NEAR(At(*frame, 8, SIZE - 40 + 16).x, 0x80, 2);
    EXPECT_EQ(At(*frame, 20, SIZE - 40 + 16).x, 0);
}

TEST_F(GUIDrawing, LeavesStateAndColourAsTheyWere) {
    rendering::Renderer::Instance().SetColor({0.25f, 1, 1, 1});
    GUI::Instance().GetRoot()->AddChild(new Patch({10, 20}, {40, 30}, {1, 1, 0, 1}));
    GUI::Instance().Draw();
    GLint depth = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 1);
    glGetIntegerv(GL_PROJECTION_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 1);
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(glIsEnabled(GL_TEXTURE_2D), GL_FALSE);
    EXPECT_EQ(rendering::Renderer::Instance().GetColor(), math::Vec4(0.25f, 1, 1, 1));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

}  // namespace

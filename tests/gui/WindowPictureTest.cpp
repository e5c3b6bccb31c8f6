#include <gtest/gtest.h>

#include "gui/Focus.h"
#include "gui/GUI.h"
#include "gui/Window.h"
#include "gui/components/Button.h"
#include "gui/components/Label.h"
#include "input/Input.h"
#include "rendering/Context.h"
#include "rendering/Gl.h"
#include "rendering/KeptPicture.h"
#include "script/Conversions.h"
#include "support/gl/GlWindow.h"

// Windows are shown as pictures that nobody tells of a change.
namespace {

using gui::GUI;
using rendering::ImageRGBA32Ptr;

constexpr int TOLERANCE = 2;  // of 255, for layers that are rounded one by one

class WindowPictures : public test::GlTest {
  protected:
    void SetUp() override {
        GlTest::SetUp();
        if (IsSkipped()) return;
        GUI::Instance().Resize(SIZE, SIZE);
        MoveMouse({2, SIZE - 2});
        m_window->AddChild(m_button);
        m_window->AddChild(m_label);
        m_button->SetPos(4, 4);
        m_label->SetPos(4, 34);
        m_window->SetSize(70, 60);
        m_window->SetPos(10, 10);
        GUI::Instance().GetRoot()->AddChild(m_window);
    }
    void TearDown() override {
        rendering::Context::SetUseTargets(true);
        GUI::Instance().GetRoot()->RemoveChild(m_window);
        Set("opaqueness", 0.9f);
        Set("scale", 1);
    }

    static void MoveMouse(math::Vec2i pixel) { gui::Input::Instance().FinishPump(pixel); }
    static void Set(const String& name, float value) {
        GUI::Instance().FindLocal(name)->SetValue(script::ValueToObject(value));
    }

    static ImageRGBA32Ptr Draw(bool usesPictures) {
        rendering::Context::SetUseTargets(usesPictures);
        glClearColor(0.3f, 0.6f, 0.9f, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        GUI::Instance().Draw();
        const ImageRGBA32Ptr frame = ReadFrame();
        for (rendering::RGBA32& pixel : frame->GetData()) pixel.w = 255;  // nobody sees it
        return frame;
    }

    gui::WindowPtr m_window = new gui::Window("Title");
    gui::ButtonPtr m_button = new gui::Button("Press");
    util::SharedPtr<gui::Label> m_label = new gui::Label("a");
};

TEST_F(WindowPictures, AreNeverOutOfDate) {
    const std::pair<const char*, std::function<void()>> steps[] = {
        {"hover",
         [] {
             MoveMouse({25, 50});
         }},
        {"focus", [this] { gui::Focus::Set(m_button); }},
        {"focus gone", [] { gui::Focus::Set(nullptr); }},
        {"disabled", [this] { m_button->SetEnabled(false); }},
        {"text", [this] { m_label->SetText("long"); }},
        {"title", [this] { m_window->SetTitle("Other"); }},
        {"a child less", [this] { m_window->RemoveChild(m_label); }},
        {"opaqueness", [] { Set("opaqueness", 0.5f); }},
        {"scale", [] { Set("scale", 1.25f); }},
        {"larger", [this] { m_window->SetSize(75, 70); }},
        {"elsewhere", [this] { m_window->SetPos(20, 15); }},
        {"beyond the edge", [this] { m_window->SetPos(60, 15); }},
        {"sheared", [this] { m_window->Update(0.02f); }},
        {"still again", [this] { m_window->StopWobble(); }},
    };
    for (int i = 0; i < 4; ++i) Draw(true);
    EXPECT_GT(rendering::KeptPicture::CountPixels(), 0u);
    ImageRGBA32Ptr before = Draw(false);
    for (const auto& [name, step] : steps) {
        step();
        const ImageRGBA32Ptr wanted = Draw(false);
        EXPECT_GT(GreatestDifference(*wanted, *before), TOLERANCE) << name << " shows nothing";
        for (int i = 0; i < 4; ++i) {
            EXPECT_LE(GreatestDifference(*Draw(true), *wanted), TOLERANCE) << name << ", frame " << i;
        }
        before = wanted;
    }
}

TEST_F(WindowPictures, GoWithTheirWindows) {
    const size_t before = rendering::KeptPicture::CountPixels();
    for (int i = 0; i < 4; ++i) Draw(true);
    ASSERT_GT(rendering::KeptPicture::CountPixels(), before);
    m_window->Close();
    m_window = nullptr;
    EXPECT_EQ(rendering::KeptPicture::CountPixels(), before);
    m_window = new gui::Window("");
}

TEST_F(WindowPictures, OverEachOtherTheyHardlyMix) {
    constexpr int X = 60, Y = 60;  // in the lower window and beside its children, pixels from the upper left
    const auto shade = [](const ImageRGBA32Ptr& frame) { return (*frame)(X, SIZE - 1 - Y).z; };
    const auto shadeWith = [&](float blue) {
        m_window->SetColor({1, 1, blue, 1});
        return shade(Draw(false));
    };
    Set("opaqueness", 0.8f);  // of which a fifth of what lies below would be seen
    const int below = shadeWith(1) - shadeWith(0);
    ASSERT_GT(below, 50);
    const gui::WindowPtr upper = new gui::Window("Upper");
    upper->SetSize(60, 60);
    upper->SetPos(30, 20);
    GUI::Instance().GetRoot()->AddChild(upper);
    EXPECT_LT(shadeWith(1) - shadeWith(0), below / 10);
    GUI::Instance().GetRoot()->RemoveChild(upper);
}

}  // namespace

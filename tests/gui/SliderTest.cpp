#include "gui/components/Slider.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "Events.h"
#include "gui/Focus.h"
#include "gui/Window.h"
#include "gui/components/LabeledSlider.h"

namespace {

using gui::Slider;
using gui::SliderPtr;
using math::Vec2;

constexpr double INF = std::numeric_limits<double>::infinity();

// The track of a slider of width 110 runs from x = 5 to x = 105.
SliderPtr MakeSlider(double min, double max, bool logarithmic = false) {
    const SliderPtr slider = new Slider(min, max);
    slider->SetSize(110, 22);
    slider->SetLogarithmic(logarithmic);
    return slider;
}

void Send(gui::Component& component, gui::KeyEvent event) {
    component.OnKeyEvent(event);
}

TEST(Slider, ValueAndKnobBelongTogether) {
    const struct {
        double min, max;
        bool logarithmic;
        double value;
        float x;
    } cases[] = {{0, 10, false, 0, 5},     {0, 10, false, 10, 105}, {0, 10, false, 2.5, 30},
                 {-4, 4, false, 0, 55},    {1, 100, true, 10, 55},  {0.01, 100, true, 1, 55},
                 {0.01, 100, true, 10, 80}};
    for (const auto& c : cases) {
        const SliderPtr slider = MakeSlider(c.min, c.max, c.logarithmic);
        EXPECT_NEAR(slider->GetKnobX(c.value), c.x, 1e-3f) << c.value;
        EXPECT_NEAR(slider->GetValueAt(c.x), c.value, 1e-6) << c.value;
    }
    const SliderPtr slider = MakeSlider(0, 10);
    EXPECT_EQ(slider->GetKnobX(-3), 5) << "a value beyond the range stands at its end";
    EXPECT_EQ(slider->GetKnobX(INF), 105);
    EXPECT_TRUE(std::isnan(slider->GetKnobX(std::nan(""))));
    EXPECT_EQ(slider->GetValueAt(-50), 0);
    EXPECT_EQ(slider->GetValueAt(500), 10);
}

TEST(Slider, RefusesRangesWithoutMeaning) {
    EXPECT_ANY_THROW(Slider(1, 1));
    EXPECT_ANY_THROW(MakeSlider(0, 1)->SetLogarithmic(true));
}

TEST(Slider, EndsMayStandForMoreThanANumber) {
    const SliderPtr slider = MakeSlider(1, 600, true);
    slider->SetMinClamp(-INF);
    slider->SetMaxClamp(INF);
    const util::SharedPtr<gui::LabeledSlider> row = new gui::LabeledSlider("Speed", slider, 1, " Nm");
    slider->SetValue(slider->GetValueAt(0));
    EXPECT_EQ(slider->GetValue(), -INF);
    EXPECT_EQ(row->GetValueText(), "-inf");
    slider->SetValue(slider->GetValueAt(500));
    EXPECT_EQ(row->GetValueText(), "+inf");
    slider->SetValue(15);
    EXPECT_EQ(row->GetValueText(), "15.0 Nm");
    slider->SetValue(123.4);
    EXPECT_EQ(row->GetValueText(), "123 Nm") << "for want of room";
    slider->SetValue(15);
    slider->SetValueSilent(std::nan(""));
    EXPECT_EQ(row->GetValueText(), "15.0 Nm");
    row->Update(0);
    EXPECT_EQ(row->GetValueText(), "-");
    EXPECT_EQ(row->GetSize(), Vec2(110 + 120 + 60, 22));
}

class SliderInputTest : public testing::Test {
  protected:
    SliderInputTest() : m_slider(MakeSlider(0, 10)) {
        Note(m_slider->GetOnChange(), 'c');
        Note(m_slider->GetOnDragStart(), 's');
        Note(m_slider->GetOnDragEnd(), 'e');
    }
    void Note(util::CallbackSet& set, char what) {
        set.Add(new util::Callback([this, what] { m_calls += what; }, m_slider));
    }
    void Move(Vec2 place) {
        gui::MouseMoveEvent event = test::Move(place, {});
        m_slider->OnMouseMove(event);
    }
    const SliderPtr m_slider;
    String m_calls;
};

TEST_F(SliderInputTest, LeftButtonTakesTheKnobAlong) {
    Send(*m_slider, test::Press(gui::Key::LeftMouse, {55, 10}));
    EXPECT_DOUBLE_EQ(m_slider->GetValue(), 5);
    Move({200, 90});
    EXPECT_DOUBLE_EQ(m_slider->GetValue(), 10);
    Send(*m_slider, test::Release(gui::Key::LeftMouse, {200, 90}));
    Move({5, 5});
    EXPECT_DOUBLE_EQ(m_slider->GetValue(), 10);
    EXPECT_EQ(m_calls, "scce");

    m_calls.clear();
    Send(*m_slider, test::Press(gui::Key::LeftMouse, {55, 30}));
    gui::KeyEvent handled = test::Press(gui::Key::LeftMouse, {55, 10});
    handled.m_handled = true;
    Send(*m_slider, handled);
    EXPECT_EQ(m_calls, "");
}

TEST_F(SliderInputTest, AWindowThatClosesMeanwhileEndsTheDrag) {
    const gui::WindowPtr window = new gui::Window("window");
    window->AddChild(m_slider);
    const gui::ComponentPtr desk = new gui::Component;
    desk->AddChild(window);
    Send(*m_slider, test::Press(gui::Key::LeftMouse, m_slider->ToGUI({55, 10})));
    window->Close();
    window->Close();
    EXPECT_EQ(m_calls, "sce");
    Move({5, 5});
    EXPECT_EQ(m_calls, "sce");
}

TEST_F(SliderInputTest, MiddleButtonBringsTheDefault) {
    Send(*m_slider, test::Press(gui::Key::MiddleMouse, {55, 10}));
    EXPECT_EQ(m_calls, "") << "there is none";
    m_slider->SetDefault(3);
    Send(*m_slider, test::Press(gui::Key::MiddleMouse, {55, 10}));
    EXPECT_EQ(m_slider->GetValue(), 3);
    Send(*m_slider, test::Press(gui::Key::MiddleMouse, {55, 10}));
    EXPECT_EQ(m_calls, "sce") << "nothing happens at the default";
}

TEST_F(SliderInputTest, ArrowKeysMoveItWhileItHasTheFocus) {
    Send(*m_slider, test::Press(gui::Key::Right, {}));
    EXPECT_EQ(m_calls, "");
    gui::Focus::Set(m_slider);
    m_slider->SetValueSilent(5);
    Send(*m_slider, test::Press(gui::Key::Right, {}));
    Send(*m_slider, test::Press(gui::Key::Right, {}));
    EXPECT_NEAR(m_slider->GetValue(), 5.4, 1e-9);
    EXPECT_EQ(m_calls, "scc") << "a held key is one change";
    Send(*m_slider, test::Release(gui::Key::Right, {}));
    Send(*m_slider, test::Press(gui::Key::Left, {}));
    EXPECT_NEAR(m_slider->GetValue(), 5.2, 1e-9);
    gui::Focus::Set(nullptr);
    EXPECT_EQ(m_calls, "sccesce") << "the loss of the focus ends it, too";
}

}  // namespace

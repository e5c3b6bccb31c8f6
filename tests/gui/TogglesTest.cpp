#include <gtest/gtest.h>

#include "Events.h"
#include "gui/components/AttribWidgets.h"
#include "gui/components/RadioButton.h"
#include "script/Reflected.h"

namespace {

using gui::AbstractToggleButton;
using gui::Checkbox;
using gui::CheckboxPtr;
using math::Vec2;

TEST(Checkbox, APressTurnsItOverAndUnknownBecomesOn) {
    const CheckboxPtr box = new Checkbox("mm");
    int fired = 0;
    box->GetOnPress().Add(new util::Callback([&fired] { ++fired; }, box));
    const struct {
        AbstractToggleButton::State before, after;
    } cases[] = {
        {Checkbox::Off, Checkbox::On}, {Checkbox::On, Checkbox::Off}, {Checkbox::Unknown, Checkbox::On}};
    for (const auto& c : cases) {
        box->SetStateSilent(c.before);
        fired = 0;
        const Vec2 onText(box->GetSize().x - 5, 5);
        gui::KeyEvent press = test::Press(gui::Key::LeftMouse, onText);
        gui::KeyEvent release = test::Release(gui::Key::LeftMouse, onText);
        box->OnKeyEvent(press);
        box->OnKeyEvent(release);
        EXPECT_EQ(box->GetToggleState(), c.after);
        EXPECT_EQ(fired, 1);
    }
}

TEST(RadioGroup, HasOneSelectedMemberAndTellsOfChanges) {
    const gui::RadioGroupPtr group = new gui::RadioGroup;
    gui::AbstractRadioButtonPtr a = new gui::AbstractRadioButton(group),
                                b = new gui::AbstractRadioButton(group);
    int changes = 0;
    group->GetOnChange().Add(new util::Callback([&changes] { ++changes; }, group));
    EXPECT_EQ(group->GetSelected(), nullptr);
    a->OnPressed();
    EXPECT_TRUE(a->IsSelected());
    b->OnPressed();
    b->OnPressed();
    EXPECT_FALSE(a->IsSelected());
    EXPECT_TRUE(b->IsSelected());
    EXPECT_EQ(changes, 2);
    b = nullptr;
    EXPECT_EQ(group->GetSelected(), nullptr);
    group->Select(a.Get());
    EXPECT_TRUE(a->IsSelected());
}

// ---- attributes --------------------------------------------------------------------------------------

struct Thing : public script::Reflected {
    Thing()
        : Reflected("Thing"),
          m_on(script::DeclareAttrib(*this, "on", false)),
          m_number(script::DeclareAttrib(*this, "number", 1.0f)) {}
    const script::AttribPtr<bool> m_on;
    const script::AttribPtr<float> m_number;
};
using ThingPtr = util::SharedPtr<Thing>;

TEST(AttribCheckbox, ShowsAndWritesItsAttribute) {
    const ThingPtr thing = new Thing;
    const CheckboxPtr box = new gui::AttribCheckbox("", thing->m_on);
    EXPECT_EQ(box->GetToggleState(), Checkbox::Off);
    thing->m_on->Set(true);
    box->Update(0);
    EXPECT_EQ(box->GetToggleState(), Checkbox::On);
    box->OnPressed();
    EXPECT_FALSE(thing->m_on->Get());
    EXPECT_EQ(box->GetToggleState(), Checkbox::Off);
}

TEST(MultiAttribCheckbox, IsUnknownWhileItsAttributesDiffer) {
    ThingPtr a = new Thing, b = new Thing;
    b->m_on->Set(true);
    const CheckboxPtr box = new gui::MultiAttribCheckbox("", {a->m_on, b->m_on});
    EXPECT_EQ(box->GetToggleState(), Checkbox::Unknown);
    box->OnPressed();
    EXPECT_TRUE(a->m_on->Get());
    EXPECT_TRUE(b->m_on->Get());
    EXPECT_EQ(box->GetToggleState(), Checkbox::On);
    a->m_on->Set(false);
    b = nullptr;
    box->Update(0);
    EXPECT_EQ(box->GetToggleState(), Checkbox::Off) << "of what still lives";
    a = nullptr;
    box->Update(0);
    EXPECT_EQ(box->GetToggleState(), Checkbox::Unknown);
    box->OnPressed();
}

TEST(AttribSlider, FollowsItsAttributeButNotWhileHeld) {
    const ThingPtr thing = new Thing;
    const gui::SliderPtr slider = new gui::AttribSlider(1, 3, thing->m_number);
    EXPECT_EQ(slider->GetValue(), 1) << "read by the constructor";
    thing->m_number->Set(2);
    slider->Update(0);
    EXPECT_EQ(slider->GetValue(), 2);

    gui::KeyEvent press = test::Press(gui::Key::LeftMouse, {0, 5});
    slider->OnKeyEvent(press);
    EXPECT_EQ(thing->m_number->Get(), 1);
    thing->m_number->Set(2.5f);
    slider->Update(0);
    EXPECT_EQ(slider->GetValue(), 1);
    gui::KeyEvent release = test::Release(gui::Key::LeftMouse, {0, 5});
    slider->OnKeyEvent(release);
    slider->Update(0);
    EXPECT_EQ(slider->GetValue(), 2.5);
}

TEST(MultiAttribSlider, HasNoValueWhileItsAttributesDiffer) {
    ThingPtr a = new Thing, b = new Thing;
    const gui::SliderPtr slider = new gui::MultiAttribSlider(0, 10, {a->m_number, b->m_number});
    EXPECT_EQ(slider->GetValue(), 1);
    b->m_number->Set(2);
    slider->Update(0);
    EXPECT_TRUE(std::isnan(slider->GetValue()));
    slider->SetValue(4);
    EXPECT_EQ(a->m_number->Get(), 4);
    EXPECT_EQ(b->m_number->Get(), 4);
    a = b = nullptr;
    slider->Update(0);
    EXPECT_TRUE(std::isnan(slider->GetValue()));
    slider->SetValue(3);
}

TEST(FunctionSlider, ShowsOverItsFactor) {
    double number = 3;
    const util::SharedPtr<gui::FunctionSlider> slider = new gui::FunctionSlider(
        0, 10, [&number] { return number; }, [&number](double n) { number = n; });
    slider->SetFactor(0.5);
    EXPECT_EQ(slider->GetValue(), 6);
    slider->SetValue(8);
    EXPECT_EQ(number, 4);
}

}  // namespace

#include "gui/WidgetList.h"

#include <gtest/gtest.h>

#include "gui/Layout.h"
#include "gui/Root.h"
#include "gui/Window.h"
#include "gui/components/Checkbox.h"
#include "gui/components/ScrollArea.h"
#include "gui/components/TextField.h"
#include "input/Input.h"
#include "script/Conversions.h"
#include "script/Exceptions.h"

namespace {

using gui::ComponentPtr;
using math::Vec2;
using script::ObjectList;
using script::ObjectToValue;

class WidgetListTest : public testing::Test {
  protected:
    WidgetListTest() : m_root(new gui::Root), m_window(new gui::Window("mmmm")) {
        m_root->SetSize(800, 600);
        m_root->AddChild(m_window);
        m_window->SetPos(100, 200);
        m_window->SetSize(300, 300);
        gui::Input::Instance().AddListener(m_root);
    }
    gui::CheckboxPtr AddCheckbox(gui::Component& parent, const String& key) {
        const gui::CheckboxPtr box = new gui::Checkbox("mm");
        box->SetKey(key);
        parent.AddChild(box);
        return box;
    }
    const ComponentPtr m_root;
    const gui::WindowPtr m_window;
};

TEST_F(WidgetListTest, TellsOfEachControlTopmostFirst) {
    const gui::CheckboxPtr box = AddCheckbox(*m_window, "DrawClouds");
    box->SetStateSilent(gui::Checkbox::On);
    const gui::TextFieldPtr field = new gui::TextField("mi");
    m_window->AddChild(field);
    field->SetPos(0, 50);
    const ObjectList rows = ObjectToValue<ObjectList>(gui::ListWidgets(*m_root, 2));
    ASSERT_EQ(rows.size(), 3u);
    const ObjectList first = ObjectToValue<ObjectList>(rows[0]);
    EXPECT_EQ(ObjectToValue<String>(first[0]), "TextField");
    EXPECT_EQ(ObjectToValue<String>(first[5]), "mi");
    const ObjectList second = ObjectToValue<ObjectList>(rows[1]);
    EXPECT_EQ(ObjectToValue<String>(second[0]), "Checkbox");
    EXPECT_EQ(ObjectToValue<String>(second[1]), "DrawClouds");
    EXPECT_EQ(ObjectToValue<String>(second[2]), "mm");
    EXPECT_EQ(ObjectToValue<Vec2>(second[3]), Vec2(2 * 106, 2 * 226)) << "pixels, inside the window's frame";
    EXPECT_EQ(ObjectToValue<Vec2>(second[4]), box->GetSize() * 2);
    EXPECT_TRUE(ObjectToValue<bool>(second[5]));
    EXPECT_EQ(ObjectToValue<String>(ObjectToValue<ObjectList>(rows[2])[0]), "Window");
}

TEST_F(WidgetListTest, PressesAControlAsAUserWould) {
    const gui::CheckboxPtr box = AddCheckbox(*m_window, "DrawClouds");
    gui::PressWidget(*m_root, "DrawClouds");
    EXPECT_EQ(box->GetToggleState(), gui::Checkbox::On);

    const gui::WindowPtr upper = new gui::Window("mmmm");
    m_root->AddChild(upper);
    upper->SetPos(100, 200);
    upper->SetSize(300, 300);
    gui::PressWidget(*m_root, "DrawClouds");
    EXPECT_EQ(box->GetToggleState(), gui::Checkbox::Off) << "its window comes to the front";

    EXPECT_THROW(gui::PressWidget(*m_root, "Missing"), script::ScriptException);
    EXPECT_THROW(gui::PressWidget(*m_root, ""), script::ScriptException);
}

TEST_F(WidgetListTest, ScrolledOutOfViewIsNotListedButCanBePressed) {
    const ComponentPtr list = new gui::Component("list", new gui::ListLayout(gui::ListLayout::Vertical));
    gui::CheckboxPtr last;
    for (int i = 0; i < 20; ++i) last = AddCheckbox(*list, "Row" + std::to_string(i));
    m_window->AddChild(new gui::ScrollArea(list, 100));
    EXPECT_LT(ObjectToValue<ObjectList>(gui::ListWidgets(*m_root, 1)).size(), 10u);
    gui::PressWidget(*m_root, "Row19");
    EXPECT_EQ(last->GetToggleState(), gui::Checkbox::On);
}

}  // namespace

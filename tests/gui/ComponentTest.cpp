#include "gui/Component.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "Events.h"
#include "gui/LookAndFeel.h"
#include "util/Exception.h"

namespace {

using gui::Component;
using gui::ComponentPtr;
using math::Vec2;

// Notes what happens to it.
class Probe : public Component {
  public:
    explicit Probe(const String& name, String* log = nullptr) : Component(name), m_name(name), m_log(log) {}

    void OnGeometryChanged() override {
        ++m_changes;
        Component::OnGeometryChanged();
    }
    void DoLayout() override {
        ++m_layouts;
        Component::DoLayout();
    }
    void OnClick(gui::ClickEvent& event) override {
        Component::OnClick(event);
        if (m_log) *m_log += m_name + " ";
    }
    void Update(float dt) override {
        if (m_log) *m_log += m_name + " ";
        Component::Update(dt);
    }

    int m_changes = 0;
    int m_layouts = 0;

  private:
    String m_name;
    String* m_log;
};
using ProbePtr = util::SharedPtr<Probe>;

ProbePtr AddProbe(const ComponentPtr& parent, const String& name, String* log = nullptr) {
    const ProbePtr probe = new Probe(name, log);
    parent->AddChild(probe);
    return probe;
}

String GetChildNames(const Component& component) {
    String names;
    for (const ComponentPtr& child : component.GetChildren()) names += child->GetReflectedName() + " ";
    return names;
}

TEST(Component, ChildrenAreDrawnByPriorityAndHearInReverse) {
    String log;
    const ComponentPtr parent = new Component;
    const ProbePtr a = AddProbe(parent, "a", &log), b = AddProbe(parent, "b", &log);
    const ProbePtr c = AddProbe(parent, "c", &log);
    EXPECT_EQ(GetChildNames(*parent), "a b c ");
    gui::ClickEvent click;
    parent->OnClick(click);
    EXPECT_EQ(log, "c b a ");

    a->SetPriority(60);
    EXPECT_EQ(GetChildNames(*parent), "b c a ");
    log.clear();
    parent->OnClick(click);
    EXPECT_EQ(log, "a c b ");

    log.clear();
    parent->Update(0.1f);
    EXPECT_EQ(log, "a c b ");

    // Adding again is how a window comes to the front of its class.
    parent->AddChild(b);
    EXPECT_EQ(GetChildNames(*parent), "c b a ");
    log.clear();
    parent->OnClick(click);
    EXPECT_EQ(log, "a b c ");
}

TEST(Component, LayoutKeepsTheOrderOfAdding) {
    const ComponentPtr parent = new Component("list", new gui::ListLayout(gui::ListLayout::Vertical));
    const ProbePtr a = AddProbe(parent, "a");
    AddProbe(parent, "b");
    a->SetPriority(60);
    EXPECT_EQ(GetChildNames(*parent), "a b ");
}

TEST(Component, ChildMovesFromParentToParent) {
    const ComponentPtr first = new Component("first"), second = new Component("second");
    const ProbePtr child = AddProbe(first, "child");
    EXPECT_EQ(child->GetParent(), first.Get());
    EXPECT_TRUE(first->HasVariable("child"));
    second->AddChild(child);
    EXPECT_EQ(child->GetParent(), second.Get());
    EXPECT_TRUE(first->GetChildren().empty());
    EXPECT_FALSE(first->HasVariable("child"));
    EXPECT_TRUE(second->HasVariable("child"));

    second->RemoveChild(second->GetChildren()[0]);
    EXPECT_EQ(child->GetParent(), nullptr);
    EXPECT_FALSE(second->HasVariable("child"));
    second->RemoveChild(child);  // once more is no failure
    EXPECT_THROW(second->AddChild(nullptr), BadCoderException);
}

TEST(Component, IsFreedWithItsParentAndOnItsOwn) {
    ComponentPtr parent = new Component;
    ComponentPtr child = new Component("child");
    const gui::ComponentWeakPtr watch = child;
    parent->AddChild(child);
    child = nullptr;
    EXPECT_TRUE(watch.Get());
    parent = nullptr;
    EXPECT_FALSE(watch.Get());

    parent = new Component;
    child = new Component("child");
    parent->AddChild(child);
    parent = nullptr;
    EXPECT_EQ(child->GetParent(), nullptr);
}

TEST(Component, NotifiesOnlyOfChanges) {
    const ProbePtr parent = new Probe("parent");
    const ProbePtr child = AddProbe(parent, "child");
    const int layouts = parent->m_layouts;
    child->SetPos(3, 4);
    EXPECT_EQ(child->m_changes, 1);
    EXPECT_EQ(parent->m_layouts, layouts + 1);
    child->SetPos(3, 4);
    EXPECT_EQ(child->m_changes, 1);
    child->SetSize(5, 6);
    EXPECT_EQ(child->m_changes, 2);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    child->SetSize(nan, nan);
    child->SetSize(nan, nan);
    EXPECT_EQ(child->m_changes, 4);
    child->SetAutoNotify(false);
    child->SetPos(7, 8);
    EXPECT_EQ(parent->m_layouts, layouts + 4);
    EXPECT_EQ(child->GetPos(), Vec2(7, 8));
}

TEST(Component, FillingChildTracksItsParent) {
    const ComponentPtr parent = new Component;
    parent->SetBorder(gui::LookAndFeel::Get().GetWindowBorder());
    const ComponentPtr child = new Component("child"), grandchild = new Component("grandchild");
    child->SetBorder(gui::LookAndFeel::Get().GetButtonBorder());
    child->AddChild(grandchild);
    child->SetFillParent(true);
    grandchild->SetFillParent(true);
    parent->AddChild(child);
    EXPECT_TRUE(child->GetBorder().IsEmpty());
    EXPECT_EQ(child->GetPos(), Vec2(6, 26));
    parent->SetSize(100, 50);
    EXPECT_EQ(child->GetSize(), Vec2(100, 50));
    EXPECT_EQ(grandchild->GetSize(), Vec2(100, 50));
}

TEST(Component, TransformsCountBorders) {
    const ComponentPtr root = new Component, window = new Component("w"), inner = new Component("i");
    root->AddChild(window);
    window->AddChild(inner);
    window->SetBorder(gui::LookAndFeel::Get().GetWindowBorder());
    inner->SetBorder(gui::LookAndFeel::Get().GetButtonBorder());
    window->SetPos(100, 200);
    window->SetSize(60, 40);
    inner->SetPos(10, 5);
    inner->SetSize(20, 12);
    EXPECT_EQ(inner->ToContent({100 + 6 + 10 + 4, 200 + 26 + 5 + 4}), Vec2(0, 0));
    EXPECT_EQ(inner->ToGUI({0, 0}), Vec2(120, 235));
    EXPECT_EQ(window->GetOuterSize(), Vec2(72, 72));

    EXPECT_TRUE(window->IsInOuterBox({100, 200}));
    EXPECT_FALSE(window->IsInContentBox({100, 200}));
    EXPECT_TRUE(window->IsInOuterBox({172, 272}));
    EXPECT_FALSE(window->IsInOuterBox({173, 272}));
    EXPECT_FALSE(window->IsInOuterBox({std::numeric_limits<float>::quiet_NaN(), 230}));
    EXPECT_FALSE(window->IsInOuterBox({std::numeric_limits<float>::infinity(), 230}));
}

TEST(Component, ChildrenMayLeaveWhileTheyAreUpdated) {
    // Removes all children of its parent in its update.
    class Clearer : public Component {
      public:
        Clearer() : Component("clearer") {}
        void Update(float) override { GetParent()->RemoveAllChildren(); }
    };
    String log;
    const ComponentPtr parent = new Component;
    AddProbe(parent, "a", &log);
    parent->AddChild(new Clearer);
    AddProbe(parent, "b", &log);
    parent->Update(0.1f);
    EXPECT_EQ(log, "b ");
    EXPECT_TRUE(parent->GetChildren().empty());
}

}  // namespace

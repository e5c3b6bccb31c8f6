#include "gui/Layout.h"

#include <gtest/gtest.h>

#include <limits>

#include "gui/Component.h"
#include "gui/LookAndFeel.h"

namespace {

using gui::Component;
using gui::ComponentPtr;
using gui::ListLayout;
using math::Vec2;

// A list with three children of 10 by 20, 30 by 5 with a button's border of 4, and 8 by 8.
class ListTest : public testing::Test {
  protected:
    void Make(uint32_t flags) {
        m_list = new Component("list", new ListLayout(flags));
        const Vec2 sizes[3] = {{10, 20}, {30, 5}, {8, 8}};
        for (int i = 0; i < 3; ++i) {
            m_items[i] = new Component("item");
            m_items[i]->SetSize(sizes[i].x, sizes[i].y);
            if (i == 1) m_items[i]->SetBorder(gui::LookAndFeel::Get().GetButtonBorder());
            m_list->AddChild(m_items[i]);
        }
    }

    void ExpectPlaces(Vec2 a, Vec2 b, Vec2 c) const {
        EXPECT_EQ(m_items[0]->GetPos(), a);
        EXPECT_EQ(m_items[1]->GetPos(), b);
        EXPECT_EQ(m_items[2]->GetPos(), c);
    }

    ComponentPtr m_list;
    ComponentPtr m_items[3];
};

TEST_F(ListTest, RunsDownOrAcrossAndAlignsAtEitherSide) {
    const struct {
        uint32_t flags;
        Vec2 places[3], size;
    } cases[] = {
        {ListLayout::Vertical, {{0, 0}, {0, 20}, {0, 33}}, {38, 41}},
        {ListLayout::Horizontal, {{0, 0}, {10, 0}, {48, 0}}, {56, 20}},
        {ListLayout::Vertical | ListLayout::AlignEnd, {{28, 0}, {0, 20}, {30, 33}}, {38, 41}},
        {ListLayout::Horizontal | ListLayout::AlignEnd, {{0, 0}, {10, 7}, {48, 12}}, {56, 20}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.flags);
        Make(c.flags);
        ExpectPlaces(c.places[0], c.places[1], c.places[2]);
        EXPECT_EQ(m_list->GetSize(), c.size);
    }
}

TEST_F(ListTest, StretchesAcrossTheList) {
    const struct {
        uint32_t flags;
        Vec2 sizes[3];
    } cases[] = {{ListLayout::Vertical, {{38, 20}, {30, 5}, {38, 8}}},
                 {ListLayout::Horizontal, {{10, 20}, {30, 12}, {8, 20}}}};
    for (const auto& c : cases) {
        Make(c.flags | ListLayout::StretchCross);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(m_items[i]->GetSize(), c.sizes[i]) << i;
    }
}

TEST_F(ListTest, FollowsItsChildren) {
    Make(ListLayout::Vertical);
    m_items[0]->SetSize(10, 30);
    ExpectPlaces({0, 0}, {0, 30}, {0, 43});
    EXPECT_EQ(m_list->GetSize(), Vec2(38, 51));
    m_items[1]->SetExcludedFromLayout(true);
    EXPECT_EQ(m_items[2]->GetPos(), Vec2(0, 30));
    m_list->RemoveChild(m_items[0]);
    EXPECT_EQ(m_items[2]->GetPos(), Vec2(0, 0));
    EXPECT_EQ(m_list->GetSize(), Vec2(8, 8));
}

TEST_F(ListTest, NestedListsSettle) {
    Make(ListLayout::Vertical);
    const ComponentPtr outer = new Component("outer", new ListLayout(ListLayout::Horizontal));
    const ComponentPtr other = new Component("other");
    outer->AddChild(m_list);
    outer->AddChild(other);
    m_items[2]->SetSize(50, 9);
    EXPECT_EQ(other->GetPos(), Vec2(50, 0));
    EXPECT_EQ(outer->GetSize(), Vec2(50, 42));
}

TEST_F(ListTest, KeepsItsSizeWhenAChildHasNone) {
    Make(ListLayout::Vertical);
    const Vec2 before = m_list->GetSize();
    for (const float odd :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        m_items[0]->SetSize(odd, odd);
        m_items[0]->SetSize(odd, odd);
        EXPECT_EQ(m_list->GetSize(), before);
    }
    m_items[0]->SetSize(10, 20);
    ExpectPlaces({0, 0}, {0, 20}, {0, 33});
}

// A child that fills its parent would otherwise push the size of its own list up for ever.
TEST_F(ListTest, LeavesOutWhatFillsIt) {
    Make(ListLayout::Vertical);
    const ComponentPtr back = new Component("back");
    back->SetFillParent(true);
    m_list->AddChild(back);
    EXPECT_EQ(m_list->GetSize(), Vec2(38, 41));
    EXPECT_EQ(back->GetSize(), Vec2(38, 41));
}

}  // namespace

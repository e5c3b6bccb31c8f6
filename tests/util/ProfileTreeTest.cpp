#include "util/ProfileTree.h"

#include <gtest/gtest.h>

#include "util/Clock.h"
#include "util/Exception.h"

namespace {

double s_now = 0;
double FakeNow() {
    return s_now;
}

class ProfileTreeTest : public testing::Test {
  protected:
    void SetUp() override {
        util::Clock::SetSource(&FakeNow);
        m_tree.Reset();
        m_tree.ToggleEnabled();
    }
    void TearDown() override {
        m_tree.Reset();
        util::Clock::SetSource(nullptr);
    }
    util::ProfileTree& m_tree = util::ProfileTree::Get();
};

const char DRAW[] = "Draw";
const char OTHER_DRAW[] = "Draw";

}  // namespace

TEST_F(ProfileTreeTest, ReportsTimesOfOneFrame) {
    {
        const util::ProfileSection draw(DRAW);
        s_now += 0.25;
        const util::ProfileSection inner("Inner");
        s_now += 0.5;
    }
    s_now += 0.25;
    m_tree.Update();
    EXPECT_EQ(
        m_tree.GetReport(),
        "FPS: 1.00\n\nProfile data for Main\n\n" + String(25, ' ') +
            " Name   %owner    %total   \xB5s/frame  frame-spike   \xB5s/call   calls/frame\n\n"
            "*0                        Draw    75.0 %    75.0 %     750000        750000     750000     1.0\n"
            "                  MISSING TIME    25.0 %    25.0 %     250000\n");
}

TEST_F(ProfileTreeTest, NamesAreToldApartByAddressAndTheTenthChildFails) {
    static const char NAMES[10][2] = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j"};
    { const util::ProfileSection a(DRAW); }
    { const util::ProfileSection b(OTHER_DRAW); }
    for (int i = 0; i < 7; ++i) const util::ProfileSection section(NAMES[i]);
    m_tree.Update();
    EXPECT_EQ(m_tree.GetReport().find("ERROR"), String::npos);
    { const util::ProfileSection tenth(NAMES[9]); }
    EXPECT_EQ(m_tree.GetReport(),
              "ERROR: Too many children of node Main\n"
              "This problem must be fixed before any profiling can be done.");
}

TEST_F(ProfileTreeTest, AnExceptionClosesItsSection) {
    try {
        const util::ProfileSection section(DRAW);
        THROW(BadDataException, "x");
    } catch (const BadDataException&) {
    }
    m_tree.Update();
    EXPECT_EQ(m_tree.GetReport().find("ERROR"), String::npos);
}

TEST_F(ProfileTreeTest, UnbalancedUseFailsWithItsText) {
    m_tree.End();
    EXPECT_EQ(m_tree.GetReport().find("ERROR: Too many calls to End()"), 0u);
    m_tree.Reset();
    m_tree.ToggleEnabled();
    m_tree.Begin(DRAW);
    m_tree.Update();
    EXPECT_EQ(m_tree.GetReport().find("ERROR: Profiler::Update() called within begin and end (fix code)"),
              0u);
}

TEST_F(ProfileTreeTest, RecursionDoesNotGrowTheTree) {
    const util::ProfileSection outer(DRAW);
    const util::ProfileSection inner(OTHER_DRAW);
    EXPECT_FALSE(m_tree.Begin(DRAW));
    EXPECT_FALSE(m_tree.Begin(OTHER_DRAW));
}

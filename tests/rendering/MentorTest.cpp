#include "util/Mentor.h"

#include <gtest/gtest.h>

#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "util/StackedBind.h"

namespace {

class Thing : public util::Pointee {};
using ThingMentor = util::Mentor<Thing>;
using ThingMentorPtr = util::SharedPtr<ThingMentor>;

// A factory whose success can be chosen, with counters for all that a mentor may call.
struct Workshop {
    enum Mode { MAKES, GIVES_NULL, THROWS, THROWS_OTHER } mode = MAKES;
    int calls = 0;
    int loads = 0;
    int unloads = 0;
    util::SharedPtr<util::Pointee> owner = new util::Pointee;

    ThingMentorPtr Make() {
        const ThingMentorPtr mentor = new ThingMentor([this] { return Run(); });
        mentor->GetOnLoad().Add(new util::Callback([this] { ++loads; }, owner.Get()));
        mentor->GetOnUnload().Add(new util::Callback([this] { ++unloads; }, owner.Get()));
        return mentor;
    }

    Thing* Run() {
        ++calls;
        if (mode == THROWS) THROW(BadDataException, "broken thing");
        if (mode == THROWS_OTHER) throw 42;
        return mode == GIVES_NULL ? nullptr : new Thing;
    }
};

class MentorTest : public testing::Test {
  protected:
    ~MentorTest() override { ThingMentor::SetDefault(nullptr); }
    Workshop m_workshop;
};

TEST_F(MentorTest, LoadsOnDemandAndOnceOnly) {
    const ThingMentorPtr mentor = m_workshop.Make();
    EXPECT_EQ(m_workshop.calls, 0);
    const util::SharedPtr<Thing> thing = mentor->Get();
    ASSERT_TRUE(thing);
    mentor->Load();
    EXPECT_EQ(mentor->Get(), thing);
    EXPECT_EQ(m_workshop.calls, 1);
    EXPECT_EQ(m_workshop.loads, 1);
    mentor->Unload();
    mentor->Unload();
    EXPECT_EQ(m_workshop.unloads, 1);
    EXPECT_NE(mentor->Get(), thing);
    EXPECT_EQ(m_workshop.loads, 2);
}

TEST_F(MentorTest, RemembersAFailureUntilAskedToLoad) {
    m_workshop.mode = Workshop::GIVES_NULL;
    const ThingMentorPtr mentor = m_workshop.Make();
    for (int i = 0; i < 3; ++i) EXPECT_FALSE(mentor->Get());
    EXPECT_EQ(m_workshop.calls, 1);
    EXPECT_EQ(m_workshop.loads, 0);
    mentor->Load();
    EXPECT_EQ(m_workshop.calls, 2);
    mentor->Unload();
    EXPECT_EQ(m_workshop.unloads, 0);  // nothing was there
    m_workshop.mode = Workshop::MAKES;
    EXPECT_TRUE(mentor->Get());
}

TEST_F(MentorTest, NoExceptionLeavesAndTheReasonIsLogged) {
    const ThingMentorPtr mentor = m_workshop.Make();
    const test::LogCapture log;
    m_workshop.mode = Workshop::THROWS;
    mentor->Load();
    EXPECT_FALSE(mentor->Get());
    EXPECT_TRUE(log.Contains("!! ERROR: broken thing") || log.Contains("broken thing"));
    m_workshop.mode = Workshop::THROWS_OTHER;
    mentor->Load();
    EXPECT_TRUE(log.Contains(String("Unknown error while loading ") + typeid(Thing).name()));
}

TEST_F(MentorTest, AFailureSharesTheDefault) {
    Workshop defaultWorkshop;
    const ThingMentorPtr standIn = defaultWorkshop.Make();
    ThingMentor::SetDefault(standIn);
    m_workshop.mode = Workshop::THROWS;
    const ThingMentorPtr mentor = m_workshop.Make();
    mentor->Load();
    EXPECT_TRUE(mentor->Get());
    EXPECT_EQ(mentor->Get(), standIn->Get());
    EXPECT_EQ(m_workshop.loads, 0);
    EXPECT_EQ(defaultWorkshop.loads, 1);
}

TEST_F(MentorTest, AFailingDefaultStaysEmptyAndDoesNotRecurse) {
    m_workshop.mode = Workshop::THROWS;
    const ThingMentorPtr standIn = m_workshop.Make();
    ThingMentor::SetDefault(standIn);
    EXPECT_FALSE(standIn->Get());
    EXPECT_EQ(m_workshop.calls, 1);
}

// ---- stacked binds ------------------------------------------------------------------------------------

class Bound : public util::StackedBind<Bound> {
  public:
    explicit Bound(String& journal, char name) : m_journal(journal), m_name(name) {}
    void DoBind() const override { (m_journal += '+') += m_name; }
    void DoUnbind() const override { (m_journal += '-') += m_name; }

  private:
    String& m_journal;
    char m_name;
};

TEST(StackedBindTest, TheOuterObjectComesBack) {
    String journal;
    const Bound a(journal, 'a'), b(journal, 'b');
    {
        const util::ScopedBind<Bound> outer(a);
        const util::ScopedBind<Bound> inner(b);
        EXPECT_EQ(journal, "+a-a+b");
    }
    EXPECT_EQ(journal, "+a-a+b-b+a-a");
}

TEST(StackedBindTest, AHundredNestedBindsPassAndUnbindingOutOfOrderFails) {
    String journal;
    const Bound a(journal, 'a'), b(journal, 'b');
    for (int i = 0; i < 100; ++i) a.Bind();
    EXPECT_NE(test::FailureOf<BadDataException>([&] { a.Bind(); }).find("s_stack.size() < 100"),
              String::npos);
    EXPECT_NE(test::FailureOf<BadDataException>([&] { b.Unbind(); }).find("s_stack.top() == this"),
              String::npos);
    for (int i = 0; i < 100; ++i) a.Unbind();
    EXPECT_THROW(a.Unbind(), BadDataException);
}

}  // namespace

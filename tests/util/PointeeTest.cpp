#include <gtest/gtest.h>

#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "util/ClassTracker.h"
#include "util/Exception.h"
#include "util/LockPtr.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"
#include "util/WeakPtr.h"

namespace {

struct Probe : util::Pointee {
    explicit Probe(bool* dead) : m_dead(dead) {}
    ~Probe() override { *m_dead = true; }
    bool* m_dead;
};

struct ThrowingProbe : util::Pointee {
    ~ThrowingProbe() noexcept(false) override { THROW(BadDataException, "will not go"); }
};

struct Service : util::Pointee, util::Singleton<Service> {};

struct Phoenix : util::Pointee, util::Singleton<Phoenix> {
    ~Phoenix() override {
        try {
            Instance();
        } catch (const BadCoderException&) {
            s_refused = true;
        }
    }
    static bool s_refused;
};
bool Phoenix::s_refused = false;

struct FailingService : util::Pointee, util::Singleton<FailingService> {
    FailingService() { THROW(BadDataException, "not today"); }
};

struct Tracked : util::ClassTracker<Tracked> {};

using ProbePtr = util::SharedPtr<Probe>;

}  // namespace

TEST(Pointee, LastSharedPtrDestroysAtOnceAndWeakPtrReadsEmpty) {
    bool dead = false;
    ProbePtr strong = new Probe(&dead);
    const util::WeakPtr<Probe> weak = strong;
    ProbePtr second = strong;
    strong = nullptr;
    EXPECT_FALSE(dead);
    EXPECT_EQ(weak.Get(), second.Get());
    second = nullptr;
    EXPECT_TRUE(dead);
    EXPECT_FALSE(weak);
}

TEST(Pointee, SelfAssignmentOfTheOnlyHoldKeepsTheObject) {
    bool dead = false;
    ProbePtr strong = new Probe(&dead);
    const ProbePtr& alias = strong;
    strong = alias;
    strong = strong.Get();
    EXPECT_FALSE(dead);
}

TEST(Pointee, ALockOverAnUnownedObjectNeverDeletesIt) {
    bool dead = false;
    Probe* const unowned = new Probe(&dead);
    { const util::LockPtr<Probe> lock(unowned); }
    EXPECT_FALSE(dead);
    { const ProbePtr owner = unowned; }
    EXPECT_TRUE(dead);
}

TEST(Pointee, ALockCanBeTheLastHold) {
    bool dead = false;
    ProbePtr strong = new Probe(&dead);
    {
        const util::LockPtr<Probe> lock(strong);
        strong = nullptr;
        EXPECT_FALSE(dead);
        EXPECT_EQ(lock->m_dead, &dead);
    }
    EXPECT_TRUE(dead);
}

TEST(Pointee, DereferencingNothingThrowsTheText) {
    EXPECT_EQ(test::FailureOf([] { ProbePtr()->m_dead = nullptr; }), "Tried to dereference a NULL SharedPtr");
    EXPECT_NE(test::FailureOf([] { util::LockPtr<Probe>()->m_dead = nullptr; }), "");
}

TEST(Pointee, ACopyIsAnObjectOfItsOwn) {
    bool dead = false;
    const ProbePtr original = new Probe(&dead);
    const ProbePtr copy = new Probe(*original);
    EXPECT_NE(original->GetHandle(), copy->GetHandle());
    util::PointeeHandle* const handle = copy->GetHandle();
    *copy = *original;
    EXPECT_EQ(copy->GetHandle(), handle);
}

TEST(Pointee, SweepFreesHandlesOfTheDeadAndKeepsWatchedOnes) {
    util::Pointee::SweepHandles();
    const size_t before = util::Pointee::GetHandleCount();
    bool dead = false;
    util::WeakPtr<Probe> weak;
    {
        const ProbePtr watched = new Probe(&dead);
        const ProbePtr plain = new Probe(&dead);
        weak = watched;
        EXPECT_EQ(util::Pointee::GetHandleCount(), before + 2);
    }
    util::Pointee::SweepHandles();
    EXPECT_EQ(util::Pointee::GetHandleCount(), before + 1);
    EXPECT_FALSE(weak);  // clears itself and lets the handle go
    for (int i = 0; i < 100; ++i) ProbePtr(new Probe(&dead));
    while (util::Pointee::GetHandleCount() > before) {
        const size_t size = util::Pointee::GetHandleCount();
        for (size_t i = 0; i < size + 1; ++i) ProbePtr(new Probe(&dead));
        util::Pointee::SweepHandles();  // outgrown: a full one
    }
}

TEST(Pointee, AThrowingDestructorIsLoggedAndGoesNoFurther) {
    test::LogCapture log;
    { const util::SharedPtr<ThrowingProbe> dying = new ThrowingProbe; }
    EXPECT_TRUE(log.Contains("Exception caught when deleting a "));
    EXPECT_TRUE(log.Contains(": will not go"));
}

TEST(Singleton, IsMadeOnFirstUseAndOnlyOnce) {
    EXPECT_FALSE(Service::IsCreated());
    Service& service = Service::Instance();
    EXPECT_EQ(&service, &Service::Instance());
    Service::Destroy();
    EXPECT_FALSE(Service::IsCreated());
    EXPECT_EQ(test::FailureOf<BadCoderException>([] { Service::Instance(); }),
              String("Phoenix singleton detected: ") + typeid(Service).name());
}

TEST(Singleton, ItsDestructorCannotAskForIt) {
    Phoenix::Instance();
    Phoenix::Destroy();
    EXPECT_TRUE(Phoenix::s_refused);
}

TEST(Singleton, AConstructorThatThrowsLeavesNone) {
    EXPECT_THROW(FailingService::Instance(), BadDataException);
    EXPECT_FALSE(FailingService::IsCreated());
}

TEST(ClassTracker, WalksSurviveTheDeathOfMembers) {
    Tracked* const a = new Tracked;
    Tracked* const b = new Tracked;
    int visits = 0;
    util::ClassTracker<Tracked>::ForEach([&](Tracked& member) {
        ++visits;
        delete (&member == a ? b : a);
    });
    EXPECT_EQ(visits, 1);
    EXPECT_EQ(util::ClassTracker<Tracked>::GetInstances().size(), 1u);
    delete *util::ClassTracker<Tracked>::GetInstances().begin();
}

TEST(ClassTracker, CopiesAreTrackedToo) {
    const Tracked a;
    const Tracked b = a;
    EXPECT_EQ(util::ClassTracker<Tracked>::GetInstances().size(), 2u);
    EXPECT_NE(&a, &b);
}

#include "util/Callback.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "util/Exception.h"
#include "util/Interpolator.h"

namespace {

struct Owner : util::Pointee {};
using OwnerPtr = util::SharedPtr<Owner>;

double s_now = 0;
double FakeNow() {
    return s_now;
}

}  // namespace

TEST(CallbackSet, CallsInOrderSkipsTheExpiredAndFlushesThem) {
    util::CallbackSet set;
    OwnerPtr lasting = new Owner, passing = new Owner;
    String calls;
    set.Add(new util::Callback([&] { calls += 'a'; }, lasting.Get()));
    set.Add(new util::Callback([&] { calls += 'b'; }, passing.Get()));
    set.Add(nullptr);
    set.Add(new util::Callback([&] { calls += 'c'; }, lasting.Get()));
    set.CallAll();
    passing = nullptr;
    set.CallAll();
    EXPECT_EQ(calls, "abcac");
    EXPECT_EQ(set.GetSize(), 3u);
    set.Flush();
    EXPECT_EQ(set.GetSize(), 2u);
}

TEST(CallbackSet, ACallbackMayEndItsOwnerOrTheSet) {
    util::SharedPtr<Owner> owner = new Owner;
    auto* const set = new util::CallbackSet;
    bool ranToItsEnd = false;
    set->Add(new util::Callback(
        [&] {
            owner = nullptr;
            delete set;
            ranToItsEnd = true;
        },
        owner.Get()));
    set->CallAll();
    EXPECT_TRUE(ranToItsEnd);
}

TEST(CallbackSet, AThrowingCallbackDoesNotStopTheNext) {
    test::LogCapture log;
    util::CallbackSet set;
    const OwnerPtr owner = new Owner;
    int calls = 0;
    set.Add(new util::Callback([] { THROW(BadDataException, "oh"); }, owner.Get()));
    set.Add(new util::Callback([] { throw 1; }, owner.Get()));
    set.Add(new util::Callback([&] { ++calls; }, owner.Get()));
    set.CallAll();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(log.Contains("Exception caught in CallbackSet::CallAll: oh"));
}

// s(u) = u + u^2 - u^3 at a few points, over both ends of the time.
TEST(Interpolator, FollowsTheEaseAndHoldsTheEnd) {
    util::Clock::SetSource(&FakeNow);
    s_now = 10;
    util::Interpolator<float> view(1);
    view.Set(3, 0.1);
    for (const double u : {0.0, 0.25, 0.5, 0.9}) {
        s_now = 10 + 0.1 * u;
        view.Update();
        EXPECT_NEAR(view.Get(), 1 + 2 * (u + u * u - u * u * u), 1e-4) << u;
    }
    s_now = 10.11;
    view.Update();
    EXPECT_EQ(view.Get(), view.GetTarget());
    view.Set(5, 0);
    view.Update();
    EXPECT_EQ(view.Get(), 5);
    util::Clock::SetSource(nullptr);
}

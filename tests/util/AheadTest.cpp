#include "util/Ahead.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using util::Ahead;

// Keeps the second thread busy until it is let go.
class Blocked {
  public:
    Blocked() {
        std::promise<void> started;
        util::RunAside([&started, end = m_end.get_future().share()] {
            started.set_value();
            end.wait();
        });
        started.get_future().wait();
    }
    ~Blocked() { m_end.set_value(); }

  private:
    std::promise<void> m_end;
};

TEST(AheadTest, ValuesAreThoseOfTheirMakers) {
    std::vector<Ahead<int>> values;
    for (int i = 0; i < 100; ++i) values.push_back(Ahead<int>([i] { return i * i; }));
    for (int i = 100; i-- > 0;) EXPECT_EQ(values[static_cast<size_t>(i)].Take(), i * i);
    EXPECT_TRUE(values[0].IsEmpty());
}

TEST(AheadTest, WhatNobodyHasBegunIsMadeByWhoWantsIt) {
    const Blocked blocked;
    std::thread::id maker;
    Ahead<int> value([&maker] {
        maker = std::this_thread::get_id();
        return 7;
    });
    EXPECT_EQ(value.Take(), 7);
    EXPECT_EQ(maker, std::this_thread::get_id());
}

TEST(AheadTest, AFailureComesOutWhereTheValueIsWanted) {
    Ahead<int> value([]() -> int { throw std::out_of_range("none"); });
    EXPECT_THROW(value.Take(), std::out_of_range);
}

TEST(AheadTest, WhatNobodyWantsAnyMoreIsNotMade) {
    const auto count = std::make_shared<std::atomic<int>>(0);
    const auto make = [count] { return ++*count; };
    {
        const Blocked blocked;
        Ahead<int> dropped(make), replaced(make);
        replaced = Ahead<int>();
    }
    EXPECT_EQ(Ahead<int>([] { return 1; }).Take(), 1);
    util::Ahead<int> last([] { return 2; });
    const Blocked afterAll;  // the thread has come by all that went before
    EXPECT_EQ(*count, 0);
    EXPECT_EQ(last.Take(), 2);
}

}  // namespace

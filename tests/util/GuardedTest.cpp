#include "util/Guarded.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"

namespace util {

// The user gets one line, the log file the place of the caller as well.
TEST(Guarded, TellsAFailureOnceAndGoesOn) {
    const test::LogCapture told(logging::Warning | logging::Error);
    const test::LogCapture trace(logging::Trace);
    EXPECT_TRUE(Guarded([] {}));
    EXPECT_FALSE(Guarded([] { throw std::runtime_error("broken"); }, "While testing: "));
    EXPECT_FALSE(Guarded([] { throw 1; }, "", logging::Error));
    EXPECT_EQ(told.Count(""), 2);
    EXPECT_TRUE(told.Contains("-- Warning: While testing: broken"));
    EXPECT_TRUE(told.Contains("!! ERROR: Fail"));
    EXPECT_TRUE(trace.Contains("GuardedTest.cpp:"));
}

}  // namespace util

#include "core/Platform.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "support/LogCapture.h"

namespace test {
namespace {

TEST(PlatformTest, TerminationSignalsRaiseAFlagOnce) {
    core::CatchTerminationSignals();
    EXPECT_FALSE(core::TakeTerminationRequest());
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        std::raise(signal);
        EXPECT_TRUE(core::TakeTerminationRequest()) << signal;
        EXPECT_FALSE(core::TakeTerminationRequest()) << signal;
    }
}

TEST(PlatformTest, WithoutADisplayAMessageGoesToStandardErrorAndDoesNotBlock) {
    const char* const display = std::getenv("DISPLAY");
    const String kept = display != nullptr ? display : "";
    unsetenv("DISPLAY");
    LogCapture log(logging::Error);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(core::ShowMsg("Exception caught", "it broke"));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Exception caught: it broke\n"), String::npos);
    EXPECT_TRUE(log.Contains("Exception caught: it broke"));
    if (display != nullptr) setenv("DISPLAY", kept.c_str(), 1);
}

}  // namespace
}  // namespace test

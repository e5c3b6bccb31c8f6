#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "support/LogCapture.h"
#include "util/FileSystem.h"

#ifdef VEXA_CHECKED
#include <sanitizer/lsan_interface.h>

// The window library's link to the desktop keeps one message to itself.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libdbus-1\n";
}
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}
#endif

// Whether there is memory that nothing leads to any more. What abandoned services hold is not lost.
static bool HasLeaks() {
#ifdef VEXA_CHECKED
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

// Each test program runs in a scratch folder of its own, with the log captured, and leaves by _exit: the
// services are abandoned at exit, as in the program itself.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    char scratch[] = "/tmp/vexa-test-XXXXXX";
    if (mkdtemp(scratch) == nullptr) return 2;
    util::FileSystem::Instance().SetWorkDir(String(scratch) + "/");
    testing::AddGlobalTestEnvironment(new test::LogEnvironment);
    bool failed = RUN_ALL_TESTS() != 0;
    failed |= std::system(("rm -rf " + String(scratch)).c_str()) != 0;
    failed |= HasLeaks();
    std::fflush(nullptr);
    _exit(failed ? 1 : 0);
}

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "support/LogCapture.h"
#include "util/FileSystem.h"

// Each test program runs in a scratch folder of its own, with the log captured, and leaves by _exit: the
// services are abandoned at exit, as in the program itself.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    char scratch[] = "/tmp/vexa-test-XXXXXX";
    if (mkdtemp(scratch) == nullptr) return 2;
    util::FileSystem::Instance().SetWorkDir(String(scratch) + "/");
    testing::AddGlobalTestEnvironment(new test::LogEnvironment);
    const int result = RUN_ALL_TESTS();
    const int removed = std::system(("rm -rf " + String(scratch)).c_str());
    std::fflush(nullptr);
    _exit(result != 0 || removed != 0 ? 1 : 0);
}

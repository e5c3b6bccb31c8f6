#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>

#include "support/SourceDir.h"
#include "util/FileSystem.h"

// The command line of vexa-scene, as users and scripts meet it. Skipped where the program is not built.
namespace {

struct Result {
    int m_code;
    String m_output;  // both streams
};

class SceneRunnerTest : public testing::Test {
  protected:
    void SetUp() override {
        if (access(PROGRAM, X_OK) != 0) GTEST_SKIP() << PROGRAM << " is not there";
    }

    static Result Run(const String& arguments) {
        std::FILE* const pipe = popen((String(PROGRAM) + " " + arguments + " 2>&1").c_str(), "r");
        String output;
        char buffer[4096];
        while (const size_t count = fread(buffer, 1, sizeof(buffer), pipe)) output.append(buffer, count);
        return {WEXITSTATUS(pclose(pipe)), output};
    }
    static String Scene(const String& name) { return test::GetSourceDir() + "/Scenes/" + name + ".vxa"; }
    static String Scratch(const String& name) { return util::FileSystem::Instance().GetWorkDir() + name; }

    static constexpr const char* PROGRAM = "../tools/vexa-scene";
};

TEST_F(SceneRunnerTest, BadCommandLinesAreExplained) {
    const std::pair<String, String> table[] = {
        {"", "no scene given"},
        {"a.vxa b.vxa", "more than one scene: b.vxa"},
        {"a.vxa --fast", "unknown option --fast"},
        {"a.vxa --steps", "--steps needs a value"},
        {"a.vxa --steps ten", "--steps needs a number from 0 to 1000000000, not \"ten\""},
        {"a.vxa --watch often", "--watch needs a number from 0 to 1000000000, not \"often\""},
        {"a.vxa --steps -1", "--steps needs a number from 0 to 1000000000, not \"-1\""},
    };
    for (const auto& [arguments, text] : table) {
        const Result result = Run(arguments);
        EXPECT_EQ(result.m_code, 2) << arguments;
        EXPECT_NE(result.m_output.find("vexa-scene: " + text + "\n"), String::npos) << result.m_output;
        EXPECT_NE(result.m_output.find("Usage: "), String::npos);
    }
    EXPECT_EQ(Run("--help").m_code, 0);
}

TEST_F(SceneRunnerTest, ScenesThatCannotBeReadOrWrittenFail) {
    EXPECT_EQ(Run(Scratch("nowhere.vxa")).m_code, 1);
    util::FileSystem::Instance().WriteFileAtomically(Scratch("broken.vxa"), "{ \"");
    EXPECT_EQ(Run(Scratch("broken.vxa")).m_code, 1);
    EXPECT_EQ(Run(Scene("newton") + " --out /nowhere/at/all.vxa").m_code, 1);
}

TEST_F(SceneRunnerTest, EqualRunsGiveEqualHashes) {
    const Result first = Run(Scene("newton") + " --steps 200 --hash");
    EXPECT_EQ(first.m_code, 0);
    EXPECT_EQ(first.m_output.size(), 17u) << first.m_output;
    EXPECT_EQ(Run(Scene("newton") + " --steps 200 --hash").m_output, first.m_output);
    EXPECT_NE(Run(Scene("newton") + " --steps 201 --hash").m_output, first.m_output);
}

TEST_F(SceneRunnerTest, RunsScriptAndWritesWhatItCanRead) {
    const String out = Scratch("out.vxa");
    const Result result = Run(Scene("newton") + " --run 'Sim.gravity = [0.0, 0.0]' --steps 50 --out " + out +
                              " --print Sim.gravity --print '1 + 1'");
    EXPECT_EQ(result.m_code, 0);
    EXPECT_EQ(result.m_output, "[0, 0]\n2\n");
    EXPECT_EQ(Run(out + " --steps 1").m_code, 0);
    const String watched = Run(out + " --steps 20 --watch 10").m_output;
    EXPECT_EQ(watched.find("10 "), 0u) << watched;
    EXPECT_NE(watched.find("\n20 "), String::npos) << watched;
}

}  // namespace

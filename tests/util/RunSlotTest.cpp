#include "util/RunSlot.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "support/LogCapture.h"

namespace {

util::FileSystem& Files() {
    return util::FileSystem::Instance();
}

// A working folder of its own.
class RunSlotTest : public testing::Test {
  protected:
    RunSlotTest() : m_kept(Files().GetWorkDir()) {
        Files().SetWorkDir(m_kept + "slots/");
        Files().MakeDir(Files().GetScenesDir());
    }
    ~RunSlotTest() override {
        std::filesystem::remove_all(Files().GetWorkDir());
        Files().SetWorkDir(m_kept);
    }
    static void PutScene(const String& name) { std::ofstream(Files().GetScenesDir() + name) << name; }
    static bool HasScene(const String& name) { return Files().Exists(Files().GetScenesDir() + name); }

    test::LogCapture m_log{logging::Warning};
    const String m_kept;
};

}  // namespace

TEST_F(RunSlotTest, ProgramsOnOneFolderAutosaveApart) {
    auto first = std::make_unique<util::RunSlot>();
    first->Take();
    EXPECT_EQ(first->GetAutosaveScene(), "_AUTOSAVE.vxa");
    EXPECT_EQ(first->GetAutosaveConfig(), "config.autosave.cfg");
    EXPECT_FALSE(m_log.Contains("Another"));
    util::RunSlot second;
    second.Take();
    EXPECT_EQ(second.GetAutosaveScene(), "_AUTOSAVE-2.vxa");
    EXPECT_EQ(second.GetAutosaveConfig(), "config.autosave-2.cfg");
    EXPECT_TRUE(m_log.Contains("Another Vexa is running"));
    first.reset();
    util::RunSlot third;
    third.Take();
    EXPECT_EQ(third.GetNumber(), 1);
}

TEST_F(RunSlotTest, OnlyWhatNobodyHoldsIsTakenForACrash) {
    util::RunSlot first, second;
    first.Take();
    second.Take();
    PutScene("_AUTOSAVE-2.vxa");
    PutScene("_AUTOSAVE-3.vxa");
    PutScene("recovered-1.vxa");
    EXPECT_EQ(first.KeepOrphans(), util::StringList{"recovered-2.vxa"});
    EXPECT_TRUE(HasScene("_AUTOSAVE-2.vxa"));
    EXPECT_FALSE(HasScene("_AUTOSAVE-3.vxa"));
    EXPECT_EQ(Files().ReadFile(Files().GetScenesDir() + "recovered-2.vxa"), "_AUTOSAVE-3.vxa");
}

TEST_F(RunSlotTest, AKilledProgramLetsGoOfItsSlot) {
    const pid_t child = fork();
    if (child == 0) {
        util::RunSlot slot;
        slot.Take();
        raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    util::RunSlot slot;
    slot.Take();
    EXPECT_EQ(slot.GetNumber(), 1);
}

TEST_F(RunSlotTest, OnlyTheFirstSweepsHalfWrittenFiles) {
    PutScene("a.vxa.tmp");
    PutScene("a.tmp");
    util::RunSlot first, second;
    first.Take();
    second.Take();
    second.SweepTemporaries();
    EXPECT_TRUE(HasScene("a.vxa.tmp"));
    first.SweepTemporaries();
    EXPECT_FALSE(HasScene("a.vxa.tmp"));
    EXPECT_TRUE(HasScene("a.tmp"));
}

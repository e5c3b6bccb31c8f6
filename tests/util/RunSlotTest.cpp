#include "util/RunSlot.h"

#include <gtest/gtest.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <memory>
#include <sstream>

#include "support/LogCapture.h"

namespace {

util::FileSystem& Files() {
    return util::FileSystem::Instance();
}

constexpr std::time_t MINUTE = 1700000040;

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
    // Saved at that second of a certain minute.
    static void PutScene(const String& name, int second = 0) {
        std::ofstream(Files().GetScenesDir() + name) << name;
        const timeval at = {MINUTE + second, 0}, times[] = {at, at};
        utimes((Files().GetScenesDir() + name).c_str(), times);
    }
    static String NameOf(int second, const String& ending) {
        const std::time_t at = MINUTE + second;
        std::ostringstream name;
        name << std::put_time(std::localtime(&at), "recovered-%Y-%m-%d-%H.%M.%S") << ending;
        return name.str();
    }
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
    PutScene("_AUTOSAVE-3.vxa", 5);
    PutScene("_AUTOSAVE-4.vxa", 5);
    const util::StringList kept = {NameOf(5, ".vxa"), NameOf(5, "-2.vxa")};
    EXPECT_EQ(first.KeepOrphans(), kept);
    EXPECT_TRUE(HasScene("_AUTOSAVE-2.vxa"));
    EXPECT_FALSE(HasScene("_AUTOSAVE-3.vxa"));
    EXPECT_EQ(Files().ReadFile(Files().GetScenesDir() + kept[1]), "_AUTOSAVE-4.vxa");
}

TEST_F(RunSlotTest, OldRecoveredScenesGoUnlessTheUserHasHadThem) {
    const auto keep = [](int second) {
        PutScene("_AUTOSAVE.vxa", second);
        EXPECT_EQ(util::RunSlot::KeepAsRecovered("_AUTOSAVE.vxa"), NameOf(second, ".vxa"));
    };
    constexpr int COUNT = util::RunSlot::MAX_RECOVERED;
    for (int second = 0; second < COUNT; ++second) keep(second);
    PutScene(NameOf(0, ".vxa"), 100);  // saved by the user
    Files().Rename(Files().GetScenesDir() + NameOf(1, ".vxa"), Files().GetScenesDir() + "recovered-mine.vxa");
    keep(COUNT);
    keep(COUNT + 1);
    EXPECT_TRUE(HasScene(NameOf(2, ".vxa")));
    keep(COUNT + 2);
    EXPECT_FALSE(HasScene(NameOf(2, ".vxa")));
    for (int left = 3; left < COUNT + 3; ++left) EXPECT_TRUE(HasScene(NameOf(left, ".vxa"))) << left;
    EXPECT_TRUE(HasScene(NameOf(0, ".vxa")));
    EXPECT_TRUE(HasScene("recovered-mine.vxa"));
    keep(-1);  // of a clock that went wrong: what was kept last stays
    EXPECT_TRUE(HasScene(NameOf(-1, ".vxa")));
    EXPECT_FALSE(HasScene(NameOf(3, ".vxa")));
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

TEST_F(RunSlotTest, OnlyHalfWrittenFilesOfDeadProgramsAreSwept) {
    const String dead = ".999999999.tmp", living = "." + std::to_string(getpid()) + ".tmp";
    const util::StringList swept = {"a.vxa" + dead, "a.png" + dead};
    const util::StringList left = {"a.vxa" + living, "a" + dead, "a.vxa.tmp", "a.vxa.x1.tmp", "a.vxa"};
    for (const util::StringList& names : {swept, left}) {
        for (const String& name : names) PutScene(name);
    }
    util::RunSlot::SweepTemporaries();
    for (const String& name : swept) EXPECT_FALSE(HasScene(name)) << name;
    for (const String& name : left) EXPECT_TRUE(HasScene(name)) << name;
}

#include "util/FileSystem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/FailureOf.h"
#include "support/LogCapture.h"
#include "util/Exception.h"
#include "util/FileWrapper.h"

namespace {

util::FileSystem& Files() {
    return util::FileSystem::Instance();
}

void Put(const String& path, const String& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace

TEST(FileSystem, WildcardsMatchWithAtLeastOneCharacterPerStar) {
    const struct {
        const char *text, *mask;
        bool matches;
    } rows[] = {{"a.cfg", "*.cfg", true}, {"a.cfg2", "*.cfg", false}, {"abc", "abc*", false},
                {"abcd", "abc*", true},   {"abc", "a?c", true},       {"", "", true},
                {"", "*", false},         {"ab", "*", true},          {"x.vxa", "*.v?a", true},
                {"abcabc", "*abc", true}, {"abcabd", "*abc", false},  {"ABC", "abc", false}};
    for (const auto& row : rows) {
        EXPECT_EQ(util::WildcardMatch(row.text, row.mask), row.matches) << row.text << " " << row.mask;
    }
}

TEST(FileSystem, ReadsWindowsLinesAndLongLines) {
    const String path = Files().GetWorkDir() + "text.txt";
    const String longLine(5000, 'x');
    Put(path, "a\r\n" + longLine + "\r\nb\rc\n");
    EXPECT_EQ(Files().ReadFile(path), "a\n" + longLine + "\nb\rc\n");
    EXPECT_THROW(Files().ReadFile(path + ".none"), std::runtime_error);
}

TEST(FileSystem, ReplacesFilesWholeOrNotAtAll) {
    const String path = Files().GetWorkDir() + "replaced.vxa";
    Files().WriteFileAtomically(path, "one");
    Files().WriteFileAtomically(path, "two");
    EXPECT_EQ(Files().ReadFile(path), "two");
    EXPECT_THROW(Files().WriteFileAtomically(Files().GetWorkDir() + "nowhere/x", "y"), std::runtime_error);
    Files().MakeDir(Files().GetWorkDir() + "folder.vxa/full");
    EXPECT_THROW(Files().WriteFileAtomically(Files().GetWorkDir() + "folder.vxa", "y"), std::runtime_error);
    EXPECT_TRUE(Files().ListFiles(Files().GetWorkDir(), "*.tmp").empty());
}

TEST(FileSystem, PipesAndDevicesAreNoFiles) {
    const String folder = Files().GetWorkDir() + "odd/";
    Files().MakeDir(folder + "folder.vxa");
    ASSERT_EQ(mkfifo((folder + "pipe.vxa").c_str(), 0600), 0);
    ASSERT_EQ(symlink("pipe.vxa", (folder + "link.vxa").c_str()), 0);
    ASSERT_EQ(symlink("circle.vxa", (folder + "circle.vxa").c_str()), 0);
    EXPECT_TRUE(Files().ListFiles(folder, "*").empty());
    for (const String name : {"folder.vxa", "pipe.vxa", "link.vxa", "circle.vxa"}) {
        EXPECT_THROW(Files().ReadFile(folder + name), std::runtime_error) << name;
        EXPECT_FALSE(Files().KeepBadCopy(folder + name)) << name;
    }
    EXPECT_THROW(Files().WriteFileAtomically(folder + "link.vxa", "x"), std::runtime_error);
    struct stat status;
    ASSERT_EQ(stat((folder + "pipe.vxa").c_str(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

// Someone may have laid a link where the temporary file will be.
TEST(FileSystem, WritesThroughNoLinkOnTheWay) {
    const String path = Files().GetWorkDir() + "way.vxa";
    Put(path + ".mine", "mine");
    const String temporary = path + "." + std::to_string(getpid()) + ".tmp";
    ASSERT_EQ(symlink((path + ".mine").c_str(), temporary.c_str()), 0);
    Files().WriteFileAtomically(path, "new");
    EXPECT_EQ(Files().ReadFile(path), "new");
    EXPECT_EQ(Files().ReadFile(path + ".mine"), "mine");
}

// As programs do that share a folder and end with the desktop's session.
TEST(FileSystem, TwoProgramsThatWriteAtOnceBothWriteWhole) {
    constexpr size_t ROUNDS = 30, SIZE = 200000;
    const String path = Files().GetWorkDir() + "shared.cfg";
    const auto write = [&](char letter) {
        for (size_t i = 0; i < ROUNDS; ++i) Files().WriteFileAtomically(path, String(SIZE, letter));
    };
    const pid_t child = fork();
    if (child == 0) {
        try {
            write('b');
            _exit(0);
        } catch (const std::exception&) {
            _exit(1);
        }
    }
    EXPECT_NO_THROW(write('a'));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    const String text = Files().ReadFile(path);
    EXPECT_EQ(text, String(SIZE, text.at(0)));
}

TEST(FileSystem, ReplacingKeepsLinksAndPermissions) {
    const String folder = Files().GetWorkDir() + "linked/";
    Files().MakeDir(folder + "deep");
    Put(folder + "deep/target.vxa", "old");
    chmod((folder + "deep/target.vxa").c_str(), 0600);
    ASSERT_EQ(symlink("deep/target.vxa", (folder + "link.vxa").c_str()), 0);
    ASSERT_EQ(symlink("link.vxa", (folder + "second.vxa").c_str()), 0);
    ASSERT_EQ(symlink("circle.vxa", (folder + "circle.vxa").c_str()), 0);
    Files().WriteFileAtomically(folder + "second.vxa", "new");
    EXPECT_EQ(Files().ReadFile(folder + "deep/target.vxa"), "new");
    struct stat status;
    ASSERT_EQ(lstat((folder + "second.vxa").c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    ASSERT_EQ(lstat((folder + "deep/target.vxa").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    Files().WriteFileAtomically(folder + "circle.vxa", "ends");
    EXPECT_EQ(Files().ReadFile(folder + "circle.vxa"), "ends");
}

// The layouts in which the program is found: unpacked somewhere, installed, and under another name.
class InstallationTest : public testing::Test {
  protected:
    InstallationTest() : m_kept(Files().GetWorkDir()), m_root(m_kept + "layout/") {
        for (const char* folder :
             {"Unpacked/Data", "usr/bin", "usr/share/vexa/Data", "usr/share/vexa/Scenes"}) {
            Files().MakeDir(m_root + folder);
        }
        Put(m_root + "usr/share/vexa/autoexec.cfg", "// shipped");
        Put(m_root + "usr/share/vexa/Scenes/a.vxa", "shipped");
        Put(m_root + "usr/share/vexa/Scenes/b.vxa", "shipped");
        setenv("XDG_DATA_HOME", (m_root + "home").c_str(), 1);
    }
    ~InstallationTest() override {
        unsetenv("XDG_DATA_HOME");
        Files().SetWorkDir(m_kept);
        std::filesystem::remove_all(m_root);
    }
    const String m_kept, m_root;
};

TEST_F(InstallationTest, AnUnpackedFolderHoldsEverything) {
    Files().SetFoldersFor(m_root + "Unpacked/Vexa");
    EXPECT_EQ(Files().GetWorkDir(), m_root + "Unpacked/");
    EXPECT_EQ(Files().GetDataDir(), m_root + "Unpacked/Data/");
    Files().SetFoldersFor(m_root + "Unpacked/Other");
    EXPECT_EQ(Files().GetWorkDir() + Files().GetInstallDir(), "");
}

TEST_F(InstallationTest, AnInstalledProgramKeepsTheUsersFilesInTheHome) {
    Files().SetFoldersFor(m_root + "usr/bin/vexa");
    EXPECT_EQ(Files().GetWorkDir(), m_root + "home/vexa/");
    EXPECT_EQ(Files().ReadFile(Files().GetDataDir() + "../autoexec.cfg"), "// shipped");
    EXPECT_EQ(Files().ReadFile(Files().GetWorkDir() + "autoexec.cfg"), "// shipped");
    Put(Files().GetWorkDir() + "autoexec.cfg", "// mine");
    Files().SetFoldersFor(m_root + "usr/bin/vexa");
    EXPECT_EQ(Files().ReadFile(Files().GetWorkDir() + "autoexec.cfg"), "// mine");
}

TEST_F(InstallationTest, TheUsersSceneComesBeforeTheShippedOne) {
    Files().SetFoldersFor(m_root + "usr/bin/vexa");
    EXPECT_EQ(Files().ReadFile(Files().FindScene("a.vxa")), "shipped");
    Put(Files().GetScenesDir() + "a.vxa", "mine");
    Put(Files().GetScenesDir() + "c.vxa", "mine");
    EXPECT_EQ(Files().ReadFile(Files().FindScene("a.vxa")), "mine");
    EXPECT_EQ(Files().FindScene("none.vxa"), Files().GetScenesDir() + "none.vxa");
    EXPECT_EQ(Files().ListScenes("*.vxa"), (util::StringList{"a.vxa", "b.vxa", "c.vxa"}));
}

TEST(FileSystem, ListsFilesWithoutFolders) {
    const String directory = Files().GetWorkDir() + "listed/";
    Files().MakeDir(directory + "sub.cfg");
    Put(directory + "b.cfg", "");
    Put(directory + "a.cfg", "");
    Put(directory + "c.txt", "");
    util::StringList names = Files().ListFiles(directory, "*.cfg");
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (util::StringList{"a.cfg", "b.cfg"}));
    EXPECT_EQ(Files().ListFiles(directory, "*").size(), 3u);
    EXPECT_TRUE(Files().ListFiles(directory + "missing/", "*").empty());
}

TEST(FileSystem, KeepsACopyOfWhatCouldNotBeRead) {
    test::LogCapture log(logging::Error);
    const String path = Files().GetWorkDir() + "broken.cfg";
    Put(path, "\"");
    EXPECT_TRUE(Files().KeepBadCopy(path));
    EXPECT_EQ(Files().ReadFile(path + ".bad"), "\"");
    EXPECT_TRUE(log.Contains(path + ".bad"));
    EXPECT_FALSE(Files().KeepBadCopy(path + ".none"));
}

TEST(FILEWrapper, FailuresSayWhatFailed) {
    const String path = Files().GetWorkDir() + "short.bin";
    Put(path, "abc");
    EXPECT_EQ(test::FailureOf([&] { util::FILEWrapper(path + "x", "rb"); }),
              "Failed to open file \"" + path + "x\"");
    util::FILEWrapper file(path, "rb");
    char buffer[4];
    EXPECT_EQ(test::FailureOf([&] { file.Read(buffer, 4); }), "Failed to read 4 bytes");
    EXPECT_EQ(test::FailureOf([&] { file.Write("z", 1); }), "Failed to write 1 bytes");
    EXPECT_EQ(test::FailureOf([&] { file.Seek(-9, SEEK_SET); }), "Failed to seek in FILE");
}

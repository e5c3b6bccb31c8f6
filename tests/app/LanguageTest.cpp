#include "app/Language.h"

#include <cstdlib>

#include "SceneFixture.h"
#include "app/widgets/SceneButton.h"
#include "script/Parser.h"
#include "util/FileSystem.h"

namespace app {
namespace {

class LanguageTest : public test::SceneFixture {
  protected:
    void TearDown() override {
        Get().Load("English");
        SceneFixture::TearDown();
    }
    static Language& Get() { return Language::Instance(); }
    static void Write(const String& fileName, const String& text) {
        const util::FileSystem& files = util::FileSystem::Instance();
        files.WriteFileAtomically(files.GetLanguageDir() + fileName, text);
    }
    static void Use(const String& text) {
        Write("Test.cfg", text);
        Get().Load("Test");
        util::FileSystem::Instance().Remove(util::FileSystem::Instance().GetLanguageDir() + "Test.cfg");
    }
};

// ---- what ships

TEST_F(LanguageTest, EveryShippedLanguageIsWhole) {
    for (const String& name : Language::List()) {
        const test::LogCapture log(logging::Warning);
        Get().Load(name);
        EXPECT_EQ(Get().GetName(), name);
        GetApp().m_language->Set(name);
        EXPECT_GT(Get().GetHelpText().size(), 1000u) << name;
        EXPECT_TRUE(log.GetLines().empty()) << testing::PrintToString(log.GetLines());
    }
    GetApp().m_language->Set("English");
}

TEST_F(LanguageTest, ScenesStandInTheOrderOfTheirTitles) {
    Get().Load("German");
    const String ruins = "\xC3\x96lands ruin.vxa";
    std::vector<String> files = {"Zoo.vxa", "_AUTOSAVE.vxa", "bridge.vxa", "car.vxa", ruins, "berg.vxa"};
    SortByTitle(files);
    // "Auto", "berg", a bridge, ...
    EXPECT_EQ(files,
              (std::vector<String>{"_AUTOSAVE.vxa", "car.vxa", "berg.vxa", "bridge.vxa", "Zoo.vxa", ruins}));
}

TEST_F(LanguageTest, TheUsersLocaleFindsItsLanguage) {
    const std::pair<const char*, const char*> cases[] = {
        {"de_AT.UTF-8", "German"}, {"sv", "Swedish"}, {"fr_CA@euro", "French"}, {"es_MX.utf8", "Spanish"},
        {"en_GB", "English"},      {"ja_JP", ""},     {"C.UTF-8", ""},          {"", ""},
    };
    for (const auto& [locale, name] : cases) EXPECT_EQ(Language::FindForLocale(locale), name) << locale;
    EXPECT_EQ(Language::GetOwnName("Spanish"), "Espa\xF1ol");
}

TEST_F(LanguageTest, TheNarrowestLocaleVariableCounts) {
    for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) unsetenv(variable);
    EXPECT_EQ(Language::GetUserLocale(), "");
    setenv("LANG", "de_DE", 1);
    EXPECT_EQ(Language::GetUserLocale(), "de_DE");
    setenv("LC_MESSAGES", "sv_SE", 1);
    EXPECT_EQ(Language::GetUserLocale(), "sv_SE");
    setenv("LC_ALL", "", 1);
    EXPECT_EQ(Language::GetUserLocale(), "sv_SE");
    unsetenv("LC_ALL");
    unsetenv("LC_MESSAGES");
    setenv("LANG", "C.UTF-8", 1);
}

// ---- a file and its faults

TEST_F(LanguageTest, AMissingTextIsEnglishAndAnUnknownOneShowsItsKey) {
    test::LogCapture log(logging::Warning);
    Use("Bounciness = \"studs\"; Extra = \"extra\"");
    EXPECT_EQ(Translate("Bounciness"), "studs");
    EXPECT_EQ(Translate("Clone"), "Clone");
    EXPECT_TRUE(log.Contains("Missing Test translation for Clone"));
    EXPECT_FALSE(log.Contains("Missing Test translation for Bounciness"));
    EXPECT_TRUE(log.Contains("Test had \"Extra\" which was not found in the english original"));
    EXPECT_FALSE(Get().Has("erase"));
    EXPECT_EQ(Translate("erase"), "[erase]");
    EXPECT_TRUE(log.Contains("English and Test translation missing for erase"));
}

TEST_F(LanguageTest, OnlyAssignmentsAtTheTopCountAndTheLastOneWins) {
    Use("Erase = \"1\"; \"nothing\"; Erase = \"a\" + \"b\"; f = { Clone = \"inside\" }; Clone = \"\"");
    EXPECT_EQ(Translate("Erase"), "ab");
    EXPECT_EQ(Translate("Clone"), "");
    EXPECT_EQ(script::Parser::Instance().ExecuteToString("Erase"), "") << "the names stay in the file";
}

TEST_F(LanguageTest, AStatementThatFailsCostsOnlyItself) {
    test::LogCapture log(logging::Warning);
    Use("Erase = nowhere; Clone = 5; Save = \"gem\"");
    EXPECT_EQ(log.Count("Error in language file Test: "), 2);
    EXPECT_EQ(Translate("Save"), "gem");
    EXPECT_EQ(Translate("Erase"), "Erase");
}

TEST_F(LanguageTest, AFileThatCannotBeReadLeavesTheFormerLanguage) {
    test::LogCapture log(logging::Warning);
    Get().Load("German");
    Get().Load("Nowhere");
    EXPECT_TRUE(log.Contains("Error loading language Nowhere: "));
    EXPECT_EQ(Get().GetName(), "German");
    EXPECT_EQ(Translate("Save"), "Speichern");
}

TEST_F(LanguageTest, AMissingHelpTextIsEnglish) {
    test::LogCapture log(logging::Warning);
    const String english = Get().GetHelpText();
    Use("Erase = \"x\"");
    EXPECT_EQ(Get().GetHelpText(), english);
    EXPECT_TRUE(log.Contains("Missing help file: "));
}

}  // namespace
}  // namespace app

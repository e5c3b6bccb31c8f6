#include "core/ComposeTable.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "support/SourceDir.h"

namespace {

TEST(ComposeTableTest, OnlyLocalesOfTheCommonTableHaveIt) {
    const std::string folders =
        "# en_US.UTF-8/Compose xx_XX.UTF-8\n"
        "iso8859-1/Compose\t\tde_DE.ISO8859-1\n"
        "en_US.UTF-8/Compose\t\tde_DE.UTF-8\n"
        "pt_BR.UTF-8/Compose:\t\tpt_BR.UTF-8\n"
        "en_US.UTF-8/Compose:\t\tsv_SE.UTF-8\n";
    const struct {
        const char* locale;
        bool has;
    } cases[] = {{"de_DE.UTF-8", true},  {"sv_SE.UTF-8", true},  {"de_DE.ISO8859-1", false},
                 {"pt_BR.UTF-8", false}, {"xx_XX.UTF-8", false}, {"", false}};
    for (const auto& c : cases) EXPECT_EQ(core::HasCommonComposeTable(folders, c.locale), c.has) << c.locale;
}

// A letter that some keyboard reaches by two keys only.
TEST(ComposeTableTest, TheTableHasEveryAccentedLetter) {
    std::ifstream file(test::GetSourceDir() + "/Data/Compose");
    std::string made;
    for (std::string line; std::getline(file, line);) {
        const size_t quote = line.find(": \"");
        ASSERT_NE(quote, std::string::npos) << line;
        made += line.substr(quote + 3, line.rfind('"') - quote - 3) + " ";
    }
    for (unsigned code = 0xc0; code <= 0xff; ++code) {
        if (code == 0xd7 || code == 0xf7) continue;  // times and divided by
        const std::string letter = {static_cast<char>(0xc0 | code >> 6),
                                    static_cast<char>(0x80 | (code & 0x3f))};
        EXPECT_NE(made.find(letter + " "), std::string::npos) << letter;
    }
}

}  // namespace

#include <filesystem>
#include <fstream>

#include "ScriptFixture.h"
#include "logging/Log.h"
#include "support/SourceDir.h"

// Runs the language's own tests, tests/script/cases/*.txt. A file is a list of cases in one session:
//
//   > a line of script; further lines of the same script begin with "> " too
//   what it prints
//   ! part of a warning or error that it causes, in the order of their appearance
//
// Cases are parted by blank lines; a line that begins with "#" is a comment. A case that causes more or
// other messages than it says fails.
namespace test {

struct Case {
    int line;
    String code, output;
    std::vector<String> messages;
};

static std::vector<Case> ReadCases(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::vector<Case> cases;
    bool open = false;
    String text;
    for (int line = 1; std::getline(file, text); ++line) {
        if (text.empty()) {
            open = false;
        } else if (text[0] == '>') {
            if (!open || !cases.back().output.empty()) cases.push_back({line, "", "", {}});
            open = true;
            cases.back().code +=
                (cases.back().code.empty() ? "" : "\n") + text.substr(text.size() > 1 ? 2 : 1);
        } else if (text[0] == '!') {
            cases.back().messages.push_back(text.substr(2));
        } else if (text[0] != '#') {
            cases.back().output += (cases.back().output.empty() ? "" : "\n") + text;
        }
    }
    return cases;
}

class Cases : public Script, public testing::WithParamInterface<std::filesystem::path> {};

TEST_P(Cases, DoWhatTheySay) {
    m_parser.SetOnError(+[](const String& text) { Log(logging::Warning, text); });
    const std::vector<Case> cases = ReadCases(GetParam());
    EXPECT_FALSE(cases.empty());
    for (const Case& test : cases) {
        SCOPED_TRACE(GetParam().filename().string() + ":" + std::to_string(test.line) + ": " + test.code);
        const LogCapture log(logging::Warning | logging::CodeError | logging::DataError | logging::Error);
        EXPECT_EQ(m_parser.ExecuteToString(test.code), test.output);
        const std::vector<String>& messages = log.GetLines();
        EXPECT_EQ(messages.size(), test.messages.size()) << testing::PrintToString(messages);
        for (size_t i = 0; i < std::min(messages.size(), test.messages.size()); ++i) {
            EXPECT_NE(messages[i].find(test.messages[i]), String::npos)
                << messages[i] << "\nlacks: " << test.messages[i];
        }
    }
}

static std::vector<std::filesystem::path> FindCases() {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry :
         std::filesystem::directory_iterator(test::GetSourceDir() + "/tests/script/cases")) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

INSTANTIATE_TEST_SUITE_P(Language, Cases, testing::ValuesIn(FindCases()),
                         [](const auto& test) { return test.param.stem().string(); });

}  // namespace test

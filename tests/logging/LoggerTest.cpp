#include "logging/Logger.h"
#include "logging/Sinks.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/LogCapture.h"
#include "util/Exception.h"
#include "util/FileSystem.h"
#include "util/Version.h"

namespace {

logging::Logger& TheLogger() {
    return logging::Logger::Instance();
}

// What one frame of a repeated message at `level` lets through, frame by frame.
String Pattern(logging::LogLevel level, const String& text, const String& saidInFrame) {
    test::LogCapture log;
    String heard;
    for (const char said : saidInFrame) {
        log.Clear();
        if (said == 'x') Log(level, text);
        heard += log.GetLines().empty() ? '.' : 'x';
        TheLogger().Update();
    }
    return heard;
}

struct ThrowingSink : logging::ILogger {
    ThrowingSink() : ILogger(31) {}
    void Log(const String&) override { throw 1; }
};

}  // namespace

TEST(Logger, ARepeatingWarningAppearsOnceUntilAFrameWithoutIt) {
    EXPECT_EQ(Pattern(logging::Warning, "w", "xxx.x.x"), "x...x.x");
    EXPECT_EQ(Pattern(logging::Error, "e", "xxx"), "x..");
    EXPECT_EQ(Pattern(logging::Trace, "t", "xxx"), "xxx");
    EXPECT_EQ(Pattern(logging::DataError, "d", "xx"), "xx");
}

TEST(Logger, TextsDoNotCommandATerminal) {
    std::ostringstream stream;
    logging::StreamLogger(31, stream).Log("caf\xe9\t1\n\x1b[2J\x07\x7f");
    EXPECT_EQ(stream.str(), "caf\xe9\t1\n?[2J??\n");
}

TEST(Logger, AnEndlessWarningIsCut) {
    test::LogCapture log;
    Log(logging::Warning, String(10u << 20, 'x'));
    ASSERT_EQ(log.GetLines().size(), 1u);
    EXPECT_LT(log.GetLines()[0].size(), 20000u);
    EXPECT_NE(log.GetLines()[0].find("x ..."), String::npos);
}

TEST(Logger, MasksAndPrefixes) {
    const struct {
        logging::LogLevel level;
        int mask;
        const char* line;
    } rows[] = {{logging::Warning, 7, "-- Warning: m"},
                {logging::Error, 7, "!! ERROR: m"},
                {logging::CodeError, 7, "m"},
                {logging::Error, 16, nullptr},
                {logging::Info, 16, "m"},
                {logging::Trace, 23, nullptr}};
    for (const auto& row : rows) {
        test::LogCapture log(row.mask);
        Log(row.level, "m");
        if (row.line == nullptr) {
            EXPECT_TRUE(log.GetLines().empty());
        } else {
            EXPECT_EQ(log.GetLines(), std::vector<String>{row.line});
        }
    }
}

TEST(Logger, AFailingSinkStopsNeitherTheOthersNorTheCaller) {
    const logging::ILoggerPtr sink = new ThrowingSink;
    TheLogger().AddLogger(sink);
    test::LogCapture log;
    Log(logging::Info, "hello");
    TheLogger().RemoveLogger(sink);
    EXPECT_TRUE(log.Contains("hello"));
}

TEST(Logger, TheFileStartsWithABannerAndStampsItsLines) {
    const String path = util::FileSystem::Instance().GetWorkDir() + "log.txt";
    const String rule(29, '-');
    { logging::FileLogger(31, path, true).Log("first"); }
    { logging::FileLogger(31, path, true).Log("second"); }
    std::istringstream text(util::FileSystem::Instance().ReadFile(path));
    std::vector<String> lines;
    for (String line; std::getline(text, line);) lines.push_back(line);
    ASSERT_EQ(lines.size(), 12u);
    EXPECT_EQ(lines[0], rule);
    EXPECT_EQ(lines[1], String("  ") + util::VERSION_TEXT);
    EXPECT_EQ(lines[3], rule);
    EXPECT_EQ(lines[4].substr(8), ": first");
    EXPECT_EQ(lines[5], "");
    EXPECT_EQ(lines[7], rule);
}

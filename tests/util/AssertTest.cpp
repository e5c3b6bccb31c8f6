#include "util/Assert.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "util/Exception.h"

namespace {

struct Row {
    bool isAssertion, isCode;
    int level;
    const char* start;
};

}  // namespace

TEST(Assert, EachKindSaysItsTextAtItsLevel) {
    const Row rows[] = {
        {false, false, logging::DataError, "Data check failed: \"1 == 2\" in function "},
        {false, true, logging::CodeError, "Code check failed: \"1 == 2\" in function "},
        {true, false, logging::Trace, "Data assertion failed: \"1 == 2\" in function "},
        {true, true, logging::Trace, "Code assertion failed: \"1 == 2\" in function "},
    };
    for (const Row& row : rows) {
        test::LogCapture log(row.level);
        String thrown;
        try {
            AssertionFailed("1 == 2", row.isAssertion, row.isCode, "f()", "file.cpp", 7);
        } catch (const BadDataException& e) {
            EXPECT_TRUE(row.isAssertion && !row.isCode);
            thrown = e.what();
        } catch (const BadCoderException& e) {
            EXPECT_TRUE(row.isAssertion && row.isCode);
            thrown = e.what();
        }
        EXPECT_EQ(row.isAssertion, !thrown.empty());
        EXPECT_TRUE(log.Contains(String(row.start) + "f() inf file.cpp:7"));
    }
}

TEST(Assert, TheArgumentIsEvaluatedOnce) {
    int calls = 0;
    DATA_CHECK(++calls > 0);
    CODE_ASSERTION(++calls > 0);
    EXPECT_EQ(calls, 2);
}

TEST(Exception, ThrowAndPassOnLogTheirPlaces) {
    test::LogCapture log;
    const auto pass = [] {
        try {
            THROW(FileReadException, "no such thing");
        }
        PASS_ON_EXCEPTIONS
    };
    EXPECT_THROW(pass(), BadDataException);
    EXPECT_EQ(log.Count("Exception thrown: no such thing from tests/util/AssertTest.cpp:"), 1);
    EXPECT_EQ(log.Count("Exception passed on at tests/util/AssertTest.cpp:"), 1);
}

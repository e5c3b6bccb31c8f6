#include "util/Encoding.h"

#include <gtest/gtest.h>

namespace {

TEST(Encoding, Utf8ToLatin1ReplacesWhatDoesNotFit) {
    const struct {
        const char *utf8, *latin1;
    } cases[] = {{"caf\xC3\xA9.vxa", "caf\xE9.vxa"},
                 {"a\xF0\x9F\x98\x80z", "a?z"},
                 {"\xE2\x82\xAC", "?"},
                 {"\xC3", "?"},         // cut short
                 {"\xE9t\xE9", "?t?"},  // no UTF-8
                 {"\xC0\xAF", "??"},    // longer than it need be
                 {"a\r\nb", "a\nb"}};
    for (const auto& c : cases) EXPECT_EQ(util::Latin1FromUtf8(c.utf8), c.latin1);
}

TEST(Encoding, EveryByteOfLatin1ComesBack) {
    for (int byte = 1; byte < 256; ++byte) {
        if (byte == '\r') continue;
        const String text(1, static_cast<char>(byte));
        EXPECT_EQ(util::Latin1FromUtf8(util::Utf8FromLatin1(text)), text) << byte;
    }
}

TEST(Encoding, ShowsEitherEncoding) {
    EXPECT_EQ(util::ToShown("caf\xC3\xA9"), "caf\xE9");
    EXPECT_EQ(util::ToShown("caf\xE9"), "caf\xE9");
}

}  // namespace

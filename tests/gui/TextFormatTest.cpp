#include "gui/TextFormat.h"

#include <gtest/gtest.h>

#include <cctype>

#include "Fixtures.h"
#include "support/FailureOf.h"
#include "util/Exception.h"
#include "util/Random.h"

namespace {

using gui::FormattedText;
using gui::FormatText;
using gui::TextFormat;
using gui::TextLine;

TextFormat FormatOfWidth(float maxWidth) {
    TextFormat format = test::Format();
    format.m_maxWidth = maxWidth;
    return format;
}

std::vector<String> GetLines(const FormattedText& text) {
    std::vector<String> lines;
    for (const TextLine& line : text.m_lines) {
        lines.push_back(text.m_text.substr(line.m_begin, line.m_end - line.m_begin));
    }
    return lines;
}

TEST(TextFormat, BreaksLines) {
    // A glyph is 8 wide, so 40 units hold five of them.
    const struct {
        const char* text;
        float maxWidth;
        std::vector<String> lines;
    } cases[] = {
        {"", 40, {""}},
        {"a\nb", 40, {"a", "b"}},
        {"a\n", 40, {"a", ""}},
        {"\n\n", 40, {"", "", ""}},
        {"hello", 40, {"hello"}},
        {"hello world", 40, {"hello", "world"}},
        {"hi you two", 40, {"hi", "you", "two"}},
        {"hi you two", 64, {"hi you", "two"}},
        {"abcdefghijk", 40, {"abcde", "fghij", "k"}},
        {"ab cdefghijk", 40, {"ab", "cdefg", "hijk"}},
        {"ab  cdef", 40, {"ab ", "cdef"}},
        {" abcdef", 40, {" abcd", "ef"}},  // a line is not left empty for a blank at its start
        {"mm", 8, {"m", "m"}},             // wider than the line: placed alone
        {"a b", 0, {"a", "b"}},
        {"ab\tc", 40, {"ab", "c"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(GetLines(FormatText(FormatOfWidth(c.maxWidth), c.text)), c.lines) << c.text;
    }
}

TEST(TextFormat, PlacesLinesBelowEachOther) {
    const FormattedText text = FormatText(test::Format(), "mm\ni\nab", 5);
    ASSERT_EQ(text.m_lines.size(), 3u);
    const float xs[] = {5, 0, 0}, widths[] = {24, 4, 16};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(text.m_lines[i].m_x, xs[i]);
        EXPECT_EQ(text.m_lines[i].m_y, 16.0f * i);
        EXPECT_EQ(text.m_lines[i].m_w, widths[i]);
        EXPECT_EQ(text.m_lines[i].m_h, 16);
    }
    EXPECT_EQ(text.m_width, 29);
    EXPECT_EQ(text.m_height, 48);
}

TEST(TextFormat, TabsGoToTheNextStop) {
    const TextFormat format = test::Format();
    const struct {
        float x, stop;
    } cases[] = {{0, 64}, {1, 64}, {63, 64}, {63.9999f, 128}, {64, 128}, {64.0001f, 128}, {130, 192}};
    for (const auto& c : cases) EXPECT_EQ(format.GetNextTabStop(c.x), c.stop) << c.x;

    EXPECT_EQ(FormatText(format, "a\tb\t").m_width, 128);
    EXPECT_EQ(FormatText(format, "\t\tb").m_width, 136);
}

TEST(TextFormat, LosesNoByteAndKeepsTheWidth) {
    util::Random random;
    const String alphabet = "aaaim  \t\n\xE4-";
    for (int round = 0; round < 300; ++round) {
        String text;
        const int length = random.GetUniformInt(0, 61);
        while (static_cast<int>(text.size()) < length) {
            text += alphabet[random.GetUniformInt(0, static_cast<int>(alphabet.size()))];
        }
        const float maxWidth = static_cast<float>(random.GetUniformInt(0, 150));
        const FormattedText formatted = FormatText(FormatOfWidth(maxWidth), text);

        size_t next = 0;
        for (const TextLine& line : formatted.m_lines) {
            ASSERT_GE(line.m_begin, next);
            if (line.m_begin > next) {
                // One byte may stand between lines.
                ASSERT_EQ(line.m_begin, next + 1);
                ASSERT_TRUE(std::isspace(static_cast<unsigned char>(text[next])));
            }
            ASSERT_GE(line.m_end, line.m_begin);
            const bool fits = line.m_w <= maxWidth || line.m_end - line.m_begin <= 1;
            const bool endsInTab = line.m_end > 0 && text[line.m_end - 1] == '\t';
            ASSERT_TRUE(fits || endsInTab) << maxWidth;
            next = line.m_end;
        }
        ASSERT_EQ(next, text.size());
    }
}

TEST(TextFormat, CharBoundsLieSideBySide) {
    const FormattedText text = FormatText(FormatOfWidth(80), "mi\tx of more\n\nend");
    for (const TextLine& line : text.m_lines) {
        float x = line.m_x;
        for (size_t i = line.m_begin; i < line.m_end; ++i) {
            const math::BoundingBox2f box = text.GetCharBounds(i);
            EXPECT_EQ(box.min, math::Vec2(x, line.m_y)) << i;
            EXPECT_EQ(box.max.y, line.m_y + 16) << i;
            x = box.max.x;
        }
        EXPECT_EQ(x, line.m_x + line.m_w);
        // A dropped blank or line feed, and the end of the text: the place behind the last byte.
        EXPECT_EQ(text.GetCharBounds(line.m_end).min.x, x);
    }
    EXPECT_EQ(text.GetCharBounds(2).max.x, 64);  // the tab
}

TEST(TextFormat, CharBoundsBeyondTheTextFail) {
    const FormattedText text = FormatText(test::Format(), "abc");
    for (const size_t index : {size_t{4}, static_cast<size_t>(-1)}) {
        EXPECT_EQ(test::FailureOf<BadDataException>([&] { text.GetCharBounds(index); }),
                  "Error in TextFormat::GetCharBounds");
    }
}

}  // namespace

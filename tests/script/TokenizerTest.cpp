#include "script/Tokenizer.h"

#include <gtest/gtest.h>

#include "support/FailureOf.h"

namespace script {

// A token as one word: the first letter of its kind, then its text.
static std::vector<String> Tokens(const String& text) {
    std::vector<String> words;
    for (const Token& token : Tokenizer::Tokenize(text)) words.push_back("bfisy"[token.kind] + token.text);
    return words;
}

TEST(Tokenizer, Forms) {
    const struct {
        String text;
        std::vector<String> tokens;
    } rows[] = {
        {"", {}},
        {" \t\r\n // only a comment", {}},
        {"// a comment\nx", {"yx"}},
        {"\xEF\xBB\xBFx", {"yx"}},
        {"a\r\nb", {"ya", "yb"}},
        {"true false truex True", {"btrue", "bfalse", "ytruex", "yTrue"}},
        {"_a1 B_2", {"y_a1", "yB_2"}},
        {"12 1.5 .5 1.5E-3 1.5e+", {"i12", "f1.5", "f.5", "f1.5E-3", "f1.5e+"}},
        {"5. 1e5 1.5.5", {"i5", "y.", "i1", "ye5", "f1.5", "f.5"}},
        {"-1 +2.5 --5 -+.5", {"i-1", "f+2.5", "i-", "i-5", "i-", "f+.5"}},
        {"-inf +INF -InF inf +inform", {"f-inf", "f+INF", "f-InF", "yinf", "f+inf", "yorm"}},
        {"-in - +", {"y-", "yin", "y-", "y+"}},
        {"a-5 a - 5 a=-1 a=-b", {"ya", "i-5", "ya", "y-", "i5", "ya", "y=", "i-1", "ya", "y=-", "yb"}},
        {"a=b=>{", {"ya", "y=", "yb", "y=>", "y{"}},
        {"a.b a.5 a..5", {"ya", "y.", "yb", "ya", "f.5", "ya", "y.", "f.5"}},
        {"(){}[],;; ;", {"y(", "y)", "y{", "y}", "y[", "y]", "y,", "y;;", "y;"}},
        {"a +// b", {"ya", "y+//", "yb"}},
        {"a / b /c", {"ya", "y/", "yb", "y/", "yc"}},
        {"\"a b\" \"\"", {"sa b", "s"}},
        {R"("\n\t\"\\\q")", {"s\n\t\"\\q"}},
        {"\"two\nlines\"", {"stwo\nlines"}},
        {"=\"abc\" \"", {"y=\"", "yabc", "s "}},
        {"\xC3\xA9 \xFF", {"y\xC3\xA9", "y\xFF"}},
        {String("\0a", 2), {String("y\0", 2), "ya"}},
    };
    for (const auto& row : rows) EXPECT_EQ(Tokens(row.text), row.tokens) << row.text;
}

TEST(Tokenizer, RefusesBrokenStrings) {
    const struct {
        String text, message;
    } rows[] = {
        {"\"abc", "Unmatched quote (\")"},
        {"\"", "Unmatched quote (\")"},
        {"x = \"a\\\"", "Unmatched quote (\")"},
        {"x =\"abc\"", "Unmatched quote (\")"},
        {"\"abc\\", "Bad string"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(test::FailureOf<TokenException>([&] { Tokenizer::Tokenize(row.text); }), row.message)
            << row.text;
    }
}

}  // namespace script

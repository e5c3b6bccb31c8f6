#include "ScriptFixture.h"
#include "script/CodeWriter.h"
#include "script/Expressions.h"
#include "script/Limits.h"

namespace script {

class Printing : public test::Script {};

TEST(Numbers, AsTextAndAsSource) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double value;
        String text, code;
    } rows[] = {
        {0, "0", "0.0"},
        {-0.0, "-0", "-0.0"},
        {1, "1", "1.0"},
        {0.1, "0.1", "0.1"},
        {double{0.01f}, "0.01", "0.009999999776482582"},
        {double{1e-4f}, "0.0001", "9.999999747378752e-05"},
        {1e8, "1e+08", "100000000.0"},
        {1e15, "1e+15", "1000000000000000.0"},
        {1e30, "1e+30", "1.0e+30"},
        {1e-5, "1e-05", "1.0e-05"},
        {0.1 + 0.2, "0.3", "0.30000000000000004"},
        {1.0 / 3, "0.333333", "0.3333333333333333"},
        {infinity, "+inf", "+inf"},
        {-infinity, "-inf", "-inf"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DoubleToText(row.value), row.text);
        EXPECT_EQ(DoubleToCode(row.value), row.code);
    }
}

// The printout of a tree is a file format: text, parsed and printed, is this.
TEST_F(Printing, Forms) {
    const struct {
        String text, code;
    } rows[] = {
        {"", ""},
        {"1; 2.5; true; \"a b\"", "1;\n2.5;\ntrue;\n\"a b\""},
        {"a . b . c = 1", "a.b.c = 1"},
        {"a = b = 1", "a = b = 1"},
        {"f x", "f(x)"},
        {"f x (y, z)", "f(x)(y, z)"},
        {"f [1,2] {3}", "f([1, 2])({3})"},
        {"f(x).y z", "f((x).y)(z)"},  // the point takes the operand before it
        {"(f x).y z", "(f(x)).y(z)"},
        {"()", "()"},
        {"[ ]", "[]"},
        {"1+2", "1(2)"},
        {"1 + 2", "1 + 2"},
        {"! a", " ! a"},
        {"a ;; b; c = ~ ; d", "a(;;)(b);\nc = ~ ;\nd"},
        {"~ . b; a . ~", "~ .b;\na. ~"},
        {"infix 1 left: _ nextto _ => ~ ", "infix 1 left: _ nextto _ => ~ ;\n"},
        {"(1 - 2) - 3", "(1 - 2) - 3"},
        {"{ }", "{}"},
        {"{a = 1}", "{a = 1}"},
        {"{a = 1; b = 2}", "{\na = 1;\n    b = 2\n}"},
        {"(x,y)=>{ x }", "(x, y)=>{x}"},
        {"{ { a; b }; c }", "{\n{\n    a;\n        b\n    };\n    c\n}"},
        {"\"two\nlines\"", "\"two\nlines\""},
        {"{ \"two\nlines\" }", "{\n\"two\nlines\"\n}"},
        {"\"a \\\"b\\\" c\\\\\"", "\"a \\\"b\\\" c\\\\\""},
        {"infix 2.5 right: _ to _ => math.add", "infix 2.5 right: _ to _ => math.add;\n"},
        {"infix -inf left: _ from => f; 1", "infix -inf left: _ from => f;\n;\n1"},
        {"{ infix 1 left: _ at _ => f }", "{\ninfix 1 left: _ at _ => f;\n\n}"},
        {"f = {x--5}", "f = {x(-0.0e)(-5)}"},  // the first sign is a number that cannot be read
    };
    for (const auto& row : rows) {
        const CodeBlockPtr code = m_parser.Parse(row.text);
        ASSERT_TRUE(code) << row.text;
        EXPECT_EQ(code->ToCode(), row.code) << row.text;
    }
}

// Printed text reads back to the same text.
TEST_F(Printing, RoundTrip) {
    const char* texts[] = {
        "a = 1;\nb = [1, 2.5, \"x\", [true]];\nf = (x)=>{x + 1}",
        "f = (x, y)=>{\na = x;\n    b = {\n    c;\n        d\n    };\n    a - b\n}",
        "f = {\nt = \"two {\nlines \\\"}\\\\\";\n    u = 1.0e-05\n}",
        "f = {x(-0.0e)(-5)}",
        "f = {\n=\"(\"two\nlines\");\n    a = \"b\nc\"\n}",  // the name `="` begins no string
        ">\" .r;\n>\" ;\n\">\".r;\n\">\"",                   // a quote at the end of a name, and of a string
        "x = 0.009999999776482582;\ny = 9.999999747378752e-05;\nz = +inf;\nw = -inf",
    };
    for (const char* text : texts) EXPECT_EQ(m_parser.Parse(String(text))->ToCode(), text);
}

TEST_F(Printing, InfixCallNeedsItsArguments) {
    const InfixPtr infix = new Infix(1, false, {"", "with", ""}, new Identifier("f"));
    EXPECT_THROW(InfixFunctionCall(infix, {}), BadCoderException);
    EXPECT_EQ(infix->ToCode(), "infix 1 left: _ with _ => f;\n");
}

TEST_F(Printing, RootCode) {
    Run("b = 2; a = \"x\"; f = (n)=>{ n }; list = [1, [2.5]]; nothing = { }()");
    m_gadget->m_count->Set(4);
    Run("Gadget.speed = { Gadget.count * 2 }; Gadget.extra = 1");
    EXPECT_EQ(m_parser.GetRootCode(),
              "Gadget.color = [0.0, 0.0, 0.0, 1.0];\n"
              "Gadget.count = 4;\n"
              "Gadget.extra = 1;\n"
              "Gadget.gravity = [0.0, -9.800000190734863];\n"
              "Gadget.level = 0.5;\n"
              "Gadget.limit = 7;\n"
              "Gadget.on = true;\n"
              "Gadget.size = [800, 600];\n"
              "Gadget.speed = {Gadget.count * 2};\n"
              "Gadget.tint = [0.25, 0.5, 1.0];\n"
              "Gadget.title = \"gadget\";\n"
              "a = \"x\";\n"
              "b = 2;\n"
              "f = (n)=>{n};\n"
              "list = [1, [2.5]]");
}

// What cannot be printed costs its own line.
TEST_F(Printing, RootCodeLeavesOutWhatHasNoSource) {
    Run("bad = [math.add]; worse = { -y }; worst = [Gadget]; x = 1; Gadget.bad = [1, math.pi, math.sin]");
    Run("deep = 1;");
    const String code = m_parser.GetRootCode();
    EXPECT_EQ(code.find("bad"), String::npos) << code;
    EXPECT_EQ(code.find("wors"), String::npos) << code;
    EXPECT_NE(code.find("x = 1"), String::npos) << code;
    EXPECT_NE(code.find("Gadget.count = 3"), String::npos) << code;
    EXPECT_EQ(m_log.Count("Left out of the saved settings: "), 4);
    EXPECT_TRUE(m_log.Contains("Left out of the saved settings: Gadget.bad, "));
}

// An object with several names is written once, where it belongs, wherever its owner link points; the other
// names follow behind.
TEST_F(Printing, PathsDoNotFollowMovedOwners) {
    Run("keep = (x)=>{ x }; keep Gadget; keep 1; Zoo = Gadget; Zoo = 1");
    const String code = m_parser.GetRootCode();
    EXPECT_EQ(code.find("Gadget.color = "), 0u) << code;
    EXPECT_EQ(code.find("\ncount"), String::npos) << code;
    Run("Alias = Gadget");
    const String aliased = m_parser.GetRootCode();
    EXPECT_EQ(aliased, code + ";\nAlias = Gadget");
    Run("Alias = 1; Gadget.count = 8");
    m_parser.Execute(aliased);
    EXPECT_EQ(m_gadget->m_count->Get(), 3);
    EXPECT_EQ(m_parser.GetRootCode(), aliased);
}

}  // namespace script

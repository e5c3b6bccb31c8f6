#include "script/Limits.h"

#include "ScriptFixture.h"
#include "script/Exceptions.h"

// The bounds that keep a text from ending or hanging the program.
namespace script {

class Limits : public test::Script {
  protected:
    static String Times(size_t count, const String& text) {
        String repeated;
        for (size_t i = 0; i < count; ++i) repeated += text;
        return repeated;
    }
    static String Nest(size_t depth, const String& open, const String& inside, const String& close) {
        return Times(depth, open) + inside + Times(depth, close);
    }
    bool Complained(const String& text) const {
        for (const String& error : m_errors) {
            if (error.find(text) != String::npos) return true;
        }
        return m_log.Contains(text);
    }
};

constexpr size_t GRANTED = 1000;
constexpr size_t TOO_DEEP = MAX_NESTING + 10;

TEST_F(Limits, AThousandLevelsWork) {
    EXPECT_EQ(Run(Nest(GRANTED, "(", "7", ")")), "7");
    EXPECT_EQ(Run(Nest(GRANTED, "[", "7", "]")), Nest(GRANTED, "[", "7", "]"));
    EXPECT_EQ(Run("x = " + Nest(GRANTED, "{", "7", "}") + "; 1"), "1");
    EXPECT_NE(m_parser.GetRootCode().find(Nest(GRANTED, "{", "7", "}")), String::npos);
    EXPECT_EQ(Run(Times(GRANTED, "1 + ") + "1"), "1001");
    EXPECT_EQ(Run("down = (n)=>{ [{ 0 }, { 1 + (down(n - 1)) }]((n + 1000) / 1001)() }; down 1000"), "1000");
    EXPECT_EQ(Run("x = 0;" + Times(GRANTED, "x = [x];") + "x"), Nest(GRANTED, "[", "0", "]"));
}

TEST_F(Limits, DeeperOnesFailLikeAnyStatement) {
    for (const char* open : {"(", "[", "{", "a = ", "1 + ", "(x)=>{", "! "}) {
        m_errors.clear();
        Run(Times(TOO_DEEP, open) + "1");
        EXPECT_TRUE(Complained("Too deeply nested")) << open;
    }
    const struct {
        const char *name, *text;
    } calls[] = {{"itself", "f = { f }; f"},
                 {"with argument", "f = (n)=>{ f(n + 1) }; f 1"},
                 {"each other", "f = { g }; g = { [f] }; f"},
                 {"in a list", "f = [0]; f = (n)=>{ [1, [f n]] }; f 0"}};
    for (const auto& call : calls) {
        const test::LogCapture log(logging::Warning);
        EXPECT_EQ(Run(String(call.text) + "; \"next\""), "next") << call.name;
        EXPECT_TRUE(log.Contains("Too deeply nested")) << call.name;
    }
}

// A statement ends by itself, the ones behind it run.
TEST_F(Limits, LongChainsAreRefusedByEvaluation) {
    EXPECT_EQ(Run("x = 1; x" + Times(TOO_DEEP, ".a") + "; x" + Times(TOO_DEEP, " x") + "; \"next\""), "next");
    EXPECT_TRUE(m_log.Contains("Too deeply nested"));
}

TEST_F(Limits, DeepValuesPrintNotAndDieQuietly) {
    Run("x = 0;" + Times(TOO_DEEP, "x = [x];") + "f = { 0 };" + Times(TOO_DEEP, "f = { g = f; { g } };"));
    EXPECT_EQ(Run("x"), "");
    EXPECT_TRUE(Complained("Too deeply nested"));
    EXPECT_EQ(m_parser.GetRootCode().find("x = "), String::npos);
    EXPECT_EQ(Run("x = x + x; 1"), "1");
    EXPECT_EQ(Run("x = 2 * x; 1"), "1");
    EXPECT_EQ(Run("x = math.sin x; 1"), "1");
    EXPECT_EQ(Run("x = 1; x"), "1");
}

TEST_F(Limits, WorkIsBounded) {
    const struct {
        const char *name, *text;
    } rows[] = {
        {"calls",
         "f = (n)=>{ n; n; n; n; n; n; n; n }; g = (n)=>{ f n; f n; f n; f n; f n; f n; f n; f n };"
         "h = (n)=>{ g n; g n; g n; g n; g n; g n; g n; g n }; i = (n)=>{ h n; h n; h n; h n; h n };"
         "j = (n)=>{ i n; i n; i n; i n; i n; i n; i n }; k = (n)=>{ j n; j n; j n; j n; j n; j n; j n };"
         "l = (n)=>{ k n; k n; k n; k n; k n; k n; k n; k n; k n; k n; k n }; l 1; l 1; l 1; l 1; l 1"},
        {"deep failures", "f = { f; f }; f"},
        {"doubled lists",
         "x = [1]; d = { r = x + x; 0 }; a = (y)=>{ [y, y] };"
         "x = a(a(a(a(a(a(a(a(a(a(a(a x)))))))))));"
         "x = a(a(a(a(a(a(a(a(a(a(a(a x))))))))))); x + x"},
    };
    for (const auto& row : rows) {
        m_errors.clear();
        Run(row.text);
        EXPECT_TRUE(Complained("Tree evaluation error: Script took too long")) << row.name;
    }
    EXPECT_EQ(Run("1 + 1"), "2");
}

// Each token pays for itself, so a long plain text is never cut off. Inner sessions share; a fresh one has
// its own; what is native work costs nothing.
TEST_F(Limits, SessionsCountSteps) {
    {
        const Session session(1000);
        const Session inner(500);
        ChargeSteps(MAX_STEPS + 1500 * STEPS_PER_TOKEN);
        EXPECT_THROW(ChargeSteps(1), TimeoutException);
        {
            const FreshSession fresh;
            ChargeSteps(MAX_STEPS);
            EXPECT_THROW(ChargeSteps(1), TimeoutException);
        }
        EXPECT_THROW(ChargeSteps(1), TimeoutException);
    }
    for (int i = 0; i < 3; ++i) ChargeSteps(MAX_STEPS);
}

TEST_F(Limits, SizesAreBounded) {
    Run("x = \"ab\";" + Times(30, "x = x + x;") + "y = [1]");
    EXPECT_TRUE(m_log.Contains("String too long"));
    EXPECT_LE(Run("x").size(), MAX_STRING_SIZE);
    EXPECT_THROW(List(ObjectList(MAX_LIST_SIZE + 1)), ScriptException);
    EXPECT_EQ(Run("x = [1];" + Times(40, "x = [x, x];") + "1"), "1");
    EXPECT_EQ(Run("x; z = 5; x"), "");
    const String code = m_parser.GetRootCode();
    EXPECT_NE(code.find("z = 5"), String::npos);
    EXPECT_LT(code.size(), size_t{1} << 20);
}

// Operators must not make parsing slow beyond the length of the text.
TEST_F(Limits, LongSequencesParseOrAreRefused) {
    const size_t count = 30000;
    for (const char* text : {"+ ", "x ", "- x ", "( ", "() ", "= ", "a . ", "-", "-+ ", "{x y} "}) {
        m_parser.Execute(Times(count, text));
    }
    String declarations;
    for (int i = 0; i < 1000; ++i) {
        declarations += "infix 1 left: _ word" + std::to_string(i) + " _ => f;";
    }
    EXPECT_TRUE(m_parser.Parse("{" + declarations + Times(2000, "x y;") + "}"));
}

}  // namespace script

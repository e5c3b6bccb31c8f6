#include "script/Parser.h"

#include <algorithm>

#include "ScriptFixture.h"
#include "script/Exceptions.h"
#include "util/FileSystem.h"

namespace script {

class Parsing : public test::Script {
  protected:
    static void Write(const String& name, const String& text) {
        util::FileSystem::Instance().WriteFileAtomically(Path(name), text);
    }
    static String Path(const String& name) { return util::FileSystem::Instance().GetWorkDir() + name; }
};

TEST_F(Parsing, TokensThatCannotBeCutLeaveParseAlone) {
    EXPECT_THROW(m_parser.Parse(String("\"open")), TokenException);
    EXPECT_TRUE(m_errors.empty());
    EXPECT_TRUE(util::DynamicCast<ErrorObject>(m_parser.Execute("\"open")));
    EXPECT_EQ(m_errors[0], "Parse error: Unmatched quote (\") (line 1, column 1)");
    EXPECT_EQ(m_errors.size(), 1u);
}

// For who marks the place under the line.
TEST_F(Parsing, FailuresHaveTheirPlace) {
    Run("old = {\n nothing }");
    const struct {
        const char* text;
        uint32_t line;
        uint16_t column;
        const char* message;
    } rows[] = {
        {"x = (1, 2", 1, 9, "Parse error: Missing )"},
        {"x = 1;\n\ty = 1 + 2 * 3;", 2, 6, "Parse error: Multiple mathcing infix functions found"},
        {"x = 1;\n  y = \"a", 2, 7, "Parse error: Unmatched quote (\")"},
        {"x = 1; 5 = 2", 1, 12, "Parse error: You can only assign to an identifier"},
        {"x = 1; ]", 1, 8, "Parse error: Unexpected token: ]"},
        {"x = 1; nothing; x", 1, 8, "nothing not found in scope"},
        {"f = {\n1;\n  nothing }; f; 2", 3, 3, "nothing not found in scope"},
        {"x = 1; 99999999999; x", 1, 8, "Bad lexical cast: \"99999999999\" is not a i"},
    };
    for (const auto& row : rows) {
        Run(row.text);
        ASSERT_EQ(m_parser.GetFailures().size(), 1u) << row.text;
        const Failure& failure = m_parser.GetFailures()[0];
        EXPECT_EQ(failure.message, row.message) << row.text;
        EXPECT_EQ(failure.place.line, row.line) << row.text;
        EXPECT_EQ(failure.place.column, row.column) << row.text;
    }
    Run("old");
    EXPECT_TRUE(m_parser.GetFailures().empty()) << "the place is in another text";
}

// Formulas may stand in front of what they name, and a number out of range costs its line.
TEST_F(Parsing, AFileIsJudgedWhenItHasBeenRead) {
    Write("order.cfg", "Gadget.speed = { slow * 2 };\nGadget.count = 2147483647147483647;\nslow = 0.5;");
    EXPECT_TRUE(m_parser.LoadConfig("order.cfg"));
    EXPECT_EQ(m_gadget->m_speed->Get(), 1);
    EXPECT_TRUE(m_gadget->m_speed->IsBound());
    EXPECT_EQ(m_gadget->m_count->Get(), 3);
    EXPECT_EQ(m_log.Count(""), 1) << testing::PrintToString(m_log.GetLines());
}

TEST_F(Parsing, ExecuteNeverThrows) {
    EXPECT_TRUE(util::DynamicCast<ErrorObject>(m_parser.Execute(ExpressionPtr())));
    EXPECT_TRUE(util::DynamicCast<ErrorObject>(m_parser.Execute("nothing")));
    EXPECT_TRUE(util::DynamicCast<Void>(m_parser.Execute("")));
    m_parser.GetRootClosure()->AddCmd("odd", [] { throw 1; });
    EXPECT_TRUE(util::DynamicCast<ErrorObject>(m_parser.Execute("odd")));
    EXPECT_EQ(m_errors.back(), "Parser threw unknown excpetion.");
    m_parser.SetOnError(+[](const String&) { throw std::runtime_error("sink"); });
    EXPECT_TRUE(util::DynamicCast<ErrorObject>(m_parser.Execute("(")));
}

TEST_F(Parsing, ErrorsAreWarningsUnlessSomebodyTakesThem) {
    m_parser.SetOnError(+[](const String& text) { Log(logging::Warning, text); });
    Run("(");
    EXPECT_TRUE(m_log.Contains("-- Warning: Parse error: Missing )"));
}

TEST_F(Parsing, OuterLocalsStayWithTheFunction) {
    Run("f = (n)=>{ kept = n; [{ f(n + 1) }, { }](n / 3)(); n }; f 1");
    const FunctionPtr function = util::DynamicCast<Function>(Get("f"));
    ASSERT_TRUE(function && function->GetCallClosure());
    EXPECT_EQ(function->GetCallClosure()->GetValue("kept")->ToCode(), "1");
    EXPECT_EQ(function->GetCallClosure()->GetReflectedName(),
              "[function closure: " + function->ToCode() + "]");
}

TEST_F(Parsing, MadeFunctionsKeepTheScopesAroundThem) {
    Run("make = (a)=>{ (b)=>{ (c)=>{ [a, b, c] } } }; inner = make 1 2; make 8 9; make = 0");
    EXPECT_EQ(Run("inner 3"), "[1, 2, 3]");
}

TEST_F(Parsing, MathCanBeCoveredUp) {
    Run("math = 5");
    EXPECT_EQ(Run("1 + 1"), "");
    EXPECT_TRUE(m_log.Contains("owner"));
}

// In a process of its own, since a service cannot be made again: the root and the functions made in it hold
// each other, and yet all that the root holds is gone with the parser.
TEST_F(Parsing, DestroyBreaksTheCircle) {
    const auto destroy = [this] {
        Parser::SetKeyBinderFactory(+[] { return ReflectedPtr(new Reflected("Keys")); });
        const util::WeakPtr<ClassObject> keys = Get("Keys")->AsClass();
        const util::WeakPtr<Closure> root = m_parser.GetRootClosure();
        const util::WeakPtr<test::Gadget> gadget = m_gadget;
        m_parser.Execute("f = (n)=>{ g = n }; f 1; Gadget.speed = { f 2; 3 }; math.twice = { f 2 }; f f");
        m_gadget = nullptr;
        Parser::Destroy();
        std::_Exit(keys || root || gadget ? 1 : 0);
    };
    EXPECT_EXIT(destroy(), testing::ExitedWithCode(0), "");
}

// ---- choice of an operator -----------------------------------------------------------------------------

TEST_F(Parsing, LowestPrecedenceWins) {
    const ScopePtr outer = new Scope("outer", nullptr);
    const ScopePtr inner = new Scope("inner", outer);
    const auto declare = [](const ScopePtr& scope, double precedence, const StringList& pattern) {
        const InfixPtr infix = new Infix(precedence, false, pattern, new Identifier("f"));
        scope->AddInfix(infix);
        return infix;
    };
    const InfixPtr plus = declare(outer, 2, {"", "+", ""});
    const InfixPtr times = declare(outer, 3, {"", "*", ""});
    const InfixPtr ifThen = declare(outer, 1, {"if", "", "then", ""});
    const InfixPtr at = declare(inner, 2, {"", "@", ""});
    EXPECT_EQ(inner->GetInfix(StringSet{"+", "*"}), plus);
    EXPECT_EQ(inner->GetInfix(StringSet{"*", "x"}), times);
    EXPECT_EQ(inner->GetInfix(StringSet{"if", "+"}), plus);
    EXPECT_EQ(inner->GetInfix(StringSet{"if", "then", "+"}), ifThen);
    EXPECT_EQ(inner->GetInfix(StringSet{"@", "+"}), at);
    EXPECT_FALSE(inner->GetInfix(StringSet{"x"}));
    EXPECT_FALSE(outer->GetInfix(StringSet{"@"}));
    declare(outer, 2, {"", "-", ""});
    EXPECT_THROW(outer->GetInfix(StringSet{"+", "-"}), ParseException);
    EXPECT_THROW(inner->GetInfix(StringSet{"+", "-", "@"}), ParseException);
    const InfixPtr again = declare(outer, 2, {"", "-", ""});
    EXPECT_EQ(outer->GetInfix(StringSet{"-"}), again);
    const ScopePtr stray = new Scope("stray", ClassObjectPtr(new Reflected("no scope")));
}

// ---- files -------------------------------------------------------------------------------------------

TEST_F(Parsing, LoadConfigTellsWhatBecameOfTheFile) {
    m_parser.SetOnError(+[](const String& text) { Log(logging::Warning, text); });
    Write("good.cfg", "\xEF\xBB\xBF// settings\r\nx = 1;\r\nnothing;\r\ny = 2");
    EXPECT_TRUE(m_parser.LoadConfig("good.cfg"));
    EXPECT_EQ(Run("x + y"), "3");
    EXPECT_TRUE(m_log.Contains("Failed to evaluate: nothing, nothing not found in scope"));
    Write("cut.cfg", "x = 5; title = \"unfinished");
    EXPECT_FALSE(m_parser.LoadConfig("cut.cfg"));
    Write("syntax.cfg", "x = 5; y = (1");
    EXPECT_FALSE(m_parser.LoadConfig("syntax.cfg"));
    EXPECT_EQ(Run("x"), "1");
    EXPECT_FALSE(m_parser.LoadConfig("missing.cfg"));
    EXPECT_TRUE(m_log.Contains("Failed loading config file: "));
    EXPECT_FALSE(m_parser.LoadConfig(""));
}

TEST_F(Parsing, SavedRootLoads) {
    Run("x = 1; f = (n)=>{ a = n; a + x }; Gadget.count = { 4 + 4 }");
    ASSERT_TRUE(m_parser.SaveRootCode("saved.cfg"));
    const String code = m_parser.GetRootCode();
    EXPECT_EQ(util::FileSystem::Instance().ReadFile(Path("saved.cfg")), code);
    Run("x = 0; f = 0; Gadget.count = 1");
    EXPECT_TRUE(m_parser.LoadConfig(Path("saved.cfg")));
    EXPECT_EQ(Run("f 2"), "3");
    EXPECT_EQ(m_gadget->m_count->Get(), 8);
    EXPECT_EQ(m_parser.GetRootCode(), code);
    EXPECT_FALSE(m_parser.SaveRootCode("no such folder/saved.cfg"));
    EXPECT_TRUE(m_log.Contains("!! ERROR: Failed saving no such folder/saved.cfg"));
}

// Within one long list, too.
TEST_F(Parsing, ALongTextTellsHowFarItIs) {
    String text = "v = [";
    for (int i = 0; i < 20000; ++i) text += "1, ";
    std::vector<size_t> told;
    const CodeBlockPtr code = m_parser.ParseGuest(text + "2]", [&told](size_t done, size_t all) {
        EXPECT_LT(done, all);
        EXPECT_EQ(all, 40005u);  // tokens
        told.push_back(done);
    });
    EXPECT_TRUE(code);
    EXPECT_GT(told.size(), 5u);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
    EXPECT_GT(told.back(), 30000u);
}

// ---- completion --------------------------------------------------------------------------------------

TEST_F(Parsing, Completion) {
    Run("Gadget.inner = 1; gadgetry = 2; short = { Gadget }; App_x = 1; app_y = 1");
    const ReflectedPtr empty = new Reflected("Empty");
    Reflected::AddToRoot(empty);
    const struct {
        String line, completed;
        StringList candidates;
    } rows[] = {
        {"gad", "gadget", {"Gadget.", "gadgetry"}},
        {"x = GADGETR", "x = gadgetry", {"gadgetry"}},
        {"gadget.co", "gadget.co", {"color", "count"}},
        {"f(Gadget.cou", "f(Gadget.count", {"count"}},
        {"Gadget.C", "Gadget.co", {"color", "count"}},
        {"short.COUN", "short.count", {"count"}},
        {"Gadget.re", "Gadget.Re", {"Repeat", "Reset"}},
        {"Emp", "Empty", {"Empty"}},
        {"math.s", "math.s", {"sin", "substract"}},
        {"Gadget.none", "Gadget.none", {}},
        {"none.x", "none.x", {}},
        {"gadgetry.x", "gadgetry.x", {}},
        {"aPP", "app_", {"App_x", "app_y"}},
        {"APP_Y", "app_y", {"app_y"}},
        {"1 + ", "1 + ", {"App_x", "Empty", "Gadget.", "app_y", "gadgetry", "math.", "short"}},
        {"..", "..", {}},
    };
    for (const auto& row : rows) {
        String line = row.line;
        EXPECT_EQ(m_parser.AutoComplete(line), row.candidates) << row.line;
        EXPECT_EQ(line, row.completed) << row.line;
    }
}

}  // namespace script

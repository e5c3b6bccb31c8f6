#include "script/Guest.h"

#include "ScriptFixture.h"
#include "script/Cycles.h"
#include "util/Guarded.h"

namespace script {

// What a stranger's text may do, and what it costs.
class Guests : public test::Script {
  protected:
    Guests() {
        m_gadget->AllowGuests({"Twice"});
        m_guest = new Guest;
        m_closure = m_parser.MakeGuestClosure(*m_guest, "guest");
    }

    ~Guests() override {
        m_closure->RemoveAllVariables();
        CollectCycles();
    }

    // The statements of a guest's text, each in a turn of its own. The value of the last one.
    ObjectPtr RunGuest(const String& text) {
        const CodeBlockPtr code = m_parser.ParseGuest(text);
        ObjectPtr result;
        if (!code) return result;
        for (const ExpressionPtr& statement : code->GetExpressions()) {
            const GuestTurn turn(*m_guest);
            const CodeBlockPtr guarded = new CodeBlock(ExpressionList{statement});
            util::Guarded([&] { result = guarded->Evaluate(m_closure); });
        }
        return result;
    }
    String Print(const String& text) { return RunGuest(text)->ToCode(); }

    GuestPtr m_guest;
    ClosurePtr m_closure;
};

TEST_F(Guests, ComputeAndRead) {
    Run("user = 4; double = (x)=>{ y = x * 2; y }");
    EXPECT_EQ(Print("a = 1; f = (n)=>{ k = n; k + a }; f 2"), "3");
    EXPECT_EQ(Print("g = Gadget; g.speed + user"), "5.5");
    EXPECT_EQ(Print("math.sin 0"), "0");
    EXPECT_EQ(Print("double 3"), "6");
    EXPECT_EQ(Print("Gadget.Twice 4"), "8");
    EXPECT_EQ(Print("infix 1 left: _ plus _ => math.add; 1 plus 2"), "3");
    EXPECT_TRUE(m_log.GetLines().empty()) << testing::PrintToString(m_log.GetLines());
}

// Each row fails with a warning and leaves the program as it was, when it is read and when it is called
// later.
TEST_F(Guests, ChangeNothingOutside) {
    Run("kept = 1; act = { Gadget.speed = 9 }; set = (o)=>{ o.speed = 9 }; commands = [{ Gadget.Reset }];"
        "run = (f)=>{ f }; Gadget.count = { kept + 2 }");
    const String before = m_parser.GetRootCode();
    const char* const rows[] = {
        "Gadget.speed = 2",
        "Gadget.on = ! Gadget.on",
        "Gadget.count = { 7 }",
        "Gadget.title = \"mine\"",
        "Gadget.size = [1, 1]",
        "Gadget.invented = 1",
        "Gadget.Reset",
        "Gadget.Repeat(\"x\", 3)",
        "g = Gadget; g.speed = 2",
        "g = [Gadget]; (g 0).speed = 2",
        "g = { Gadget }; g.speed = 2",
        "(o)=>{ o.speed = 2 } Gadget",
        "f = (o)=>{ h = o; h.speed = 2 }; f Gadget",
        "a = b = Gadget; b.speed = 2",
        "math.add = 3",
        "math.mine = 3",
        "m = math; m.pi = 3",
        "act",
        "set Gadget",
        "commands 0",
        "(commands 0)()",
        "c = commands; c(0)",
        "x = [act]",
        "run { Gadget.speed = 2; 3 }",
        "run { Gadget.Reset }",
        "{ { Gadget.speed = 2 } }()()",
        "[{ Gadget.speed = 2 }, { 0 }](0)()",
        "f = (n)=>{ [{ Gadget.speed = 2 }, { f(n - 1) }](n / 3)() }; f 3",
        "infix 0 left: _ + _ => evil; infix 0 left: _ * _ => evil",
        "infix 1 left: go _ => { Gadget.Reset }; go 1",
        "{ Gadget.speed = (Gadget.count = 5) }()",
        "Gadget.Twice(Gadget.count = 5)",
        "x = Gadget.Twice({ Gadget.Reset })",
    };
    for (const char* const row : rows) {
        m_log.Clear();
        RunGuest(row);
        RunGuest(String("later = {") + row + "}; later; later");
        EXPECT_EQ(m_parser.GetRootCode(), before) << row;
        EXPECT_EQ(m_gadget->m_resets, 0) << row;
        EXPECT_EQ(m_gadget->GetOwner(), m_parser.GetRootClosure().Get()) << row;
        EXPECT_EQ(Run("(1 + 1) * 2"), "4") << row;
    }
}

// A formula that a guest has left on an attribute is called by the program, and stays the guest's.
TEST_F(Guests, BoundFormulasReadButDoNotAct) {
    const ReflectedPtr entity = new Reflected("entity");
    const AttribPtr<float> size = DeclareAttrib(*entity, "size", 1.0f);
    const auto bind = [&](const String& formula) {
        size->SetValue(RunGuest("[" + formula + "]")->AsFunction()->Call({ValueToObject(0)}));
    };
    bind("{ Gadget.speed * 2 }");
    EXPECT_EQ(size->Get(), 3);
    m_gadget->m_speed->Set(4);
    m_parser.Update();
    EXPECT_EQ(size->Get(), 8);
    bind("{ Gadget.count = 9; Gadget.Reset; 5 }");
    m_parser.Update();
    EXPECT_EQ(m_gadget->m_count->Get(), 3);
    EXPECT_EQ(m_gadget->m_resets, 0);
    EXPECT_FALSE(size->IsBound()) << "it would fail in each frame";
    m_log.Clear();
    m_parser.Update();
    EXPECT_TRUE(m_log.GetLines().empty());
}

TEST_F(Guests, FormulasShareAFrame) {
    const ReflectedPtr entity = new Reflected("entity");
    std::vector<AttribPtr<float>> attribs;
    const auto add = [&](const String& formula) {
        const String name = "a" + std::to_string(attribs.size());
        attribs.push_back(DeclareAttrib(*entity, name, 1.0f));
        attribs.back()->SetValue(RunGuest("[" + formula + "]")->AsFunction()->Call({ValueToObject(0)}));
    };
    add("{ f = { f }; f; 2 }");
    EXPECT_FALSE(attribs[0]->IsBound()) << "too deep, which is a failure";
    add("{ f = (n)=>{ [{ 0 }, { f(n - 1) + f(n - 1) }]((n + 99) / 100)() }; f 20; 2.0 }");
    EXPECT_FALSE(attribs[1]->IsBound());
    EXPECT_TRUE(m_log.Contains("a1 keeps its value: its formula takes too long"));
    EXPECT_EQ(attribs[1]->Get(), 1);

    // Each of these is modest, and together they are too much: the costliest ends first.
    String sum = "1.0";
    for (int i = 0; i < 110; ++i) sum += " + 1.0";
    for (int i = 0; i < 20; ++i) add("{ " + sum + " }");
    add("{ " + sum + " + 1.0 + Gadget.speed }");
    m_parser.Update();
    int bound = 0;
    for (const AttribPtr<float>& attrib : attribs) bound += attrib->IsBound();
    EXPECT_EQ(bound, 20);
    for (int frame = 0; frame < 40; ++frame) m_parser.Update();
    bound = 0;
    for (const AttribPtr<float>& attrib : attribs) bound += attrib->IsBound();
    EXPECT_GT(bound, 5);
    m_log.Clear();
    m_parser.Update();
    EXPECT_TRUE(m_log.GetLines().empty()) << "what is left fits";
}

TEST_F(Guests, AFileHasABudget) {
    const String hog =
        "f = (n)=>{ f2 n; f2 n }; f2 = (n)=>{ [{ 0 }, { f2(n - 1) + f2(n - 1) }]((n + 99) / 100)() };";
    EXPECT_EQ(Print(hog + "f2 40; 1 + 1"), "2") << "one statement cannot take all";
    EXPECT_TRUE(m_log.Contains("Script took too long"));
    for (int i = 0; i < 3; ++i) RunGuest("f2 40");
    EXPECT_FALSE(RunGuest("1 + 1")) << "what is left of the file is left out";
    EXPECT_EQ(Run("1 + 1"), "2");
}

TEST_F(Guests, LogLinesAndLengthsAreBounded) {
    const test::LogCapture trace;
    String failures;
    for (int i = 0; i < 30; ++i) failures += "a" + std::to_string(i) + "b;";
    RunGuest("f = { " + failures + "}; g = { f; f; f; f; f; f }; h = { g; g; g; g; g; g }; h; h; h");
    EXPECT_LT(trace.GetLines().size(), 8000u);
    String list;
    for (size_t i = 0; i <= MAX_GUEST_TOKENS / 2; ++i) list += "1,";
    EXPECT_FALSE(m_parser.ParseGuest("[" + list + "1]"));
    EXPECT_TRUE(m_errors.back().find("The text is too long") != String::npos);
    const CodeBlockPtr first = m_parser.ParseGuest("a = 1; {b = 2; c}; {d; [" + list + "1]}; e = 3");
    ASSERT_TRUE(first);
    EXPECT_EQ(first->ToCode(), "a = 1;\n{\nb = 2;\n    c\n}") << "what fits, in whole statements";
    EXPECT_TRUE(m_errors.back().find("The text is too long: the rest of it is left out") != String::npos);
    EXPECT_FALSE(m_parser.ParseGuest("\"open"));
}

// ---- rings ---------------------------------------------------------------------------------------------

TEST_F(Guests, RingsOfLocalFunctionsAreFreed) {
    Run("slow = 1; make = (a)=>{ b = { a }; c = [b, (x)=>{ b + x }]; c };"
        "Gadget.speed = { f = { slow }; g = (n)=>{ h = { f }; h }; g 1 }; kept = make 5");
    const auto settle = [this] {
        for (int i = 0; i < 4; ++i) m_parser.Update();
        util::Pointee::SweepHandles();
        return util::Pointee::GetCount();
    };
    const int before = settle();
    for (int i = 0; i < 200; ++i) {
        m_parser.Update();
        Run("made = make 1; made = 0");
    }
    EXPECT_LE(settle(), before + 20);
    EXPECT_EQ(Run("(kept 1) 2"), "7") << "what is held lives on";
    EXPECT_EQ(m_gadget->m_speed->Get(), 1);
    Run("kept = 0; make = 0; Gadget.speed = 1");
    EXPECT_LT(settle(), before);
    EXPECT_EQ(GetNumSuspects(), 0u);
}

}  // namespace script

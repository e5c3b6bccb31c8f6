#include "input/KeyBinder.h"

#include "InputFixture.h"
#include "script/Parser.h"
#include "support/LogCapture.h"

namespace test {
namespace {

// Something for bindings to act on.
class Probe : public script::Reflected {
  public:
    Probe() : Reflected("Probe") {
        AddCmd("hit", [this] { ++m_hits; });
        AddCmd("fail", [] { throw std::runtime_error("no luck"); });
        AddCmd1("note", [this](const String& text) { m_notes += text; });
    }
    int m_hits = 0;
    String m_notes;
};

class KeyBinderTest : public InputTest {
  protected:
    void SetUp() override {
        InputTest::SetUp();
        script::Parser::SetKeyBinderFactory([] { return script::ReflectedPtr(new script::KeyBinder); });
        m_probe = new Probe;
        script::Reflected::AddToRoot(m_probe);
    }
    void TearDown() override {
        m_parser.GetRootClosure()->RemoveVariable("Probe");
        InputTest::TearDown();
    }

    // The bindings' part of a saved configuration.
    String GetSaved() {
        const String code = m_parser.GetRootCode();
        String saved;
        for (size_t at = code.find("Keys.bind"); at != String::npos; at = code.find("Keys.bind", at + 1)) {
            saved += code.substr(at, code.find('\n', at) - at) + "\n";
        }
        return saved;
    }

    script::Parser& m_parser = MakeParser();
    util::SharedPtr<Probe> m_probe;

  private:
    static script::Parser& MakeParser() {
        script::Parser::SetKeyBinderFactory([] { return script::ReflectedPtr(new script::KeyBinder); });
        return script::Parser::Instance();
    }
};

TEST_F(KeyBinderTest, PressesRunTheBinding) {
    m_parser.Execute("Keys.bind(\"f5\", { Probe.hit })");
    Tap(gui::Key::F1 + 4);
    EXPECT_EQ(m_probe->m_hits, 1) << "once for press and release";
    EXPECT_FALSE(m_listener->m_lastKey.m_handled);
    m_listener->m_takes = true;  // as a text field does
    Tap(gui::Key::F1 + 4);
    EXPECT_EQ(m_probe->m_hits, 1);
    m_parser.Execute("Keys.bind(\"F5\", { Probe.note \"b\" })");  // replaces
    m_listener->m_takes = false;
    Tap(gui::Key::F1 + 4);
    EXPECT_EQ(m_probe->m_hits, 1);
    EXPECT_EQ(m_probe->m_notes, "b");
}

TEST_F(KeyBinderTest, AFailingBindingIsLogged) {
    LogCapture log;
    m_parser.Execute("Keys.bind(\"f6\", { Probe.fail })");
    Tap(gui::Key::F1 + 5);
    EXPECT_TRUE(log.Contains("no luck"));
}

TEST_F(KeyBinderTest, Refusals) {
    struct Case {
        const char* m_text;
        const char* m_message;
    };
    const Case cases[] = {
        {"Keys.bind(\"nix\", { 1 })", "\"nix\" is not a valid key name"},
        {"Keys.bind(\"f7\", (x) => { x })", "The second argument should be a function taking no arguments"},
        {"Keys.bind(\"f7\", 5)", "The second argument should be a function taking no arguments"},
        {"act = { Probe.hit }; Keys.bind(\"f7\", act)",  // a name is evaluated before the call
         "The second argument should be a function taking no arguments"},
    };
    for (const Case& c : cases) {
        LogCapture log;
        m_parser.Execute(c.m_text);
        EXPECT_TRUE(log.Contains(c.m_message)) << c.m_text;
    }
    EXPECT_EQ(GetSaved().find("f7"), String::npos);
    m_parser.GetRootClosure()->RemoveVariable("act");
}

TEST_F(KeyBinderTest, BindingsAreSavedAndReadBack) {
    m_parser.Execute("Keys.bind(\"space\", { Probe.note \"s\" })");
    m_parser.Execute("Keys.bind(\"\\\"\", { Probe.note \"q\" })");
    m_parser.Execute("Keys.bind(\"\\\\\", { Probe.note \"b\" })");
    m_parser.Execute("Keys.bind(\"a\", {Probe.hit})");
    m_parser.Execute("Keys.bind(\"a\", {Probe.hit})");
    const String saved = GetSaved();
    EXPECT_NE(saved.find("Keys.bind(\"a\", {Probe.hit})"), String::npos) << saved;
    EXPECT_LT(saved.find("\"space\""), saved.find("\"\\\"\"")) << "by key code";
    EXPECT_LT(saved.find("\"\\\\\""), saved.find("\"a\""));
    EXPECT_EQ(saved.find("\"a\""), saved.rfind("\"a\"")) << "one line for a key";

    for (const char* key : {"space", "\\\"", "\\\\", "a"}) {
        m_parser.Execute(String("Keys.bind(\"") + key + "\", { Probe.note \"lost\" })");
    }
    LogCapture log(logging::Warning | logging::Error);
    m_parser.Execute(saved);
    EXPECT_TRUE(log.GetLines().empty()) << log.GetLines().front();
    for (const int key : {32, 34, 92}) Tap(key);
    EXPECT_EQ(m_probe->m_notes, "sqb");
    EXPECT_EQ(GetSaved(), saved);
}

}  // namespace
}  // namespace test

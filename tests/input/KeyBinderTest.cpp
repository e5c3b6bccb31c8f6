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
        for (size_t at = code.find("Keys."); at != String::npos; at = code.find("Keys.", at)) {
            const size_t end = code.find('\n', at);
            saved += code.substr(at, end - at) + "\n";
            if (end == String::npos) break;
            at = end;
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

TEST_F(KeyBinderTest, ABindingMovesToAFreeKey) {
    m_parser.Execute("Keys.bind(\"f5\", { Probe.hit }); Keys.bind(\"f6\", { Probe.note \"6\" })");
    script::KeyBinder& binder = *script::KeyBinder::Find();
    EXPECT_FALSE(binder.Move("f5", "f6")) << "taken";
    EXPECT_FALSE(binder.Move("f7", "f8")) << "nothing there";
    EXPECT_TRUE(binder.Move("f5", "ctrl+k"));
    EXPECT_EQ(GetSaved(), "Keys.bind(\"ctrl+k\", {Probe.hit});\nKeys.bind(\"f6\", {Probe.note(\"6\")})\n");
}

TEST_F(KeyBinderTest, MouseButtonsOverTheInterfaceRunNothing) {
    m_parser.Execute("Keys.bind(\"middle mousebutton\", { Probe.hit })");
    gui::Input& input = gui::Input::Instance();
    bool isCovered = true;
    input.GetSettings().m_isCovered = [&isCovered](math::Vec2) { return isCovered; };
    for (const int hits : {0, 1}) {
        gui::KeyEvent press;
        press.m_key = gui::Key::MiddleMouse;
        press.m_pressed = true;
        script::KeyBinder::Find()->OnKeyEvent(press);
        EXPECT_EQ(m_probe->m_hits, hits);
        isCovered = false;
    }
    input.GetSettings().m_isCovered = nullptr;
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

TEST_F(KeyBinderTest, ModifiersChooseTheBinding) {
    m_parser.Execute(
        "Keys.bind(\"f7\", { Probe.note \"k\" }); Keys.bind(\"ctrl+f7\", { Probe.note \"c\" });"
        "Keys.bind(\"Shift+CTRL+f7\", { Probe.note \"s\" })");
    gui::KeyEvent event;
    event.m_key = gui::Key::F1 + 6;
    event.m_pressed = true;
    const auto press = [&](bool ctrl, bool alt, bool shift, bool repeated = false) {
        event.m_handled = false;
        event.m_ctrl = ctrl;
        event.m_alt = alt;
        event.m_shift = shift;
        event.m_repeated = repeated;
        script::KeyBinder::Find()->OnKeyEvent(event);
        EXPECT_TRUE(event.m_handled);
    };
    press(false, false, false);
    press(true, false, false);
    press(true, false, true);
    press(false, true, false);
    press(true, false, false, true);
    EXPECT_EQ(m_probe->m_notes, "kcsk") << "repeats do nothing";
    EXPECT_NE(GetSaved().find("Keys.bind(\"ctrl+shift+f7\", {Probe.note(\"s\")})"), String::npos)
        << GetSaved();
    m_parser.Execute("Keys.unbind \"ctrl+shift+f7\"; Keys.unbind \"f7\"; Keys.unbind \"ctrl+F7\"");
    EXPECT_EQ(GetSaved().find("f7"), String::npos);
}

// "autoexec.cfg" and what the user changed since: the newer wins.
TEST_F(KeyBinderTest, AutoexecDoesNotFightNewerBindings) {
    const auto start = [this](const String& autoexec, const String& saved) {
        for (const char* key : {"f8", "f9"}) m_parser.Execute(String("Keys.unbind \"") + key + "\"");
        const auto runAutoexec = [&] {
            const script::KeyBinder::Autoexec scope;
            m_parser.Execute(autoexec);
        };
        runAutoexec();
        m_parser.Execute(saved);
        runAutoexec();
    };
    const String old = "Keys.bind(\"f8\", { Probe.note \"a\" }); Keys.bind(\"f9\", { Probe.note \"b\" })";
    start(old, "");
    m_parser.Execute("Keys.bind(\"f8\", { Probe.note \"mine\" }); Keys.unbind \"f9\"");
    const String saved = GetSaved();
    const auto tap = [this] {
        m_probe->m_notes.clear();
        Tap(gui::Key::F1 + 7);
        Tap(gui::Key::F1 + 8);
        return m_probe->m_notes;
    };
    start(old, saved);
    EXPECT_EQ(tap(), "mine") << "what was rebound and freed stays so";
    EXPECT_EQ(GetSaved(), saved);
    for (const script::KeyBinding& binding : script::KeyBinder::Find()->GetBindings()) {
        EXPECT_NE(binding.key, "f9");
        if (binding.key != "f8") continue;
        EXPECT_EQ(binding.action, "{Probe.note(\"mine\")}");
        EXPECT_FALSE(binding.fromAutoexec);
    }
    start("Keys.bind(\"f8\", { Probe.note \"new\" }); Keys.bind(\"f9\", { Probe.note \"b\" })", saved);
    EXPECT_EQ(tap(), "new") << "a changed line is the newer one";
    start("", GetSaved());
    EXPECT_EQ(tap(), "new") << "saved like any binding";
    m_parser.Execute("Keys.unbind \"f8\"");
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

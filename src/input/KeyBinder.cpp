#include "input/KeyBinder.h"

#include <boost/algorithm/string/predicate.hpp>
#include <tuple>
#include <utility>

#include "input/Input.h"
#include "input/Key.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Parser.h"
#include "util/Guarded.h"

namespace script {

// ---- combinations --------------------------------------------------------------------------------------

namespace {

struct ModifierName {
    const char* prefix;
    bool KeyCombination::*member;
};
constexpr ModifierName MODIFIERS[] = {
    {"ctrl+", &KeyCombination::ctrl},
    {"alt+", &KeyCombination::alt},
    {"shift+", &KeyCombination::shift},
};

// Takes one modifier off the front. The last "+" is a key.
bool TakeModifier(String& name, KeyCombination& combination) {
    for (const ModifierName& modifier : MODIFIERS) {
        const size_t size = std::char_traits<char>::length(modifier.prefix);
        if (name.size() <= size || !boost::algorithm::istarts_with(name, modifier.prefix)) continue;
        combination.*modifier.member = true;
        name.erase(0, size);
        return true;
    }
    return false;
}

}  // namespace

KeyCombination KeyCombination::Parse(const String& name) {
    KeyCombination combination;
    String key = name;
    while (TakeModifier(key, combination)) {
    }
    try {
        combination.key = gui::Key::GetKeyFromName(key);
    } catch (const BadDataException&) {
        THROW(ScriptException, "\"" + name + "\" is not a valid key name");
    }
    return combination;
}

String KeyCombination::GetName() const {
    String name;
    for (const ModifierName& modifier : MODIFIERS) {
        if (this->*modifier.member) name += modifier.prefix;
    }
    return name + gui::Key::GetKeyName(key);
}

bool KeyCombination::operator<(const KeyCombination& other) const {
    return std::tie(key, ctrl, alt, shift) < std::tie(other.key, other.ctrl, other.alt, other.shift);
}

// ---- binding -------------------------------------------------------------------------------------------

namespace {

AbstractFunctionPtr ToAction(const ObjectPtr& object) {
    const AbstractFunctionPtr function = util::DynamicCast<AbstractFunction>(object);
    if (!function || function->GetArgCount() != 0) {
        THROW(ScriptException, "The second argument should be a function taking no arguments");
    }
    return function;
}

// The source, in which two bindings are compared. Empty for none, and for a native function.
String GetSource(const AbstractFunctionPtr& function) {
    const ExpressionPtr code = function ? function->ToExpression() : nullptr;
    return code ? code->ToCode() : String();
}

}  // namespace

int KeyBinder::s_autoexec = 0;

KeyBinder::KeyBinder() : Reflected("Keys") {
    AddCmd2("bind", this, &KeyBinder::Bind);
    AddCmd1("unbind", this, &KeyBinder::Unbind);
    AddCmd2("autoexec", this, &KeyBinder::NoteAutoexec);
    m_listener = new BindInputListener(*this);
    gui::Input::Instance().AddListener(m_listener);
}

KeyBinder* KeyBinder::Find() {
    return dynamic_cast<KeyBinder*>(Parser::Instance().GetKeyBinder().Get());
}

void KeyBinder::Bind(const ObjectPtr& key, const ObjectPtr& action) {
    const KeyCombination combination = KeyCombination::Parse(ObjectToValue<String>(key));
    const AbstractFunctionPtr function = ToAction(action);
    Entry& entry = m_entries[combination];
    if (s_autoexec > 0) {
        BindAsAutoexec(entry, function);
    } else {
        entry.function = function;
    }
}

void KeyBinder::BindAsAutoexec(Entry& entry, const AbstractFunctionPtr& function) {
    entry.autoexec = function;
    const bool answered = entry.answered && GetSource(entry.answered) == GetSource(function);
    if (!answered) entry.function = function;
}

void KeyBinder::Unbind(const String& key) {
    const auto entry = m_entries.find(KeyCombination::Parse(key));
    if (entry != m_entries.end()) entry->second.function = nullptr;
}

bool KeyBinder::Move(const String& from, const String& to) {
    const auto source = m_entries.find(KeyCombination::Parse(from));
    if (source == m_entries.end() || !source->second.function) return false;
    Entry& target = m_entries[KeyCombination::Parse(to)];
    if (&target == &source->second) return true;
    if (target.function) return false;
    target.function = std::exchange(source->second.function, nullptr);
    return true;
}

void KeyBinder::NoteAutoexec(const ObjectPtr& key, const ObjectPtr& action) {
    m_entries[KeyCombination::Parse(ObjectToValue<String>(key))].answered = ToAction(action);
}

std::vector<KeyBinding> KeyBinder::GetBindings() const {
    std::vector<KeyBinding> bindings;
    for (const auto& [combination, entry] : m_entries) {
        if (!entry.function) continue;
        const String source = GetSource(entry.function);
        bindings.push_back({combination.GetName(), source, source == GetSource(entry.autoexec)});
    }
    return bindings;
}

// ---- keys ----------------------------------------------------------------------------------------------

void KeyBinder::BindInputListener::OnKeyEvent(gui::KeyEvent& event) {
    InputListener::OnKeyEvent(event);
    const util::LockPtr<KeyBinder> binder = m_binder.Lock();
    if (binder) binder->OnKeyEvent(event);
}

AbstractFunctionPtr KeyBinder::FindAction(const gui::KeyEvent& event) const {
    const KeyCombination pressed{event.m_key, event.m_ctrl, event.m_alt, event.m_shift};
    for (const KeyCombination& combination : {pressed, KeyCombination{event.m_key}}) {
        const auto entry = m_entries.find(combination);
        if (entry != m_entries.end() && entry->second.function) return entry->second.function;
    }
    return nullptr;
}

// A key that repeats while it is held has done its work already.
void KeyBinder::OnKeyEvent(gui::KeyEvent& event) {
    if (event.m_handled || !event.m_pressed) return;
    if (event.m_key >= gui::Key::LeftMouse && gui::Input::Instance().IsCovered(event.m_position)) return;
    const AbstractFunctionPtr function = FindAction(event);  // held: it may bind its own key anew
    if (!function) return;
    event.m_handled = true;
    if (event.m_repeated) return;
    util::Guarded([&] { function->Call({}); }, "", logging::Error);
}

// ---- saving --------------------------------------------------------------------------------------------

CodeBlockPtr KeyBinder::ToAssignments(const IdentifierPtr& path, PrintWalk&) const {
    const CodeBlockPtr calls = new CodeBlock;
    const auto call = [&](const char* command, ExpressionList arguments) {
        calls->Add(new FunctionCall(new Identifier(path, command), new Block(std::move(arguments))));
    };
    for (const auto& [combination, entry] : m_entries) {
        const ExpressionPtr name = new Literal<String>(combination.GetName());
        const ExpressionPtr code = entry.function ? entry.function->ToExpression() : nullptr;
        const ExpressionPtr autoexec = entry.autoexec ? entry.autoexec->ToExpression() : nullptr;
        if (code) call("bind", {name, code});
        if (!autoexec || GetSource(entry.autoexec) == GetSource(entry.function)) continue;
        if (!entry.function) call("unbind", {name});
        call("autoexec", {name, autoexec});
    }
    return calls;
}

}  // namespace script

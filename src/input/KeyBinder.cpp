#include "input/KeyBinder.h"

#include "input/Input.h"
#include "input/Key.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "util/Guarded.h"

namespace script {

namespace {

int GetKey(const String& name) {
    try {
        return gui::Key::GetKeyFromName(name);
    } catch (const BadDataException&) {
        THROW(ScriptException, "\"" + name + "\" is not a valid key name");
    }
}

// The name as the inside of a string literal. The printer puts strings out raw, so that the two names which
// the tokenizer would take for something else need their escape here.
String GetQuotableKeyName(int key) {
    const String& name = gui::Key::GetKeyName(key);
    return name == "\"" || name == "\\" ? "\\" + name : name;
}

}  // namespace

void KeyBinder::BindInputListener::OnKeyEvent(gui::KeyEvent& event) {
    InputListener::OnKeyEvent(event);
    const util::LockPtr<KeyBinder> binder = m_binder.Lock();
    if (binder) binder->OnKeyEvent(event);
}

KeyBinder::KeyBinder() : Reflected("Keys") {
    AddCmd2("bind", this, &KeyBinder::Bind);
    m_listener = new BindInputListener(*this);
    gui::Input::Instance().AddListener(m_listener);
}

void KeyBinder::Bind(const ObjectPtr& key, const ObjectPtr& action) {
    const int code = GetKey(ObjectToValue<String>(key));
    const AbstractFunctionPtr function = util::DynamicCast<AbstractFunction>(action);
    if (!function || function->GetArgCount() != 0) {
        THROW(ScriptException, "The second argument should be a function taking no arguments");
    }
    m_bindings[code] = function;
}

void KeyBinder::OnKeyEvent(gui::KeyEvent& event) {
    if (event.m_handled || !event.m_pressed) return;
    const auto binding = m_bindings.find(event.m_key);
    if (binding == m_bindings.end()) return;
    const AbstractFunctionPtr function = binding->second;  // may bind its own key anew
    event.m_handled = true;
    util::Guarded([&] { function->Call({}); }, "", logging::Error);
}

CodeBlockPtr KeyBinder::ToAssignments(const IdentifierPtr& path, PrintWalk&) const {
    const CodeBlockPtr calls = new CodeBlock;
    for (const auto& [key, function] : m_bindings) {
        const ExpressionPtr code = function->ToExpression();
        if (!code) continue;  // a native function has no source
        const ExpressionPtr head = new Identifier(path, "bind");
        const ExpressionPtr name = new Literal<String>(GetQuotableKeyName(key));
        calls->Add(new FunctionCall(head, new Block(ExpressionList{name, code})));
    }
    return calls;
}

}  // namespace script

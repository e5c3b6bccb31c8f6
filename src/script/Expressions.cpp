#include "script/Expressions.h"

#include "script/CodeWriter.h"
#include "script/Conversions.h"
#include "script/Exceptions.h"
#include "script/Guest.h"
#include "script/Limits.h"
#include "script/Release.h"
#include "script/Scopes.h"
#include "util/Assert.h"
#include "util/ProfileTree.h"

namespace script {

String Expression::ToCode() const {
    const NestingGuard guard;
    CodeWriter out;
    WriteCode(out);
    return out.Take();
}

// ---- Literal -----------------------------------------------------------------------------------------

static String ToSource(bool value) {
    return value ? "true" : "false";
}
static String ToSource(int value) {
    return std::to_string(value);
}
static String ToSource(double value) {
    return DoubleToCode(value);
}
static String ToSource(const String& value) {
    return StringToCode(value);
}

template <class T>
ObjectPtr Literal<T>::Evaluate(const ClosurePtr&) {
    ChargeSteps(1);
    if constexpr (std::is_same<T, String>::value) ChargeBytes(m_value.size());
    return new Value<T>(m_value);
}

template <class T>
void Literal<T>::WriteCode(CodeWriter& out) const {
    out.Append(ToSource(m_value));
}

template class Literal<bool>;
template class Literal<int>;
template class Literal<double>;
template class Literal<String>;

ObjectPtr BadLiteral::Evaluate(const ClosurePtr&) {
    THROW(ScriptException, m_failure);
}

// A sign alone is a number only directly before another one, and a name anywhere else: "+0.0e" is a number
// that fails as well.
void BadLiteral::WriteCode(CodeWriter& out) const {
    out.Append(m_text);
    if (m_text.find_first_of("0123456789") == String::npos) out.Append("0.0e");
}

// ---- Identifier --------------------------------------------------------------------------------------

Identifier::Identifier(const ExpressionPtr& owner, const String& name) : m_owner(owner), m_name(name) {}

Identifier::~Identifier() noexcept(false) {
    Release(m_owner);
}

ObjectPtr Identifier::Evaluate(const ClosurePtr& closure) {
    const EvaluationGuard guard;
    return Resolve(GetValue(closure));
}

void Identifier::WriteCode(CodeWriter& out) const {
    if (m_owner) {
        const NestingGuard guard;
        m_owner->WriteCode(out);
        out.AppendMember(m_name);
    } else {
        out.AppendName(m_name);
    }
}

ClassObjectPtr Identifier::GetOwner(const ClosurePtr& closure) const {
    if (!m_owner) return closure;
    const ClassObjectPtr owner = m_owner->Evaluate(closure)->AsClass();
    CODE_ASSERTION(owner);
    return owner;
}

ObjectPtr Identifier::GetValue(const ClosurePtr& closure) const {
    const ClassObjectPtr owner = GetOwner(closure);
    const ObjectPtr value = owner->LookupVariable(m_name)->GetValue();
    if (!value) THROW(ScriptException, "Cannot find identifier " + m_name + " in " + owner->ToCode());
    return value;
}

// Looks in the owner only: an assignment makes a local even where an outer scope has the name.
void Identifier::SetValue(const ClosurePtr& closure, const ObjectPtr& value) const {
    const ClassObjectPtr owner = GetOwner(closure);
    Guest::CheckWrite(owner->GetGuest() != nullptr, m_name);
    const VariablePtr variable = owner->FindLocal(m_name);
    if (!variable) {
        owner->AddValue(m_name, value);
        return;
    }
    if (variable->IsConstant()) THROW(ScriptException, "Cannot set constant variable " + m_name);
    variable->SetValue(value);
}

// ---- Assignment --------------------------------------------------------------------------------------

Assignment::Assignment(const IdentifierPtr& id, const ExpressionPtr& ex) : m_id(id), m_ex(ex) {
    CODE_ASSERTION(id && ex);
}

Assignment::~Assignment() noexcept(false) {
    Release(m_id);
    Release(m_ex);
}

ObjectPtr Assignment::Evaluate(const ClosurePtr& closure) {
    const EvaluationGuard guard;
    const ObjectPtr value = m_ex->Evaluate(closure);
    m_id->SetValue(closure, value);
    return value;
}

void Assignment::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    m_id->WriteCode(out);
    out.Append(" = ");
    m_ex->WriteCode(out);
}

// ---- FunctionDeclaration, FunctionCall ---------------------------------------------------------------

FunctionDeclaration::FunctionDeclaration(const StringList& args, const CodeBlockPtr& code)
    : m_args(args), m_code(code) {}

FunctionDeclaration::~FunctionDeclaration() noexcept(false) {
    Release(m_code);
}

ObjectPtr FunctionDeclaration::Evaluate(const ClosurePtr& closure) {
    ChargeSteps(1);
    return new Function(closure, m_args, m_code);
}

static void WriteNames(CodeWriter& out, const StringList& names) {
    for (size_t i = 0; i < names.size(); ++i) out.Append(i == 0 ? "" : ", ").Append(names[i]);
}

// A body of several lines stands apart. Its first line is not indented, for it is part of the file format.
void FunctionDeclaration::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    if (!m_args.empty()) {
        out.Append("(");
        WriteNames(out, m_args);
        out.Append(")=>");
    }
    out.Append("{");
    const size_t begin = out.GetSize();
    m_code->WriteCode(out);
    if (out.HoldsNewline(begin)) out.SetApart(begin);
    out.Append("}");
}

FunctionCall::FunctionCall(const ExpressionPtr& head, const BlockPtr& tail) : m_head(head), m_tail(tail) {
    CODE_ASSERTION(head);
    CODE_ASSERTION(tail);
}

FunctionCall::~FunctionCall() noexcept(false) {
    Release(m_head);
    Release(m_tail);
}

static ObjectPtr Apply(const ExpressionPtr& head, const ExpressionList& tail, const ClosurePtr& closure) {
    const ObjectPtr value = head->Evaluate(closure);  // held: the call may replace the function
    AbstractFunction* const function = value->AsFunction();
    if (function == nullptr) THROW(ScriptException, "Function call applied to non-function");
    ObjectList args;
    args.reserve(tail.size());
    for (const ExpressionPtr& argument : tail) {
        PROFILE_SECTION("Argument eval");
        args.push_back(argument->Evaluate(closure));
    }
    PROFILE_SECTION("Actual call");
    return function->Call(args);
}

ObjectPtr FunctionCall::Evaluate(const ClosurePtr& closure) {
    const EvaluationGuard guard;
    return Apply(m_head, m_tail->GetExpressions(), closure);
}

void FunctionCall::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    m_head->WriteCode(out);
    m_tail->WriteCode(out);
}

// ---- infix -------------------------------------------------------------------------------------------

static size_t CountSlots(const StringList& pattern) {
    size_t slots = 0;
    for (const String& part : pattern) slots += part.empty();
    return slots;
}

Infix::Infix(double precedence, bool right, const StringList& pattern, const ExpressionPtr& target)
    : m_precedence(precedence),
      m_right(right ? 1 : 0),
      m_pattern(pattern),
      m_target(target),
      m_argCount(CountSlots(pattern)) {}

Infix::~Infix() noexcept(false) {
    Release(m_target);
}

void Infix::WriteCode(CodeWriter& out) const {
    out.Append("infix ").Append(DoubleToText(m_precedence)).Append(m_right != 0 ? " right: " : " left: ");
    for (const String& part : m_pattern) out.Append(part.empty() ? "_" : part).Append(" ");
    out.Append("=> ");
    m_target->WriteCode(out);
    out.AppendSeparator(";\n");
}

String Infix::ToCode() const {
    CodeWriter out;
    WriteCode(out);
    return out.Take();
}

String Infix::JoinPattern() const {
    String joined;
    for (const String& part : m_pattern) joined += part;
    return joined;
}

InfixDeclaration::InfixDeclaration(const InfixPtr& infix) : m_infix(infix) {}

InfixDeclaration::~InfixDeclaration() noexcept(false) {
    Release(m_infix);
}

ObjectPtr InfixDeclaration::Evaluate(const ClosurePtr& closure) {
    ChargeSteps(1);
    closure->AddInfix(m_infix);
    return MakeVoid();
}

void InfixDeclaration::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    m_infix->WriteCode(out);
}

InfixFunctionCall::InfixFunctionCall(const InfixPtr& infix, ExpressionList args) : m_infix(infix) {
    CODE_ASSERTION(m_infix->GetArgCount() == args.size());
    m_args = std::move(args);
}

InfixFunctionCall::~InfixFunctionCall() noexcept(false) {
    ReleaseAll(m_args);
    Release(m_infix);
}

ObjectPtr InfixFunctionCall::Evaluate(const ClosurePtr& closure) {
    const EvaluationGuard guard;
    return Apply(m_infix->GetTarget(), m_args, closure);
}

void InfixFunctionCall::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    size_t next = 0;
    for (const String& part : m_infix->GetPattern()) {
        if (!part.empty()) {
            out.Append(" ").Append(part).Append(" ");
            continue;
        }
        if (next == m_args.size()) {
            THROW(ParseException, "Too few arguments to infix function " + m_infix->JoinPattern());
        }
        m_args[next++]->WriteCode(out);
    }
    if (next != m_args.size()) {
        THROW(ParseException, "Too many arguments to infix function " + m_infix->JoinPattern());
    }
}

}  // namespace script

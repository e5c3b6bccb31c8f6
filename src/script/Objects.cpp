#include "script/Objects.h"

#include "script/CodeWriter.h"
#include "script/Conversions.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Guest.h"
#include "script/Limits.h"
#include "script/Release.h"
#include "script/Scopes.h"
#include "util/Assert.h"
#include "util/ProfileTree.h"

namespace script {

// ---- Object ------------------------------------------------------------------------------------------

Object::Object() = default;
Object::~Object() noexcept(false) = default;

String Object::ToCode() const {
    const NestingGuard guard;
    CodeWriter out;
    WriteCode(out);
    return out.Take();
}

void Object::SetOwner(const ClassObjectWeakPtr& owner) {
    m_owner = owner;
}

// ---- Value -------------------------------------------------------------------------------------------

static String ToText(bool value) {
    return value ? "true" : "false";
}
static String ToText(int value) {
    return std::to_string(value);
}
static String ToText(double value) {
    return DoubleToText(value);
}
static const String& ToText(const String& value) {
    return value;
}

template <class T>
ExpressionPtr Value<T>::ToExpression() const {
    return new Literal<T>(m_value);
}

template <class T>
void Value<T>::WriteCode(CodeWriter& out) const {
    out.Append(ToText(m_value));
}

template class Value<bool>;
template class Value<int>;
template class Value<double>;
template class Value<String>;

constexpr size_t ELEMENTS_PER_STEP = 4;  // when a list is printed
constexpr int64_t STEPS_PER_NODE = 4;    // when it is turned into a tree

// ---- functions ---------------------------------------------------------------------------------------

AbstractFunction::AbstractFunction(const ClosurePtr& closure) : m_closure(closure) {}

AbstractFunction::~AbstractFunction() noexcept(false) {
    Release(m_closure);
}

bool IsNullaryFunction(const ObjectPtr& object) {
    const AbstractFunction* const function = object->AsFunction();
    return function != nullptr && function->GetArgCount() == 0;
}

ObjectPtr Resolve(const ObjectPtr& object) {
    if (!IsNullaryFunction(object)) return object;
    const ObjectPtr hold = object;  // the call may replace the function in its variable
    return hold->AsFunction()->Call(ObjectList());
}

List::List(ObjectList list) : AbstractFunction(nullptr), m_list(std::move(list)) {
    CheckListSize(m_list.size());
}

List::~List() noexcept(false) {
    ReleaseAll(m_list);
}

ObjectPtr List::Call(const ObjectList& args) {
    PROFILE_SECTION("List::Call");
    const int index = ObjectToValue<int>(args.empty() ? nullptr : args[0]);
    if (index < 0 || static_cast<size_t>(index) >= m_list.size()) {
        THROW(ScriptException, "List index out of bounds");
    }
    return m_list[static_cast<size_t>(index)];
}

// A class object counts as an element without source: its contents are statements, which inside brackets
// would spoil the whole text.
ExpressionPtr List::ToExpression() const {
    const NestingGuard guard;
    ChargeSteps(STEPS_PER_NODE * static_cast<int64_t>(m_list.size()));
    ExpressionList elements;
    elements.reserve(m_list.size());
    for (const ObjectPtr& element : m_list) {
        elements.push_back(element->AsClass() != nullptr ? nullptr : element->ToExpression());
    }
    return new ListDeclaration(std::move(elements));
}

void List::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    ChargeSteps(1 + static_cast<int64_t>(m_list.size() / ELEMENTS_PER_STEP));
    out.Append("[");
    WriteJoined(out, m_list, ", ");
    out.Append("]");
}

// ---- Function ----------------------------------------------------------------------------------------

namespace {

// The locals of one call. The name holds the whole text of the function, so it is made only when asked for.
class CallClosure : public Closure {
  public:
    CallClosure(const util::WeakPtr<Function>& function, const ClosurePtr& superscope)
        : Closure("[function closure]", superscope), m_function(function) {}

    String GetReflectedName() const override {
        const Function* const function = m_function.Get();
        return "[function closure: " + (function != nullptr ? function->ToCode() : String()) + "]";
    }

  private:
    util::WeakPtr<Function> m_function;
};

}  // namespace

Function::Function(const ClosurePtr& closure, const StringList& args, const ExpressionPtr& code)
    : AbstractFunction(closure), m_args(args), m_code(code) {}

Function::~Function() noexcept(false) {
    NoteSuspect(m_callClosure);
    Release(m_callClosure);
    Release(m_code);
}

ClosurePtr Function::MakeCallClosure(const ObjectList& args) {
    const ClosurePtr closure = new CallClosure(util::WeakPtr<Function>(this), GetClosure());
    for (size_t i = 0; i < args.size(); ++i) closure->AddConstant(m_args[i], args[i]);
    return closure;
}

void Function::ReplaceCallClosure(const ClosurePtr& closure) {
    if (m_callClosure.Get() == closure.Get()) return;
    NoteSuspect(m_callClosure);
    m_callClosure = closure;
}

// The closure is held here as well: a recursive call replaces m_callClosure while this one still runs in
// its own. At the end the outermost call's locals are what stays.
ObjectPtr Function::Call(const ObjectList& args) {
    PROFILE_SECTION("Function::Call");
    const NestingGuard guard;
    if (args.size() != GetArgCount()) THROW(ScriptException, "Wrong number of arguments to function");
    const GuestRights rights(GetClosure() ? GetClosure()->GetGuest() : nullptr);
    const ClosurePtr closure = MakeCallClosure(args);
    ReplaceCallClosure(closure);
    const ObjectPtr result = m_code->Evaluate(closure);
    ReplaceCallClosure(closure);
    return result;
}

ExpressionPtr Function::ToExpression() const {
    return new FunctionDeclaration(m_args, util::DynamicCast<CodeBlock>(m_code));
}

void Function::WriteCode(CodeWriter& out) const {
    ToExpression()->WriteCode(out);
}

// ---- intrinsics --------------------------------------------------------------------------------------

AbstractIntrinsic::AbstractIntrinsic() : AbstractFunction(nullptr) {}

ExpressionPtr AbstractIntrinsic::ToExpression() const {
    return nullptr;
}

void AbstractIntrinsic::WriteCode(CodeWriter& out) const {
    out.Append("intrinsic function");
}

void AbstractIntrinsic::CheckCaller() const {
    if (!m_harmless) Guest::CheckCommand();
}

static ObjectPtr OrVoid(const ObjectPtr& result) {
    return result ? result : MakeVoid();
}

ObjectPtr IntrinsicCmd::Call(const ObjectList& args) {
    CODE_ASSERTION(args.size() == 0);
    CheckCaller();
    return OrVoid(m_function());
}

ObjectPtr IntrinsicCmd1::Call(const ObjectList& args) {
    CODE_ASSERTION(args.size() == 1);
    CheckCaller();
    return OrVoid(m_function(args[0]));
}

ObjectPtr IntrinsicCmd2::Call(const ObjectList& args) {
    CODE_ASSERTION(args.size() == 2);
    CheckCaller();
    return OrVoid(m_function(args[0], args[1]));
}

// ---- markers -----------------------------------------------------------------------------------------

ExpressionPtr BadObject::ToExpression() const {
    return nullptr;
}

void Void::WriteCode(CodeWriter& out) const {
    out.Append("void");
}

void Unbound::WriteCode(CodeWriter& out) const {
    out.Append("unbound");
}

void ErrorObject::WriteCode(CodeWriter& out) const {
    out.Append("error");
}

}  // namespace script

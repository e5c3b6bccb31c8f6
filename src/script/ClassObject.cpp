#include "script/ClassObject.h"

#include <set>

#include "logging/Log.h"
#include "script/CodeWriter.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Limits.h"
#include "script/Release.h"
#include "util/Assert.h"

namespace script {

namespace {

// One printing of a tree of class objects. The path of the object that is being written is known from the
// way down: owner links may point elsewhere after `x = App`.
struct PrintWalk {
    const ClassObject* holder = nullptr;  // whose variables are being written
    IdentifierPtr path;                   // of the holder, null for a root
    const ClassObject* next = nullptr;    // the object that is entered next
    IdentifierPtr nextPath;
    std::set<const ClassObject*>* printed = nullptr;
};

PrintWalk* s_walk = nullptr;

class PrintWalkScope {
  public:
    explicit PrintWalkScope(const ClassObject* holder) : m_outer(s_walk) {
        m_walk.holder = holder;
        if (m_outer != nullptr && m_outer->next == holder) {
            m_walk.path = m_outer->nextPath;
            m_walk.printed = m_outer->printed;
            m_outer->next = nullptr;
        } else {
            m_walk.path = holder->GetIdentifier();
            m_walk.printed = &m_printed;
            m_printed.insert(holder);
        }
        s_walk = &m_walk;
    }
    ~PrintWalkScope() { s_walk = m_outer; }
    PrintWalkScope(const PrintWalkScope&) = delete;
    PrintWalkScope& operator=(const PrintWalkScope&) = delete;

  private:
    PrintWalk* const m_outer;
    PrintWalk m_walk;
    std::set<const ClassObject*> m_printed;
};

}  // namespace

// ---- Variable ----------------------------------------------------------------------------------------

Variable::Variable(const String& name, const ObjectPtr& value, bool constant)
    : m_name(name), m_value(value), m_constant(constant) {
    CODE_ASSERTION(value);
    m_owner = value->GetOwner();
}

Variable::~Variable() noexcept(false) {
    Release(m_value);
}

void Variable::SetValue(const ObjectPtr& value) {
    CODE_ASSERTION(value);
    ClassObject* const object = value->AsClass();
    if (object != nullptr && GetOwner() != nullptr) object->CheckOwner(GetOwner());
    const ObjectPtr hold = value;
    ClearValueOwner();
    const ObjectPtr old = m_value;  // dies behind the exchange: its destructor may look here
    m_value = hold;
    m_value->SetOwner(m_owner);
}

void Variable::SetOwner(ClassObject* owner) {
    m_value->SetOwner(owner);
    m_owner = owner;
}

// A class object that another variable of the owner holds as well stays where it is.
void Variable::ClearValueOwner() {
    ClassObject* const owner = GetOwner();
    if (owner == nullptr || m_value->GetOwner() != owner) return;
    if (m_value->AsClass() != nullptr && owner->FindVariableByValue(m_value.Get(), this)) return;
    m_value->SetOwner(nullptr);
}

ExpressionPtr Variable::ToAssignment() {
    const ObjectPtr value = GetValue();
    ClassObject* const owner = GetOwner();
    const bool walking = s_walk != nullptr && s_walk->holder == owner;
    IdentifierPtr path;
    if (walking) {
        path = s_walk->path;
    } else if (owner != nullptr) {
        path = owner->GetIdentifier();
    }
    const IdentifierPtr identifier = new Identifier(path, m_name);
    if (const ClassObject* const object = value->AsClass()) {
        if (!walking) return object->ToExpression();
        if (!s_walk->printed->insert(object).second) return nullptr;
        s_walk->next = object;
        s_walk->nextPath = identifier;
        return object->ToExpression();
    }
    const ExpressionPtr expression = value->ToExpression();
    if (!expression) return nullptr;
    return new Assignment(identifier, expression);
}

// ---- ClassObject -------------------------------------------------------------------------------------

ClassObject::ClassObject() = default;

ClassObject::~ClassObject() noexcept(false) {
    for (auto& entry : m_variables) Release(entry.second);
}

VariablePtr ClassObject::FindLocal(const String& name) const {
    const auto found = m_variables.find(name);
    return found != m_variables.end() ? found->second : nullptr;
}

VariablePtr ClassObject::LookupVariable(const String& name) const {
    for (const ClassObject* object = this; object != nullptr; object = object->GetOwner()) {
        const auto found = object->m_variables.find(name);
        if (found != object->m_variables.end()) return found->second;
        ChargeSteps(1);
    }
    THROW(ScriptException, name + " not found in scope");
}

ObjectPtr ClassObject::GetValue(const String& name) const {
    return LookupVariable(name)->GetValue();
}

ObjectPtr ClassObject::GetLocalValue(const String& name) const {
    const VariablePtr variable = FindLocal(name);
    return variable ? variable->GetValue() : nullptr;
}

void ClassObject::AddVariable(const VariablePtr& var) {
    CODE_ASSERTION(!HasVariable(var->GetName()));
    var->SetOwner(this);
    m_variables.emplace(var->GetName(), var);
}

void ClassObject::AddValue(const String& name, const ObjectPtr& value) {
    AddVariable(new Variable(name, value));
}

void ClassObject::RemoveVariable(const String& name) {
    const auto found = m_variables.find(name);
    if (found == m_variables.end()) return;
    const VariablePtr variable = found->second;
    m_variables.erase(found);
    if (variable->GetOwner() != this) return;
    variable->ClearValueOwner();
    variable->m_owner = nullptr;
}

void ClassObject::RemoveAllVariables() {
    for (const VariablePtr& variable : GetVariables()) RemoveVariable(variable->GetName());
}

VariableList ClassObject::GetVariables() const {
    VariableList variables;
    variables.reserve(m_variables.size());
    for (const auto& entry : m_variables) variables.push_back(entry.second);
    return variables;
}

VariablePtr ClassObject::FindVariableByValue(const Object* object, const Variable* except) const {
    for (const auto& entry : m_variables) {
        if (entry.second.Get() != except && entry.second->m_value.Get() == object) return entry.second;
    }
    return nullptr;
}

IdentifierPtr ClassObject::GetIdentifier() const {
    const ClassObject* const owner = GetOwner();
    if (owner == nullptr) return nullptr;
    const VariablePtr variable = owner->FindVariableByValue(this);
    if (!variable) return nullptr;
    return new Identifier(owner->GetIdentifier(), variable->GetName());
}

ExpressionPtr ClassObject::ToExpression() const {
    const NestingGuard guard;
    const PrintWalkScope walk(this);
    const CodeBlockPtr block = new CodeBlock;
    for (const VariablePtr& variable : GetVariables()) {
        try {
            const FreshSession session;
            if (const ExpressionPtr assignment = variable->ToAssignment()) block->Add(assignment);
        } catch (const std::exception& e) {
            LogException(e, WHERE);
            Log(logging::Warning, "Cannot print " + variable->GetName() + ": " + e.what());
        }
    }
    return block;
}

void ClassObject::WriteCode(CodeWriter& out) const {
    out.Append("ClassObject");
}

void ClassObject::SetOwner(const ClassObjectWeakPtr& owner) {
    CheckOwner(owner.Get());
    Object::SetOwner(owner);
}

void ClassObject::CheckOwner(const ClassObject* owner) const {
    for (; owner != nullptr; owner = owner->GetOwner()) {
        if (owner == this) THROW(ScriptException, "Circular scope");
    }
}

}  // namespace script

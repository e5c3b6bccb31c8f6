#include "script/ClassObject.h"

#include <set>

#include "script/CodeWriter.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Limits.h"
#include "script/Release.h"
#include "util/Assert.h"
#include "util/Guarded.h"

namespace script {

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
    const ClassObject* const owner = GetOwner();
    if (value->AsClass() != nullptr) return value->ToExpression();
    return MakeAssignment(new Identifier(owner != nullptr ? owner->GetIdentifier() : nullptr, m_name), value);
}

ExpressionPtr Variable::MakeAssignment(const IdentifierPtr& path, const ObjectPtr& value) {
    const ExpressionPtr expression = value->ToExpression();
    if (!expression) return nullptr;
    return new Assignment(path, expression);
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

// One printing of a tree of class objects. Paths are built on the way down, for owner links may point
// elsewhere after `x = App`.
struct ClassObject::PrintWalk {
    std::map<const ClassObject*, IdentifierPtr> homes;  // where a constant holds the object
    std::set<const ClassObject*> printed;
    CodeBlockPtr aliases = new CodeBlock;
};

ExpressionPtr ClassObject::ToExpression() const {
    PrintWalk walk;
    const IdentifierPtr path = GetIdentifier();
    FindHomes(path, walk);
    walk.printed.insert(this);
    const CodeBlockPtr block = ToAssignments(path, walk);
    block->Add(walk.aliases);
    return block;
}

void ClassObject::FindHomes(const IdentifierPtr& path, PrintWalk& walk) const {
    const NestingGuard guard;
    for (const VariablePtr& variable : GetVariables()) {
        const ClassObject* const object = variable->m_value->AsClass();
        if (object == nullptr || !variable->IsConstant()) continue;
        const IdentifierPtr home = new Identifier(path, variable->GetName());
        if (walk.homes.emplace(object, home).second) object->FindHomes(home, walk);
    }
}

CodeBlockPtr ClassObject::ToAssignments(const IdentifierPtr& path, PrintWalk& walk) const {
    const NestingGuard guard;
    const CodeBlockPtr block = new CodeBlock;
    for (const VariablePtr& variable : GetVariables()) {
        const FreshSession session;
        const auto print = [&] {
            const ExpressionPtr code = PrintVariable(*variable, path, walk);
            if (code) block->Add(code);
        };
        util::Guarded(print, ("Cannot print " + variable->GetName() + ": ").c_str());
    }
    return block;
}

// An object that a constant holds is printed there, and its other names as assignments behind everything
// else. One without such a home is printed under its first name.
ExpressionPtr ClassObject::PrintVariable(Variable& variable, const IdentifierPtr& path, PrintWalk& walk) {
    const ObjectPtr value = variable.GetValue();
    const IdentifierPtr name = new Identifier(path, variable.GetName());
    const ClassObject* const object = value->AsClass();
    if (object == nullptr) return Variable::MakeAssignment(name, value);
    const auto home = walk.homes.find(object);
    if (home != walk.homes.end() && !variable.IsConstant()) {
        walk.aliases->Add(new Assignment(name, home->second));
        return nullptr;
    }
    return walk.printed.insert(object).second ? object->ToAssignments(name, walk) : nullptr;
}

void ClassObject::WriteCode(CodeWriter& out) const {
    out.Append("ClassObject");
}

// A guest's name for an object does not move it.
void ClassObject::SetOwner(const ClassObjectWeakPtr& owner) {
    if (owner && owner.Get()->GetGuest() != nullptr) return;
    CheckOwner(owner.Get());
    Object::SetOwner(owner);
}

void ClassObject::CheckOwner(const ClassObject* owner) const {
    for (; owner != nullptr; owner = owner->GetOwner()) {
        if (owner == this) THROW(ScriptException, "Circular scope");
    }
}

}  // namespace script

#pragma once

#include <map>

#include "script/Objects.h"

namespace script {

// A named place for a value. Attributes are variables too and override the virtual operations.
class Variable : public util::Pointee {
  public:
    // Throws on a null value.
    Variable(const String& name, const ObjectPtr& value, bool constant = false);
    ~Variable() noexcept(false) override;

    // The path of all script assignments. A class object that is assigned gets this variable's owner as its
    // place for look-up, at once, and the one that was replaced loses it.
    virtual void SetValue(const ObjectPtr& value);
    virtual ObjectPtr GetValue() { return m_value; }

    const String& GetName() const { return m_name; }
    ClassObject* GetOwner() const { return m_owner.Get(); }
    bool IsConstant() const { return m_constant; }

    // The source of one assignment with the full path; for a class object the assignments of its contents,
    // without a line of its own. Null when the value has no source.
    ExpressionPtr ToAssignment();

    const ObjectPtr& GetStored() const { return m_value; }

  private:
    friend class ClassObject;
    void SetOwner(ClassObject* owner);
    void ClearValueOwner();
    static ExpressionPtr MakeAssignment(const IdentifierPtr& path, const ObjectPtr& value);

    ClassObjectWeakPtr m_owner;  // the class object that holds this variable
    const String m_name;
    ObjectPtr m_value;      // never null
    const bool m_constant;  // refuses script assignments
};

// A table of variables, in byte order of their names: the order of printing and saving. Its owner is the
// place where look-up goes on (the superscope).
class ClassObject : public Object {
  public:
    ClassObject();
    ~ClassObject() noexcept(false) override;

    bool HasVariable(const String& name) const { return m_variables.count(name) != 0; }
    VariablePtr FindLocal(const String& name) const;       // null when absent
    VariablePtr LookupVariable(const String& name) const;  // walks outward; ScriptException past the root
    ObjectPtr GetValue(const String& name) const;          // LookupVariable's
    ObjectPtr GetLocalValue(const String& name) const;     // FindLocal's, null when absent
    void AddVariable(const VariablePtr& var);              // asserts that the name is free
    void AddValue(const String& name, const ObjectPtr& value);
    void RemoveVariable(const String& name);  // nothing when absent
    void RemoveAllVariables();
    VariableList GetVariables() const;
    const std::map<String, VariablePtr>& GetTable() const { return m_variables; }
    size_t GetNumVariables() const { return m_variables.size(); }
    // The first in order that holds this very object; null when none does.
    VariablePtr FindVariableByValue(const Object* object, const Variable* except = nullptr) const;

    // The dotted path by owner links; null at a root.
    IdentifierPtr GetIdentifier() const;

    // A CodeBlock of the assignments of all variables that have source, those of class objects below it
    // included. What is written depends on names, not on owner links that scripts have moved. A variable
    // whose conversion fails is left out with a Warning.
    ExpressionPtr ToExpression() const final;
    void WriteCode(CodeWriter& out) const override;

    // Raises ScriptException with "Circular scope" for an owner that is this object or lies below it.
    void SetOwner(const ClassObjectWeakPtr& owner) override;
    ClassObject* AsClass() final { return this; }

    // Whose closure this is; null for the user's own, and for what is no closure.
    virtual Guest* GetGuest() const { return nullptr; }

  protected:
    // Raises what SetOwner would, before anything has changed.
    void CheckOwner(const ClassObject* owner) const;

    // What this object adds to ToExpression, whose names begin with `path`.
    struct PrintWalk;
    virtual CodeBlockPtr ToAssignments(const IdentifierPtr& path, PrintWalk& walk) const;

  private:
    friend class Variable;

    void FindHomes(const IdentifierPtr& path, PrintWalk& walk) const;
    static ExpressionPtr PrintVariable(Variable& variable, const IdentifierPtr& path, PrintWalk& walk);

    std::map<String, VariablePtr> m_variables;
};

}  // namespace script

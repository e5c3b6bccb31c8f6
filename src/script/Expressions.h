#pragma once

#include "script/Fwd.h"
#include "script/SourcePlace.h"
#include "util/Pointee.h"

// The program as a tree, evaluated directly. Every node prints itself back as source, and that is no
// debugging aid: settings and scenes are saved as the printout of trees, so the forms are a file format.
namespace script {

class Expression : public util::Pointee {
  public:
    virtual ObjectPtr Evaluate(const ClosurePtr& closure) = 0;

    String ToCode() const;
    virtual void WriteCode(CodeWriter& out) const = 0;
};

// T = bool, int, double, String.
template <class T>
class Literal : public Expression {
  public:
    explicit Literal(const T& value) : m_value(value) {}
    const T& Get() const { return m_value; }

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

  private:
    const T m_value;
};

// A number that cannot be read: it keeps its text, and evaluating it fails.
class BadLiteral : public Expression {
  public:
    BadLiteral(const String& text, const String& failure) : m_text(text), m_failure(failure) {}

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

  private:
    const String m_text;
    const String m_failure;
};

// A name, behind `owner.` or alone. Reading walks outward through the scopes, writing is always local: a
// function's assignments make locals of that call, and who means an outer object qualifies it.
class Identifier : public Expression {
  public:
    explicit Identifier(const String& name) : Identifier(nullptr, name) {}
    Identifier(const ExpressionPtr& owner, const String& name);
    ~Identifier() noexcept(false) override;

    const String& GetName() const { return m_name; }

    // The value, or, where that is a function without parameters, its result.
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

    ClassObjectPtr GetOwner(const ClosurePtr& closure) const;
    ObjectPtr GetValue(const ClosurePtr& closure) const;
    void SetValue(const ClosurePtr& closure, const ObjectPtr& value) const;

  private:
    ExpressionPtr m_owner;  // null for a bare name
    const String m_name;
};

class Assignment : public Expression {
  public:
    Assignment(const IdentifierPtr& id, const ExpressionPtr& ex);
    ~Assignment() noexcept(false) override;

    const IdentifierPtr& GetIdentifier() const { return m_id; }
    const ExpressionPtr& GetExpression() const { return m_ex; }

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

  private:
    IdentifierPtr m_id;
    ExpressionPtr m_ex;
};

// A list of statements, and the language's error boundary: a statement that fails is logged and costs no
// more than itself.
class CodeBlock : public Expression {
  public:
    CodeBlock() = default;
    explicit CodeBlock(ExpressionList expressions) : m_expressions(std::move(expressions)) {}
    ~CodeBlock() noexcept(false) override;

    void Add(const ExpressionPtr& expression) { m_expressions.push_back(expression); }
    void Add(const ExpressionPtr& statement, SourcePlace place);
    const ExpressionList& GetExpressions() const { return m_expressions; }

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

  protected:
    ObjectList EvaluateElements(const ClosurePtr& closure) const;

  private:
    ObjectPtr EvaluateStatement(size_t index, const ClosurePtr& closure) const;

    ExpressionList m_expressions;
    std::vector<SourcePlace> m_places;  // of the statements, where they were parsed; otherwise empty
};

// A parenthesis: grouping around one element, otherwise a list of values; behind a function its arguments.
class Block : public CodeBlock {
  public:
    using CodeBlock::CodeBlock;
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;
};

class ListDeclaration : public CodeBlock {
  public:
    using CodeBlock::CodeBlock;
    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;
};

class FunctionDeclaration : public Expression {
  public:
    FunctionDeclaration(const StringList& args, const CodeBlockPtr& code);
    ~FunctionDeclaration() noexcept(false) override;

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

  private:
    const StringList m_args;
    CodeBlockPtr m_code;
};

class FunctionCall : public Expression {
  public:
    FunctionCall(const ExpressionPtr& head, const BlockPtr& tail);
    ~FunctionCall() noexcept(false) override;

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

  private:
    ExpressionPtr m_head;
    BlockPtr m_tail;
};

// The declaration of an operator: a pattern of argument slots and keywords, and the function that it stands
// for. No expression itself. A pattern needs a keyword; it may lack slots.
class Infix : public util::Pointee {
  public:
    // `pattern` holds an empty string for an argument slot, any other string is a keyword.
    Infix(double precedence, bool right, const StringList& pattern, const ExpressionPtr& target);
    ~Infix() noexcept(false) override;

    double GetPrecedence() const { return m_precedence; }  // the lowest splits first and so binds loosest
    const StringList& GetPattern() const { return m_pattern; }
    const ExpressionPtr& GetTarget() const { return m_target; }
    size_t GetArgCount() const { return m_argCount; }

    void WriteCode(CodeWriter& out) const;
    String ToCode() const;
    String JoinPattern() const;

  private:
    const double m_precedence;
    const int m_right;  // 0 for `left`, 1 for `right`; stored and printed, without effect on the parse
    const StringList m_pattern;
    ExpressionPtr m_target;
    const size_t m_argCount;
};

class InfixDeclaration : public Expression {
  public:
    explicit InfixDeclaration(const InfixPtr& infix);
    ~InfixDeclaration() noexcept(false) override;

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

  private:
    InfixPtr m_infix;
};

class InfixFunctionCall : public Expression {
  public:
    InfixFunctionCall(const InfixPtr& infix, ExpressionList args);
    ~InfixFunctionCall() noexcept(false) override;

    ObjectPtr Evaluate(const ClosurePtr& closure) override;
    void WriteCode(CodeWriter& out) const override;

  private:
    InfixPtr m_infix;
    ExpressionList m_args;  // null where the source left a slot empty; evaluating that fails
};

extern template class Literal<bool>;
extern template class Literal<int>;
extern template class Literal<double>;
extern template class Literal<String>;

}  // namespace script

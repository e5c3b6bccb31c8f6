#pragma once

#include "script/Expressions.h"
#include "script/Parser.h"
#include "script/Scopes.h"
#include "script/Tokenizer.h"

namespace script {

// One parse of one token list, by recursive descent. An expression is first read as a flat sequence of
// operands, `1 + f x` as five of them; then the sequence is split by the infix declaration of lowest
// precedence whose keywords all occur in it, always at its leftmost keyword, and the parts are split in
// turn. What no declaration matches is a chain of applications: `f x y` is `f(x)(y)`.
//
//   statements   = [expression] { ";" [expression] }
//   expression   = "infix" declaration | identifier "=" expression | { operand }
//   operand      = literal | name | operand "." name | "(" list ")" | "[" list "]"
//                | [ "(" names ")" "=>" ] "{" statements "}"
class Grammar {
  public:
    explicit Grammar(const TokenList& tokens, Parser::OnProgress onProgress = nullptr);

    // Raises ParseException and ScriptException. `place` is then where the failure was noticed; otherwise it
    // is left alone.
    CodeBlockPtr Parse(const ScopePtr& rootScope, SourcePlace& place);

  private:
    struct Operand {
        ExpressionPtr ex;
        const String* name;  // of an identifier, whatever its owner; null for other operands
        bool isBlock;
    };
    using Sequence = std::vector<Operand>;
    class Splitter;

    CodeBlockPtr ParseCodeBlock(const ScopePtr& scope, TokenIt& it);
    void ParseExpressionList(CodeBlock& list, const ScopePtr& scope, TokenIt& it);
    ExpressionPtr ParseExpression(const ScopePtr& scope, TokenIt& it);
    void ParseOperand(Sequence& sequence, const ScopePtr& scope, TokenIt& it);
    void ParseMember(Sequence& sequence, TokenIt& it);
    ExpressionPtr ParseAssignment(const Sequence& sequence, const ScopePtr& scope, TokenIt& it);
    ExpressionPtr ParseBlock(const ScopePtr& scope, TokenIt& it);
    ExpressionPtr ParseList(const ScopePtr& scope, TokenIt& it);
    ExpressionPtr ParseLiteral(const Token& token);
    ExpressionPtr ParseInfixDeclaration(const ScopePtr& scope, TokenIt& it);
    ExpressionPtr ParseFunctionDeclaration(const ScopePtr& scope, TokenIt& it);
    StringList ParseParameters(const ScopePtr& functionScope, TokenIt& it);

    bool IsSymbol(TokenIt it, const char* symbol) const { return it != m_tokenEnd && it->IsSymbol(symbol); }
    bool EndsExpression(TokenIt it) const;
    bool ClosesList(TokenIt it) const;
    bool StartsFunction(TokenIt it) const;
    void Expect(const char* symbol, TokenIt& it) const;
    SourcePlace GetPlace(TokenIt it) const;
    void MatchParentheses();
    void TellProgress(TokenIt it);

    const TokenIt m_tokenBegin;
    const TokenIt m_tokenEnd;
    std::vector<uint32_t> m_closing;        // for each token that is a "(", the index of its ")"; otherwise 0
    int64_t m_steps;                        // comparisons left
    const Parser::OnProgress m_onProgress;  // may be empty
    TokenIt m_nextTold;
};

}  // namespace script

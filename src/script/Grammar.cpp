#include "script/Grammar.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/lexical_cast.hpp>
#include <limits>
#include <unordered_map>

#include "script/Exceptions.h"
#include "script/Limits.h"

namespace script {

namespace {

const char* const INFIX = "infix";

bool ReadNumber(const String& text, int& value) {
    return boost::conversion::try_lexical_convert(text, value);
}
bool ReadNumber(const String& text, double& value) {
    const bool isInfinity = boost::algorithm::iequals(text, "+inf");
    if (isInfinity || boost::algorithm::iequals(text, "-inf")) {
        value = (isInfinity ? 1 : -1) * std::numeric_limits<double>::infinity();
        return true;
    }
    return boost::conversion::try_lexical_convert(text, value);
}

// `code` is the type's letter in the message.
String DescribeBadNumber(const String& text, char code) {
    return "Bad lexical cast: \"" + text + "\" is not a " + code;
}

// A number that is none, or too great for its type, fails when its statement runs, and costs no more than
// that.
template <class T>
ExpressionPtr MakeNumber(const String& text, char code) {
    T value{};
    if (ReadNumber(text, value)) return new Literal<T>(value);
    return new BadLiteral(text, DescribeBadNumber(text, code));
}

bool HasKeyword(const StringList& pattern) {
    for (const String& part : pattern) {
        if (!part.empty()) return true;
    }
    return false;
}

}  // namespace

// ---- structuring a sequence --------------------------------------------------------------------------

// Splits one sequence. Ranges are index pairs into it, and a keyword is found in a range by its positions:
// recursion on the rest behind the leftmost operator would otherwise walk a long sum again and again.
class Grammar::Splitter {
  public:
    Splitter(const Sequence& sequence, const Scope& scope, int64_t& steps)
        : m_sequence(sequence), m_scope(scope), m_steps(steps) {
        if (sequence.size() <= SHORT) return;
        for (size_t i = 0; i < sequence.size(); ++i) {
            if (sequence[i].name != nullptr) m_positions[*sequence[i].name].push_back(i);
        }
    }

    ExpressionPtr Split(size_t begin, size_t end) {
        if (begin == end) return nullptr;
        const NestingGuard guard;
        Charge(static_cast<int64_t>(m_scope.GetLevel()) + 1);
        const KeywordTest occurs = [this, begin, end](const String& keyword) {
            return Find(keyword, begin, end) != end;
        };
        const InfixPtr infix = m_scope.GetInfix(occurs);
        return infix ? SplitByInfix(infix, begin, end) : ChainCalls(begin, end);
    }

  private:
    static constexpr size_t SHORT = 16;  // operands; up to here a walk is quicker than the table

    void Charge(int64_t steps) {
        m_steps -= steps;
        if (m_steps < 0) THROW(ScriptException, "Script took too long");
    }

    // The first operand in the range that is named `keyword`; `end` when there is none.
    size_t Find(const String& keyword, size_t begin, size_t end) {
        Charge(1);
        if (m_sequence.size() <= SHORT) {
            while (begin != end &&
                   (m_sequence[begin].name == nullptr || *m_sequence[begin].name != keyword)) {
                ++begin;
            }
            return begin;
        }
        const auto found = m_positions.find(keyword);
        if (found == m_positions.end()) return end;
        const auto position = std::lower_bound(found->second.begin(), found->second.end(), begin);
        return position == found->second.end() ? end : std::min(*position, end);
    }

    // The split is at the leftmost keyword whatever `left` or `right` says: `1 - 2 - 3` is `1 - (2 - 3)`.
    ExpressionPtr SplitByInfix(const InfixPtr& infix, size_t begin, size_t end) {
        const StringList& pattern = infix->GetPattern();
        ExpressionList args;
        size_t cur = begin;
        for (size_t i = 0; i < pattern.size(); ++i) {
            if (!pattern[i].empty()) {
                const bool matches = cur != end && Find(pattern[i], cur, cur + 1) == cur;
                Parser::ParserAssert(matches, "Missing keyword " + pattern[i]);
                ++cur;
                continue;
            }
            size_t boundary = end;
            if (i + 1 < pattern.size()) {
                boundary = Find(pattern[i + 1], cur, end);
                Parser::ParserAssert(boundary != end,
                                     "Could not find infix function keyword " + pattern[i + 1]);
            }
            args.push_back(Split(cur, boundary));
            cur = boundary;
        }
        Parser::ParserAssert(cur == end, "Bad parse");
        return new InfixFunctionCall(infix, std::move(args));
    }

    // `f x (y, z)` is `f(x)(y, z)`.
    ExpressionPtr ChainCalls(size_t begin, size_t end) const {
        ExpressionPtr result = m_sequence[begin].ex;
        for (size_t i = begin + 1; i < end; ++i) {
            const Operand& operand = m_sequence[i];
            const BlockPtr tail = operand.isBlock ? static_cast<Block*>(operand.ex.Get())
                                                  : new Block(ExpressionList{operand.ex});
            result = new FunctionCall(result, tail);
        }
        return result;
    }

    const Sequence& m_sequence;
    const Scope& m_scope;
    int64_t& m_steps;
    std::unordered_map<String, std::vector<size_t>> m_positions;  // of each name, for long sequences only
};

// ---- tokens ------------------------------------------------------------------------------------------

Grammar::Grammar(const TokenList& tokens, Parser::OnProgress onProgress)
    : m_tokenBegin(tokens.begin()),
      m_tokenEnd(tokens.end()),
      m_steps(MAX_PARSE_STEPS),
      m_onProgress(std::move(onProgress)),
      m_nextTold(m_onProgress ? m_tokenBegin : m_tokenEnd) {
    MatchParentheses();
}

void Grammar::TellProgress(TokenIt it) {
    constexpr std::ptrdiff_t INTERVAL = 4096;  // tokens
    if (it < m_nextTold || m_nextTold == m_tokenEnd) return;
    m_onProgress(static_cast<size_t>(it - m_tokenBegin), static_cast<size_t>(m_tokenEnd - m_tokenBegin));
    m_nextTold = it + std::min(INTERVAL, m_tokenEnd - it);
}

// In one pass for all of them: a scan at each "(" would cost the square of the nesting.
void Grammar::MatchParentheses() {
    const size_t count = static_cast<size_t>(m_tokenEnd - m_tokenBegin);
    std::vector<size_t> open;
    for (size_t i = 0; i < count; ++i) {
        const Token& token = m_tokenBegin[static_cast<std::ptrdiff_t>(i)];
        if (token.IsSymbol("(")) {
            if (m_closing.empty()) m_closing.resize(count);
            open.push_back(i);
        } else if (token.IsSymbol(")") && !open.empty()) {
            m_closing[open.back()] = static_cast<uint32_t>(i);
            open.pop_back();
        }
    }
}

bool Grammar::StartsFunction(TokenIt it) const {
    const uint32_t closing = m_closing[static_cast<size_t>(it - m_tokenBegin)];
    return closing != 0 && IsSymbol(m_tokenBegin + closing + 1, "=>");
}

bool Grammar::ClosesList(TokenIt it) const {
    return it == m_tokenEnd || it->IsSymbol(")") || it->IsSymbol("}") || it->IsSymbol("]");
}

bool Grammar::EndsExpression(TokenIt it) const {
    return ClosesList(it) || it->IsSymbol(";") || it->IsSymbol(",");
}

void Grammar::Expect(const char* symbol, TokenIt& it) const {
    if (!IsSymbol(it, symbol)) THROW(ParseException, String("Missing ") + symbol);
    ++it;
}

// ---- statements and lists ----------------------------------------------------------------------------

// The failing routine leaves `it` where it was.
CodeBlockPtr Grammar::Parse(const ScopePtr& rootScope, SourcePlace& place) {
    TokenIt it = m_tokenBegin;
    try {
        const CodeBlockPtr code = ParseCodeBlock(rootScope, it);
        if (it > m_tokenEnd) THROW(ScriptException, "Parsed too many tokens (real bad stuff)");
        if (it != m_tokenEnd) THROW(ScriptException, "Unexpected token: " + it->text);
        return code;
    } catch (...) {
        place = GetPlace(it);
        throw;
    }
}

// At the end it is the place of the last token.
SourcePlace Grammar::GetPlace(TokenIt it) const {
    if (m_tokenBegin == m_tokenEnd) return {};
    return it < m_tokenEnd ? it->place : (m_tokenEnd - 1)->place;
}

CodeBlockPtr Grammar::ParseCodeBlock(const ScopePtr& scope, TokenIt& it) {
    const CodeBlockPtr block = new CodeBlock;
    while (!ClosesList(it)) {
        const SourcePlace place = GetPlace(it);
        if (const ExpressionPtr statement = ParseExpression(scope, it)) block->Add(statement, place);
        if (ClosesList(it)) break;
        Expect(";", it);
    }
    return block;
}

// Unlike an empty statement, an empty element stays, as null: `[1,,2]` has three elements and fails when it
// is evaluated.
void Grammar::ParseExpressionList(CodeBlock& list, const ScopePtr& scope, TokenIt& it) {
    while (!ClosesList(it)) {
        list.Add(ParseExpression(scope, it));
        if (ClosesList(it)) break;
        Expect(",", it);
    }
}

// ---- expressions -------------------------------------------------------------------------------------

ExpressionPtr Grammar::ParseExpression(const ScopePtr& scope, TokenIt& it) {
    const NestingGuard guard;
    TellProgress(it);
    if (it == m_tokenEnd) THROW(ParseException, "Unexpected end of expression");
    if (IsSymbol(it, INFIX)) return ParseInfixDeclaration(scope, it);
    const TokenIt begin = it;
    Sequence sequence;
    while (!EndsExpression(it)) {
        if (it->IsSymbol("=")) return ParseAssignment(sequence, scope, it);
        ParseOperand(sequence, scope, it);
    }
    if (sequence.size() == 1 && sequence[0].name == nullptr) return sequence[0].ex;
    const TokenIt end = it;
    it = begin;  // a failure is told with the beginning of the sequence
    const ExpressionPtr result = Splitter(sequence, *scope, m_steps).Split(0, sequence.size());
    it = end;
    return result;
}

void Grammar::ParseOperand(Sequence& sequence, const ScopePtr& scope, TokenIt& it) {
    if (it->kind != SymbolToken) {
        sequence.push_back({ParseLiteral(*it), nullptr, false});
        ++it;
    } else if (it->text == ".") {
        ParseMember(sequence, it);
    } else if (it->text == "{" || (it->text == "(" && StartsFunction(it))) {
        sequence.push_back({ParseFunctionDeclaration(scope, it), nullptr, false});
    } else if (it->text == "(") {
        sequence.push_back({ParseBlock(scope, it), nullptr, true});
    } else if (it->text == "[") {
        sequence.push_back({ParseList(scope, it), nullptr, false});
    } else {
        sequence.push_back({new Identifier(it->text), &it->text, false});
        ++it;
    }
}

// `.` binds tighter than anything else and may follow any operand.
void Grammar::ParseMember(Sequence& sequence, TokenIt& it) {
    const TokenIt name = it + 1;
    Parser::ParserAssert(!sequence.empty() && name != m_tokenEnd && name->kind == SymbolToken,
                         "General parse error");
    Operand& operand = sequence.back();
    operand = {new Identifier(operand.ex, name->text), &name->text, false};
    it = name + 1;
}

// `=` binds loosest of all and to the right: `a = b = 1` is `a = (b = 1)`.
ExpressionPtr Grammar::ParseAssignment(const Sequence& sequence, const ScopePtr& scope, TokenIt& it) {
    ++it;
    if (sequence.size() != 1) {
        const String info = it != m_tokenEnd ? it->text : String();
        THROW(ParseException, "Bad placement of = (info: " + info + ")");
    }
    Parser::ParserAssert(sequence[0].name != nullptr, "You can only assign to an identifier");
    const IdentifierPtr id = static_cast<Identifier*>(sequence[0].ex.Get());
    return new Assignment(id, ParseExpression(scope, it));
}

ExpressionPtr Grammar::ParseBlock(const ScopePtr& scope, TokenIt& it) {
    const BlockPtr block = new Block;
    Expect("(", it);
    ParseExpressionList(*block, scope, it);
    Expect(")", it);
    return block;
}

ExpressionPtr Grammar::ParseList(const ScopePtr& scope, TokenIt& it) {
    const util::SharedPtr<ListDeclaration> list = new ListDeclaration;
    Expect("[", it);
    ParseExpressionList(*list, scope, it);
    Expect("]", it);
    return list;
}

ExpressionPtr Grammar::ParseLiteral(const Token& token) {
    switch (token.kind) {
        case BoolToken:
            return new Literal<bool>(token.text == "true");
        case IntToken:
            return MakeNumber<int>(token.text, 'i');
        case FloatToken:
            return MakeNumber<double>(token.text, 'd');
        case StringToken:
            return new Literal<String>(token.text);
        default:
            THROW(ParseException, "Unknown token \"" + token.text + "\"");
    }
}

// ---- declarations ------------------------------------------------------------------------------------

// A pattern without a keyword would match everything, also its own arguments, without end. A string is no
// keyword: it never occurs as a name, and the printed declaration would show it without its quotes.
ExpressionPtr Grammar::ParseInfixDeclaration(const ScopePtr& scope, TokenIt& it) {
    Expect(INFIX, it);
    Parser::ParserAssert(m_tokenEnd - it >= 2, "Bad infix function");
    double precedence = 0;
    Parser::ParserAssert(ReadNumber(it->text, precedence), DescribeBadNumber(it->text, 'd'));
    ++it;
    Parser::ParserAssert(it->text == "left" || it->text == "right", "Bad infix function");
    const bool right = it->text == "right";
    ++it;
    Expect(":", it);
    StringList pattern;
    for (; it != m_tokenEnd && !it->IsSymbol("=>"); ++it) {
        Parser::ParserAssert(it->kind != StringToken, "Bad infix function");
        pattern.push_back(it->text == "_" ? String() : it->text);
    }
    Parser::ParserAssert(HasKeyword(pattern), "Bad infix function");
    Expect("=>", it);
    const ExpressionPtr target = ParseExpression(scope, it);
    const InfixPtr infix = new Infix(precedence, right, pattern, target);
    scope->AddInfix(infix);
    return new InfixDeclaration(infix);
}

ExpressionPtr Grammar::ParseFunctionDeclaration(const ScopePtr& scope, TokenIt& it) {
    const ScopePtr functionScope = new Scope("[function scope]", scope);
    StringList args;
    if (IsSymbol(it, "(")) args = ParseParameters(functionScope, it);
    Expect("{", it);
    const CodeBlockPtr code = ParseCodeBlock(functionScope, it);
    Expect("}", it);
    return new FunctionDeclaration(args, code);
}

StringList Grammar::ParseParameters(const ScopePtr& functionScope, TokenIt& it) {
    StringList names;
    Expect("(", it);
    while (m_tokenEnd - it >= 2 && !it->IsSymbol(")")) {
        Parser::ParserAssert(it->kind == SymbolToken, "Argument list must consist of Identifiers");
        functionScope->AddValue(it->text, new Unbound);
        names.push_back(it->text);
        ++it;
        if (!it->IsSymbol(",")) break;
        ++it;
    }
    Expect(")", it);
    Expect("=>", it);
    return names;
}

}  // namespace script

#include "script/Parser.h"

#include <typeinfo>

#include "logging/Log.h"
#include "script/Attributes.h"
#include "script/CodeWriter.h"
#include "script/Completion.h"
#include "script/Cycles.h"
#include "script/Exceptions.h"
#include "script/Grammar.h"
#include "script/Guest.h"
#include "script/Intrinsics.h"
#include "script/Limits.h"
#include "util/FileSystem.h"

namespace script {

namespace {

Parser::KeyBinderFactory& GetFactory() {
    static Parser::KeyBinderFactory& s_factory = *new Parser::KeyBinderFactory;  // abandoned at exit
    return s_factory;
}

String InWorkDir(const String& fileName) {
    const bool absolute = !fileName.empty() && fileName[0] == '/';
    return absolute ? fileName : util::FileSystem::Instance().GetWorkDir() + fileName;
}

}  // namespace

// ---- life --------------------------------------------------------------------------------------------

Parser::Parser()
    : m_rootClosure(new Closure("[ROOT]")),
      m_rootScope(new Scope("ROOT_SCOPE", nullptr)),
      m_onError([](const String& text) { Log(logging::Warning, text); }) {
    AttachKeyBinder();
    m_math = RegisterIntrinsics(*this);
}

// The root holds functions whose closure it is itself. Emptying it breaks the circle, and lets the services
// go that it holds. What the key binder holds goes with it, now that the root does not hold it any more.
Parser::~Parser() noexcept(false) {
    if (m_keyBinder) m_keyBinder->RemoveAllVariables();
    m_rootClosure->RemoveAllVariables();
    m_math->RemoveAllVariables();
    CollectCycles();
}

void Parser::SetKeyBinderFactory(const KeyBinderFactory& factory) {
    GetFactory() = factory;
    if (IsCreated() && !Instance().m_keyBinder) Instance().AttachKeyBinder();
}

void Parser::AttachKeyBinder() {
    if (!GetFactory()) return;
    m_keyBinder = GetFactory()();
    m_rootClosure->AddReflected(m_keyBinder);
}

void Reflected::AddToRoot(const ReflectedPtr& child) {
    Parser::Instance().GetRootClosure()->AddReflected(child);
}

void Parser::AddInfix(const InfixPtr& infix) {
    m_rootScope->AddInfix(infix);
    m_rootClosure->AddInfix(infix);
}

// ---- parsing -----------------------------------------------------------------------------------------

void Parser::ParserAssert(bool condition, const String& text) {
    if (!condition) THROW(ParseException, text);
}

static String Describe(const SourcePlace& place) {
    if (!place.IsKnown()) return String();
    return " (line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ")";
}

void Parser::ReportError(const String& text, const SourcePlace& place) const {
    NoteFailure({text, place});
    try {
        if (m_onError) m_onError(text + Describe(place));
    } catch (const std::exception& e) {
        LogException(e, WHERE);
    }
}

CodeBlockPtr Parser::Parse(const TokenList& tokens, const ScopePtr& scope, const OnProgress& onProgress) {
    SourcePlace place;
    try {
        return Grammar(tokens, onProgress).Parse(scope, place);
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        ReportError(String("Parse error: ") + e.what(), place);
        return nullptr;
    }
}

CodeBlockPtr Parser::Parse(const TokenList& tokens) {
    return Parse(tokens, m_rootScope);
}

CodeBlockPtr Parser::Parse(const String& text) {
    return Parse(Tokenizer::Tokenize(text));
}

// Leaves the statements that stand whole within the first `most` tokens, if there are any.
static void CutToWholeStatements(TokenList& tokens, size_t most) {
    size_t end = 0;
    int depth = 0;
    for (size_t i = 0; i < most; ++i) {
        const Token& token = tokens[i];
        if (token.IsSymbol("(") || token.IsSymbol("[") || token.IsSymbol("{")) ++depth;
        if (token.IsSymbol(")") || token.IsSymbol("]") || token.IsSymbol("}")) --depth;
        if (depth == 0 && token.IsSymbol(";")) end = i;
    }
    if (end == 0) THROW(TokenException, "The text is too long");
    tokens.resize(end, tokens[0]);
}

CodeBlockPtr Parser::ParseOrReport(const String& text, size_t& numTokens, const ScopePtr& scope,
                                   size_t maxTokens, const OnProgress& onProgress) {
    numTokens = 0;
    SourcePlace place;
    try {
        TokenList tokens = Tokenizer::Tokenize(text, &place, maxTokens);
        BeginFailures(place.text);
        if (tokens.size() > maxTokens) {
            CutToWholeStatements(tokens, maxTokens);
            ReportError("The text is too long: the rest of it is left out", tokens.back().place);
        }
        numTokens = tokens.size();
        return Parse(tokens, scope, onProgress);
    } catch (const TokenException& e) {
        LogException(e, WHERE);
        BeginFailures(place.text);
        ReportError(String("Parse error: ") + e.what(), place);
        return nullptr;
    }
}

CodeBlockPtr Parser::ParseOrReport(const String& text, size_t& numTokens) {
    return ParseOrReport(text, numTokens, m_rootScope, SIZE_MAX);
}

CodeBlockPtr Parser::ParseGuest(const String& text, const OnProgress& onProgress) {
    size_t numTokens;
    const ScopePtr scope = new Scope("[guest scope]", m_rootScope);
    return ParseOrReport(text, numTokens, scope, MAX_GUEST_TOKENS, onProgress);
}

ClosurePtr Parser::MakeGuestClosure(Guest& guest, const String& name) const {
    const GuestRights rights(&guest);
    return new Closure(name, m_rootClosure);
}

// ---- executing ---------------------------------------------------------------------------------------

ObjectPtr Parser::Execute(const ExpressionPtr& expression, size_t numTokens) {
    try {
        ObjectPtr result;
        {
            const Session session(numTokens);
            result = expression->Evaluate(m_rootClosure);
        }
        AbstractAttrib::RecalcAll();
        return result;
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        ReportError(String("Tree evaluation error: ") + e.what());
    } catch (...) {
        LogUnknownException(WHERE);
        ReportError("Parser threw unknown excpetion.");
    }
    return new ErrorObject;
}

ObjectPtr Parser::Execute(const ExpressionPtr& expression) {
    return Execute(expression, 0);
}

ObjectPtr Parser::Execute(const TokenList& tokens) {
    const CodeBlockPtr code = Parse(tokens);
    return code ? Execute(code, tokens.size()) : ObjectPtr(new ErrorObject);
}

ObjectPtr Parser::Execute(const String& text) {
    size_t numTokens;
    const CodeBlockPtr code = ParseOrReport(text, numTokens);
    return code ? Execute(code, numTokens) : ObjectPtr(new ErrorObject);
}

String Parser::ExecuteToString(const String& text) {
    const ObjectPtr result = Execute(text);
    if (!result || util::DynamicCast<BadObject>(result)) return String();
    try {
        return result->ToCode();
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        ReportError(String("Tree evaluation error: ") + e.what());
        return String();
    }
}

void Parser::Update() {
    AbstractAttrib::RecalcAll();
    CollectCycles();
}

// ---- files -------------------------------------------------------------------------------------------

bool Parser::LoadConfig(const std::string& fileName) {
    Log(logging::Info, "Parsing " + fileName + "...");
    try {
        AbstractAttrib::RecalcAll();
        const String text = util::FileSystem::Instance().ReadFile(InWorkDir(fileName));
        size_t numTokens;
        const CodeBlockPtr code = ParseOrReport(text, numTokens);
        if (!code) return false;
        {
            const AbstractAttrib::Reading reading;
            Execute(code, numTokens);
        }
        AbstractAttrib::RecalcAll();
        return true;
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Error, String("Failed loading config file: ") + e.what());
        return false;
    }
}

namespace {

// The statements of nested blocks, one by one and in order. Joined, they give the text of the whole.
void Flatten(const ExpressionPtr& expression, ExpressionList& statements) {
    if (!expression) return;
    const Expression& node = *expression;
    if (typeid(node) != typeid(CodeBlock)) {
        statements.push_back(expression);
        return;
    }
    const CodeBlock& block = static_cast<const CodeBlock&>(node);
    for (const ExpressionPtr& inner : block.GetExpressions()) Flatten(inner, statements);
}

// A list that holds an intrinsic cannot be printed. That costs its own line and no other.
void WriteStatement(CodeWriter& out, const ExpressionPtr& statement) {
    const size_t begin = out.GetSize();
    try {
        const FreshSession session;
        if (begin != 0) out.AppendSeparator(";\n");
        const size_t textBegin = out.GetSize();
        statement->WriteCode(out);
        if (out.GetSize() == textBegin) out.Cut(begin);
    } catch (const std::exception& e) {
        out.Cut(begin);
        LogException(e, WHERE);
        const Assignment* const assignment = dynamic_cast<const Assignment*>(statement.Get());
        const String name = assignment != nullptr ? assignment->GetIdentifier()->ToCode() : "a statement";
        Log(logging::Warning, "Left out of the saved settings: " + name + ", " + e.what());
    }
}

}  // namespace

String Parser::GetRootCode() const {
    ExpressionList statements;
    Flatten(m_rootClosure->ToExpression(), statements);
    CodeWriter out;
    for (const ExpressionPtr& statement : statements) WriteStatement(out, statement);
    return out.Take();
}

bool Parser::SaveRootCode(const String& fileName) const {
    try {
        const String code = GetRootCode();
        if (code.empty()) return false;
        util::FileSystem::Instance().WriteFileAtomically(InWorkDir(fileName), code);
        return true;
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        Log(logging::Error, "Failed saving " + fileName + ": " + e.what());
        return false;
    }
}

// ---- completion --------------------------------------------------------------------------------------

StringList Parser::AutoComplete(String& line) const {
    return Complete(m_rootClosure, line);
}

}  // namespace script

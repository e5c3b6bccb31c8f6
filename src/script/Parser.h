#pragma once

#include <functional>

#include "script/Expressions.h"
#include "script/Failure.h"
#include "script/Scopes.h"
#include "script/Tokenizer.h"
#include "util/Singleton.h"

namespace script {

// The language as a service: owns the root objects, turns text into trees, runs them, and prints the root
// back as text. Every configuration, scene, language file, key binding and console line passes through.
//
//   Parse    text or tokens to a tree; syntax errors go to the error sink with their place and give null
//   Execute  runs in the root closure, then recalculates the bound attributes; never throws
//
// There is no fixed table of operators: Grammar.h tells how sequences get their structure. The parser is
// torn down by Destroy, which breaks the circle of root closure and the functions made in it.
class Parser : public util::Pointee, public util::Singleton<Parser> {
  public:
    using OnError = std::function<void(const String&)>;
    using OnProgress = std::function<void(size_t done, size_t all)>;  // tokens; called now and then
    using KeyBinderFactory = std::function<ReflectedPtr()>;

    Parser();
    ~Parser() noexcept(false) override;

    // What makes the object `Keys`. It listens to input and so comes from above; without it there is none.
    // Works before and after the parser has been made.
    static void SetKeyBinderFactory(const KeyBinderFactory& factory);

    CodeBlockPtr Parse(const TokenList& tokens);
    CodeBlockPtr Parse(const String& text);  // a TokenException leaves
    // For a text from elsewhere, whose operators are its own (Guest.h). Nothing leaves; of a text of more
    // than MAX_GUEST_TOKENS the statements that fit are taken.
    CodeBlockPtr ParseGuest(const String& text, const OnProgress& onProgress = nullptr);
    // An empty closure under the root, of this guest.
    ClosurePtr MakeGuestClosure(Guest& guest, const String& name) const;

    ObjectPtr Execute(const ExpressionPtr& expression);
    ObjectPtr Execute(const TokenList& tokens);
    ObjectPtr Execute(const String& text);
    ObjectPtr Execute(const char* text) { return Execute(String(text)); }
    // The printed result; empty for a result that is none.
    String ExecuteToString(const String& text);

    // Runs a file; a relative name lies in the working directory. Failures are logged. False when the file
    // could not be read, cut into tokens or parsed, so that nothing of it ran.
    bool LoadConfig(const std::string& fileName);

    // Once per frame: attributes that are bound to functions follow them.
    void Update();

    void AddInfix(const InfixPtr& infix);

    const ClosurePtr& GetRootClosure() const { return m_rootClosure; }
    const ReflectedPtr& GetKeyBinder() const { return m_keyBinder; }  // null without a factory

    // All settings, functions and key bindings as source. What cannot be printed is left out with a Warning.
    String GetRootCode() const;
    // Replaces the file, in the working directory unless the name is absolute. Failures are logged at level
    // Error. False when nothing was written, also for want of anything to write.
    bool SaveRootCode(const String& fileName) const;

    // Completes the path at the end of `line` and returns the candidates, sorted.
    StringList AutoComplete(String& line) const;

    // Where parse and evaluation errors go; by default to the log as a Warning.
    void SetOnError(const OnError& onError) { m_onError = onError; }

    // What failed in the latest run of a text, in order: one failure that left it unread or ended it, or
    // those of its statements, the first hundred. For who shows the text and marks the places.
    const FailureList& GetFailures() const { return script::GetFailures(); }

    static void ParserAssert(bool condition, const String& text);  // raises ParseException

  private:
    ObjectPtr Execute(const ExpressionPtr& expression, size_t numTokens);
    CodeBlockPtr Parse(const TokenList& tokens, const ScopePtr& scope,
                       const OnProgress& onProgress = nullptr);
    CodeBlockPtr ParseOrReport(const String& text, size_t& numTokens, const ScopePtr& scope, size_t maxTokens,
                               const OnProgress& onProgress = nullptr);
    CodeBlockPtr ParseOrReport(const String& text, size_t& numTokens);
    void ReportError(const String& text, const SourcePlace& place = {}) const;
    void AttachKeyBinder();

    ClosurePtr m_rootClosure;  // all top-level variables
    ScopePtr m_rootScope;      // the infix declarations seen while parsing
    ClosurePtr m_math;         // the intrinsics
    ReflectedPtr m_keyBinder;  // null without a factory
    OnError m_onError;
};

}  // namespace script

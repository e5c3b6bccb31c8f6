#pragma once

#include <functional>
#include <map>

#include "script/Reflected.h"

namespace script {

// Whether a keyword occurs in the sequence that is to be split.
using KeywordTest = std::function<bool(const String& keyword)>;

// A name space with operators of its own. At parse time it holds the declarations seen so far.
class Scope : public Reflected {
  public:
    Scope(const String& name, const ClassObjectPtr& superscope);
    ~Scope() noexcept(false) override;

    // An equal pattern replaces the earlier declaration, so that a text may be run twice.
    void AddInfix(const InfixPtr& infix);

    // The declaration to split a sequence by, in which the words of `names` occur: of those whose keywords
    // all occur, here or in an enclosing scope, the one of lowest precedence; an inner one before an equal
    // outer one; null when there is none. Raises ParseException for a tie within one scope.
    InfixPtr GetInfix(const StringSet& names) const;
    InfixPtr GetInfix(const KeywordTest& occurs) const;

    size_t GetLevel() const { return m_level; }
    const ClassObjectPtr& GetSuperscope() const { return m_superscope; }  // null at a root

  private:
    InfixPtr ChooseInfix(const KeywordTest& occurs, const InfixPtr& outer) const;

    std::vector<InfixPtr> m_infixes;
    std::map<StringList, size_t> m_patterns;  // index into m_infixes
    // Look-up goes by the owner link; this hold keeps the enclosing scope alive for functions that outlive
    // the call in which they were made.
    ClassObjectPtr m_superscope;
    const size_t m_level;  // number of enclosing scopes at construction
};

// A scope at run time: the root, or the locals of one call. It belongs to the guest of the closure around it
// or, where that has none, to the guest at work.
class Closure : public Scope {
  public:
    explicit Closure(const String& name, const ClassObjectPtr& superscope = nullptr);
    ~Closure() noexcept(false) override;

    Guest* GetGuest() const override { return m_guest.Get(); }

  private:
    const GuestPtr m_guest;
};

}  // namespace script

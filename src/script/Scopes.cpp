#include "script/Scopes.h"

#include <algorithm>
#include <limits>

#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Guest.h"
#include "script/Release.h"
#include "util/Assert.h"

namespace script {

static size_t GetLevelBelow(const ClassObjectPtr& superscope) {
    const Scope* const scope = dynamic_cast<const Scope*>(superscope.Get());
    return scope != nullptr ? scope->GetLevel() + 1 : 0;
}

Scope::Scope(const String& name, const ClassObjectPtr& superscope)
    : Reflected(name), m_superscope(superscope), m_level(GetLevelBelow(superscope)) {
    // A new object makes no circle: the check for one is passed over.
    if (superscope) Object::SetOwner(superscope);  // NOLINT(bugprone-parent-virtual-call)
}

Scope::~Scope() noexcept(false) {
    ReleaseAll(m_infixes);
    Release(m_superscope);
}

static Guest* GetGuestOf(const ClassObjectPtr& superscope) {
    Guest* const guest = superscope ? superscope->GetGuest() : nullptr;
    return guest != nullptr ? guest : Guest::GetCurrent();
}

Closure::Closure(const String& name, const ClassObjectPtr& superscope)
    : Scope(name, superscope), m_guest(GetGuestOf(superscope)) {}

Closure::~Closure() noexcept(false) = default;

void Scope::AddInfix(const InfixPtr& infix) {
    const auto place = m_patterns.emplace(infix->GetPattern(), m_infixes.size());
    if (place.second) {
        m_infixes.push_back(infix);
    } else {
        m_infixes[place.first->second] = infix;
    }
}

InfixPtr Scope::GetInfix(const StringSet& names) const {
    return GetInfix(KeywordTest([&names](const String& keyword) { return names.count(keyword) != 0; }));
}

// Each scope is asked what it makes of the answer of the one around it, from the root inwards.
InfixPtr Scope::GetInfix(const KeywordTest& occurs) const {
    std::vector<const Scope*> chain;
    for (const ClassObject* object = this; object != nullptr; object = object->GetOwner()) {
        const Scope* const superscope = dynamic_cast<const Scope*>(object);
        CODE_ASSERTION(superscope);
        chain.push_back(superscope);
    }
    InfixPtr answer;
    for (auto scope = chain.rbegin(); scope != chain.rend(); ++scope) {
        answer = (*scope)->ChooseInfix(occurs, answer);
    }
    return answer;
}

static bool KeywordsOccur(const Infix& infix, const KeywordTest& occurs) {
    const StringList& pattern = infix.GetPattern();
    return std::all_of(pattern.begin(), pattern.end(),
                       [&occurs](const String& part) { return part.empty() || occurs(part); });
}

// The comparison with the outer answer is strict, also against the start value: a declaration of precedence
// +inf is found in its own scope only.
InfixPtr Scope::ChooseInfix(const KeywordTest& occurs, const InfixPtr& outer) const {
    double lowest = std::numeric_limits<double>::infinity();
    size_t candidates = 0;
    InfixPtr best;
    for (const InfixPtr& infix : m_infixes) {
        if (infix->GetPrecedence() > lowest || !KeywordsOccur(*infix, occurs)) continue;
        candidates = infix->GetPrecedence() < lowest ? 1 : candidates + 1;
        lowest = infix->GetPrecedence();
        best = infix;
    }
    if (outer && outer->GetPrecedence() < lowest) return outer;
    if (candidates > 1) THROW(ParseException, "Multiple mathcing infix functions found");
    return best;
}

}  // namespace script

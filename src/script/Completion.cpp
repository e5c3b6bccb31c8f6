#include "script/Completion.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cctype>

#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Scopes.h"

namespace script {

namespace {

char Lower(char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}
char Upper(char c) {
    return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

bool BelongsToPath(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '_';
}

// A function such as `{ App }` lets a name stand for a class object. Null for any other.
ClassObjectPtr ResolveAlias(const ObjectPtr& value) {
    const FunctionPtr function = util::DynamicCast<Function>(value);
    if (!function || function->GetArgCount() != 0) return nullptr;
    const CodeBlock* const code = dynamic_cast<const CodeBlock*>(function->GetCode().Get());
    if (code == nullptr || code->GetExpressions().size() != 1) return nullptr;
    const IdentifierPtr identifier = util::DynamicCast<Identifier>(code->GetExpressions()[0]);
    if (!identifier) return nullptr;
    try {
        return identifier->Evaluate(function->GetClosure())->AsClass();
    } catch (const std::exception& e) {
        LogException(e, WHERE);
        return nullptr;
    }
}

// The object that `member` of `object` stands for; null when there is none.
ClassObjectPtr StepInto(const ClassObject& object, const String& member) {
    for (const VariablePtr& variable : object.GetVariables()) {
        const String& name = variable->GetName();
        if (!boost::algorithm::iequals(name, member)) continue;
        const ObjectPtr value = variable->GetValue();
        const ClassObjectPtr inner = value->AsClass();
        return inner ? inner : ResolveAlias(value);
    }
    return nullptr;
}

StringList CollectCandidates(const ClassObject& object, const String& prefix) {
    StringList candidates;
    for (const VariablePtr& variable : object.GetVariables()) {
        if (!boost::algorithm::istarts_with(variable->GetName(), prefix)) continue;
        const ObjectPtr value = variable->GetValue();
        const ClassObject* const inner = value->AsClass();
        const bool hasContents = inner != nullptr && inner->GetNumVariables() != 0;
        candidates.push_back(variable->GetName() + (hasContents ? "." : ""));
    }
    return candidates;
}

// The case that all candidates agree on in one column, or the one that was typed.
char AgreeOnCase(const StringList& candidates, size_t column, char typed) {
    size_t lower = 0;
    for (const String& name : candidates) lower += name[column] == Lower(name[column]);
    if (lower == candidates.size()) return Lower(typed);
    return lower == 0 ? Upper(typed) : typed;
}

bool AgreeOnColumn(const StringList& candidates, size_t column) {
    return std::all_of(candidates.begin(), candidates.end(), [&](const String& name) {
        return name.size() > column && Lower(name[column]) == Lower(candidates[0][column]);
    });
}

String Extend(String prefix, const StringList& candidates) {
    if (candidates.empty()) return prefix;
    if (candidates.size() == 1) return candidates[0];
    for (size_t i = 0; i < prefix.size(); ++i) prefix[i] = AgreeOnCase(candidates, i, prefix[i]);
    while (AgreeOnColumn(candidates, prefix.size())) prefix += candidates[0][prefix.size()];
    return prefix;
}

}  // namespace

StringList Complete(const ClassObjectPtr& root, String& line) {
    size_t begin = line.size();
    while (begin > 0 && BelongsToPath(line[begin - 1])) --begin;
    ClassObjectPtr object = root;
    for (size_t point; (point = line.find('.', begin)) != String::npos; begin = point + 1) {
        object = StepInto(*object, line.substr(begin, point - begin));
        if (!object) return {};
    }
    const String prefix = line.substr(begin);
    const StringList candidates = CollectCandidates(*object, prefix);
    line = line.substr(0, begin) + Extend(prefix, candidates);
    return candidates;
}

}  // namespace script

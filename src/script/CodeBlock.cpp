#include "logging/Log.h"
#include "script/CodeWriter.h"
#include "script/Conversions.h"
#include "script/Exceptions.h"
#include "script/Expressions.h"
#include "script/Failure.h"
#include "script/Guest.h"
#include "script/Limits.h"
#include "script/Release.h"
#include "util/ProfileTree.h"

// Statement lists and the two kinds of element lists.
namespace script {

namespace {

constexpr int64_t FAILURE_STEPS = 35;          // a failed statement writes three lines to the log
constexpr size_t MAX_LOGGED_CODE = 16u << 10;  // bytes of a statement in the log

// A statement with an empty slot (`1 + `) cannot be printed, nor one that is nested too deeply. Its failure
// is then told without its code.
String DescribeStatement(const ExpressionPtr& statement) {
    String code;
    try {
        code = statement->ToCode();
        ChargeBytes(code.size());
    } catch (const std::exception& e) {
        LogException(e, WHERE);
    }
    if (code.size() <= MAX_LOGGED_CODE) return code;
    return code.substr(0, MAX_LOGGED_CODE) + " ...";
}

}  // namespace

CodeBlock::~CodeBlock() noexcept(false) {
    ReleaseAll(m_expressions);
}

ObjectPtr CodeBlock::Evaluate(const ClosurePtr& closure) {
    const EvaluationGuard guard;
    ObjectPtr result = MakeVoid();
    for (size_t i = 0; i < m_expressions.size(); ++i) result = EvaluateStatement(i, closure);
    return result;
}

void CodeBlock::Add(const ExpressionPtr& statement, SourcePlace place) {
    m_places.resize(m_expressions.size());
    m_expressions.push_back(statement);
    m_places.push_back(place);
}

ObjectPtr CodeBlock::EvaluateStatement(size_t index, const ClosurePtr& closure) const {
    const ExpressionPtr statement = m_expressions[index];
    try {
        return statement->Evaluate(closure);
    } catch (const TimeoutException&) {
        throw;
    } catch (const std::exception& e) {
        ChargeSteps(FAILURE_STEPS);
        if (Guest* const guest = Guest::GetCurrent()) guest->NoteFailure();
        LogException(e, WHERE);
        NoteFailure({e.what(), index < m_places.size() ? m_places[index] : SourcePlace()});
        Log(logging::Warning, "Failed to evaluate: " + DescribeStatement(statement) + ", " + e.what());
        return new ErrorObject;
    }
}

void CodeBlock::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    WriteJoined(out, m_expressions, ";\n");
}

ObjectList CodeBlock::EvaluateElements(const ClosurePtr& closure) const {
    CheckListSize(m_expressions.size());
    ObjectList values;
    values.reserve(m_expressions.size());
    for (const ExpressionPtr& element : m_expressions) values.push_back(element->Evaluate(closure));
    return values;
}

ObjectPtr Block::Evaluate(const ClosurePtr& closure) {
    const EvaluationGuard guard;
    if (GetExpressions().size() == 1) return GetExpressions()[0]->Evaluate(closure);
    return new List(EvaluateElements(closure));
}

void Block::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    out.Append("(");
    WriteJoined(out, GetExpressions(), ", ");
    out.Append(")");
}

ObjectPtr ListDeclaration::Evaluate(const ClosurePtr& closure) {
    PROFILE_SECTION("ListDeclaration::Evaluate");
    const EvaluationGuard guard;
    return new List(EvaluateElements(closure));
}

void ListDeclaration::WriteCode(CodeWriter& out) const {
    const NestingGuard guard;
    out.Append("[");
    WriteJoined(out, GetExpressions(), ", ");
    out.Append("]");
}

}  // namespace script

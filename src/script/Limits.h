#pragma once

#include <cstddef>
#include <cstdint>

#include "util/String.h"

// What keeps a script from ending or hanging the program: bounds on nesting, on work and on sizes. All are
// far above what a scene or a configuration needs.
namespace script {

constexpr size_t MAX_STRING_SIZE = 16u << 20;  // bytes of a string value
constexpr size_t MAX_LIST_SIZE = 1000000;      // elements of a list
constexpr size_t MAX_CODE_SIZE = 64u << 20;    // bytes of a printed text
constexpr int MAX_NESTING = 20000;             // nodes entered and not left, of whatever kind
constexpr int64_t MAX_STEPS = 10000000;        // node evaluations of one session
constexpr int64_t STEPS_PER_TOKEN = 20;        // added for each token of an executed text
constexpr int64_t MAX_PARSE_STEPS = 40000000;  // comparisons of operands with infix keywords

// A guest's file. A token takes some 270 bytes at most while its file is read and a step leaves at most 140
// behind, so that these keep a file within half a gigabyte and within a second.
constexpr size_t MAX_GUEST_TOKENS = 1200000;
constexpr int64_t MAX_GUEST_STEPS = 1500000;  // of all statements together
constexpr int64_t MAX_GUEST_TURN = 500000;    // of one statement
// Formulas that a guest has bound to attributes, in each recalculation: a frame of the program.
constexpr int64_t MAX_FORMULA_STEPS = 2000;  // of one
constexpr int64_t MAX_FRAME_STEPS = 6000;    // of all together: some 5 ms at most

// Raise ScriptException with "String too long", "List too long".
void CheckStringSize(size_t size);
void CheckListSize(size_t size);

// The span in which steps are counted together: one Execute, one recalculation of an attribute, one call of
// a function from native code. A session inside another shares the steps of the outer one.
class Session {
  public:
    explicit Session(size_t numTokens = 0);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
};

// A span with steps of its own, whatever has been used up around it: the printing of one variable among many.
class FreshSession {
  public:
    FreshSession();
    ~FreshSession();
    FreshSession(const FreshSession&) = delete;
    FreshSession& operator=(const FreshSession&) = delete;

  private:
    const int64_t m_outerSteps;
};

// A span that may take at most `steps` of what the span around it has left, and takes them from that.
class StepLimit {
  public:
    explicit StepLimit(int64_t steps);
    ~StepLimit();
    StepLimit(const StepLimit&) = delete;
    StepLimit& operator=(const StepLimit&) = delete;

    int64_t GetUsed() const;

  private:
    const int64_t m_outerSteps;
    const int64_t m_granted;
};

// Takes `steps` from the session; raises TimeoutException with "Script took too long" when none are left.
void ChargeSteps(int64_t steps);
// The cost of touching `bytes` characters, in the measure of a node evaluation.
void ChargeBytes(size_t bytes);

// One level of native recursion over a script's structure: parsing, evaluating, printing, list arithmetic.
// Raises ScriptException with "Too deeply nested" beyond MAX_NESTING levels or when the stack runs low,
// whichever comes first: how much a level takes depends on the build.
class NestingGuard {
  public:
    NestingGuard() {
        if (++s_depth > MAX_NESTING || IsStackLow() || s_depth == 1) Begin();
    }
    ~NestingGuard() {
        if (--s_depth == 0) End();
    }
    NestingGuard(const NestingGuard&) = delete;
    NestingGuard& operator=(const NestingGuard&) = delete;

  private:
    static bool IsStackLow() { return static_cast<const char*>(__builtin_frame_address(0)) < s_stackLimit; }
    static void Begin();
    static void End();

    static int s_depth;
    static const char* s_stackLimit;  // the lowest address that a level may start at
};

// A level that counts as one node evaluation.
class EvaluationGuard : public NestingGuard {
  public:
    EvaluationGuard() { ChargeSteps(1); }
};

}  // namespace script

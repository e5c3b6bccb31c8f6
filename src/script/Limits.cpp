#include "script/Limits.h"

#include <sys/resource.h>

#include <algorithm>

#include "script/Exceptions.h"

namespace script {

namespace {

// What leaving a level by an exception costs, against a node evaluation: unwinding is slow, and a doubly
// recursive function could fail for minutes.
constexpr int64_t UNWIND_STEPS = 5;
constexpr int64_t UNCOUNTED = INT64_MAX / 2;  // native work outside all sessions
constexpr size_t BYTES_PER_STEP = 64;
constexpr size_t STACK_SIZE = 8u << 20;  // what a main thread has by default

int s_sessions = 0;
int64_t s_stepsLeft = UNCOUNTED;

// Three quarters of the stack: the rest is for the native callers and for what a level calls.
size_t GetUsableStack() {
    static const size_t s_usable = [] {
        rlimit limit{};
        size_t size = STACK_SIZE;
        if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
            size = std::min<size_t>(size, limit.rlim_cur);
        }
        return size / 4 * 3;
    }();
    return s_usable;
}

}  // namespace

int NestingGuard::s_depth = 0;
const char* NestingGuard::s_stackLimit = nullptr;

void CheckStringSize(size_t size) {
    if (size > MAX_STRING_SIZE) THROW(ScriptException, "String too long");
}

void CheckListSize(size_t size) {
    if (size > MAX_LIST_SIZE) THROW(ScriptException, "List too long");
}

Session::Session(size_t numTokens) {
    if (s_sessions++ == 0) s_stepsLeft = MAX_STEPS;
    s_stepsLeft += STEPS_PER_TOKEN * static_cast<int64_t>(numTokens);
}

Session::~Session() {
    if (--s_sessions == 0) s_stepsLeft = UNCOUNTED;
}

FreshSession::FreshSession() : m_outerSteps(s_stepsLeft) {
    s_stepsLeft = MAX_STEPS;
    ++s_sessions;
}

FreshSession::~FreshSession() {
    --s_sessions;
    s_stepsLeft = m_outerSteps;
}

StepLimit::StepLimit(int64_t steps)
    : m_outerSteps(s_stepsLeft), m_granted(std::max<int64_t>(std::min(steps, s_stepsLeft), 0)) {
    s_stepsLeft = m_granted;
    ++s_sessions;
}

StepLimit::~StepLimit() {
    --s_sessions;
    s_stepsLeft = m_outerSteps - GetUsed();
}

int64_t StepLimit::GetUsed() const {
    return m_granted - s_stepsLeft;
}

void ChargeSteps(int64_t steps) {
    s_stepsLeft -= steps;
    if (s_stepsLeft < 0) THROW(TimeoutException, "Script took too long");
}

void ChargeBytes(size_t bytes) {
    ChargeSteps(static_cast<int64_t>(bytes / BYTES_PER_STEP));
}

void NestingGuard::Begin() {
    if (s_depth == 1) {
        if (s_sessions == 0) s_stepsLeft = MAX_STEPS;
        s_stackLimit = static_cast<const char*>(__builtin_frame_address(0)) - GetUsableStack();
        return;
    }
    --s_depth;
    s_stepsLeft -= UNWIND_STEPS * s_depth;
    THROW(ScriptException, "Too deeply nested");
}

void NestingGuard::End() {
    s_stackLimit = nullptr;
    if (s_sessions == 0) s_stepsLeft = UNCOUNTED;
}

}  // namespace script

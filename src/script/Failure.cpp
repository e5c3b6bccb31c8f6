#include "script/Failure.h"

namespace script {

constexpr size_t MAX_FAILURES = 100;

static FailureList& GetList() {
    static FailureList& s_failures = *new FailureList;  // abandoned at exit
    return s_failures;
}

static uint16_t s_text = 0;

void NoteFailure(const Failure& failure) {
    const bool elsewhere = failure.place.IsKnown() && failure.place.text != s_text;
    if (!elsewhere && GetList().size() < MAX_FAILURES) GetList().push_back(failure);
}

void BeginFailures(uint16_t text) {
    s_text = text;
    GetList().clear();
}

const FailureList& GetFailures() {
    return GetList();
}

}  // namespace script

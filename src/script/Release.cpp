#include "script/Release.h"

#include <utility>
#include <vector>

namespace script {

namespace {

constexpr int MAX_RELEASE_DEPTH = 64;

int s_depth = 0;
std::vector<util::SharedPtr<util::Pointee>>& s_kept = *new std::vector<util::SharedPtr<util::Pointee>>;

void Drop(util::SharedPtr<util::Pointee> hold) {
    ++s_depth;
    hold = nullptr;
    --s_depth;
}

}  // namespace

void ReleaseChild(util::SharedPtr<util::Pointee> child) noexcept {
    if (s_depth >= MAX_RELEASE_DEPTH) {
        s_kept.push_back(std::move(child));
        return;
    }
    Drop(std::move(child));
    while (s_depth == 0 && !s_kept.empty()) {
        util::SharedPtr<util::Pointee> next = std::move(s_kept.back());
        s_kept.pop_back();
        Drop(std::move(next));
    }
}

SuspectList& GetNewSuspects() {
    static SuspectList& s_suspects = *new SuspectList;  // abandoned at exit
    return s_suspects;
}

void NoteSuspect(const util::SharedPtr<util::Pointee>& object) {
    if (object && object->GetHandle()->m_strong > 2) GetNewSuspects().emplace_back(object.Get());
}

}  // namespace script

#pragma once

#include <deque>

#include "util/SharedPtr.h"
#include "util/WeakPtr.h"

namespace script {

// Drops a hold from within a destructor without letting a deep structure (a list in a list in a list ...)
// recurse through the stack: beyond some levels the hold is kept back, and dropped by the outermost release.
void ReleaseChild(util::SharedPtr<util::Pointee> child) noexcept;

// What is about to be let go while others still hold it, and may from then on be held by itself alone
// (Cycles.h). Null is ignored.
using SuspectList = std::deque<util::WeakPtr<util::Pointee>>;
void NoteSuspect(const util::SharedPtr<util::Pointee>& object);
SuspectList& GetNewSuspects();

template <class T>
void Release(util::SharedPtr<T>& child) noexcept {
    if (!child) return;
    util::SharedPtr<util::Pointee> last = child;
    child = nullptr;
    ReleaseChild(std::move(last));
}

template <class Container>
void ReleaseAll(Container& children) noexcept {
    for (auto& child : children) Release(child);
    children.clear();
}

}  // namespace script

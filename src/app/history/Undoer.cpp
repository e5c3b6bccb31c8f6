#include "app/history/Undoer.h"

#include "app/history/Actions.h"
#include "app/history/Snapshot.h"

namespace app {

namespace {

void DropOldest(std::deque<ActionPtr>& stack, size_t limit) {
    while (stack.size() > limit) stack.pop_front();
}

}  // namespace

Undoer::Undoer() = default;
Undoer::~Undoer() noexcept(false) = default;

void Undoer::Do(const ActionPtr& action) {
    if (!action->KeepsScene()) m_onInterrupt.CallAll();
    m_redo.clear();
    action->Do();
    if (m_undo.empty() || !m_undo.back()->Absorbs(*action)) m_undo.push_back(action);
    Trim();
    Change();
}

// The action changes stacks before it runs: should restoring fail, a step back repairs what it left.
void Undoer::Undo() {
    m_onInterrupt.CallAll();  // what is broken off may have become a step
    if (m_undo.empty()) return;
    const ActionPtr action = m_undo.back();
    m_undo.pop_back();
    m_redo.push_back(action);
    action->Undo();
    Trim();
    Change();
}

void Undoer::Redo() {
    if (m_redo.empty()) return;
    m_onInterrupt.CallAll();
    if (m_redo.empty()) return;  // what was broken off has become a step, behind which there is nothing
    const ActionPtr action = m_redo.back();
    m_redo.pop_back();
    m_undo.push_back(action);
    action->Redo();
    Trim();
    Change();
}

void Undoer::AddRestorer(const SnapshotPtr& before, const char* name) {
    m_redo.clear();
    m_undo.push_back(new SnapshotRestorer(name, before, new Snapshot(before->GetScene())));
    Change();
}

void Undoer::Trim() {
    DropOldest(m_undo, m_limit);
    DropOldest(m_redo, m_limit);
}

void Undoer::Change() {
    ++m_changes;
    m_onChange.CallAll();
}

void Undoer::SetLimit(size_t limit) {
    m_limit = limit;
    Trim();
}

void Undoer::Clear() {
    m_undo.clear();
    m_redo.clear();
    Change();
}

const char* Undoer::GetUndoName() const {
    return m_undo.empty() ? nullptr : m_undo.back()->GetName();
}

const char* Undoer::GetRedoName() const {
    return m_redo.empty() ? nullptr : m_redo.back()->GetName();
}

}  // namespace app

#pragma once

#include <cstdint>
#include <deque>

#include "app/Fwd.h"
#include "util/Callback.h"
#include "util/Singleton.h"

namespace app {

// The history. Do pushes an action and forgets what had been undone; Undo and Redo step back and forth.
// App's `maxUndo` bounds either stack. The stacks live as long as the program: loading a scene is a step
// like any other.
//
// Each step first interrupts whatever gesture is under way (GetOnInterrupt). An action that fails has
// already changed stacks, so one more step the other way repairs the scene.
class Undoer : public util::Pointee, public util::Singleton<Undoer> {
  public:
    static constexpr size_t DEFAULT_LIMIT = 10;

    Undoer();
    ~Undoer() noexcept(false) override;

    // Does the action and makes it the last one of the history.
    void Do(const ActionPtr& action);
    void Undo();  // nothing on an empty stack, as Redo
    void Redo();

    // For a change that has happened already: takes the present state as the one after it. Does not trim:
    // App's next update does.
    void AddRestorer(const SnapshotPtr& before, const char* name);

    void SetLimit(size_t limit);  // of steps in either stack
    void Trim();
    void Clear();

    // Language keys of what the next step would do; null when there is none.
    const char* GetUndoName() const;
    const char* GetRedoName() const;
    size_t GetUndoCount() const { return m_undo.size(); }
    size_t GetRedoCount() const { return m_redo.size(); }
    // Rises with each step in either direction: whether something was edited since.
    uint64_t GetChangeCount() const { return m_changes; }

    // Fired before a step of the history or a load replaces the scene: whoever has a gesture under way
    // drops it, for its entities and bodies are about to go.
    util::CallbackSet& GetOnInterrupt() { return m_onInterrupt; }
    // For the buttons that show those names.
    util::CallbackSet& GetOnChange() { return m_onChange; }

  private:
    void Change();

    std::deque<ActionPtr> m_undo;  // the last action at the back
    std::deque<ActionPtr> m_redo;
    uint64_t m_changes = 0;
    size_t m_limit = DEFAULT_LIMIT;
    util::CallbackSet m_onInterrupt;
    util::CallbackSet m_onChange;
};

}  // namespace app

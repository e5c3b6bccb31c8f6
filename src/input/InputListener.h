#pragma once

#include <deque>
#include <map>

#include "input/InputEvents.h"
#include "script/Reflected.h"
#include "util/Callback.h"
#include "util/SharedPtr.h"
#include "util/WeakPtr.h"

namespace gui {

// Priorities of the program's listeners; higher ones see an event first and are drawn on top.
constexpr int DEFAULT_PRIORITY = 50;
constexpr int EDITOR_PRIORITY = 75;  // line editors and the console

// Somebody who wants input. All operations do nothing unless told otherwise, and may set the event's
// m_handled. An event that somebody before has handled is delivered all the same: each receiver looks for
// itself.
class InputListener : public script::Reflected {
  public:
    explicit InputListener(const String& name = "Unnamed_InputListener") : Reflected(name) {}

    int GetPriority() const { return m_priority; }
    void SetPriority(int priority);
    util::CallbackSet& GetOnPriorityChange() { return m_onPriorityChange; }

    virtual void OnMouseMove(MouseMoveEvent& event);
    virtual void OnKeyEvent(KeyEvent& event);  // records the key of an event not handled yet
    virtual void OnInputEvent(InputEvent& event);
    virtual void OnDragStart(DragEvent& event);
    virtual void OnDrag(DragEvent& event);
    virtual void OnDragEnd(DragEvent& event);
    virtual void OnClick(ClickEvent& event);

    // Whether the key is down and this listener has seen its press unhandled; so a key that is typed into
    // a field is down for the field alone.
    bool IsKeyDownHere(int key) const;

  private:
    int m_priority = DEFAULT_PRIORITY;
    util::CallbackSet m_onPriorityChange;
    std::map<int, bool> m_seenKeys;  // by key code
};
using InputListenerPtr = util::SharedPtr<InputListener>;
using InputListenerWeakPtr = util::WeakPtr<InputListener>;

// Passes each event on to its listeners: highest priority first, among equals the one added last. Does not
// own them: a dead one is forgotten at the next delivery. Delivery works on a copy of the list, so that
// listeners may come and go meanwhile, and holds the listener that it calls.
class InputDelegator : public InputListener {
  public:
    explicit InputDelegator(const String& name = "Unnamed_InputListener") : InputListener(name) {}

    // A listener that is here already moves to the head of its priority. Null is a failed assertion.
    void AddListener(const InputListenerWeakPtr& listener);
    void RemoveListener(const InputListener& listener);  // not being here is no failure

    void OnMouseMove(MouseMoveEvent& event) override;
    void OnKeyEvent(KeyEvent& event) override;  // delivers, then records: a key is ours if no child took it
    void OnInputEvent(InputEvent& event) override;
    void OnDragStart(DragEvent& event) override;
    void OnDrag(DragEvent& event) override;
    void OnDragEnd(DragEvent& event) override;
    void OnClick(ClickEvent& event) override;

  private:
    struct Entry {
        InputListenerWeakPtr m_listener;
        util::SharedPtr<util::Pointee> m_resorter;  // owns the resort callback, which ends with the entry
    };

    template <class Event>
    void Deliver(void (InputListener::*operation)(Event&), Event& event);
    void Sort();
    void ForgetOneDead();

    std::deque<Entry> m_listeners;  // in the order of delivery
};

}  // namespace gui

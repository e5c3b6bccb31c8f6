#include "input/InputListener.h"

#include <algorithm>

#include "input/Input.h"
#include "util/Assert.h"

namespace gui {

namespace {

constexpr int DEAD_PRIORITY = -1;

}  // namespace

void InputListener::SetPriority(int priority) {
    if (priority == m_priority) return;
    m_priority = priority;
    m_onPriorityChange.CallAll();
}

void InputListener::OnMouseMove(MouseMoveEvent&) {}

void InputListener::OnKeyEvent(KeyEvent& event) {
    if (!event.m_handled) m_seenKeys[event.m_key] = event.m_pressed;
}

void InputListener::OnInputEvent(InputEvent&) {}
void InputListener::OnDragStart(DragEvent&) {}
void InputListener::OnDrag(DragEvent&) {}
void InputListener::OnDragEnd(DragEvent&) {}
void InputListener::OnClick(ClickEvent&) {}

bool InputListener::IsKeyDownHere(int key) const {
    const auto seen = m_seenKeys.find(key);
    return seen != m_seenKeys.end() && seen->second && Input::Instance().IsKeyDown(key);
}

void InputDelegator::AddListener(const InputListenerWeakPtr& listener) {
    CODE_ASSERTION(listener.Get());
    const auto present = std::find_if(m_listeners.begin(), m_listeners.end(),
                                      [&](const Entry& entry) { return entry.m_listener == listener; });
    Entry entry;
    if (present != m_listeners.end()) {
        entry = *present;
        m_listeners.erase(present);
    } else {
        entry = {listener, new util::Pointee};
        listener.Get()->GetOnPriorityChange().Add(new util::Callback([this] { Sort(); }, entry.m_resorter));
    }
    m_listeners.push_front(entry);
    Sort();
}

void InputDelegator::RemoveListener(const InputListener& listener) {
    m_listeners.erase(std::remove_if(m_listeners.begin(), m_listeners.end(),
                                     [&](const Entry& entry) { return entry.m_listener.Get() == &listener; }),
                      m_listeners.end());
}

void InputDelegator::Sort() {
    const auto priority = [](const Entry& entry) {
        const InputListener* const listener = entry.m_listener.Get();
        return listener != nullptr ? listener->GetPriority() : DEAD_PRIORITY;
    };
    std::stable_sort(m_listeners.begin(), m_listeners.end(),
                     [&](const Entry& a, const Entry& b) { return priority(a) > priority(b); });
}

void InputDelegator::ForgetOneDead() {
    const auto dead = std::find_if(m_listeners.begin(), m_listeners.end(),
                                   [](const Entry& entry) { return !entry.m_listener; });
    if (dead != m_listeners.end()) m_listeners.erase(dead);
}

// The locks keep the called listener, and this, alive until the call is over: a dialog may close itself in
// its own event.
template <class Event>
void InputDelegator::Deliver(void (InputListener::*operation)(Event&), Event& event) {
    const util::LockPtr<InputDelegator> self(this);
    const std::deque<Entry> listeners = m_listeners;
    for (const Entry& entry : listeners) {
        const util::LockPtr<InputListener> listener = entry.m_listener.Lock();
        if (listener) {
            ((*listener).*operation)(event);
        } else {
            ForgetOneDead();
        }
    }
}

void InputDelegator::OnMouseMove(MouseMoveEvent& event) {
    Deliver(&InputListener::OnMouseMove, event);
}

void InputDelegator::OnKeyEvent(KeyEvent& event) {
    const util::LockPtr<InputDelegator> self(this);
    Deliver(&InputListener::OnKeyEvent, event);
    InputListener::OnKeyEvent(event);
}

void InputDelegator::OnInputEvent(InputEvent& event) {
    Deliver(&InputListener::OnInputEvent, event);
}

void InputDelegator::OnDragStart(DragEvent& event) {
    Deliver(&InputListener::OnDragStart, event);
}

void InputDelegator::OnDrag(DragEvent& event) {
    Deliver(&InputListener::OnDrag, event);
}

void InputDelegator::OnDragEnd(DragEvent& event) {
    Deliver(&InputListener::OnDragEnd, event);
}

void InputDelegator::OnClick(ClickEvent& event) {
    Deliver(&InputListener::OnClick, event);
}

}  // namespace gui

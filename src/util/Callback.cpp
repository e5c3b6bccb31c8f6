#include "util/Callback.h"

#include "util/Guarded.h"

namespace util {

void Callback::Call() const {
    const LockPtr<Pointee> owner = m_owner.Lock();
    if (!owner) return;
    Guarded(m_function, "Exception caught in CallbackSet::CallAll: ", logging::Error);
}

void CallbackSet::Add(const CallbackPtr& callback) {
    if (callback) m_callbacks.push_back(callback);
}

void CallbackSet::CallAll() const {
    const std::list<CallbackPtr> callbacks = m_callbacks;
    for (const CallbackPtr& callback : callbacks) callback->Call();
}

// The dead are moved aside first and dropped last: dropping one can run destructors that reach this list.
void CallbackSet::Flush() {
    std::list<CallbackPtr> dead;
    for (auto it = m_callbacks.begin(); it != m_callbacks.end();) {
        const auto next = std::next(it);
        if ((*it)->IsExpired()) dead.splice(dead.end(), m_callbacks, it);
        it = next;
    }
}

}  // namespace util

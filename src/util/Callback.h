#pragma once

#include <functional>
#include <list>

#include "util/ClassTracker.h"
#include "util/Pointee.h"
#include "util/SharedPtr.h"
#include "util/WeakPtr.h"

namespace util {

// A function that is alive only as long as its owner: nobody unregisters, owners die.
class Callback : public Pointee {
  public:
    Callback(const std::function<void()>& function, const WeakPtr<Pointee>& owner)
        : m_function(function), m_owner(owner) {}

    bool IsExpired() const { return !m_owner; }

    // Calls the function if the owner lives, which is held meanwhile. Exceptions are logged and go no
    // further.
    void Call() const;

  private:
    std::function<void()> m_function;
    WeakPtr<Pointee> m_owner;
};
using CallbackPtr = SharedPtr<Callback>;

// What the frame loop flushes on every eleventh frame.
class AbstractCallbackSet : public ClassTracker<AbstractCallbackSet> {
  public:
    virtual void Flush() = 0;
};

class CallbackSet : public AbstractCallbackSet {
  public:
    // Null is ignored.
    void Add(const CallbackPtr& callback);

    // Calls all in order, over a copy: a callback may add or remove others, or end the set's owner.
    void CallAll() const;

    // Removes callbacks whose owner has died.
    void Flush() override;

    size_t GetSize() const { return m_callbacks.size(); }

  private:
    std::list<CallbackPtr> m_callbacks;
};

}  // namespace util
